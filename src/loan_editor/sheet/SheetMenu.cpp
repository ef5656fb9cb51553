#include "loan_editor/sheet/SheetMenu.h"

#include <QAction>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <optional>

#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/sheet/LoanSheet.h"
#include "loan_editor/sheet/SheetDocument.h"
#include "loan_editor/sheet/SheetTexts.h"
#include "session/BusyPointer.h"
#include "session/FileDialog.h"
#include "session/Module.h"
#include "session/Printing.h"

using namespace Qt::StringLiterals;

namespace kav::sheet {

namespace {

QAction* entry(FormHRLoan& editor, const QString& name) {
    return editor.mnuTool->findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

// The stored loan the window shows, or nothing when the entries are off.
std::optional<Loan> shownLoan(FormHRLoan& editor) {
    UpdateMenu(editor);
    if (!entry(editor, u"mnuPrintSheet"_s)->isEnabled()) return std::nullopt;
    return ReadLoan(editor.module().DtEn().cnt(), qint32(vb::Val(editor.txtID->text())));
}

}  // namespace

void AttachToEditor(FormHRLoan& editor) {
    editor.mnuTool->addSeparator();
    QAction* print = editor.mnuTool->addAction(texts::MenuPrint);
    print->setObjectName(u"mnuPrintSheet"_s);
    QAction* pdf = editor.mnuTool->addAction(texts::MenuSavePdf);
    pdf->setObjectName(u"mnuSaveSheetPdf"_s);
    QObject::connect(editor.mnuTool, &QMenu::aboutToShow, &editor,
                     [&editor] { UpdateMenu(editor); });
    QObject::connect(print, &QAction::triggered, &editor,
                     [&editor] { editor.Guard([&] { PrintSheet(editor); }); });
    QObject::connect(pdf, &QAction::triggered, &editor,
                     [&editor] { editor.Guard([&] { SaveSheetPdf(editor); }); });
    UpdateMenu(editor);
}

void UpdateMenu(FormHRLoan& editor) {
    const bool on = editor.module().session.LoanFormMode == ModeView &&
                    !editor.txtID->text().trimmed().isEmpty();
    entry(editor, u"mnuPrintSheet"_s)->setEnabled(on);
    entry(editor, u"mnuSaveSheetPdf"_s)->setEnabled(on);
}

void PrintSheet(FormHRLoan& editor) {
    const std::optional<Loan> loan = shownLoan(editor);
    if (!loan) return;
    Module& module = editor.module();
    PrintDocument(module, &editor, SheetDocument(ContentOf(*loan, module.session.SessionTitle)));
}

void SaveSheetPdf(FormHRLoan& editor) {
    const std::optional<Loan> loan = shownLoan(editor);
    if (!loan) return;
    Module& module = editor.module();
    const QString path = AskSaveFile(module, &editor, texts::SaveCaption,
                                     ProposedFileName(FileWords(*loan)), u"pdf"_s);
    if (path.isEmpty()) return;
    {
        BusyPointer busy;
        SaveDocumentPdf(module, path, SheetDocument(ContentOf(*loan, module.session.SessionTitle)));
    }
    // The path reads left to right inside the right-to-left line.
    editor.stbLoan->ShowNotice(
        texts::Saved.arg(QChar(0x2066) + QDir::toNativeSeparators(path) + QChar(0x2069)));
}

}  // namespace kav::sheet
