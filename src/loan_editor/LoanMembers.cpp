#include "loan_editor/LoanMembers.h"

#include <charconv>

#include "base/Errors.h"
#include "session/DataEnvironment.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav::members {

namespace {


QStringList row(int rowNumber, const QVariant& id, const QVariant& code, const QString& name) {
    QStringList cells;
    cells.reserve(GridColumns);
    cells << QString::number(rowNumber) << FieldText(id) << FieldText(code) << name;
    return cells;
}

}  // namespace

QString NullCell() { return u"null"_s; }

QString GuarantorCell(const QVariant& id) {
    const QString text = FieldText(id);
    return text.isEmpty() ? NullCell() : text;
}

QString GuarantorCell(qint32 id) { return id == -1 ? NullCell() : QString::number(id); }

LoadedRows::LoadedRows(const RowReader& rs)
    : employeeId_(rs.FieldIndex(u"EmployeeID"_s)),
      code_(rs.FieldIndex(u"Code"_s)),
      firstName_(rs.FieldIndex(u"FirstName"_s)),
      sureName_(rs.FieldIndex(u"SureName"_s)) {
    for (int g = 0; g < 3; ++g) {
        supporter_[g] = rs.FieldIndex(u"Supporter"_s + QString::number(g + 1));
        supporterId_[g] = rs.FieldIndex(u"supporterEmployeeid"_s + QString::number(g + 1));
    }
}

const std::array<QByteArrayView, GridColumns>& LoadedRows::Cells(RowReader& rs, int rowNumber) {
    static const QByteArray null = NullCell().toUtf8();
    cells_[0] = QByteArrayView(
        number_.data(),
        std::to_chars(number_.data(), number_.data() + number_.size(), rowNumber).ptr);
    cells_[1] = rs.Text(employeeId_);
    cells_[2] = rs.Text(code_);
    name_.clear();
    name_.append(rs.Text(firstName_)).append("  ").append(rs.Text(sureName_));
    cells_[3] = name_;
    for (int g = 0; g < 3; ++g) {
        cells_[4 + g] = rs.Text(supporter_[g]);
        const QByteArrayView id = rs.Text(supporterId_[g]);
        cells_[7 + g] = id.isEmpty() ? QByteArrayView(null) : id;
    }
    return cells_;
}

QStringList PickedRow(const Recordset& employee, const Guarantors& guarantors, int rowNumber) {
    QStringList cells = row(rowNumber, employee.Fields(u"ID"_s), employee.Fields(u"Code"_s),
                            FieldText(employee.Fields(u"EmployeeName"_s)));
    for (const QString& name : guarantors.names) cells << name;
    for (const qint32 id : guarantors.ids) cells << GuarantorCell(id);
    return cells;
}

QStringList OrdinanceRow(const Recordset& rs, int rowNumber) {
    QStringList cells = row(rowNumber, rs.Fields(u"EmployeeID"_s), rs.Fields(u"Code"_s),
                            FieldText(rs.Fields(u"EmployeeName"_s)));
    cells << QString() << QString() << QString() << NullCell() << NullCell() << NullCell();
    return cells;
}

QString ExistingText(const QStringList& memberIds) {
    QString text;
    for (const QString& id : memberIds) text += u"("_s + id + u")"_s;
    return text;
}

QString IdList(const QStringList& memberIds) {
    QStringList ids;
    for (const QString& id : memberIds)
        if (!id.isEmpty()) ids << id;
    return ids.isEmpty() ? u"-1"_s : ids.join(u',');
}

int SortCodes::Next(int column) {
    if (column < 0 || column >= int(codes_.size()))
        throw KavError(KavError::Kind::Usage, u"ستون %1 براي مرتب سازي وجود ندارد."_s.arg(column));
    int& code = codes_[std::size_t(column)];
    if (column == CodeColumn)
        code = code == 3 ? 4 : 3;
    else
        code = code == 1 ? 2 : 1;
    return code;
}

}  // namespace kav::members
