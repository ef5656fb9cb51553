// The loan window's member grid: adding members (one by one and by ordinance), removing one,
// sorting.

#include <QLineEdit>
#include <QPushButton>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/FormHREmployee.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanMembers.h"
#include "loan_editor/LoanModes.h"
#include "loan_editor/LoanStatusBar.h"
#include "session/Module.h"
#include "session/TextProcs.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav {

// ---- Members ----

QStringList FormHRLoan::memberIds() const {
    QStringList ids;
    for (int r = 1; r < FlexEmployee->Rows(); ++r)
        ids << FlexEmployee->TextMatrix(r, members::EmployeeIdColumn);
    return ids;
}

void FormHRLoan::cmdAddEmp_Click() {
    members::Guarantors g;
    const qint32 employee = FormHREmployee::getNewEmployee(
        module_, members::ExistingText(memberIds()), g.ids[0], g.ids[1], g.ids[2]);
    if (employee == -1) return;
    const data::SqlDialect& dialect = module_.DtEn().Dialect();
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::EmployeeRow(dialect, employee));
    if (rs.RecordCount() == 0) return;  // an employee not found adds nothing
    // Every query runs before the grid changes, so a failing one leaves the grid as it was.
    for (std::size_t i = 0; i < g.ids.size(); ++i) {
        if (g.ids[i] == -1) continue;
        Recordset guarantor = module_.DtEn().NewRecordset();
        guarantor.Open(loan_sql::EmployeeRow(dialect, g.ids[i]));
        if (guarantor.RecordCount() > 0)
            g.names[i] = FieldText(guarantor.Fields(u"EmployeeName"_s));
    }
    FlexEmployee->AddItem();
    const int r = FlexEmployee->Rows() - 1;
    const QStringList cells = members::PickedRow(rs, g, r);
    for (int c = 0; c < cells.size(); ++c) FlexEmployee->setTextMatrix(r, c, cells[c]);
}

void FormHRLoan::cmdAddOrdinanceEmployees_Click() {
    const data::SqlDialect& dialect = module_.DtEn().Dialect();
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::OrdinanceEmployees(dialect, members::IdList(memberIds()),
                                         datBeginDate->englishdate(), datEndDate->englishdate()));
    FlexEmployee->setRedraw(false);
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        FlexEmployee->AddItem();
        const int r = FlexEmployee->Rows() - 1;
        const QStringList cells = members::OrdinanceRow(rs, r);
        for (int c = 0; c < cells.size(); ++c) FlexEmployee->setTextMatrix(r, c, cells[c]);
    }
    FlexEmployee->setRedraw(true);
}

void FormHRLoan::cmdDeleteEmp_Click() {
    const int row = FlexEmployee->Row();
    if (row < 1 || row >= FlexEmployee->Rows()) return;
    const qint32 loan = loanId();
    const qint32 employee =
        vb::CLng(vb::Val(LatinDigits(FlexEmployee->TextMatrix(row, members::EmployeeIdColumn))));
    // Removed at once, without asking; the reload shows what the database now holds (rows
    // added but not yet saved disappear with it).
    if (!writeStored(stored_loan::Command::RemoveMember,
                     {loan_sql::DeleteMember(module_.DtEn().Dialect(), loan, employee)}))
        return;
    stbLoan->MemberRemoved(loan, txtCode->text(), FlexEmployee->TextMatrix(row, 3));
    FillLoanDetail(loan);
}

void FormHRLoan::updateDeleteEmp() {
    cmdDeleteEmp->setEnabled(module_.session.LoanFormMode == ModeEdit && FlexEmployee->Rows() > 1);
}

void FormHRLoan::FlexEmployee_Click() {
    updateDeleteEmp();
    if (FlexEmployee->MouseRow() == 0 && FlexEmployee->MouseCol() >= 0 && FlexEmployee->Rows() > 1)
        DoSort(1, FlexEmployee->MouseCol());
}

void FormHRLoan::FlexEmployee_RowColChange() { updateDeleteEmp(); }

void FormHRLoan::DoSort(int /*kind*/, int col) {
    const int rows = FlexEmployee->Rows();
    const bool codes = col == members::CodeColumn;
    if (codes)
        for (int r = 1; r < rows; ++r)
            FlexEmployee->setTextMatrix(r, col, FlexEmployee->TextMatrix(r, col).remove(u'/'));
    const int code = sortCodes_.Next(col);
    FlexEmployee->setCol(col);
    FlexEmployee->Sort(code);
    if (codes)
        for (int r = 1; r < rows; ++r)
            if (const QString cell = FlexEmployee->TextMatrix(r, col); !cell.isEmpty())
                FlexEmployee->setTextMatrix(r, col, GroupDigits(cell));
    for (int r = 1; r < rows; ++r) FlexEmployee->setTextMatrix(r, 0, QString::number(r));
}

}  // namespace kav
