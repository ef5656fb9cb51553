// The command keys of every window, the loan window's Tab stops, the windows' first sizes and
// the sizes and column widths they keep between runs.

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

class KeysTest : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        ProvideWindows(t.module);
    }
    // Every window, by its object name, made as the module makes it.
    std::map<QString, QWidget*> windows() {
        if (!history) {
            history = std::make_unique<FormLoanHistory>(t.module, editor(), TemporaryLoan);
            deleted = std::make_unique<FormDeletedLoans>(t.module, editor());
        }
        return {{u"FormHRLoan"_s, &editor()},
                {u"FormHREmployee"_s, &t.module.Window<FormHREmployee>()},
                {u"FormHRException"_s, &t.module.Window<FormHRException>()},
                {u"FormList"_s, &t.module.Window<FormList>()},
                {u"FormSearch"_s, &t.module.Window<FormSearch>()},
                {u"FormDeductions"_s, &t.module.Window<FormDeductions>()},
                {u"FormLoanHistory"_s, history.get()},
                {u"FormDeletedLoans"_s, deleted.get()}};
    }
    std::unique_ptr<FormLoanHistory> history;
    std::unique_ptr<FormDeletedLoans> deleted;
};

void Activate(QWidget& w) {
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
}

// The key pressed with the window's own focus, where no box claims it for its text.
void Press(QWidget& w, QKeyCombination key) {
    w.setFocus();
    QTest::keyClick(&w, key.key(), key.keyboardModifiers());
}

QString Tip(const QString& caption, const QString& key) {
    return caption + u" (\u2066"_s + key + u"\u2069)"_s;
}

