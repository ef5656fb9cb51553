#include <gtest/gtest.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QDialog>
#include <QFocusEvent>
#include <QSignalSpy>
#include <QTableView>
#include <QTimer>

#include "ControlWindow.h"
#include "controls/FarsiDateText.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;
using DateWindow = kav::test::Shown<VarekDate>;

// Each field is read as a number. A typed date is taken exactly or not at all; a stored one
// past its month's end reads as the month's last day. (Every day's text, loose or padded,
// and the day after each month's last: the property tests.)
TEST(FarsiDateText, ReadsTypedAndStoredDates) {
    struct Case {
        QString text, typed, stored;
    };
    for (const Case& c : {Case{u"1403/010/01"_s, u"1403/10/01"_s, u"1403/10/01"_s},
                          Case{u"1403/01/99"_s, QString(), u"1403/01/31"_s},
                          Case{u"1403/13/01"_s, QString(), QString()},
                          Case{u"1403/00/10"_s, QString(), QString()}}) {
        EXPECT_EQ(FarsiDateText(ParseFarsiDate(c.text)), c.typed) << qPrintable(c.text);
        EXPECT_EQ(FarsiDateText(ParseStoredFarsiDate(c.text)), c.stored) << qPrintable(c.text);
    }
    for (const QString& text : {u""_s, u"1403/01/00"_s, u"1403/01"_s, u"1403-01-01"_s,
                                u"abcd/01/01"_s, u"1403/1 2/01"_s, u"1403/01/01/01"_s})
        EXPECT_FALSE(ParseFarsiDate(text).isValid()) << qPrintable(text);
    EXPECT_EQ(ParseFarsiDate(u"1403/12/30"_s), QDate(2025, 3, 20));  // 1403 is a leap year
    EXPECT_EQ(FarsiDateText(QDate(2024, 9, 22)), u"1403/07/01"_s);
}

TEST(VarekDate, HoldsADateOrNothing) {
    VarekDate date;
    // Persian, Gregorian, year/month/day, the text shown, and whether it is empty.
    auto state = [&] {
        return u"%1|%2|%3/%4/%5|%6|%7"_s
            .arg(date.farsidate(), date.englishdate().toString(Qt::ISODate))
            .arg(date.farsiyear())
            .arg(date.farsimonth())
            .arg(date.farsiday())
            .arg(date.lineEdit()->text())
            .arg(int(date.IsEmpty()));
    };
    EXPECT_EQ(state(), u"||0/0/0||1"_s);
    date.setFarsidate(u" 1404/ 1/ 31"_s);
    EXPECT_EQ(state(), u"1404/01/31|2025-04-20|1404/1/31|1404/01/31|0"_s);
    date.setEnglishdate(date.englishdate().addDays(-1));  // as the editor steps back a day
    EXPECT_EQ(state(), u"1404/01/30|2025-04-19|1404/1/30|1404/01/30|0"_s);
    date.setFarsidate(u"1404/12/30"_s);  // stored in a common year, as older data may hold
    EXPECT_EQ(date.farsidate(), u"1404/12/29"_s);
    date.setFarsidate(u"not a date"_s);
    EXPECT_EQ(state(), u"||0/0/0||1"_s);
    date.setFarsidate(u"1403/010/01"_s);
    date.Clear();
    EXPECT_EQ(state(), u"||0/0/0||1"_s);
}

// DateChanged comes from the clerk only (typing, Enter, leaving, the calendar); a day that does
// not exist is refused where the clerk sees it. LostFocus sees the date already taken.
TEST(VarekDate, TakesATypedDateOnlyWhenTheDayExists) {
    DateWindow w;
    VarekDate* date = w.control;
    QSignalSpy changed(date, &VarekDate::DateChanged);
    QString seenAtLostFocus;
    QObject::connect(date, &VarekDate::LostFocus, [&] { seenAtLostFocus = date->farsidate(); });
    date->setFarsidate(u"1403/01/01"_s);
    date->setEnglishdate(QDate(2024, 5, 5));
    date->Clear();
    EXPECT_EQ(changed.count(), 0);
    date->SetFocus();
    w.type(u"14030215"_s);
    EXPECT_EQ(date->lineEdit()->text(), u"1403/02/15"_s);
    EXPECT_EQ(changed.count(), 1);
    date->lineEdit()->clear();
    w.type(u"۱۴۰۳/۷/۵"_s);
    w.other->setFocus();
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(seenAtLostFocus, u"1403/07/05"_s);
    date->showCalendar();
    date->calendarWidget()->setSelectedDate(QDate(2024, 3, 20));
    QTest::keyClick(date->calendarWidget()->findChild<QTableView*>(), Qt::Key_Return);
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(date->farsidate(), u"1403/01/01"_s);
    struct Refused {
        QString typed, seen;
        bool enter;  // else the clerk leaves the box
    };
    for (const Refused& r : {Refused{u"1404/12/30"_s, u"1404/12/30"_s, false},
                             Refused{u"\u06F1\u06F4\u06F0\u06F3/\u06F0\u06F0/\u06F0\u06F5"_s,
                                     u"1403/00/05"_s, true}}) {
        date->SetFocus();
        date->lineEdit()->selectAll();
        w.type(r.typed);
        r.enter ? w.key(Qt::Key_Return) : w.other->setFocus();
        EXPECT_EQ(date->lineEdit()->text(), u"1403/01/01"_s) << r.seen.toStdString();
        EXPECT_EQ(date->RefusedText(), r.seen);
        EXPECT_TRUE(date->lineEdit()->toolTip().contains(r.seen));
        EXPECT_TRUE(date->lineEdit()->styleSheet().contains(u"border"_s));
    }
    EXPECT_EQ(changed.count(), 3);
    date->SetFocus();  // a real day typed next is taken and the refusal goes
    date->lineEdit()->selectAll();
    w.type(u"1403/12/30"_s);
    w.other->setFocus();
    EXPECT_EQ(date->farsidate(), u"1403/12/30"_s);
    EXPECT_EQ(changed.count(), 4);
    EXPECT_EQ(date->RefusedText() + date->lineEdit()->styleSheet() + date->lineEdit()->toolTip(),
              QString());
}

