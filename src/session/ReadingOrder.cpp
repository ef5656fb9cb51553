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

struct Place {
    QRect rect;
    int page = -1;  // the index of the tab page it is on
};

// Where the field stands in the window; nothing for a field that is not one of the window's
// own Tab stops.
std::optional<Place> placeOf(QWidget& window, QWidget* w) {
    if (w->window() != &window || !takesTab(w)) return std::nullopt;
    if (w->focusProxy() && !isCompound(w)) return std::nullopt;  // its proxy is the field
    for (QWidget* a = w; a != &window; a = a->parentWidget()) {
        if (a->isHidden() && !isPage(a)) return std::nullopt;
        // A part of a field, or of a grid.
        if (a != w && (isCompound(a) || qobject_cast<QAbstractScrollArea*>(a))) return std::nullopt;
    }
    // A field on a tab page stands where its page is shown, whichever page is shown now; the
    // pages' fields follow each other in the order of the tabs.
    for (QWidget* a = w; a != &window; a = a->parentWidget()) {
        if (!isPage(a)) continue;
        const auto* stack = static_cast<const QStackedWidget*>(a->parentWidget());
        const QPoint at = stack->mapTo(&window, QPoint(0, 0));
        return Place{
            w == a ? QRect(at, stack->size()) : QRect(at + w->mapTo(a, QPoint(0, 0)), w->size()),
            stack->indexOf(a)};
    }
    return Place{QRect(w->mapTo(&window, QPoint(0, 0)), w->size())};
}

}  // namespace

QList<QWidget*> ReadingOrder(QWidget& window) {
    if (QLayout* layout = window.layout()) layout->activate();
    struct Field {
        QWidget* widget;
        Place place;
    };
    QList<Field> fields;
    for (QWidget* w : window.findChildren<QWidget*>())
        if (const std::optional<Place> place = placeOf(window, w)) fields.append({w, *place});
    std::stable_sort(fields.begin(), fields.end(), [](const Field& a, const Field& b) {
        return a.place.rect.top() < b.place.rect.top();
    });

    // Lines: a field belongs to the line whose first field spans its middle.
    const bool rightToLeft = window.layoutDirection() == Qt::RightToLeft;
    QList<QWidget*> order;
    for (qsizetype first = 0; first < fields.size();) {
        const QRect band = fields[first].place.rect;
        qsizetype end = first + 1;
        while (end < fields.size() && fields[end].place.rect.center().y() <= band.bottom()) ++end;
        std::stable_sort(fields.begin() + first, fields.begin() + end,
                         [rightToLeft](const Field& a, const Field& b) {
                             const QRect& p = a.place.rect;
                             const QRect& q = b.place.rect;
                             if (rightToLeft ? p.right() != q.right() : p.left() != q.left())
                                 return rightToLeft ? p.right() > q.right() : p.left() < q.left();
                             return a.place.page < b.place.page;
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
