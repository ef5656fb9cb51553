#pragma once

// What kavhrloan does before and around the module: the exit codes, the terminal's lines, a
// failure at start-up shown where someone sees it, and the check for a display.

#include <QString>
#include <QVariant>
#include <cstdio>

#include "session/MessageDialogs.h"

namespace app {

constexpr int ExitStartFailed = 2;
constexpr int ExitRoleRefused = 3;

// One line on the terminal: a message's own line breaks become blanks.
void PrintLine(FILE* stream, const QString& line);

// True when there is a screen a person looks at (not the offscreen or minimal platform).
bool OnScreen();

// A start-up failure: on stderr (passwords masked), and in a message box when there is a
// screen to show it on. Returns ExitStartFailed.
int Fail(const QString& text);

// True when a display is named; without one only HeadlessRun's options can run.
bool HasDisplay();

// Options that show no window work without a display.
bool HeadlessRun(int argc, char** argv);

// Without a screen nobody could answer a message box: messages go to stderr, and a question
// gets no answer.
class StderrMessages : public kav::MessageComponent {
public:
    void SetFormTitle(const QVariant& title) override { title_ = title.toString(); }
    void SetFormMessage(const QString& message) override { message_ = message; }
    void SetFormType(qint16 type) override { type_ = type; }
    void ClearShow() override;
    QVariant Resualt() const override { return -1; }

private:
    QString title_, message_;
    qint16 type_ = 0;
};

}  // namespace app
