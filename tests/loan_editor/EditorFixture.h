#pragma once

// A loan window on a fresh database with a few loans of every kind.

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <array>
#include <functional>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "loan_editor/FormHREmployee.h"
#include "loan_editor/FormHRLoan.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

namespace kav::test {

// Loans the fixture stores.
enum SeedLoan : qint16 {
    TemporaryLoan = 1,  // type 1, members 1 (guarantors 2, 3) and 4, remainder in the first month
    FinalLoan = 2,      // type 2, code 7, member 2, remainder in the last month
    SparseLoan = 3,     // Nulls wherever a loan may hold them
    SeparateLoan = 4,   // type 1, no members, remainder in a separate month
    PaidLoan = 5,       // temporary, member 3, with two payslip rows
};

void SeedLoans(const TestDatabase& db);

// What the clerk does in the employee picker when the editor opens it.
using PickerSteps = std::function<void(FormHREmployee&)>;
// Chooses an employee in a selector as the clerk does: its change event is raised.
void Choose(controls::VarekSelector& selector, qint32 employeeId);
// Chooses the borrower and the guarantors (-1: none) and confirms with OK.
PickerSteps Pick(qint32 employee, std::array<qint32, 3> guarantors = {-1, -1, -1});

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;
    FormHRLoan& editor() { return t.module.Window<FormHRLoan>(); }
    Session& session() { return t.module.session; }
    qint32 mode() { return session().LoanFormMode; }
    // Every modal window from now on: the picker runs the steps, any other shows nothing.
    void OnPicker(PickerSteps steps);
    // Adds members through the picker, one cmdAddEmp click each.
    void AddMembers(std::initializer_list<qint32> employees) {
        for (const qint32 id : employees) {
            OnPicker(Pick(id));
            editor().cmdAddEmp_Click();
        }
    }
    // Shows the loan and starts an edit.
    void Edit(qint16 loan) {
        editor().ViewPRSLoansInfo(loan);
        editor().cmdEdit_Click();
        ASSERT_EQ(mode(), ModeEdit);
    }
    // The messages shown since the last call as "title: text", a question as "? title: text".
    QStringList Shown();
    // Every table a save may write, as text.
    QString Snapshot();
    // A row of the member grid, its cells joined by '|', or a column of its data rows.
    QString MemberRow(int row);
    QStringList MemberColumn(int col);
    QVariant Scalar(const QString& sql) { return t.db.scalar(sql); }
    QVariant Code(int loan) {
        return Scalar(QStringLiteral("select Code from tblHRLoan where ID=%1").arg(loan));
    }
    TestModule t;
};

}  // namespace kav::test