TEST(VarekDate, ArrowKeysStepOneDayUpAndDownAndLockedRefusesInput) {
    DateWindow w;
    w.control->setFarsidate(u"1403/12/30"_s);
    QSignalSpy changed(w.control, &VarekDate::DateChanged);
    w.control->SetFocus();
    w.key(Qt::Key_Up);
    EXPECT_EQ(w.control->farsidate(), u"1404/01/01"_s);
    w.key(Qt::Key_Down);
    w.key(Qt::Key_Down);
    EXPECT_EQ(w.control->farsidate(), u"1403/12/29"_s);
    EXPECT_EQ(changed.count(), 3);
    w.control->setLocked(true);  // no typing, no arrows, no calendar; not greyed
    EXPECT_TRUE(w.control->isEnabled());
    w.type(u"1"_s);
    w.key(Qt::Key_Up);
    w.control->showCalendar();
    EXPECT_FALSE(w.control->calendarWidget()->isVisible());
    w.other->setFocus();
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(w.control->farsidate(), u"1403/12/29"_s);
    w.control->setLocked(false);
    w.control->Clear();
    w.control->SetFocus();
    w.key(Qt::Key_Up);  // an empty box stays empty
    EXPECT_TRUE(w.control->IsEmpty());
}

// A message box opening over the window, or a popup, is not the clerk leaving the field: the
// box's lost-focus (and, when the message closes, its got-focus) does not run.
TEST(VarekDate, AMessageBoxOpeningIsNotLeavingTheField) {
    DateWindow w;
    int got = 0, lost = 0;
    QObject::connect(w.control, &VarekDate::GotFocus, [&] { ++got; });
    QObject::connect(w.control, &VarekDate::LostFocus, [&] { ++lost; });
    w.control->SetFocus();
    QFocusEvent popup(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(w.control->lineEdit(), &popup);
    QDialog message(&w.window);
    message.setModal(true);
    int lostWhileShown = -1;
    QTimer::singleShot(0, &message, [&] {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&message));
        lostWhileShown = lost;
        message.accept();
    });
    message.exec();
    // The offscreen platform does not hand the activation back by itself.
    QApplication::setActiveWindow(&w.window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w.window));
    EXPECT_EQ(QList<int>({lostWhileShown, lost, got}), QList<int>({0, 0, 1}));
    EXPECT_TRUE(w.control->lineEdit()->hasFocus());
    w.other->setFocus();  // the clerk leaving does count
    EXPECT_EQ(lost, 1);
}

// After their own handling the date and amount boxes pass Enter and Escape on to the window,
// and the focus leaving on to the line edit (its selection goes).
TEST(VarekDateAndCurrency, KeysAndFocusGoOnToTheLineEditAndTheWindow) {
    QDialog dialog;
    auto* date = new VarekDate;
    auto* amount = new VarekCurrency;
    auto* ok = new QPushButton(u"تاييد"_s);
    auto* layout = new QVBoxLayout(&dialog);
    for (QWidget* widget : std::initializer_list<QWidget*>{date, amount, ok})
        layout->addWidget(widget);
    ok->setDefault(true);
    QSignalSpy clicked(ok, &QPushButton::clicked);
    QList<int> seen;
    QObject::connect(amount, &VarekCurrency::KeyPress, [&](int& key) { seen << key; });
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    date->SetFocus();
    kav::test::Type(date->lineEdit(), u"1403/2/5"_s);
    QTest::keyClick(date->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(date->farsidate(), u"1403/02/05"_s);
    EXPECT_EQ(clicked.count(), 1);
    date->lineEdit()->selectAll();
    amount->SetFocus();
    EXPECT_FALSE(date->lineEdit()->hasSelectedText());
    QTest::keyClick(amount->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(clicked.count(), 2);
    QTest::keyClick(amount->lineEdit(), Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(seen, (QList<int>{13, 27}));
}
