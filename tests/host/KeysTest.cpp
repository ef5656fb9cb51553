// The command keys of every window, the Tab chain, the windows' first sizes and the sizes and
// column widths they keep between runs.

#include <QAbstractButton>
#include <QHeaderView>
#include <QMenu>
#include <QSettings>
#include <QTimer>
#include <map>

#include "../loan_editor/EditorFixture.h"
#include "adjustments/FormHRException.h"
#include "adjustments/FormList.h"
#include "deductions/FormDeductions.h"
#include "host/ModuleAssembly.h"
#include "loan_editor/history/FormDeletedLoans.h"
#include "loan_editor/history/FormLoanHistory.h"
#include "search/FormSearch.h"
#include "session/ReadingOrder.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;

namespace {

// Each window's keys: "key button caption" entries, the key as the tooltip names it.
const std::pair<QString, QString> kKeys[] = {
    {u"FormHRLoan"_s,
     u"F2 cmdNew جديد;F3 cmdEdit اصلاح;F5 cmdRegSave ثبت موقت;F6 cmdFinSave ثبت قطعي;"
     "F7 cmdBacktoTemp بازگشت به موقت;F8 cmdDelete حذف;F9 cmdSearch جستجو;F10 PushButton1 عمليات;"
     "F11 cmdBalance تعديل وام;Ins cmdAddEmp افزودن کارمند;"
     "Alt+Ins cmdAddOrdinanceEmployees کارمندان داراي حکم کارگزيني;Ctrl+Del cmdDeleteEmp حذف کارمند"_s},
    {u"FormHREmployee"_s, u"F5 cmdOK تاييد"_s},
    {u"FormHRException"_s,
     u"F2 cmdNew جديد;F3 cmdEdit اصلاح;F5 cmdSave ثبت;F8 cmdDelete حذف;F9 cmdList جستجو;"
     "F12 cmdPrint چاپ;Ctrl+F4 cmdExportCsv ذخيره CSV;Ctrl+Shift+F4 cmdExportPdf ذخيره PDF"_s},
    {u"FormList"_s, u"F2 cmdNew جديد;F9 cmdSearch جستجو;F12 cmdPrint چاپ"_s},
    {u"FormSearch"_s,
     u"F2 cmdNewSearch جستجوي جديد;F9 cmdSearch جستجو;F12 cmdPrint چاپ;"
     "Ctrl+F4 cmdExport ذخيره در فايل CSV"_s},
    {u"FormDeductions"_s,
     u"F9 cmdSearch جستجو;F12 cmdPrint چاپ;Ctrl+F4 cmdExportCsv ذخيره CSV;"
     "Ctrl+Shift+F4 cmdExportPdf ذخيره PDF"_s},
    {u"FormLoanHistory"_s, u"Ins cmdPutBack افزودن دوباره کارمند حذف شده;F12 cmdPrint چاپ"_s},
    {u"FormDeletedLoans"_s, u"F7 cmdRestore بازگرداندن;F12 cmdPrint چاپ"_s},
};

class KeysTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        ProvideWindows(t.module);
        history = std::make_unique<FormLoanHistory>(t.module, editor(), TemporaryLoan);
        deleted = std::make_unique<FormDeletedLoans>(t.module, editor());
    }
    QList<QWidget*> windows() {
        return {&editor(),
                &t.module.Window<FormHREmployee>(),
                &t.module.Window<FormHRException>(),
                &t.module.Window<FormList>(),
                &t.module.Window<FormSearch>(),
                &t.module.Window<FormDeductions>(),
                history.get(),
                deleted.get()};
    }
    std::unique_ptr<FormLoanHistory> history;
    std::unique_ptr<FormDeletedLoans> deleted;
};

// Shown and the application's active window (which may come a moment after the window
// system says so, when another dialog of the same parent was hidden just before).
void Activate(QWidget& w) {
    w.show();
    ASSERT_TRUE(QTest::qWaitFor([&w] { return QApplication::activeWindow() == &w; }));
}

// The key pressed with the window's own focus, where no box claims it for its text.
void Press(QWidget& w, const QKeySequence& key) {
    w.setFocus();
    QTest::keyClick(&w, key[0].key(), key[0].keyboardModifiers());
}

