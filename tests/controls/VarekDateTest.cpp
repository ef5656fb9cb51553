#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QVBoxLayout>

#include "QtPrinters.h"
#include "controls/VarekDate.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

// A shown, active window with the date box and a second widget to move the focus to.
struct DateWindow {
    QWidget window;
    VarekDate* date = new VarekDate;
    QPushButton* other = new QPushButton(u"ديگر"_s);
    DateWindow() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(date);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        other->setFocus();
    }
    void type(const QString& text) {
        for (const QChar c : text) {
            const Qt::Key key =
                c.unicode() < 128 ? Qt::Key(c.toUpper().unicode()) : Qt::Key_unknown;
            QTest::sendKeyEvent(QTest::Press, date->lineEdit(), key, c, Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, date->lineEdit(), key, c, Qt::NoModifier);
        }
    }
};

}  // namespace

TEST(VarekDate, HoldsADateOrNothing) {
    VarekDate date;
    EXPECT_TRUE(date.IsEmpty());
    EXPECT_EQ(date.farsidate(), QString());
    EXPECT_FALSE(date.englishdate().isValid());
    EXPECT_EQ(date.farsiyear() + date.farsimonth() + date.farsiday(), 0);

    date.setFarsidate(u" 1404/ 1/ 31"_s);
    EXPECT_FALSE(date.IsEmpty());
    EXPECT_EQ(date.farsidate(), u"1404/01/31"_s);
    EXPECT_EQ(date.lineEdit()->text(), u"1404/01/31"_s);
    EXPECT_EQ(date.englishdate(), QDate(2025, 4, 20));
    EXPECT_EQ(date.farsiyear(), 1404);
    EXPECT_EQ(date.farsimonth(), 1);
    EXPECT_EQ(date.farsiday(), 31);

    date.setEnglishdate(date.englishdate().addDays(-1));  // as the editor steps back a day
    EXPECT_EQ(date.farsidate(), u"1404/01/30"_s);
    date.setFarsidate(u"1404/12/30"_s);
    EXPECT_EQ(date.farsidate(), u"1404/12/29"_s);

    date.setFarsidate(u"not a date"_s);
    EXPECT_TRUE(date.IsEmpty());
    date.setFarsidate(u"1403/010/01"_s);
    date.Clear();
    EXPECT_TRUE(date.IsEmpty());
    EXPECT_EQ(date.lineEdit()->text(), QString());
}

TEST(VarekDate, DateChangedComesFromTheUserOnly) {
    DateWindow w;
    QSignalSpy changed(w.date, &VarekDate::DateChanged);
    w.date->setFarsidate(u"1403/01/01"_s);
    w.date->setEnglishdate(QDate(2024, 5, 5));
    w.date->Clear();
    EXPECT_EQ(changed.count(), 0);

    w.date->SetFocus();
    w.type(u"14030215"_s);  // the slashes come by themselves
    EXPECT_EQ(w.date->lineEdit()->text(), u"1403/02/15"_s);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(w.date->farsidate(), u"1403/02/15"_s);

    // Persian digits, an unpadded day, finished by leaving the box.
    w.date->lineEdit()->clear();
    w.type(u"۱۴۰۳/۷/۵"_s);
    EXPECT_EQ(changed.count(), 1);
    w.other->setFocus();
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(w.date->farsidate(), u"1403/07/05"_s);

    // Picking in the calendar.
    w.date->showCalendar();
    w.date->calendarWidget()->setSelectedDate(QDate(2024, 3, 20));
    QTest::keyClick(w.date->calendarWidget()->findChild<QTableView*>(), Qt::Key_Return);
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(w.date->farsidate(), u"1403/01/01"_s);

    // An unreadable text is dropped and the date stays.
    w.date->SetFocus();
    w.date->lineEdit()->selectAll();
    w.type(u"1403/13"_s);
    w.other->setFocus();
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(w.date->lineEdit()->text(), u"1403/01/01"_s);
}

TEST(VarekDate, LeavingTheBoxCommitsBeforeLostFocus) {
    DateWindow w;
    QString seenAtLostFocus;
    int got = 0;
    QObject::connect(w.date, &VarekDate::GotFocus, [&] { ++got; });
    QObject::connect(w.date, &VarekDate::LostFocus, [&] { seenAtLostFocus = w.date->farsidate(); });
    w.date->SetFocus();
    EXPECT_EQ(got, 1);
    w.type(u"1403/1/9"_s);
    w.other->setFocus();
    EXPECT_EQ(seenAtLostFocus, u"1403/01/09"_s);
}

TEST(VarekDate, LockedRefusesInputWithoutGreying) {
    DateWindow w;
    w.date->setFarsidate(u"1403/01/01"_s);
    w.date->setLocked(true);
    EXPECT_TRUE(w.date->isEnabled());
    QSignalSpy changed(w.date, &VarekDate::DateChanged);
    w.date->SetFocus();
    w.type(u"1"_s);
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Up);
    w.date->showCalendar();
    EXPECT_FALSE(w.date->calendarWidget()->isVisible());
    w.other->setFocus();
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(w.date->farsidate(), u"1403/01/01"_s);
}
