#pragma once

// Every message and question of the module goes through ShowMessage and AskQuestion, which
// hand the texts to a message component made anew for each call.

#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

namespace kav {

// The suite's message component with its five members, spelled as the suite spells them.
class MessageComponent {
public:
    virtual ~MessageComponent() = default;
    virtual void SetFormTitle(const QVariant& title) = 0;
    virtual void SetFormMessage(const QString& message) = 0;
    // 0: a message with one acknowledgement; 1: a yes/no question.
    virtual void SetFormType(qint16 type) = 0;
    // Shows the dialog; returns when the user has answered.
    virtual void ClearShow() = 0;
    // After a question: 1 yes, 0 no.
    virtual QVariant Resualt() const = 0;
};

// Makes a new component; a null result (or a throw) means the component cannot be created.
using MessageFactory = std::function<std::unique_ptr<MessageComponent>()>;

// Answer codes of AskQuestion.
constexpr qint16 AnswerYes = 6;
constexpr qint16 AnswerNo = 7;
constexpr qint16 AnswerNone = 0;

// Shows a message; without a component nothing is shown. Never fails.
void ShowMessage(const MessageFactory& factory, const QVariant& title, const QString& text);
// Asks a yes/no question: 6 yes, 7 no, 0 when no answer could be had. Never fails.
qint16 AskQuestion(const MessageFactory& factory, const QVariant& title, const QString& text);

// Frequent titles.
QString ErrorTitle();    // "خطا"
QString WarningTitle();  // "هشدار"

}  // namespace kav
