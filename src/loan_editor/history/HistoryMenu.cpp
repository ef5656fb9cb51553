#include "loan_editor/history/HistoryMenu.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>

#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/history/FormDeletedLoans.h"
#include "loan_editor/history/FormLoanHistory.h"
#include "loan_editor/history/HistoryTexts.h"
#include "session/LoanHistory.h"
#include "session/Module.h"

using namespace Qt::StringLiterals;

namespace kav::history {

namespace {

bool kept(FormHRLoan& editor) {
    try {
        return IsKept(editor.module().DtEn().cnt());
    } catch (...) {
        return false;  // a database that cannot say keeps no history the windows could show
    }
}

QAction* entry(FormHRLoan& editor, const QString& name) {
    return editor.mnuTool->findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

}  // namespace

void AttachToEditor(FormHRLoan& editor) {
    editor.mnuTool->addSeparator();
    QAction* history = editor.mnuTool->addAction(texts::HistoryCaption);
    history->setObjectName(u"mnuHistory"_s);
    QAction* deleted = editor.mnuTool->addAction(texts::DeletedLoansCaption);
    deleted->setObjectName(u"mnuDeletedLoans"_s);
    QObject::connect(editor.mnuTool, &QMenu::aboutToShow, &editor,
                     [&editor] { UpdateMenu(editor); });
    QObject::connect(history, &QAction::triggered, &editor,
                     [&editor] { editor.Guard([&] { ShowHistory(editor); }); });
    QObject::connect(deleted, &QAction::triggered, &editor,
                     [&editor] { editor.Guard([&] { ShowDeletedLoans(editor); }); });
    UpdateMenu(editor);
    if (!kept(editor)) editor.stbLoan->ShowNotice(texts::NoHistoryKept);
}

void UpdateMenu(FormHRLoan& editor) {
    const qint32 mode = editor.module().session.LoanFormMode;
    const bool shown = !editor.txtID->text().trimmed().isEmpty();
    const bool history = (mode == ModeView || mode == ModeEdit) && shown;
    const bool deleted = mode == ModeView || mode == ModeEmpty;
    const bool table = (history || deleted) && kept(editor);
    entry(editor, u"mnuHistory"_s)->setEnabled(history && table);
    entry(editor, u"mnuDeletedLoans"_s)->setEnabled(deleted && table);
}

void ShowHistory(FormHRLoan& editor) {
    UpdateMenu(editor);
    if (!entry(editor, u"mnuHistory"_s)->isEnabled()) return;
    Module& module = editor.module();
    FormLoanHistory window(module, editor, qint32(vb::Val(editor.txtID->text())));
    window.Fill();
    module.ShowModal(window);
}

void ShowDeletedLoans(FormHRLoan& editor) {
    UpdateMenu(editor);
    if (!entry(editor, u"mnuDeletedLoans"_s)->isEnabled()) return;
    Module& module = editor.module();
    FormDeletedLoans window(module, editor);
    window.Fill();
    module.ShowModal(window);
}

}  // namespace kav::history
