// The clerk's path on the demo database, with the real windows: from the loan editor he opens
// a member's balance, records an adjustment, finds it in the list, opens it again and sees the
// schedule change; the editor gets its own mode back.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "adjustments/AdjustmentOpener.h"
#include "adjustments/FormHRException.h"
#include "adjustments/FormList.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "data/DemoData.h"
#include "loan_editor/FormHRLoan.h"
#include "support/ScriptedMessages.h"

using namespace Qt::StringLiterals;
using namespace kav;

namespace {

// The module on a fresh demo database with the real editor and adjustment windows.
struct DemoModule {
    DemoModule() {
        const QString file = dir.filePath(u"demo.db"_s);
        data::CreateDemoDatabase(file);
        module.session.SessionConnectionString = data::EmbeddedConnectionString(file);
        module.session.SessionTitle = u"وام کارمندان"_s;
        module.SetMessageFactory(test::ScriptedFactory(messages));
        module.OpenSessionConnection();
        module.ProvidePort<LoanEditorPort>(
            [](Module& m) -> LoanEditorPort& { return m.Window<FormHRLoan>(); });
        module.ProvidePort<AdjustmentPort>(
            [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
    }
    QTemporaryDir dir;
    std::shared_ptr<test::MessageScript> messages = std::make_shared<test::MessageScript>();
    Module module;
};

}  // namespace

TEST(BalancePath, FromTheEditorToARecordedAdjustmentAndBack) {
    DemoModule demo;
    Module& module = demo.module;
    const auto& messages = demo.messages;
    QStringList seen;
    int rowsBefore = 0, rowsAfter = 0;  // the schedule's length
    QString newId;
    module.SetModalRunner([&](QDialog& d) {
        if (auto* list = qobject_cast<FormList*>(&d)) {
            seen << u"list"_s;
            list->cmdSearch->click();
            for (int r = 1; r < list->FlexEmployee->Rows(); ++r)
                if (list->FlexEmployee->TextMatrix(r, 5) == newId) list->FlexEmployee->setRow(r);
            emit list->FlexEmployee->DblClick();
            return 1;
        }
        auto* w = qobject_cast<FormHRException*>(&d);
        if (!w) return 0;
        seen << u"adjustment"_s;
        rowsBefore = w->FlexBalance->Rows();
        w->cmdNew->click();
        w->gdcBalancePF->setFarsidate(u"1404/01/01"_s);
        w->gdcBalancePT->setFarsidate(u"1404/03/31"_s);
        w->TxtPerMonth->setText(u"30000000"_s);
        w->cmdSave->click();
        newId = w->txtID->text();
        w->gdcBalancePT->Clear();  // the list, not the screen, brings the record back
        w->cmdList->click();
        EXPECT_EQ(w->txtID->text(), newId);
        EXPECT_EQ(w->gdcBalancePT->farsidate(), u"1404/03/31"_s);
        EXPECT_EQ(module.session.LoanFormMode, 0);
        rowsAfter = w->FlexBalance->Rows();
        w->cmdExit->click();
        return 0;
    });
    FormHRLoan& editor = module.Window<FormHRLoan>();
    ASSERT_TRUE(editor.ViewPRSLoansInfo(2));  // the housing loan of employee 10
    ASSERT_EQ(editor.FlexEmployee->TextMatrix(editor.FlexEmployee->Row(), 1), u"10"_s);
    editor.cmdBalance->click();
    EXPECT_EQ(seen, (QStringList{u"adjustment"_s, u"list"_s}));
    EXPECT_TRUE(messages->shown.isEmpty()) << messages->texts().join(u'\n').toStdString();
    EXPECT_FALSE(newId.isEmpty());
    EXPECT_LT(rowsAfter, rowsBefore);  // three months at 30,000,000, not 22,220,000: sooner

    EXPECT_FALSE(module.HasWindow<FormHRException>());  // closed and unloaded
    EXPECT_EQ(module.session.LoanFormMode, 0);          // the editor's own mode again
    EXPECT_TRUE(editor.cmdBalance->isEnabled());
}

// An adjustment being edited survives the list (which opens nothing over it), and closing the
// window ends the edit: the editor's flag is back, so its search opens loans again.
TEST(BalancePath, AnAdjustmentEditEndsWithItsWindow) {
    DemoModule demo;
    Module& module = demo.module;
    qint16 inList = -1;
    QString afterList;
    module.SetModalRunner([&](QDialog& d) {
        if (auto* list = qobject_cast<FormList*>(&d)) {
            inList = module.session.LoanEditStarted;
            list->cmdSearch->click();
            list->FlexEmployee->setRow(1);
            emit list->FlexEmployee->DblClick();
            return 0;
        }
        auto* w = qobject_cast<FormHRException*>(&d);
        if (!w) return 0;
        w->ShowFormToEdit(1);
        w->cmdEdit->click();
        w->TxtPerMonth->setText(u"123"_s);
        w->cmdList->click();
        afterList = w->TxtPerMonth->text() + u" mode "_s +
                    QString::number(module.session.LoanFormMode);
        w->cmdExit->click();
        return 0;
    });
    FormHRLoan& editor = module.Window<FormHRLoan>();
    ASSERT_TRUE(editor.ViewPRSLoansInfo(2));
    editor.cmdBalance->click();
    EXPECT_EQ(inList, 1);
    EXPECT_EQ(afterList, u"123 mode 1"_s);
    EXPECT_EQ(module.session.LoanEditStarted, 0);
    EXPECT_EQ(module.session.LoanFormMode, 0);
}
