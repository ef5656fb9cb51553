#pragma once

// The adjustment window on a fresh database, with a stand-in for the loan editor.

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "adjustments/FormHRException.h"
#include "adjustments/FormList.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "session/WindowPorts.h"
#include "support/TestDatabase.h"

namespace kav::test {

// Loan 1: 60,000,000 over 12 instalments of 5,000,000 from 1402/01/31 to 1402/12/29,
// members 1 and 2; employee 3 is no member. Loan 2 (member 2) has no instalment.
// Adjustments: 1 (loan 1, employee 1, 1402/03-1402/04 at 2,000,000) and 2 (loan 2).
void SeedAdjustments(const TestDatabase& db);

// What the adjustment window reads from the loan editor.
struct FakeEditor : LoanEditorPort {
    int state = 1;
    QString loanValue = QStringLiteral("60/000/000");  // as the editor's box shows it
    bool ViewPRSLoansInfo(qint32) override { return true; }
    void SetLoanIdText(const QString&) override {}
    int StateValue() const override { return state; }
    QString LoanValueText() const override { return loanValue; }
};

class AdjustmentTest : public ::testing::Test {
protected:
    void SetUp() override;
    // Opens the window as the editor's balance button does.
    FormHRException& open(const QString& loanText = QStringLiteral("1"), qint32 employee = 1) {
        t.module.port<AdjustmentPort>().ShowBalance(loanText, employee);
        return window();
    }
    FormHRException& window() { return t.module.Window<FormHRException>(); }
    Session& session() { return t.module.session; }
    qint32 mode() { return session().LoanFormMode; }
    QString status() {  // "mode 2, 3 stored"
        return QStringLiteral("mode %1, %2 stored").arg(mode()).arg(adjustmentCount());
    }
    bool quiet() const { return t.messages->shown.isEmpty(); }  // no message shown
    // A new adjustment entered and saved; the window's txtID then holds its id.
    void enterNew(const QString& from, const QString& to, const QString& perMonth,
                  qint32 employee = 1);
    int adjustmentCount() const {
        return t.db.scalar(QStringLiteral("select count(*) from tblHRLoanException")).toInt();
    }
    // The stored adjustment as "loan|employee|begin|Jalali begin|end|Jalali end|debit".
    QString stored(qint32 id) const;
    void setMode(qint32 mode) {
        session().LoanFormMode = mode;
        window().DisableLockComponent();
    }
    // The last message shown; the record of messages is emptied.
    void expectLast(const QString& title, const QString& text);
    TestModule t;
    FakeEditor editor;
};

}  // namespace kav::test