// Each key of each window clicks its button, only that one and only while it is enabled; the
// tooltip gives the caption and the key.
TEST_F(KeysTest, EachKeyClicksItsButtonOnlyWhileItIsEnabled) {
    struct Case {
        QString window;
        QKeyCombination key;
        QString button, tip;
    };
    const Case table[] = {
        {u"FormHRLoan"_s, Qt::Key_F2, u"cmdNew"_s, Tip(u"جديد"_s, u"F2"_s)},
        {u"FormHRLoan"_s, Qt::Key_F3, u"cmdEdit"_s, Tip(u"اصلاح"_s, u"F3"_s)},
        {u"FormHRLoan"_s, Qt::Key_F5, u"cmdRegSave"_s, Tip(u"ثبت موقت"_s, u"F5"_s)},
        {u"FormHRLoan"_s, Qt::Key_F6, u"cmdFinSave"_s, Tip(u"ثبت قطعي"_s, u"F6"_s)},
        {u"FormHRLoan"_s, Qt::Key_F7, u"cmdBacktoTemp"_s, Tip(u"بازگشت به موقت"_s, u"F7"_s)},
        {u"FormHRLoan"_s, Qt::Key_F8, u"cmdDelete"_s, Tip(u"حذف"_s, u"F8"_s)},
        {u"FormHRLoan"_s, Qt::Key_F9, u"cmdSearch"_s, Tip(u"جستجو"_s, u"F9"_s)},
        {u"FormHRLoan"_s, Qt::Key_F10, u"PushButton1"_s, Tip(u"عمليات"_s, u"F10"_s)},
        {u"FormHRLoan"_s, Qt::Key_F11, u"cmdBalance"_s, Tip(u"تعديل وام"_s, u"F11"_s)},
        {u"FormHRLoan"_s, Qt::Key_Insert, u"cmdAddEmp"_s, Tip(u"افزودن کارمند"_s, u"Ins"_s)},
        {u"FormHRLoan"_s, Qt::ALT | Qt::Key_Insert, u"cmdAddOrdinanceEmployees"_s,
         Tip(u"کارمندان داراي حکم کارگزيني"_s, u"Alt+Ins"_s)},
        {u"FormHRLoan"_s, Qt::CTRL | Qt::Key_Delete, u"cmdDeleteEmp"_s,
         Tip(u"حذف کارمند"_s, u"Ctrl+Del"_s)},
        {u"FormHREmployee"_s, Qt::Key_F5, u"cmdOK"_s, Tip(u"تاييد"_s, u"F5"_s)},
        {u"FormHRException"_s, Qt::Key_F2, u"cmdNew"_s, Tip(u"جديد"_s, u"F2"_s)},
        {u"FormHRException"_s, Qt::Key_F3, u"cmdEdit"_s, Tip(u"اصلاح"_s, u"F3"_s)},
        {u"FormHRException"_s, Qt::Key_F5, u"cmdSave"_s, Tip(u"ثبت"_s, u"F5"_s)},
        {u"FormHRException"_s, Qt::Key_F8, u"cmdDelete"_s, Tip(u"حذف"_s, u"F8"_s)},
        {u"FormHRException"_s, Qt::Key_F9, u"cmdList"_s, Tip(u"جستجو"_s, u"F9"_s)},
        {u"FormHRException"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
        {u"FormHRException"_s, Qt::CTRL | Qt::Key_F4, u"cmdExportCsv"_s,
         Tip(u"ذخيره CSV"_s, u"Ctrl+F4"_s)},
        {u"FormHRException"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_F4, u"cmdExportPdf"_s,
         Tip(u"ذخيره PDF"_s, u"Ctrl+Shift+F4"_s)},
        {u"FormList"_s, Qt::Key_F2, u"cmdNew"_s, Tip(u"جديد"_s, u"F2"_s)},
        {u"FormList"_s, Qt::Key_F9, u"cmdSearch"_s, Tip(u"جستجو"_s, u"F9"_s)},
        {u"FormList"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
        {u"FormSearch"_s, Qt::Key_F2, u"cmdNewSearch"_s, Tip(u"جستجوي جديد"_s, u"F2"_s)},
        {u"FormSearch"_s, Qt::Key_F9, u"cmdSearch"_s, Tip(u"جستجو"_s, u"F9"_s)},
        {u"FormSearch"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
        {u"FormSearch"_s, Qt::CTRL | Qt::Key_F4, u"cmdExport"_s,
         Tip(u"ذخيره در فايل CSV"_s, u"Ctrl+F4"_s)},
        {u"FormDeductions"_s, Qt::Key_F9, u"cmdSearch"_s, Tip(u"جستجو"_s, u"F9"_s)},
        {u"FormDeductions"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
        {u"FormDeductions"_s, Qt::CTRL | Qt::Key_F4, u"cmdExportCsv"_s,
         Tip(u"ذخيره CSV"_s, u"Ctrl+F4"_s)},
        {u"FormDeductions"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_F4, u"cmdExportPdf"_s,
         Tip(u"ذخيره PDF"_s, u"Ctrl+Shift+F4"_s)},
        {u"FormLoanHistory"_s, Qt::Key_Insert, u"cmdPutBack"_s,
         Tip(u"افزودن دوباره کارمند حذف شده"_s, u"Ins"_s)},
        {u"FormLoanHistory"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
        {u"FormDeletedLoans"_s, Qt::Key_F7, u"cmdRestore"_s, Tip(u"بازگرداندن"_s, u"F7"_s)},
        {u"FormDeletedLoans"_s, Qt::Key_F12, u"cmdPrint"_s, Tip(u"چاپ"_s, u"F12"_s)},
    };
    editor().Timer1->stop();  // it would switch the save and member buttons back
    t.module.Window<FormHRException>().Timer1->stop();
    for (const auto& [name, window] : windows()) {
        SCOPED_TRACE(name.toStdString());
        // The buttons' own handlers are another test's: here only which button a key clicks.
        std::map<QString, int> clicks;
        for (QAbstractButton* b : window->findChildren<QAbstractButton*>()) {
            QObject::disconnect(b, &QAbstractButton::clicked, nullptr, nullptr);
            QObject::connect(b, &QAbstractButton::clicked,
                             [&clicks, b] { ++clicks[b->objectName()]; });
        }
        Activate(*window);
        int cases = 0;
        for (const Case& c : table) {
            if (c.window != name) continue;
            SCOPED_TRACE(c.button.toStdString());
            ++cases;
            auto* button = window->findChild<QAbstractButton*>(c.button);
            ASSERT_NE(button, nullptr);
            EXPECT_EQ(button->toolTip(), c.tip);
            button->setEnabled(true);
            Press(*window, c.key);
            EXPECT_EQ(clicks, (std::map<QString, int>{{c.button, 1}}));
            clicks.clear();
            button->setEnabled(false);
            Press(*window, c.key);
            EXPECT_TRUE(clicks.empty());
        }
        EXPECT_GT(cases, 0);
        window->hide();
    }
}

// Through the buttons' own handlers: a disabled command writes nothing and asks nothing; an
// enabled one does what its click does. The Tools menu shows the keys; the loan sheet's
// entries answer theirs only while the window shows a stored loan.
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
    EXPECT_EQ(mode(), ModeView);
    Press(w, Qt::Key_F12);
    EXPECT_EQ(previews, 1);
    t.messages->answers = {0};  // back to temporary, answered no
    Press(w, Qt::Key_F7);
    EXPECT_EQ(Shown(), QStringList{u"? پرسش: آيا قصد بازگشت به حالت موقت داريد؟"_s});
    EXPECT_EQ(Code(FinalLoan).toInt(), 7);

    w.ViewPRSLoansInfo(TemporaryLoan);
    t.messages->answers = {1};  // delete, answered yes
    Press(w, Qt::Key_F8);
    EXPECT_EQ(Scalar(u"select count(*) from tblHRLoan where ID=1"_s).toInt(), 0);
    EXPECT_EQ(mode(), ModeEmpty);
    Press(w, Qt::Key_F12);  // no loan shown: no sheet
    EXPECT_EQ(previews, 1);
    Press(w, Qt::Key_F2);  // once, though the menu's entry shows the same key
    EXPECT_EQ(mode(), ModeNew);
    EXPECT_EQ(QApplication::focusWidget(), w.datLoanPayDate->focusProxy());

    QStringList menu;
    for (QAction* a : w.mnuTool->actions())
        if (!a->shortcut().isEmpty()) menu << a->objectName() + u" "_s + a->shortcut().toString();
    EXPECT_EQ(menu, (QStringList{u"mnuNew F2"_s, u"mnuEdit F3"_s, u"mnuDelete F8"_s,
                                 u"mnuRegSave F5"_s, u"mnuFinSave F6"_s, u"mnusearch F9"_s,
                                 u"mnuPrintSheet F12"_s, u"mnuSaveSheetPdf Ctrl+Shift+F4"_s}));
    t.messages->defaultAnswer = 1;
    w.hide();
}

// Tab goes through the loan window in reading order, right to left and top to bottom, from
// the loan type; the boxes only shown are not Tab stops. New still focuses the payment date,
// and Shift+Tab from there reaches the loan type.
TEST_F(KeysTest, TheLoanWindowsTabChainFollowsTheReadingOrder) {
    FormHRLoan& w = editor();
    Activate(w);
    // The field a chain member belongs to: the outermost widget whose focus goes to it.
    const auto field = [&w](QWidget* member) {
        QWidget* f = member;
        for (QWidget* p = member->parentWidget(); p && p != &w; p = p->parentWidget()) {
            QWidget* proxy = p;
            while (proxy->focusProxy()) proxy = proxy->focusProxy();
            if (proxy == member) f = p;
        }
        return f->objectName();
    };
    QStringList chain;
    QWidget* start = w.cmbLoanType;
    QWidget* next = start;
    do {
        if ((next->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !next->focusProxy() &&
            next->isVisibleTo(&w) && next->window() == &w)
            chain << field(next);
        next = next->nextInFocusChain();
    } while (next != start && chain.size() < 100);
    EXPECT_EQ(chain, (QStringList{u"cmbLoanType"_s,
                                  u"datLoanPayDate"_s,
                                  u"datBeginDate"_s,
                                  u"datEndDate"_s,
                                  u"txtOriginalValue"_s,
                                  u"txtLoanValue"_s,
                                  u"txtPayBackNumber"_s,
                                  u"TxtPerMonth"_s,
                                  u"UseRemainedValueInFirstMonthF"_s,
                                  u"UseRemainedValueInFirstMonthL"_s,
                                  u"UseRemainedValueInSeparatedLastMonth"_s,
                                  u"chkISValid"_s,
                                  u"txtNotes"_s,
                                  u"FlexEmployee"_s,
                                  u"cmdAddEmp"_s,
                                  u"cmdAddOrdinanceEmployees"_s,
                                  u"cmdDeleteEmp"_s,
                                  u"cmdBalance"_s,
                                  u"cmdNew"_s,
                                  u"cmdEdit"_s,
                                  u"cmdDelete"_s,
                                  u"cmdRegSave"_s,
                                  u"cmdFinSave"_s,
                                  u"cmdCancel"_s,
                                  u"cmdBacktoTemp"_s,
                                  u"cmdSearch"_s,
                                  u"cmdDefineAccount"_s,
                                  u"PushButton1"_s,
                                  u"cmdExit"_s}));
    w.cmdNew->click();
    EXPECT_EQ(QApplication::focusWidget(), w.datLoanPayDate->focusProxy());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), w.cmbLoanType);
    t.messages->defaultAnswer = 1;
    w.cmdCancel->click();
    w.hide();

    // The register's grids on their tab pages follow the tabs, whichever page is shown.
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
    for (const auto& [name, window] : windows()) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_LE(window->width(), 1366);
        EXPECT_LE(window->height(), 700);
        EXPECT_LE(window->minimumSizeHint().width(), 1366);
        EXPECT_LE(window->minimumSizeHint().height(), 700);
    }
}

// A window opens at the size and column widths it had when last hidden; a column the window
// hides stays hidden whatever width was kept for it.
TEST_F(KeysTest, WindowsKeepTheirSizeAndShownColumnWidths) {
    QSettings().remove(u"Windows"_s);
    t.module.SetRemembersWindows(true);
    FormList& list = t.module.Window<FormList>();
    Activate(list);
    list.resize(700, 450);
    list.FlexEmployee->view()->horizontalHeader()->resizeSection(1, 321);
    list.hide();
    t.module.UnloadWindow<FormList>();
    FormList& again = t.module.Window<FormList>();
    Activate(again);
    EXPECT_EQ(again.size(), QSize(700, 450));
    EXPECT_EQ(again.FlexEmployee->view()->horizontalHeader()->sectionSize(1), 321);
    again.hide();

    // The member grid hides columns 1, 8 and 9: they are kept as hidden, and a width kept for
    // them (by hand, or from a grid that showed them) never shows them.
    FormHRLoan& loan = editor();
    Activate(loan);
    loan.hide();
    const QString key = u"Windows/FormHRLoan/columns/FlexEmployee"_s;
    QStringList widths = QSettings().value(key).toStringList();
    ASSERT_EQ(widths.size(), 10);
    EXPECT_EQ(QStringList({widths[1], widths[8], widths[9]}), QStringList(3, u"-"_s));
    widths[1] = widths[8] = widths[9] = widths[3] = u"150"_s;
    QSettings().setValue(key, widths);
    t.module.UnloadWindow<FormHRLoan>();
    FormHRLoan& shown = editor();
    Activate(shown);
    QHeaderView* header = shown.FlexEmployee->view()->horizontalHeader();
    EXPECT_EQ(header->sectionSize(3), 150);
    for (const int c : {1, 8, 9}) EXPECT_TRUE(header->isSectionHidden(c)) << c;
    shown.hide();
    QSettings().remove(u"Windows"_s);
}

}  // namespace
