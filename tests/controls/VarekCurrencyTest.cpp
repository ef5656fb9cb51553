#include <gtest/gtest.h>

#include <QClipboard>
#include <QDialog>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "controls/VarekCurrency.h"
#include "session/TextProcs.h"
#include "support/QtPrinters.h"

using namespace Qt::StringLiterals;
using namespace kav::controls;

namespace {

struct AmountWindow {
    QWidget window;
    VarekCurrency* amount = new VarekCurrency;
    QPushButton* other = new QPushButton(u"ديگر"_s);
    AmountWindow() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(amount);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        amount->SetFocus();
    }
    void type(const QString& text) {
        for (const QChar c : text) {
            const Qt::Key key =
                c.unicode() < 128 ? Qt::Key(c.toUpper().unicode()) : Qt::Key_unknown;
            QTest::sendKeyEvent(QTest::Press, amount->lineEdit(), key, c, Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, amount->lineEdit(), key, c, Qt::NoModifier);
        }
    }
    void key(Qt::Key k) { QTest::keyClick(amount->lineEdit(), k); }
};

}  // namespace

TEST(VarekCurrency, GroupsTheDisplayAndReadsTheWholeAmount) {
    VarekCurrency amount;
    struct Case {
        QString value, shown;
    };
    for (const Case& c : {Case{u"1234567"_s, u"1/234/567"_s}, Case{u"1234"_s, u"1234"_s},
                          Case{u"12345"_s, u"12/345"_s}, Case{u"1000000"_s, u"1/000/000"_s},
                          Case{u"333333"_s, u"333/333"_s}, Case{u"12345.5"_s, u"12/345.5"_s},
                          Case{u"-1234567"_s, u"-1/234/567"_s}}) {
        amount.setValue(c.value);
        EXPECT_EQ(amount.Text(), c.shown) << qPrintable(c.value);
        EXPECT_EQ(amount.Value(), c.value);
        EXPECT_EQ(kav::AmountValue(amount.Text()), kav::AmountValue(c.value));
    }
    amount.setText(u"1/234/567"_s);
    EXPECT_EQ(amount.Value(), u"1234567"_s);
    EXPECT_EQ(kav::AmountValue(amount.Text()), 1234567.0);
    amount.setText(QString());
    EXPECT_EQ(amount.Text(), QString());
    EXPECT_EQ(amount.Value(), QString());
}

