#include "session/Messages.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

// Runs one step of talking to the component; any failure is ignored and the next step runs.
template <class F>
void ignoringErrors(F&& step) noexcept {
    try {
        step();
    } catch (...) {
    }
}

std::unique_ptr<MessageComponent> createComponent(const MessageFactory& factory) noexcept {
    try {
        return factory ? factory() : nullptr;
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

void ShowMessage(const MessageFactory& factory, const QVariant& title, const QString& text) {
    std::unique_ptr<MessageComponent> msg = createComponent(factory);
    if (!msg) return;  // no component: nothing is shown
    ignoringErrors([&] { msg->SetFormTitle(title); });
    ignoringErrors([&] { msg->SetFormMessage(text); });
    ignoringErrors([&] { msg->SetFormType(0); });
    ignoringErrors([&] { msg->ClearShow(); });
    ignoringErrors([&] { msg.reset(); });
}

qint16 AskQuestion(const MessageFactory& factory, const QVariant& title, const QString& text) {
    std::unique_ptr<MessageComponent> msg = createComponent(factory);
    if (!msg) return AnswerNone;
    ignoringErrors([&] { msg->SetFormTitle(title); });
    ignoringErrors([&] { msg->SetFormMessage(text); });
    ignoringErrors([&] { msg->SetFormType(1); });
    ignoringErrors([&] { msg->ClearShow(); });
    qint16 answer = AnswerNone;
    ignoringErrors([&] {
        const QVariant r = msg->Resualt();
        bool ok = false;
        const double v = r.toDouble(&ok);
        if (ok && v == 1)
            answer = AnswerYes;
        else if (ok && v == 0)
            answer = AnswerNo;
    });
    ignoringErrors([&] { msg.reset(); });
    return answer;
}

QString ErrorTitle() { return u"خطا"_s; }
QString WarningTitle() { return u"هشدار"_s; }

}  // namespace kav
