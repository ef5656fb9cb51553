#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QSignalSpy>

#include "ControlWindow.h"
#include "base/Errors.h"
#include "controls/VarekSelector.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

const QString kNotRetired = u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s;

class VarekSelectorTest : public ::testing::Test {
protected:
    void SetUp() override {
        // The fourth spelt with the Persian keheh and yeh, the third (retired) the Arabic way.
        db.exec(
            u"INSERT INTO tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) VALUES "
            u"(1, '1001', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 1), "
            u"(3, '2040', 'حسين', 'كاظمي', 3), (4, '3050', 'زهرا', 'کاظمی', NULL)"_s);
    }
    void configure(VarekSelector& s, const QString& filter) {
        s.setConnectionString(db.connectionString());
        s.setMajorView(u"vwEmployeeMajor"_s);
        s.setMinorView(u"vwEmployeeMinor"_s);
        s.setFilter1(filter);
        s.setFilter2(filter);
        s.Initialize();
    }
    static QStringList entries(const VarekSelector& s) {
        QStringList out;
        for (const EmployeeEntry& e : s.employees())
            out << u"%1 %2 %3"_s.arg(e.id).arg(e.code, e.name);
        return out;
    }
    kav::test::TestDatabase db;
};

}  // namespace

// From code, an employee the list hides is looked up with the minor view's own filter.
TEST_F(VarekSelectorTest, TheFilterHidesRetiredEmployees) {
    VarekSelector borrowers;
    configure(borrowers, kNotRetired);
    EXPECT_EQ(entries(borrowers),
              (QStringList{u"1 1001 علي رضايي"_s, u"2 1002 مريم احمدي"_s, u"4 3050 زهرا کاظمی"_s}));
    borrowers.setValue(3);
    EXPECT_TRUE(borrowers.IsEmpty());
    borrowers.setFilter2(QString());
    borrowers.setValue(3);
    EXPECT_EQ(borrowers.Text(), u"2040 - حسين كاظمي"_s);
    borrowers.setValue(99);
    EXPECT_EQ(borrowers.Value(), -1);
    borrowers.setMajorView(u"vwNoSuchView"_s);
    EXPECT_THROW(borrowers.Initialize(), kav::KavError);
}

TEST_F(VarekSelectorTest, TheUserFindsAnEmployeeByCodeOrName) {
    kav::test::Shown<VarekSelector> w;
    VarekSelector* s = w.control;
    configure(*s, kNotRetired);
    QSignalSpy changed(s, &VarekSelector::Changed);
    s->setValue(1);
    s->Clear();
    EXPECT_EQ(changed.count(), 0);
    auto type = [&](const QString& text) {
        s->SetFocus();
        s->lineEdit()->selectAll();
        w.type(text);
    };
    // Typed and left: a click elsewhere first closes the open list, then moves the focus.
    auto chosen = [&](const QString& text) {
        type(text);
        s->completer()->popup()->hide();
        w.other->setFocus();
        return s->Value();
    };
    // Part of a name typed with the Arabic kaf and yeh finds its Persian spelling; the
    // retired employee spelt the Arabic way is not there.
    type(u"\u0643\u0627\u0638\u0645\u064A"_s);
    EXPECT_EQ(s->completer()->completionCount(), 1);
    w.key(Qt::Key_Return);
    EXPECT_EQ(s->Value(), 4);
    EXPECT_EQ(changed.count(), 1);
    // Part of a code: two matches, picked from the list.
    type(u"100"_s);
    EXPECT_EQ(s->completer()->completionCount(), 2);
    QAbstractItemView* popup = s->completer()->popup();
    ASSERT_TRUE(popup->isVisible());
    popup->setCurrentIndex(popup->model()->index(1, 0));
    QTest::keyClick(popup, Qt::Key_Return);
    EXPECT_EQ(s->Value(), 2);
    EXPECT_EQ(changed.count(), 2);
    // An exact code chooses its employee. Text that names nobody (the retired code) stays,
    // marked, and the choice goes: the box names nobody, yet it is not empty.
    EXPECT_EQ(chosen(u"1001"_s), 1);
    EXPECT_EQ(chosen(u"2040"_s), -1);
    EXPECT_EQ(s->State(), SelectorState::Unresolved);
    EXPECT_EQ(s->UnresolvedText(), u"2040"_s);
    EXPECT_EQ(changed.count(), 4);
    // Enter on text that names several opens the list with just them (again, when it was
    // open without a choice in it).
    type(u"100"_s);
    QTest::keyClick(popup, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return popup->isVisible(); }));
    EXPECT_EQ(s->completer()->completionCount(), 2);
    EXPECT_EQ(s->State(), SelectorState::Unresolved);
    popup->hide();
    // Emptying the box empties it; locked, nothing is chosen.
    type(QString());
    w.key(Qt::Key_Backspace);
    EXPECT_EQ(chosen(QString()), -1);
    EXPECT_EQ(s->State(), SelectorState::Empty);
    EXPECT_EQ(changed.count(), 4);
    s->setLocked(true);
    EXPECT_EQ(chosen(u"1002"_s), -1);
}

// A name is found whichever kaf and yeh it is typed with (Arabic U+0643 and U+064A, Persian
// U+06A9 and U+06CC), with Persian digits in a code, and without regard to case.
TEST(VarekSelectorSearch, KafYehDigitsAndCaseMatchEitherWay) {
    EXPECT_EQ(SearchKey(u"\u0643\u0627\u0638\u0645\u064A"_s),
              SearchKey(u"\u06A9\u0627\u0638\u0645\u06CC"_s));
    EXPECT_EQ(SearchKey(u"\u0649"_s), SearchKey(u"\u06CC"_s));  // alef maksura as yeh
    EXPECT_EQ(SearchKey(u"\u06F2\u06F0\u06F4\u06F0"_s), SearchKey(u"2040"_s));
    EXPECT_EQ(SearchKey(u"Ali"_s), SearchKey(u"ALI"_s));
    EXPECT_NE(SearchKey(u"\u0643"_s), SearchKey(u"\u06AF"_s));  // gaf stays gaf
}
