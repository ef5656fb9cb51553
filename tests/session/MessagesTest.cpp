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

// A component that cannot be made, or fails while showing, is swallowed and answers no yes.
TEST(Messages, AMissingOrFailingComponentAnswersNothing) {
    auto script = std::make_shared<test::MessageScript>();
    script->missing = true;
    const MessageFactory factory = test::ScriptedFactory(script);
    ShowMessage(factory, u"t"_s, u"m"_s);
    const MessageFactory throwing = []() -> std::unique_ptr<MessageComponent> {
        throw std::runtime_error("not registered");
    };
    for (const MessageFactory& f : {factory, throwing, MessageFactory{}})
        EXPECT_EQ(AskQuestion(f, u"t"_s, u"q"_s), 0);
    EXPECT_TRUE(script->shown.isEmpty());
    script->missing = false;
    script->failOnShow = true;
    script->answers = {1};
    EXPECT_NO_THROW(ShowMessage(factory, u"t"_s, u"m"_s));
    EXPECT_NE(AskQuestion(factory, u"t"_s, u"q"_s), 6);  // the scripted yes never arrived
    EXPECT_EQ(script->shown.size(), 2);
}

// A question's Resualt maps to yes (6), no (7) or no answer (0).
TEST(Messages, ResualtMapsToAnswerCodes) {
    auto script = std::make_shared<test::MessageScript>();
    const MessageFactory factory = test::ScriptedFactory(script);
    struct Case {
        QVariant resualt;
        qint16 answer;
    };
    for (const Case& c : {Case{1, 6}, Case{0, 7}, Case{2, 0}, Case{QVariant(), 0}, Case{u"1"_s, 6},
                          Case{true, 6}}) {
        script->answers = {c.resualt};
        EXPECT_EQ(AskQuestion(factory, u"پرسش"_s, u"آيا؟"_s), c.answer)
            << c.resualt.toString().toStdString();
        EXPECT_EQ(script->last().type, 1);
    }
    ShowMessage(factory, u"هشدار"_s, u"متن"_s);
    EXPECT_EQ(script->last().title + u'|' + script->last().text, u"هشدار|متن"_s);
    EXPECT_EQ(script->last().type, 0);
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

// The dialog component answers 1 for "بلي", 0 for "خير" and 0 when closed; the local
// yes/no window puts 6 or 7 in the session.
TEST(MessageDialogs, AnswerFromTheirButtons) {
    for (const QString& button : {u"بلي"_s, u"خير"_s, QString()}) {
        DialogMessageComponent component;
        component.SetFormTitle(u"هشدار"_s);
        component.SetFormMessage(u"آيا مطمئن هستيد؟"_s);
        component.SetFormType(1);
        QTimer::singleShot(0, [button] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->layoutDirection(), Qt::RightToLeft);
            for (auto* b : dialog->findChildren<QPushButton*>())
                if (b->text() == button) b->click();
            if (button.isEmpty()) dialog->reject();  // closed without an answer
        });
        component.ClearShow();
        EXPECT_EQ(component.Resualt().toInt(), button == u"بلي"_s ? 1 : 0) << qPrintable(button);
    }
    Session session;
    frmYesNo dialog(session);
    dialog.cmdYes->click();
    EXPECT_EQ(session.DialogAnswer, 6);
    dialog.cmdNo->click();
    EXPECT_EQ(session.DialogAnswer, 7);
    EXPECT_EQ(frmMsg().cmdContinue->text(), u"ادامه"_s);
}
