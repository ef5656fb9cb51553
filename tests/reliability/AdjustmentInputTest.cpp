// The adjustment window's monthly debit is the one typed amount that reaches its stored
// procedures: text that looks like SQL, a sign or an exponent is refused by name, on the
// checked path (both dates given) and on the unchecked one (an edited record without its
// to-date) alike, and nothing is written.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>

#include "adjustments/AdjustmentFixture.h"
#include "controls/VarekDate.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

TEST_F(AdjustmentTest, AMonthlyDebitThatIsNoAmountIsRefusedByNameAndWritesNothing) {
    auto& w = open();
    const auto all = [&] {
        QStringList rows;
        for (const Row& r : t.db.rows(u"select * from tblHRLoanException order by ID"_s))
            rows << r[u"monthlydebit"_s].toString() + u' ' + r[u"farsienddate"_s].toString();
        return rows;
    };
    const QStringList before = all();
    for (const QString& typed : {u"1; delete tblHRLoanException"_s, u"0 or 1=1"_s, u"1e3"_s,
                                 u"-500"_s, u"۱۰۰۰' --"_s, u"/* 5 */"_s}) {
        SCOPED_TRACE(typed.toStdString());
        enterNew(u"1402/03/01"_s, u"1402/04/31"_s, typed);
        expectLast(u"هشدار"_s, u"مقدار «"_s + typed +
                                   u"» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
        EXPECT_EQ(session().LoanFormMode, 2);
        EXPECT_EQ(w.TxtPerMonth->text(), typed);

        w.ShowFormToEdit(2);  // no to-date: the period and amount checks do not run
        w.cmdEdit_Click();
        w.TxtPerMonth->setText(typed);
        w.cmdSave->click();
        expectLast(u"هشدار"_s, u"مقدار «"_s + typed +
                                   u"» در اقساط ماهيانه مبلغ معتبري نيست؛ فقط رقم وارد کنيد."_s);
        EXPECT_EQ(session().LoanFormMode, 1);
        EXPECT_EQ(all(), before);
    }
}