TEST(VarekCurrency, TypingRegroupsAndKeepsTheCaretAfterTheSameDigit) {
    AmountWindow w;
    w.type(u"1234567"_s);
    EXPECT_EQ(w.amount->Text(), u"1/234/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 9);

    // Caret after "1/2": typing 9 puts it after the 9.
    w.amount->SetSelStart(3);
    w.type(u"9"_s);
    EXPECT_EQ(w.amount->Value(), u"12934567"_s);
    EXPECT_EQ(w.amount->Text(), u"12/934/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 4);

    // Backspace right after a separator removes the digit before it.
    w.amount->SetSelStart(3);
    w.key(Qt::Key_Backspace);
    EXPECT_EQ(w.amount->Value(), u"1934567"_s);
    EXPECT_EQ(w.amount->Text(), u"1/934/567"_s);
    EXPECT_EQ(w.amount->SelStart(), 1);

    w.key(Qt::Key_Delete);
    EXPECT_EQ(w.amount->Value(), u"134567"_s);

    // A selection is replaced by the typed digit.
    w.amount->SetSelStart(0);
    w.amount->SetSelLength(int(w.amount->Text().size()));
    EXPECT_EQ(w.amount->SelLength(), 7);
    w.type(u"۵"_s);  // a Persian digit lands as a Latin one
    EXPECT_EQ(w.amount->Text(), u"5"_s);
}

TEST(VarekCurrency, KeyPressSeesEveryKeyFirstAndMayCancelIt) {
    AmountWindow w;
    QList<int> seen;
    QObject::connect(w.amount, &VarekCurrency::KeyPress, [&](int& key) {
        seen.append(key);
        // The amount filter of the loan editor: digits, the point and backspace only.
        if (!((key >= '0' && key <= '9') || key == '.' || key == 8)) key = 0;
    });
    w.type(u"12a3.5"_s);
    w.key(Qt::Key_Backspace);
    w.type(u"۷"_s);
    EXPECT_EQ(seen, (QList<int>{'1', '2', 'a', '3', '.', '5', 8, '7'}));
    EXPECT_EQ(w.amount->Value(), u"123.7"_s);
}

// Pasted text goes through the same filter as typed keys: separators dropped, Persian
// digits read, and a character the filter refuses keeps the whole paste out.
TEST(VarekCurrency, PastedTextPassesTheKeyFilter) {
    AmountWindow w;
    QList<int> seen;
    QObject::connect(w.amount, &VarekCurrency::KeyPress, [&](int& key) {
        seen.append(key);
        if (!((key >= '0' && key <= '9') || key == '.' || key == 8)) key = 0;
    });
    auto paste = [&](const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(w.amount->lineEdit(), Qt::Key_V, Qt::ControlModifier);
    };
    paste(u"1/234/567"_s);
    EXPECT_EQ(w.amount->Value(), u"1234567"_s);
    EXPECT_EQ(seen, (QList<int>{'1', '2', '3', '4', '5', '6', '7'}));

    w.amount->lineEdit()->selectAll();
    paste(u"\u06F1\u06F2,\u06F5\u06F0\u06F0 "_s);  // Persian digits, a comma, a blank
    EXPECT_EQ(w.amount->Value(), u"12500"_s);
    EXPECT_EQ(w.amount->Text(), u"12/500"_s);

    // Caret after "12": the pasted digits land there and the rest is regrouped.
    w.amount->SetSelStart(2);
    paste(u"0\u0660"_s);  // Arabic-Indic zero
    EXPECT_EQ(w.amount->Value(), u"1200500"_s);

    seen.clear();
    w.amount->lineEdit()->selectAll();
    paste(u"2e6"_s);  // the filter refuses "e": nothing lands
    EXPECT_EQ(seen, (QList<int>{'2', 'e'}));
    EXPECT_EQ(w.amount->Value(), u"1200500"_s);
    EXPECT_EQ(w.amount->Text(), u"1/200/500"_s);
}

TEST(VarekCurrency, LockedRaisesKeyPressButKeepsItsText) {
    AmountWindow w;
    w.amount->setValue(u"5000"_s);
    w.amount->setLocked(true);
    int keys = 0, got = 0, lost = 0;
    QObject::connect(w.amount, &VarekCurrency::KeyPress, [&](int&) { ++keys; });
    QObject::connect(w.amount, &VarekCurrency::GotFocus, [&] { ++got; });
    QObject::connect(w.amount, &VarekCurrency::LostFocus, [&] { ++lost; });
    w.type(u"9"_s);
    w.key(Qt::Key_Backspace);
    w.key(Qt::Key_Delete);
    EXPECT_EQ(keys, 2);
    EXPECT_EQ(w.amount->Value(), u"5000"_s);
    w.other->setFocus();
    w.amount->SetFocus();
    EXPECT_EQ(lost, 1);
    EXPECT_EQ(got, 1);
}

TEST(VarekCurrency, SelectingOnGotFocusSurvivesTheClickThatBroughtTheFocus) {
    AmountWindow w;
    w.amount->setValue(u"1234567"_s);
    w.other->setFocus();
    QObject::connect(w.amount, &VarekCurrency::GotFocus, [&] {
        w.amount->SetSelStart(0);
        w.amount->SetSelLength(int(w.amount->Text().size()));
    });
    QTest::mouseClick(w.amount->lineEdit(), Qt::LeftButton, {},
                      w.amount->lineEdit()->rect().center());
    EXPECT_TRUE(w.amount->lineEdit()->hasFocus());
    EXPECT_EQ(w.amount->SelStart(), 0);
    EXPECT_EQ(w.amount->SelLength(), 9);
    // The next click places the caret as usual.
    QTest::mouseClick(w.amount->lineEdit(), Qt::LeftButton, {},
                      w.amount->lineEdit()->rect().center());
    EXPECT_EQ(w.amount->SelLength(), 0);
}

// The box handles its keys and focus and then passes them on: the line edit still hears of
// the focus leaving (its selection goes), and Enter and Escape reach the window (its default
// button, its closing).
TEST(VarekCurrency, KeysAndFocusGoOnToTheLineEditAndTheWindow) {
    QDialog dialog;
    auto* amount = new VarekCurrency;
    auto* ok = new QPushButton(u"تاييد"_s);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(amount);
    layout->addWidget(ok);
    ok->setDefault(true);
    int clicked = 0;
    QObject::connect(ok, &QPushButton::clicked, [&] { ++clicked; });
    QList<int> seen;
    QObject::connect(amount, &VarekCurrency::KeyPress, [&](int& key) { seen << key; });
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    amount->SetFocus();
    amount->setValue(u"1234567"_s);
    amount->lineEdit()->selectAll();
    QTest::keyClick(amount->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(clicked, 1);
    ok->setFocus();
    EXPECT_FALSE(amount->lineEdit()->hasSelectedText());
    amount->SetFocus();
    QTest::keyClick(amount->lineEdit(), Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(seen, (QList<int>{13, 27}));
}
