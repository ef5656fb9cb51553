#include <gtest/gtest.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QDialog>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/VarekDate.h"
#include "support/QtPrinters.h"

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
    date.setFarsidate(u"1403/12/30"_s);  // 1403 is a leap year
    EXPECT_EQ(date.farsidate(), u"1403/12/30"_s);
    // A stored Esfand 30 of a common year, as older data may hold, reads as Esfand 29.
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

// What the clerk types is taken only when the day exists; anything else is refused where
// the clerk sees it, and the date stays as it was.
TEST(VarekDate, ADayThatDoesNotExistIsRefusedVisibly) {
    DateWindow w;
    w.date->setFarsidate(u"1404/01/10"_s);
    QSignalSpy changed(w.date, &VarekDate::DateChanged);
    for (const QString& typed :
         {u"1404/12/30"_s, u"1403/13/01"_s, u"1403/07/31"_s, u"1403/01/32"_s, u"1403/00/05"_s}) {
        w.date->SetFocus();
        w.date->lineEdit()->selectAll();
        w.type(typed);
        w.other->setFocus();
        EXPECT_EQ(w.date->farsidate(), u"1404/01/10"_s) << typed.toStdString();
        EXPECT_EQ(w.date->lineEdit()->text(), u"1404/01/10"_s);
        EXPECT_EQ(w.date->RefusedText(), typed);
        EXPECT_TRUE(w.date->lineEdit()->toolTip().contains(typed));
        EXPECT_TRUE(w.date->lineEdit()->styleSheet().contains(u"border"_s));
    }
    EXPECT_EQ(changed.count(), 0);
    // Enter ends the edit the same way, with Persian digits too.
    w.date->SetFocus();
    w.date->lineEdit()->selectAll();
    w.type(u"\u06F1\u06F4\u06F0\u06F4/\u06F1\u06F2/\u06F3\u06F0"_s);
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(w.date->farsidate(), u"1404/01/10"_s);
    EXPECT_EQ(w.date->RefusedText(), u"1404/12/30"_s);

    // A real day typed next is taken and the refusal goes.
    w.date->lineEdit()->selectAll();
    w.type(u"1403/12/30"_s);
    w.other->setFocus();
    EXPECT_EQ(w.date->farsidate(), u"1403/12/30"_s);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(w.date->RefusedText(), QString());
    EXPECT_EQ(w.date->lineEdit()->styleSheet(), QString());
    EXPECT_EQ(w.date->lineEdit()->toolTip(), QString());
}

TEST(VarekDate, ArrowKeysStepOneDayUpAndDown) {
    DateWindow w;
    w.date->setFarsidate(u"1403/12/30"_s);
    QSignalSpy changed(w.date, &VarekDate::DateChanged);
    w.date->SetFocus();
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Up);
    EXPECT_EQ(w.date->farsidate(), u"1404/01/01"_s);
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Down);
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Down);
    EXPECT_EQ(w.date->farsidate(), u"1403/12/29"_s);
    EXPECT_EQ(changed.count(), 3);
    w.date->Clear();
    QTest::keyClick(w.date->lineEdit(), Qt::Key_Up);  // an empty box stays empty
    EXPECT_TRUE(w.date->IsEmpty());
}

// A message box opening over the window is not the clerk leaving the field: the box's
// lost-focus (and, when the message closes, its got-focus) does not run.
TEST(VarekDate, AMessageBoxOpeningIsNotLeavingTheField) {
    DateWindow w;
    int got = 0, lost = 0;
    QObject::connect(w.date, &VarekDate::GotFocus, [&] { ++got; });
    QObject::connect(w.date, &VarekDate::LostFocus, [&] { ++lost; });
    w.date->SetFocus();
    ASSERT_EQ(got, 1);

    QFocusEvent activation(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(w.date->lineEdit(), &activation);
    QFocusEvent popup(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(w.date->lineEdit(), &popup);
    EXPECT_EQ(lost, 0);

    QDialog message(&w.window);
    message.setModal(true);
    auto* ok = new QPushButton(u"ادامه"_s, &message);
    QObject::connect(ok, &QPushButton::clicked, &message, &QDialog::accept);
    int lostWhileShown = -1;
    bool messageActive = false;
    QTimer::singleShot(0, &message, [&] {
        messageActive = QTest::qWaitForWindowActive(&message);
        lostWhileShown = lost;
        ok->click();
    });
    message.exec();
    // The offscreen platform does not hand the activation back by itself.
    QApplication::setActiveWindow(&w.window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w.window));
    EXPECT_TRUE(messageActive);
    EXPECT_EQ(lostWhileShown, 0);
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(got, 1);
    EXPECT_TRUE(w.date->lineEdit()->hasFocus());
    w.other->setFocus();  // the clerk leaving does count
    EXPECT_EQ(lost, 1);
}

// After its own handling the box passes keys and focus on: Enter takes the typed date and
// reaches the window's default button; leaving clears the line edit's selection.
TEST(VarekDate, KeysAndFocusGoOnToTheLineEditAndTheWindow) {
    QDialog dialog;
    auto* date = new VarekDate;
    auto* ok = new QPushButton(u"تاييد"_s);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(date);
    layout->addWidget(ok);
    ok->setDefault(true);
    int clicked = 0;
    QObject::connect(ok, &QPushButton::clicked, [&] { ++clicked; });
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    date->SetFocus();
    for (const QChar c : u"1403/2/5"_s) {
        QTest::sendKeyEvent(QTest::Press, date->lineEdit(), Qt::Key_unknown, c, Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, date->lineEdit(), Qt::Key_unknown, c, Qt::NoModifier);
    }
    QTest::keyClick(date->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(date->farsidate(), u"1403/02/05"_s);
    EXPECT_EQ(clicked, 1);
    date->lineEdit()->selectAll();
    ok->setFocus();
    EXPECT_FALSE(date->lineEdit()->hasSelectedText());
}
