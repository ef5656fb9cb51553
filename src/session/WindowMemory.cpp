#include "session/WindowMemory.h"

#include <QHeaderView>
#include <QScreen>
#include <QSettings>
#include <QTableView>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace kav::window_memory {

namespace {

// The grids of the window itself (not of a pop-up or another window it owns), each with the
// name it is kept under: its own, or that of the control it is the focus of (a FlexGrid).
QList<std::pair<QString, QHeaderView*>> grids(const QWidget& window) {
    QList<std::pair<QString, QHeaderView*>> found;
    for (QTableView* view : window.findChildren<QTableView*>()) {
        if (view->window() != &window) continue;
        const QWidget* control = view;
        while (control->parentWidget() != &window &&
               control->parentWidget()->focusProxy() == control)
            control = control->parentWidget();
        if (!control->objectName().isEmpty())
            found.append({control->objectName(), view->horizontalHeader()});
    }
    return found;
}

QString key(const QWidget& window, const QString& what) {
    return Group() + u'/' + window.objectName() + u'/' + what;
}

}  // namespace

QString Group() { return u"Windows"_s; }

void Restore(QWidget& window, QSettings& settings) {
    if (window.objectName().isEmpty()) return;
    QSize size = settings.value(key(window, u"size"_s)).toSize();
    if (size.isValid() && !size.isEmpty()) {
        // A size kept on a larger screen is cut to this one.
        if (const QScreen* screen = window.screen())
            size = size.boundedTo(screen->availableGeometry().size());
        window.resize(size);
    }
    for (const auto& [name, header] : grids(window)) {
        const QStringList widths = settings.value(key(window, u"columns/"_s + name)).toStringList();
        for (int c = 0; c < qMin(int(widths.size()), header->count()); ++c) {
            bool ok = false;
            const int width = widths[c].toInt(&ok);
            // A column hidden now stays hidden, whatever was kept for it.
            if (ok && width > 0 && !header->isSectionHidden(c)) header->resizeSection(c, width);
        }
    }
}

void Remember(const QWidget& window, QSettings& settings) {
    if (window.objectName().isEmpty()) return;
    settings.setValue(key(window, u"size"_s),
                      window.isMaximized() ? window.normalGeometry().size() : window.size());
    for (const auto& [name, header] : grids(window)) {
        QStringList widths;
        for (int c = 0; c < header->count(); ++c)
            widths << (header->isSectionHidden(c) ? u"-"_s
                                                  : QString::number(header->sectionSize(c)));
        settings.setValue(key(window, u"columns/"_s + name), widths);
    }
}

void Forget(QSettings& settings) { settings.remove(Group()); }

}  // namespace kav::window_memory
