#include "loan_editor/history/FormDeletedLoans.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "controls/GridDocument.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/history/HistoryTexts.h"
#include "loan_editor/history/HistoryWords.h"
#include "loan_editor/history/LoanRestore.h"
#include "session/CommandKeys.h"
#include "session/Printing.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace X = history::texts;

FormDeletedLoans::FormDeletedLoans(Module& module, FormHRLoan& editor)
    : ModuleWindow(module, &editor), editor_(editor) {
    setObjectName(u"FormDeletedLoans"_s);
    buildControls();
    connect(cmdRestore, &QPushButton::clicked, this, Guarded(&FormDeletedLoans::cmdRestore_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormDeletedLoans::cmdExit_Click));
    connect(cmdPrint, &QPushButton::clicked, this, Guarded(&FormDeletedLoans::cmdPrint_Click));
    keys::Bind(*this,
               {{keys::Command::BackToTemporary, cmdRestore}, {keys::Command::Print, cmdPrint}});
}

void FormDeletedLoans::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(X::DeletedLoansCaption);
    const int columns = int(std::size(X::DeletedHeaders));
    grdDeleted = Named(new QTableWidget(0, columns, this), u"grdDeleted"_s);
    QStringList headers;
    for (const QString& h : X::DeletedHeaders) headers << h;
    grdDeleted->setHorizontalHeaderLabels(headers);
    grdDeleted->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdDeleted->setSelectionMode(QAbstractItemView::SingleSelection);
    grdDeleted->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdDeleted->verticalHeader()->hide();
    grdDeleted->horizontalHeader()->setStretchLastSection(true);
    for (int c = 0; c < columns; ++c) grdDeleted->setColumnWidth(c, c == 2 || c == 4 ? 170 : 110);
    cmdRestore = Named(new QPushButton(X::CaptionRestore, this), u"cmdRestore"_s);
    cmdExit = Named(new QPushButton(editor_texts::CaptionExit, this), u"cmdExit"_s);
    cmdPrint = Named(new QPushButton(X::CaptionPrint, this), u"cmdPrint"_s);
    for (QPushButton* b : {cmdPrint, cmdRestore, cmdExit}) b->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdRestore);
    buttons->addWidget(cmdPrint);
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grdDeleted, 1);
    layout->addLayout(buttons);
    resize(840, 420);
}

void FormDeletedLoans::Fill() {
    Connection& cnt = module().DtEn().cnt();
    loans_ = history::ReadDeletedLoans(cnt);
    const QHash<qint64, QString> types = history::ReadLoanTypes(cnt);
    grdDeleted->setRowCount(0);
    grdDeleted->setRowCount(int(loans_.size()));
    for (int r = 0; r < loans_.size(); ++r) {
        const history::DeletedLoan& d = loans_[r];
        const QStringList texts = {
            QString::number(d.loanId),
            d.lastCode ? QString::number(*d.lastCode) : QString(),
            d.typeId ? types.value(*d.typeId, QString::number(*d.typeId)) : QString(),
            QString::number(d.memberCount),
            history::words::Who(d.employeeName, d.userId),
            history::words::When(d.atUtc)};
        for (int c = 0; c < texts.size(); ++c) {
            auto* item = new QTableWidgetItem(texts[c]);
            item->setTextAlignment(Qt::AlignCenter);
            grdDeleted->setItem(r, c, item);
        }
    }
    if (!loans_.isEmpty()) grdDeleted->setCurrentCell(0, 0);
    cmdRestore->setEnabled(!loans_.isEmpty());
}

QStringList FormDeletedLoans::RowTexts(int row) const {
    QStringList texts;
    for (int c = 0; c < grdDeleted->columnCount(); ++c)
        texts << (grdDeleted->item(row, c) ? grdDeleted->item(row, c)->text() : QString());
    return texts;
}

void FormDeletedLoans::cmdRestore_Click() {
    const int row = grdDeleted->currentRow();
    if (row < 0 || row >= loans_.size()) return;
    const qint32 mode = module().session.LoanFormMode;
    if (mode != ModeView && mode != ModeEmpty) {
        module().ShowMessage(WarningTitle(), X::RestoreOnlyInViewOrEmpty);
        return;
    }
    if (!module().HasPermission(PermissionNewOrDeleteLoan)) {
        module().ShowRoleRefusal();
        return;
    }
    const history::DeletedLoan loan = loans_[row];
    if (module().AskQuestion(X::RestoreTitle,
                             X::RestoreQuestion.arg(loan.loanId).arg(loan.memberCount)) !=
        AnswerYes)
        return;
    qint32 id = -1;
    try {
        BusyPointer busy;
        id = history::RestoreLoan(module().DtEn().cnt(), loan.loanId,
                                  history::ActorOf(module().session));
    } catch (const history::RestoreRefused& e) {
        module().ShowMessage(WarningTitle(), e.message());
        Fill();
        return;
    }
    editor_.ViewPRSLoansInfo(id);
    editor_.stbLoan->ShowNotice(X::Restored.arg(loan.loanId).arg(id));
    close();
}

void FormDeletedLoans::cmdExit_Click() { close(); }

void FormDeletedLoans::cmdPrint_Click() {
    PrintDocument(module(), this,
                  TablePages(controls::GridDocument(*grdDeleted, windowTitle(), {})));
}

}  // namespace kav
