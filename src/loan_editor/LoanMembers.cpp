#include "loan_editor/LoanMembers.h"

#include "session/DataEnvironment.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::members {

namespace {

// A field as the grid shows it: Null is the empty text, numbers in plain decimal.
QString cellText(const QVariant& v) {
    if (v.isNull()) return QString();
    if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float) return vb::CStr(v.toDouble());
    return v.toString();
}

}  // namespace

QString NullCell() { return u"null"_s; }

QString GuarantorCell(const QVariant& id) {
    const QString text = cellText(id);
    return text.isEmpty() ? NullCell() : text;
}

QStringList LoadedRow(const Recordset& rs, int rowNumber) {
    QStringList cells;
    cells.reserve(GridColumns);
    cells << QString::number(rowNumber) << cellText(rs.Fields(u"EmployeeID"_s))
          << cellText(rs.Fields(u"Code"_s))
          << cellText(rs.Fields(u"FirstName"_s)) + u"  "_s + cellText(rs.Fields(u"SureName"_s));
    for (int g = 1; g <= 3; ++g) cells << cellText(rs.Fields(u"Supporter"_s + QString::number(g)));
    for (int g = 1; g <= 3; ++g)
        cells << GuarantorCell(rs.Fields(u"supporterEmployeeid"_s + QString::number(g)));
    return cells;
}

}  // namespace kav::members