// Each key of each window clicks its button, only that one and only while it is enabled; the
// tooltip gives the caption and the key.
TEST_F(KeysTest, EachKeyClicksItsButtonOnlyWhileItIsEnabled) {
    editor().Timer1->stop();  // it would switch the save and member buttons back
    t.module.Window<FormHRException>().Timer1->stop();
    for (QWidget* window : windows()) {
        SCOPED_TRACE(window->objectName().toStdString());
        // The buttons' own handlers are another test's: here only which button a key clicks.
        std::map<QString, int> clicks;
        for (QAbstractButton* b : window->findChildren<QAbstractButton*>()) {
            QObject::disconnect(b, &QAbstractButton::clicked, nullptr, nullptr);
            QObject::connect(b, &QAbstractButton::clicked, [&, b] { ++clicks[b->objectName()]; });
        }
        Activate(*window);
        QStringList cases;
        for (const auto& [name, keys] : kKeys)
            if (name == window->objectName()) cases = keys.split(u';');
        ASSERT_FALSE(cases.isEmpty());
        for (const QString& c : cases) {
            SCOPED_TRACE(c.toStdString());
            const QStringList words = c.split(u' ');
            const QKeySequence key(words[0]);
            auto* button = window->findChild<QAbstractButton*>(words[1]);
            ASSERT_NE(button, nullptr);
            EXPECT_EQ(button->toolTip(),
                      words.mid(2).join(u' ') + u" (\u2066"_s + words[0] + u"\u2069)"_s);
            button->setEnabled(true);
            Press(*window, key);
            EXPECT_EQ(clicks, (std::map<QString, int>{{words[1], 1}}));
            clicks.clear();
            button->setEnabled(false);
            Press(*window, key);
            EXPECT_TRUE(clicks.empty());
        }
        window->hide();
    }
}

// Through the handlers: a disabled command writes and asks nothing, an enabled one does what
// its click does; the loan sheet's menu entries answer their keys while a loan is shown.
TEST_F(KeysTest, KeysRunTheHandlersOfTheLoanWindowAndItsMenu) {
    FormHRLoan& w = editor();
    int previews = 0;
    t.module.SetPrintPreview([&](QWidget*, QPrinter&, const auto&) { ++previews; });
    w.ViewPRSLoansInfo(FinalLoan);
    Activate(w);
    const QString before = Snapshot();
    for (const Qt::Key key : {Qt::Key_F8, Qt::Key_F5, Qt::Key_F6, Qt::Key_F3, Qt::Key_Insert})
        Press(w, key);
    EXPECT_EQ(Snapshot(), before);  // delete, both saves, edit, add: all disabled
    EXPECT_EQ(Shown(), QStringList());
    Press(w, Qt::Key_F12);
    EXPECT_EQ(previews, 1);
    t.messages->answers = {0};  // back to temporary, answered no
    Press(w, Qt::Key_F7);
    EXPECT_EQ(Shown(), QStringList{u"? پرسش: آيا قصد بازگشت به حالت موقت داريد؟"_s});

    w.ViewPRSLoansInfo(TemporaryLoan);
    t.messages->answers = {1};  // delete, answered yes
    Press(w, Qt::Key_F8);
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoan where ID=1"_s).toInt(), 0);
    Press(w, Qt::Key_F12);  // no loan shown: no sheet
    EXPECT_EQ(previews, 1);
    Press(w, Qt::Key_F2);  // once, though the menu's entry shows the same key
    EXPECT_EQ(mode(), ModeNew);
    QStringList menu;
    for (QAction* a : w.mnuTool->actions())
        if (!a->shortcut().isEmpty()) menu << a->objectName() + u" "_s + a->shortcut().toString();
    EXPECT_EQ(menu.join(u", "_s),
              u"mnuNew F2, mnuEdit F3, mnuDelete F8, mnuRegSave F5, "
              "mnuFinSave F6, mnusearch F9, mnuPrintSheet F12, "
              "mnuSaveSheetPdf Ctrl+Shift+F4"_s);
    w.hide();
}

