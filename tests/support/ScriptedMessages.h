#pragma once

// A message component for tests: records every message and question shown and answers
// questions from a script.

#include <QList>
#include <QString>
#include <QVariant>
#include <deque>
#include <memory>
#include <stdexcept>

#include "QtPrinters.h"
#include "session/Messages.h"

namespace kav::test {

struct ShownMessage {
    QString title;
    QString text;
    qint16 type = 0;
};

struct MessageScript {
    QList<ShownMessage> shown;
    // Resualt values handed out by questions, in order; 1 yes, 0 no. When empty, the
    // question answers `defaultAnswer`.
    std::deque<QVariant> answers;
    QVariant defaultAnswer = 1;
    // Makes the factory fail (the component cannot be created).
    bool missing = false;
    // Makes ClearShow throw, as a broken component would.
    bool failOnShow = false;

    QStringList texts() const {
        QStringList t;
        for (const auto& m : shown) t << m.text;
        return t;
    }
    const ShownMessage& last() const { return shown.back(); }
};

class ScriptedComponent : public MessageComponent {
public:
    explicit ScriptedComponent(std::shared_ptr<MessageScript> script)
        : script_(std::move(script)) {}
    void SetFormTitle(const QVariant& title) override { current_.title = title.toString(); }
    void SetFormMessage(const QString& message) override { current_.text = message; }
    void SetFormType(qint16 type) override { current_.type = type; }
    void ClearShow() override {
        script_->shown.append(current_);
        if (script_->failOnShow) throw std::runtime_error("component failed");
        if (current_.type != 1) return;
        answer_ = script_->answers.empty() ? script_->defaultAnswer : script_->answers.front();
        if (!script_->answers.empty()) script_->answers.pop_front();
    }
    QVariant Resualt() const override { return answer_; }

private:
    std::shared_ptr<MessageScript> script_;
    ShownMessage current_;
    QVariant answer_ = 0;
};

inline MessageFactory ScriptedFactory(const std::shared_ptr<MessageScript>& script) {
    return [script]() -> std::unique_ptr<MessageComponent> {
        if (script->missing) return nullptr;
        return std::make_unique<ScriptedComponent>(script);
    };
}

}  // namespace kav::test
