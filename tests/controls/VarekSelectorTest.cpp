#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "base/Errors.h"
#include "controls/VarekSelector.h"
#include "session/DataEnvironment.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

const QString kNotRetired = u" ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)"_s;

class VarekSelectorTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.exec(
            QStringList{u"INSERT INTO tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) "
                        "VALUES (1, '1001', 'علي', 'رضايي', 1)"_s,
                        u"INSERT INTO tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) "
                        "VALUES (2, '1002', 'مريم', 'احمدي', 1)"_s,
                        u"INSERT INTO tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) "
                        "VALUES (3, '2040', 'حسين', 'كاظمي', 3)"_s,
                        u"INSERT INTO tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) "
                        "VALUES (4, '3050', 'زهرا', 'محمدی', NULL)"_s});
    }
    void configure(VarekSelector& s, const QString& filter) {
        s.setConnectionString(db.connectionString());
        s.setMajorView(u"vwEmployeeMajor"_s);
        s.setMinorView(u"vwEmployeeMinor"_s);
        s.setFilter1(filter);
        s.setFilter2(filter);
        s.Initialize();
    }
    static QList<qint32> ids(const VarekSelector& s) {
        QList<qint32> out;
        for (const EmployeeEntry& e : s.employees()) out << e.id;
        return out;
    }
    kav::test::TestDatabase db;
};

}  // namespace

TEST_F(VarekSelectorTest, TheFilterHidesRetiredEmployees) {
    VarekSelector all, borrowers;
    configure(all, QString());
    configure(borrowers, kNotRetired);
    EXPECT_EQ(ids(all), (QList<qint32>{1, 2, 3, 4}));
    EXPECT_EQ(ids(borrowers), (QList<qint32>{1, 2, 4}));
    EXPECT_EQ(all.employees()[0].name, u"علي رضايي"_s);
    EXPECT_EQ(all.employees()[0].code, u"1001"_s);

    // From code, a hidden employee is looked up in the minor view with its own filter.
    all.setValue(3);
    EXPECT_EQ(all.Value(), 3);
    borrowers.setValue(3);
    EXPECT_EQ(borrowers.Value(), -1);
    EXPECT_TRUE(borrowers.IsEmpty());
    borrowers.setFilter2(QString());
    borrowers.setValue(3);
    EXPECT_EQ(borrowers.Value(), 3);
    EXPECT_EQ(borrowers.Text(), u"2040 - حسين كاظمي"_s);
    borrowers.setValue(99);
    EXPECT_EQ(borrowers.Value(), -1);
}

TEST_F(VarekSelectorTest, AValueSetBeforeLoadingIsCheckedWhenTheListLoads) {
    kav::Connection session;
    session.SetConnectionString(db.connectionString());
    VarekSelector s;
    s.setConnection(&session);
    s.setMinorView(u"vwEmployeeMinor"_s);
    s.setValue(2);
    EXPECT_EQ(s.Value(), 2);
    s.setMajorView(u"vwEmployeeMajor"_s);
    s.Initialize();
    EXPECT_EQ(s.Value(), 2);
    EXPECT_EQ(s.Text(), u"1002 - مريم احمدي"_s);
    s.Clear();
    EXPECT_TRUE(s.IsEmpty());

    VarekSelector broken;
    broken.setConnectionString(db.connectionString());
    broken.setMajorView(u"vwNoSuchView"_s);
    EXPECT_THROW(broken.Initialize(), kav::KavError);
}

