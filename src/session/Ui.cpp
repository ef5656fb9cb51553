#include "session/Ui.h"

#include <QFontDatabase>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace kav {

QFont PersianFont(int pointSize) {
    static const QString family = [] {
        const QStringList families = QFontDatabase::families();
        for (const QString& f :
             {u"Noto Naskh Arabic"_s, u"Noto Sans Arabic"_s, u"Nazli"_s, u"Homa"_s})
            if (families.contains(f)) return f;
        return QString();
    }();
    QFont font;
    if (!family.isEmpty()) font.setFamily(family);
    font.setPointSize(pointSize);
    return font;
}

void ApplyPersianStyle(QWidget* widget) {
    if (!widget) return;
    widget->setLayoutDirection(Qt::RightToLeft);
    widget->setFont(PersianFont());
}

}  // namespace kav
