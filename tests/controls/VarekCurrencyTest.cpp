#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>

#include "ControlWindow.h"
#include "controls/VarekCurrency.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

struct AmountWindow : kav::test::Shown<VarekCurrency> {
    AmountWindow() { control->SetFocus(); }
    VarekCurrency* amount = control;
    QList<int> seen;  // what KeyPress saw
    // The amount filter of the loan editor: digits, the point and backspace only.
    void filterKeys() {
        QObject::connect(amount, &VarekCurrency::KeyPress, [this](int& key) {
            seen.append(key);
            if (!((key >= '0' && key <= '9') || key == '.' || key == 8)) key = 0;
        });
    }
    void paste(const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(amount->lineEdit(), Qt::Key_V, Qt::ControlModifier);
    }
};

}  // namespace

TEST(VarekCurrency, GroupsTheDisplayAndReadsTheWholeAmount) {
    VarekCurrency amount;
    amount.setValue(u"-1234567.5"_s);
    EXPECT_EQ(amount.Text() + u' ' + amount.Value(), u"-1/234/567.5 -1234567.5"_s);
    amount.setText(u"1/234/567"_s);
    EXPECT_EQ(amount.Value(), u"1234567"_s);
    amount.setValue(QString());
    EXPECT_EQ(amount.Text() + amount.Value(), QString());
}

// Typing regroups and keeps the caret after the same digit; Backspace after a separator removes
// the digit before it. Locked, the box still raises KeyPress but keeps its text.
TEST(VarekCurrency, TypingRegroupsAndKeepsTheCaretAfterTheSameDigit) {
    AmountWindow w;
    w.type(u"1234567"_s);
    EXPECT_EQ(w.amount->Text(), u"1/234/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 9);
    w.amount->SetSelStart(3);  // after "1/2"
    w.type(u"9"_s);
    EXPECT_EQ(w.amount->Text(), u"12/934/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 4);
    w.amount->SetSelStart(3);
    w.key(Qt::Key_Backspace);
    EXPECT_EQ(w.amount->Text(), u"1/934/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 1);
    w.key(Qt::Key_Delete);
    EXPECT_EQ(w.amount->Value(), u"134567"_s);
    w.amount->SetSelStart(0);
    w.amount->SetSelLength(int(w.amount->Text().size()));
    EXPECT_EQ(w.amount->SelLength(), 7);
    w.type(u"۵"_s);  // a Persian digit lands as a Latin one
    EXPECT_EQ(w.amount->Text(), u"5"_s);
    w.amount->setLocked(true);
    w.filterKeys();
    w.type(u"9"_s);
    w.key(Qt::Key_Backspace);
    w.key(Qt::Key_Delete);
    EXPECT_EQ(w.seen, (QList<int>{'9', 8}));
    EXPECT_EQ(w.amount->Value(), u"5"_s);
}

// KeyPress sees every typed key first and may cancel it; a paste goes through the same filter,
// separators dropped, and one refused character keeps the whole paste out.
TEST(VarekCurrency, TypedAndPastedKeysPassTheKeyFilter) {
    AmountWindow w;
    w.filterKeys();
    w.type(u"12a3.5"_s);
    w.key(Qt::Key_Backspace);
    w.type(u"۷"_s);
    EXPECT_EQ(w.seen, (QList<int>{'1', '2', 'a', '3', '.', '5', 8, '7'}));
    EXPECT_EQ(w.amount->Value(), u"123.7"_s);
    w.amount->setValue(QString());
    w.seen.clear();
    w.paste(u"1/234/567"_s);
    EXPECT_EQ(w.seen, (QList<int>{'1', '2', '3', '4', '5', '6', '7'}));
    w.amount->lineEdit()->selectAll();
    w.paste(u"\u06F1\u06F2,\u06F5\u06F0\u06F0 "_s);  // Persian digits, a comma, a blank
    EXPECT_EQ(w.amount->Text(), u"12/500"_s);
    w.amount->SetSelStart(2);  // after "12": the rest is regrouped
    w.paste(u"0\u0660"_s);     // Arabic-Indic zero
    EXPECT_EQ(w.amount->Value(), u"1200500"_s);
    w.seen.clear();
    w.amount->lineEdit()->selectAll();
    w.paste(u"2e6"_s);
    EXPECT_EQ(w.seen, (QList<int>{'2', 'e'}));
    EXPECT_EQ(w.amount->Text(), u"1/200/500"_s);
}

// A GotFocus handler's selection survives the click that brought the focus; the next click
// places the caret as usual. Leaving and coming back raise LostFocus and GotFocus once each.
TEST(VarekCurrency, SelectingOnGotFocusSurvivesTheClickThatBroughtTheFocus) {
    AmountWindow w;
    w.amount->setValue(u"1234567"_s);
    w.other->setFocus();
    int got = 0, lost = 0;
    QObject::connect(w.amount, &VarekCurrency::LostFocus, [&] { ++lost; });
    QObject::connect(w.amount, &VarekCurrency::GotFocus, [&] {
        ++got;
        w.amount->SetSelStart(0);
        w.amount->SetSelLength(int(w.amount->Text().size()));
    });
    const QPoint centre = w.amount->lineEdit()->rect().center();
    QTest::mouseClick(w.amount->lineEdit(), Qt::LeftButton, {}, centre);
    EXPECT_EQ(w.amount->SelStart(), 0);
    EXPECT_EQ(w.amount->SelLength(), 9);
    QTest::mouseClick(w.amount->lineEdit(), Qt::LeftButton, {}, centre);
    EXPECT_EQ(w.amount->SelLength(), 0);
    w.other->setFocus();
    EXPECT_EQ(QList<int>({got, lost}), QList<int>({1, 1}));
}
