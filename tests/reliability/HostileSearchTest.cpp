// Text pasted into the search window, past the boxes' key filters: an amount bound that is a
// number in any script runs as that number, anything else is refused by name and runs nothing;
// a date box keeps a date and nothing else.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlDriver>
#include <QTest>

#include "controls/VarekDate.h"
#include "search/SearchFixture.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

void paste(QWidget* box, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
}

class HostileSearch : public SearchTest {
protected:
    // The statements the search ran, watched on the connection itself.
    QStringList search() {
        sqlite3* db = *static_cast<sqlite3* const*>(
            t.module.DtEn().cnt().Database().driver()->handle().data());
        QStringList ran;
        sqlite3_trace_v2(
            db, SQLITE_TRACE_STMT,
            [](unsigned, void* ran, void*, void* sql) {
                *static_cast<QStringList*>(ran) << QString::fromUtf8(static_cast<const char*>(sql));
                return 0;
            },
            &ran);
        form().cmdSearch->click();
        sqlite3_trace_v2(db, 0, nullptr, nullptr);
        return ran;
    }
};

const QString kSearchBase =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

}  // namespace

TEST_F(HostileSearch, AmountBoundsAndDatesRunOnlyAsNumbersAndDates) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    search();
    const QList<QStringList> all = gridRows();
    ASSERT_EQ(all.size(), 5);

    // Pasted into the lower amount bound: read as a number, or refused by name, nothing run.
    const std::pair<QString, QString> bounds[] = {
        {u"0 or 1=1"_s, QString()},
        {u"1; delete from tblHRLoan"_s, QString()},
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
            EXPECT_EQ(t.messages->texts(),
                      QStringList{u"مبلغ «"_s + pasted + u"» در «مبلغ از» عدد نيست."_s});
            EXPECT_EQ(gridRows(), all);  // the last result stays
        } else {
            EXPECT_EQ(ran, QStringList{kSearchBase + fragment});
        }
    }
    f.txtLoanValueF->clear();

    // A date box keeps a date and nothing else; a date in Persian digits is the date it says.
    const auto pasteDate = [](controls::VarekDate* box, const QString& text) {
        paste(box->lineEdit(), text);
        QTest::keyClick(box->lineEdit(), Qt::Key_Tab);
        return box->farsidate();
    };
    EXPECT_EQ(pasteDate(f.datPaymentDatef, u"1403/01/01' or '1'='1"_s), u"1403/01/01"_s);
    EXPECT_EQ(pasteDate(f.datEndDateTo, u"'; delete from tblHRLoan; --"_s), QString());
    EXPECT_EQ(search(), QStringList{kSearchBase + u" and FarsiPaymentDate>='1403/01/01' "_s});
    f.datPaymentDatef->Clear();
    EXPECT_EQ(pasteDate(f.datBeginDatef, u"۱۴۰۲/۰۲/۳۱"_s), u"1402/02/31"_s);
    EXPECT_EQ(search(), QStringList{kSearchBase + u" and FarsiBeginDate>='1402/02/31' "_s});
    EXPECT_EQ(column(16), (QStringList{u"1"_s, u"1"_s, u"2"_s, u"40000"_s}));
}
