#include "session/ReadingOrder.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QLayout>
#include <QStackedWidget>
#include <QTabWidget>
#include <QWidget>
#include <algorithm>
#include <optional>

namespace kav {

namespace {

bool takesTab(const QWidget* w) { return (w->focusPolicy() & Qt::TabFocus) == Qt::TabFocus; }

// A field made of parts: its focus goes to a widget inside it. A tab widget is not one: its
// tab bar and its pages are fields of their own.
bool isCompound(const QWidget* w) {
    const QWidget* proxy = w->focusProxy();
    return proxy && w->isAncestorOf(proxy) && !qobject_cast<const QTabWidget*>(w);
}

// A page of a stacked widget (a tab page): hidden while another page is shown.
bool isPage(const QWidget* w) {
    return qobject_cast<const QStackedWidget*>(w->parentWidget()) != nullptr;
}

// Where the field stands in the window; nothing for a field that is not one of the window's
// own Tab stops.
std::optional<QRect> placeOf(QWidget& window, QWidget* w) {
    if (w->window() != &window || !takesTab(w)) return std::nullopt;
    if (w->focusProxy() && !isCompound(w)) return std::nullopt;  // its proxy is the field
    for (QWidget* a = w; a != &window; a = a->parentWidget()) {
        if (a->isHidden() && !isPage(a)) return std::nullopt;
        // A part of a field, or of a grid.
        if (a != w && (isCompound(a) || qobject_cast<QAbstractScrollArea*>(a))) return std::nullopt;
    }
    QWidget* shown = w;
    while (shown != &window && !shown->isVisibleTo(&window)) shown = shown->parentWidget();
    return QRect(shown->mapTo(&window, QPoint(0, 0)), shown->size());
}

}  // namespace

QList<QWidget*> ReadingOrder(QWidget& window) {
    if (QLayout* layout = window.layout()) layout->activate();
    struct Field {
        QWidget* widget;
        QRect place;
    };
    QList<Field> fields;
    for (QWidget* w : window.findChildren<QWidget*>())
        if (const std::optional<QRect> place = placeOf(window, w)) fields.append({w, *place});
    std::stable_sort(fields.begin(), fields.end(),
                     [](const Field& a, const Field& b) { return a.place.top() < b.place.top(); });

    // Lines: a field belongs to the line whose first field spans its middle.
    const bool rightToLeft = window.layoutDirection() == Qt::RightToLeft;
    QList<QWidget*> order;
    for (qsizetype first = 0; first < fields.size();) {
        const QRect band = fields[first].place;
        qsizetype end = first + 1;
        while (end < fields.size() && fields[end].place.center().y() <= band.bottom()) ++end;
        std::stable_sort(fields.begin() + first, fields.begin() + end,
                         [rightToLeft](const Field& a, const Field& b) {
                             return rightToLeft ? a.place.right() > b.place.right()
                                                : a.place.left() < b.place.left();
                         });
        for (qsizetype i = first; i < end; ++i) order.append(fields[i].widget);
        first = end;
    }
    return order;
}

void ApplyReadingOrder(QWidget& window) {
    const QList<QWidget*> order = ReadingOrder(window);
    for (qsizetype i = 0; i < order.size(); ++i) {
        if (auto* grid = qobject_cast<QAbstractItemView*>(order[i]))
            grid->setTabKeyNavigation(false);
        if (i > 0) QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

}  // namespace kav