TEST_F(VarekSelectorTest, TheUserFindsAnEmployeeByCodeOrName) {
    QWidget window;
    auto* s = new VarekSelector;
    auto* other = new QPushButton(u"ديگر"_s);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(s);
    layout->addWidget(other);
    configure(*s, kNotRetired);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QSignalSpy changed(s, &VarekSelector::Changed);
    s->setValue(1);
    s->Clear();
    EXPECT_EQ(changed.count(), 0);

    auto type = [&](const QString& text) {
        s->SetFocus();
        s->lineEdit()->selectAll();
        for (const QChar c : text) {
            const Qt::Key key = c.unicode() < 128 ? Qt::Key(c.unicode()) : Qt::Key_unknown;
            QTest::sendKeyEvent(QTest::Press, s->lineEdit(), key, c, Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, s->lineEdit(), key, c, Qt::NoModifier);
        }
    };

    // Leaving the box: a click elsewhere first closes the open list, then moves the focus.
    auto leave = [&] {
        s->completer()->popup()->hide();
        other->setFocus();
    };

    // Part of a name, typed with the Arabic kaf and yeh: the list narrows to one.
    type(u"محمدي"_s);
    EXPECT_EQ(s->completer()->completionCount(), 1);
    QTest::keyClick(s->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(s->Value(), 4);
    EXPECT_EQ(changed.count(), 1);

    // Part of a code: two matches, picked from the list.
    type(u"100"_s);
    EXPECT_EQ(s->completer()->completionCount(), 2);
    QAbstractItemView* popup = s->completer()->popup();
    ASSERT_TRUE(popup->isVisible());
    const QModelIndex second = popup->model()->index(1, 0);
    popup->setCurrentIndex(second);
    QTest::keyClick(popup, Qt::Key_Return);
    EXPECT_EQ(s->Value(), 2);
    EXPECT_EQ(changed.count(), 2);

    // An exact code typed and left chooses its employee; a retired one is not there.
    type(u"1001"_s);
    leave();
    EXPECT_EQ(s->Value(), 1);
    EXPECT_EQ(changed.count(), 3);
    type(u"2040"_s);
    leave();
    EXPECT_EQ(s->Value(), 1);
    EXPECT_EQ(changed.count(), 3);

    // Emptying the box is a choice too.
    type(QString());
    QTest::keyClick(s->lineEdit(), Qt::Key_Backspace);
    leave();
    EXPECT_EQ(s->Value(), -1);
    EXPECT_EQ(changed.count(), 4);

    s->setLocked(true);
    type(u"1002"_s);
    leave();
    EXPECT_EQ(s->Value(), -1);
}

// A name is found whichever kaf and yeh it is typed with (Arabic U+0643 and U+064A, Persian
// U+06A9 and U+06CC), with Persian digits in a code, and without regard to case.
TEST(VarekSelectorSearch, KafYehDigitsAndCaseMatchEitherWay) {
    const QString arabic = u"\u0643\u0627\u0638\u0645\u064A"_s;   // with Arabic kaf and yeh
    const QString persian = u"\u06A9\u0627\u0638\u0645\u06CC"_s;  // with keheh and Farsi yeh
    EXPECT_EQ(SearchKey(arabic), SearchKey(persian));
    EXPECT_EQ(SearchKey(u"\u0643"_s), SearchKey(u"\u06A9"_s));
    EXPECT_EQ(SearchKey(u"\u064A"_s), SearchKey(u"\u06CC"_s));
    EXPECT_EQ(SearchKey(u"\u0649"_s), SearchKey(u"\u06CC"_s));  // alef maksura as yeh
    EXPECT_EQ(SearchKey(u"\u06F2\u06F0\u06F4\u06F0"_s), SearchKey(u"2040"_s));
    EXPECT_EQ(SearchKey(u"Ali"_s), SearchKey(u"ALI"_s));
    EXPECT_NE(SearchKey(u"\u0643"_s), SearchKey(u"\u06AF"_s));  // gaf stays gaf
}

TEST_F(VarekSelectorTest, ANameTypedWithKehehFindsItsArabicKafSpelling) {
    QWidget window;
    auto* s = new VarekSelector;
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(s);
    configure(*s, QString());
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    s->SetFocus();
    for (const QChar c : u"\u06A9\u0627\u0638\u0645\u06CC"_s) {  // stored as Arabic kaf and yeh
        QTest::sendKeyEvent(QTest::Press, s->lineEdit(), Qt::Key_unknown, c, Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, s->lineEdit(), Qt::Key_unknown, c, Qt::NoModifier);
    }
    EXPECT_EQ(s->completer()->completionCount(), 1);
    QTest::keyClick(s->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(s->Value(), 3);
}
