// Text that looks like SQL in the search window: notes are searched for as text, amount bounds
// run only as numbers (Persian and Arabic-Indic digits, group separators and signs read as
// they are) or are refused by name with nothing run, and a date box refuses what is no date.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlDriver>
#include <QTest>

#include "HostileInput.h"
#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "search/SearchFixture.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

const QString kSearchBase =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

class HostileSearchTest : public SearchTest {
protected:
    // The statements the search ran.
    QStringList search() {
        StatementTrace trace(t.module.DtEn().cnt().Database());
        form().cmdSearch->click();
        return trace.statements;
    }
};

}  // namespace

TEST_F(HostileSearchTest, NotesThatLookLikeSqlAreSearchedForAsText) {
    // A loan whose notes are each text, stored by the test itself.
    int id = 100;
    for (const Hostile& h : kHostile)
        t.db.exec(u"insert into tblHRLoan (ID, TypeID, LoanValue, Notes) values (%1, 1, 5, '%2')"_s
                      .arg(id++)
                      .arg(h.quoted));
    const QStringList before = schema(t.db);
    const QString stored = contents(t.db);
    id = 100;
    for (const Hostile& h : kHostile) {
        SCOPED_TRACE(h.typed.toStdString());
        form().txtNotes->setText(h.typed);
        EXPECT_EQ(search(),
                  QStringList{kSearchBase + u" and Notes like '%"_s + h.quoted + u"%'"_s});
        EXPECT_EQ(column(16), QStringList{QString::number(id++)});
    }
    EXPECT_EQ(schema(t.db), before);
    EXPECT_EQ(contents(t.db), stored);

    // A very long text runs as one statement and finds nothing.
    t.messages->shown.clear();
    form().txtNotes->setText(QString(30000, u'\''));
    EXPECT_EQ(search().size(), 1);
    EXPECT_EQ(t.messages->texts(), QStringList{u"رکوردي يافت نشد."_s});
}

TEST_F(HostileSearchTest, AmountBoundsAndDatesRunOnlyAsNumbersAndDates) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    search();
    const QList<QStringList> all = gridRows();
    ASSERT_EQ(all.size(), 5);

    // Pasted into the lower amount bound: read as a number, or refused by name with nothing run.
    const std::pair<QString, QString> bounds[] = {
        {u"0 or 1=1"_s, QString()},
        {u"1; delete from tblHRLoan"_s, QString()},
        {u"1000--"_s, QString()},
        {u"1/*"_s, QString()},
        {u"99999999999999999999"_s, QString()},
        {u"-5000"_s, u" and LoanValue>=-5000"_s},
        {u"۹۰۰۰۰۰"_s, u" and LoanValue>=900000"_s},
        {u"١٢٬٥٠٠٬٠٠٠"_s, u" and LoanValue>=12500000"_s},
        {u"12/500/000.50"_s, u" and LoanValue>=12500000.5"_s},
    };
    for (const auto& [pasted, fragment] : bounds) {
        SCOPED_TRACE(pasted.toStdString());
        t.messages->shown.clear();
        f.txtLoanValueF->clear();
        paste(f.txtLoanValueF, pasted);
        ASSERT_EQ(f.txtLoanValueF->text(), pasted);
        const QStringList ran = search();
        if (fragment.isEmpty()) {
            EXPECT_EQ(ran, QStringList());
            ASSERT_EQ(t.messages->shown.size(), 1);
            EXPECT_EQ(t.messages->last().title, u"خطا"_s);
            EXPECT_EQ(t.messages->last().text,
                      u"مبلغ «"_s + pasted + u"» در «مبلغ از» عدد نيست."_s);
            EXPECT_EQ(gridRows(), all);  // the last result stays
        } else {
            EXPECT_EQ(ran, QStringList{kSearchBase + fragment});
        }
    }
    f.txtLoanValueF->clear();

    // A date box holds a date and nothing else: pasted SQL after a date leaves only the
    // date, SQL alone is refused; a date in Persian digits is the date it says.
    paste(f.datPaymentDatef->lineEdit(), u"1403/01/01' or '1'='1"_s);
    QTest::keyClick(f.datPaymentDatef->lineEdit(), Qt::Key_Tab);
    EXPECT_EQ(f.datPaymentDatef->farsidate(), u"1403/01/01"_s);
    paste(f.datEndDateTo->lineEdit(), u"'; delete from tblHRLoan; --"_s);
    QTest::keyClick(f.datEndDateTo->lineEdit(), Qt::Key_Tab);
    EXPECT_EQ(f.datEndDateTo->farsidate(), QString());
    EXPECT_EQ(search(), QStringList{kSearchBase + u" and FarsiPaymentDate>='1403/01/01' "_s});
    f.datPaymentDatef->Clear();
    paste(f.datBeginDatef->lineEdit(), u"۱۴۰۲/۰۲/۳۱"_s);
    QTest::keyClick(f.datBeginDatef->lineEdit(), Qt::Key_Tab);
    EXPECT_EQ(search(), QStringList{kSearchBase + u" and FarsiBeginDate>='1402/02/31' "_s});
    EXPECT_EQ(column(16), (QStringList{u"1"_s, u"1"_s, u"2"_s, u"40000"_s}));
    f.hide();
}
