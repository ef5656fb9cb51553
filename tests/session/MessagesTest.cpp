#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include "base/Errors.h"
#include "session/Csv.h"
#include "session/FileDialog.h"
#include "session/Handler.h"
#include "session/MessageDialogs.h"
#include "session/Messages.h"
#include "session/Module.h"
#include "session/QtTranslation.h"
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

// Qt's own dialogs speak Persian once the application installs Qt's translation; a few of
// Qt's strings have no Persian yet and stay English.
TEST(QtDialogs, SpeakPersianOnceTheApplicationAsks) {
    ASSERT_TRUE(InstallQtPersianTranslation());
    QDialogButtonBox buttons(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    EXPECT_EQ(buttons.button(QDialogButtonBox::Cancel)->text() + u' ' +
                  buttons.button(QDialogButtonBox::Save)->text(),
              u"انصراف ذخیره"_s);
    const std::pair<const char*, const char*> named[] = {{"QFileDialog", "Look in:"},
                                                         {"QFileDialog", "File &name:"},
                                                         {"QFileSystemModel", "Date Modified"},
                                                         {"QPrintDialog", "Print"},
                                                         {"QPrintPreviewDialog", "Print Preview"},
                                                         {"QPrintPreviewDialog", "Export to PDF"}};
    QStringList texts;
    for (const auto& [context, text] : named) texts << QCoreApplication::translate(context, text);
    EXPECT_EQ(
        texts.join(u'|'),
        u"جستجو در:|&نام پرونده:|تاریخ تغییر|چاپ|پیش‌نمایش چاپ|\u202Bخروجی گرفتن به "
        "\u202APDF\u202C\u202C"_s);
}

// The file dialog's proposed names and remembered folder; CSV cells no spreadsheet reads as a
// formula.
TEST(Files, ProposedNamesFoldersAndCsvCells) {
    EXPECT_EQ(
        ProposedFileName({u"برنامه بازپرداخت"_s, u"وام 12"_s, u"a/b:c"_s}, QDate(2024, 10, 6)),
        u"برنامه-بازپرداخت-وام-12-a-b-c-1403-07-15"_s);
    QTemporaryDir dir;
    QSettings settings(dir.filePath(u"s.conf"_s), QSettings::IniFormat);
    EXPECT_EQ(SaveFolder(settings),
              QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    RememberSaveFolder(settings, dir.filePath(u"x.csv"_s));
    EXPECT_EQ(SaveFolder(settings), QDir(dir.path()).absolutePath());
    EXPECT_EQ(CsvText({{u"=1+2"_s, u"+98"_s, u"-x"_s, u"@SUM(A1)"_s, u"\tx"_s, u"-12.5"_s, u"-7"_s,
                        u"12"_s, u"a=b"_s, u"\rx"_s}}),
              u"'=1+2,'+98,'-x,'@SUM(A1),'\tx,-12.5,-7,12,a=b,\"'\rx\"\r\n"_s);
}