// Tab goes through the loan window in reading order from the loan type, passing by the boxes
// only shown; New still focuses the payment date, and Shift+Tab from there is the loan type.
// The register's grids on their tab pages follow the tabs, whichever page is shown.
TEST_F(KeysTest, TabFollowsTheReadingOrder) {
    FormHRLoan& w = editor();
    Activate(w);
    QStringList chain;
    QWidget* next = w.cmbLoanType;
    do {
        if ((next->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !next->focusProxy() &&
            next->isVisibleTo(&w) && next->window() == &w) {
            QWidget* field = next;  // the outermost widget whose focus goes to it
            for (QWidget* p = next->parentWidget(); p != &w; p = p->parentWidget()) {
                QWidget* proxy = p;
                while (proxy->focusProxy()) proxy = proxy->focusProxy();
                if (proxy == next) field = p;
            }
            chain << field->objectName();
        }
        next = next->nextInFocusChain();
    } while (next != w.cmbLoanType && chain.size() < 100);
    EXPECT_EQ(chain.join(u' '),
              u"cmbLoanType datLoanPayDate datBeginDate datEndDate txtOriginalValue txtLoanValue "
              "txtPayBackNumber TxtPerMonth UseRemainedValueInFirstMonthF "
              "UseRemainedValueInFirstMonthL UseRemainedValueInSeparatedLastMonth chkISValid "
              "txtNotes FlexEmployee cmdAddEmp cmdAddOrdinanceEmployees cmdDeleteEmp cmdBalance "
              "cmdNew cmdEdit cmdDelete cmdRegSave cmdFinSave cmdCancel cmdBacktoTemp cmdSearch "
              "cmdDefineAccount PushButton1 cmdExit"_s);
    w.cmdNew->click();
    EXPECT_EQ(QApplication::focusWidget(), w.datLoanPayDate->focusProxy());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), w.cmbLoanType);
    w.cmdCancel->click();
    w.hide();

    FormDeductions& r = t.module.Window<FormDeductions>();
    r.tabRegister->setCurrentIndex(1);
    Activate(r);
    QStringList order;
    for (QWidget* f : ReadingOrder(r)) order << f->objectName();
    EXPECT_EQ(order.join(u' '),
              u"txtMonth cmbLoanType sltEmployee cmdSearch qt_tabwidget_tabbar "
              "FlexDeductions FlexEmployeeTotals FlexLoanTypeTotals cmdExportCsv "
              "cmdExportPdf cmdPrint cmdExit"_s);
    r.hide();
}

// Every window opens within a laptop's 1366x700 and its layout fits there.
TEST_F(KeysTest, EveryWindowOpensWithinALaptopScreen) {
    for (QWidget* window : windows()) {
        SCOPED_TRACE(window->objectName().toStdString());
        EXPECT_TRUE(QRect(0, 0, 1366, 700).contains(QRect(QPoint(), window->size())));
        EXPECT_TRUE(QRect(0, 0, 1366, 700).contains(QRect(QPoint(), window->minimumSizeHint())));
    }
}

// A window opens at the size and column widths it had when last hidden; a column the window
// hides (the member grid's 1, 8 and 9) is kept as hidden and stays hidden whatever width was
// kept for it.
TEST_F(KeysTest, WindowsKeepTheirSizeAndShownColumnWidths) {
    QSettings().remove(u"Windows"_s);
    t.module.SetRemembersWindows(true);
    const auto header = [](controls::FlexGrid* grid) { return grid->view()->horizontalHeader(); };
    Activate(t.module.Window<FormList>());
    t.module.Window<FormList>().resize(700, 450);
    header(t.module.Window<FormList>().FlexEmployee)->resizeSection(1, 321);
    t.module.Window<FormList>().hide();
    t.module.UnloadWindow<FormList>();
    FormList& list = t.module.Window<FormList>();
    Activate(list);
    EXPECT_EQ(list.size(), QSize(700, 450));
    EXPECT_EQ(header(list.FlexEmployee)->sectionSize(1), 321);
    list.hide();

    history.reset();  // the loan window's own windows go before it
    deleted.reset();
    Activate(editor());
    editor().hide();
    const QString key = u"Windows/FormHRLoan/columns/FlexEmployee"_s;
    QStringList widths = QSettings().value(key).toStringList();
    ASSERT_EQ(widths.size(), 10);
    EXPECT_EQ(widths[1] + widths[8] + widths[9], u"---"_s);
    widths[1] = widths[8] = widths[9] = widths[3] = u"150"_s;
    QSettings().setValue(key, widths);
    t.module.UnloadWindow<FormHRLoan>();
    Activate(editor());
    EXPECT_EQ(header(editor().FlexEmployee)->sectionSize(3), 150);
    for (const int c : {1, 8, 9}) EXPECT_TRUE(header(editor().FlexEmployee)->isSectionHidden(c));
    editor().hide();
    QSettings().remove(u"Windows"_s);
}

}  // namespace
