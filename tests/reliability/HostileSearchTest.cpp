// Text pasted into the search window: an amount bound runs as the number it is in any script
// or is refused by name and runs nothing; a date box keeps a date and nothing else.

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "controls/FlexGrid.h"
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

}  // namespace

TEST_F(SearchTest, PastedAmountBoundsAndDatesRunOnlyAsNumbersAndDates) {
    FormSearch& f = form();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    paste(f.txtLoanValueF, u"0 or 1=1"_s);
    f.cmdSearch->click();
    EXPECT_EQ(Shown(), QStringList{u"خطا: مبلغ «0 or 1=1» در «مبلغ از» عدد نيست."_s});
    EXPECT_EQ(f.Flexsearchresult->Rows(), 1);  // nothing ran
    f.txtLoanValueF->clear();
    paste(f.txtLoanValueF, u"١٢٬٥٠٠٬٠٠٠"_s);  // Arabic-Indic digits and thousands separator
    f.cmdSearch->click();
    EXPECT_EQ(Shown(), QStringList());
    EXPECT_EQ(column(16), (QStringList{u"1"_s, u"1"_s, u"3"_s}));

    for (auto [box, text] : {std::pair{f.datPaymentDatef, u"1403/01/01' or '1'='1"_s},
                             std::pair{f.datEndDateTo, u"'; delete from tblHRLoan; --"_s}}) {
        paste(box->lineEdit(), text);
        QTest::keyClick(box->lineEdit(), Qt::Key_Tab);
    }
    EXPECT_EQ(f.datPaymentDatef->farsidate() + u'|' + f.datEndDateTo->farsidate(),
              u"1403/01/01|"_s);
}
