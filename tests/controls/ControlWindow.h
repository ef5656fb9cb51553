#pragma once

// A shown, active window holding one control and a button to take the focus elsewhere.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include "support/QtPrinters.h"

namespace kav::test {

inline void Type(QWidget* target, const QString& text) {
    for (const QChar c : text) {
        const Qt::Key key = c.unicode() < 128 ? Qt::Key(c.toUpper().unicode()) : Qt::Key_unknown;
        QTest::sendKeyEvent(QTest::Press, target, key, c, Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, target, key, c, Qt::NoModifier);
    }
}

template <class Control>
struct Shown {
    QWidget window;
    Control* control = new Control;
    QPushButton* other = new QPushButton(QStringLiteral("ديگر"));
    Shown() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(control);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        other->setFocus();
    }
    void type(const QString& text) { Type(control->lineEdit(), text); }
    void key(Qt::Key k) { QTest::keyClick(control->lineEdit(), k); }
};

}  // namespace kav::test
