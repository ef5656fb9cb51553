#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTimer>

#include "base/Errors.h"
#include "session/Handler.h"
#include "session/MessageDialogs.h"
#include "session/Messages.h"
#include "session/Module.h"
#include "support/ScriptedMessages.h"

using namespace Qt::StringLiterals;
using namespace kav;

TEST(Messages, MissingComponentShowsNothingAndAnswersZero) {
    auto script = std::make_shared<test::MessageScript>();
    script->missing = true;
    const MessageFactory factory = test::ScriptedFactory(script);
    ShowMessage(factory, u"t"_s, u"m"_s);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerNone);
    EXPECT_TRUE(script->shown.isEmpty());

    const MessageFactory throwing = []() -> std::unique_ptr<MessageComponent> {
        throw std::runtime_error("not registered");
    };
    EXPECT_EQ(AskQuestion(throwing, u"t"_s, u"q"_s), AnswerNone);
    EXPECT_EQ(AskQuestion(MessageFactory{}, u"t"_s, u"q"_s), AnswerNone);
}

TEST(Messages, ResualtMapsToAnswerCodes) {
    auto script = std::make_shared<test::MessageScript>();
    script->answers = {1, 0, 2, -1, QVariant(), u"1"_s, true};
    const MessageFactory factory = test::ScriptedFactory(script);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerYes);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerNo);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerNone);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerNone);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerNone);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerYes);
    EXPECT_EQ(AskQuestion(factory, u"t"_s, u"q"_s), AnswerYes);
    ASSERT_EQ(script->shown.size(), 7);
    EXPECT_EQ(script->shown[0].type, 1);
}

TEST(Messages, TypeTitleAndTextReachTheComponent) {
    auto script = std::make_shared<test::MessageScript>();
    const MessageFactory factory = test::ScriptedFactory(script);
    ShowMessage(factory, u"هشدار"_s, u"متن"_s);
    ASSERT_EQ(script->shown.size(), 1);
    EXPECT_EQ(script->last().title, u"هشدار"_s);
    EXPECT_EQ(script->last().text, u"متن"_s);
    EXPECT_EQ(script->last().type, 0);
}

TEST(Messages, FailingComponentIsSwallowed) {
    auto script = std::make_shared<test::MessageScript>();
    script->failOnShow = true;
    script->answers = {1};
    const MessageFactory factory = test::ScriptedFactory(script);
    EXPECT_NO_THROW(ShowMessage(factory, u"t"_s, u"m"_s));
    qint16 answer = -1;
    EXPECT_NO_THROW(answer = AskQuestion(factory, u"t"_s, u"q"_s));
    EXPECT_TRUE(answer == AnswerNo || answer == AnswerNone);
    EXPECT_EQ(script->shown.size(), 2);
}

TEST(HandlerBoundary, ErrorsAreShownTitledErrorAndNeverEscape) {
    Module module;
    auto script = std::make_shared<test::MessageScript>();
    module.SetMessageFactory(test::ScriptedFactory(script));
    EXPECT_FALSE(RunHandler(module, [] { throw KavError(KavError::Kind::Overflow, u"سرريز"_s); }));
    EXPECT_FALSE(RunHandler(module, [] { throw std::logic_error("boom"); }));
    EXPECT_FALSE(RunHandler(module, [] { throw 42; }));
    EXPECT_TRUE(RunHandler(module, [] {}));
    ASSERT_EQ(script->shown.size(), 3);
    for (const auto& m : script->shown) EXPECT_EQ(m.title, u"خطا"_s);
    EXPECT_EQ(script->shown[0].text, u"سرريز"_s);
    EXPECT_TRUE(script->shown[1].text.contains(u"boom"_s));
}

TEST(MessageDialogs, TheDialogComponentAnswersFromItsButtons) {
    for (const bool yes : {true, false}) {
        DialogMessageComponent component;
        component.SetFormTitle(u"هشدار"_s);
        component.SetFormMessage(u"آيا مطمئن هستيد؟"_s);
        component.SetFormType(1);
        QTimer::singleShot(0, [yes] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->layoutDirection(), Qt::RightToLeft);
            for (auto* b : dialog->findChildren<QPushButton*>())
                if (b->text() == (yes ? u"بلي"_s : u"خير"_s)) b->click();
        });
        component.ClearShow();
        EXPECT_EQ(component.Resualt().toInt(), yes ? 1 : 0);
    }
}

TEST(MessageDialogs, LocalYesNoDialogSetsDialogAnswer) {
    Session session;
    frmYesNo dialog(session);
    dialog.cmdYes->click();
    EXPECT_EQ(session.DialogAnswer, 6);
    dialog.cmdNo->click();
    EXPECT_EQ(session.DialogAnswer, 7);
    frmMsg msg;
    EXPECT_EQ(msg.cmdContinue->text(), u"ادامه"_s);
}
