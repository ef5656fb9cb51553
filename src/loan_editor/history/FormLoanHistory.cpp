#include "loan_editor/history/FormLoanHistory.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QTableWidget>
#include <QVBoxLayout>

#include "controls/FlexGrid.h"
#include "controls/GridDocument.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanMembers.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/history/HistoryTexts.h"
#include "loan_editor/history/HistoryWords.h"
#include "session/CommandKeys.h"
#include "session/Printing.h"
#include "session/TextProcs.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace X = history::texts;
namespace snapshot = data::snapshot;

FormLoanHistory::FormLoanHistory(Module& module, FormHRLoan& editor, qint32 loanId)
    : ModuleWindow(module, &editor), editor_(editor), loanId_(loanId) {
    setObjectName(u"FormLoanHistory"_s);
    buildControls();
    connect(cmdPutBack, &QPushButton::clicked, this, Guarded(&FormLoanHistory::cmdPutBack_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormLoanHistory::cmdExit_Click));
    connect(cmdPrint, &QPushButton::clicked, this, Guarded(&FormLoanHistory::cmdPrint_Click));
    keys::Bind(*this, {{keys::Command::AddMember, cmdPutBack}, {keys::Command::Print, cmdPrint}});
    connect(grdHistory, &QTableWidget::currentCellChanged, this, [this] { updatePutBack(); });
    // The rows grow to their differences at the width the columns have.
    connect(grdHistory->horizontalHeader(), &QHeaderView::sectionResized, grdHistory,
            &QTableWidget::resizeRowsToContents);
}

void FormLoanHistory::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(X::HistoryCaption);
    lblLoan = Named(new QLabel(this), u"lblLoan"_s);
    QFont bold = lblLoan->font();
    bold.setBold(true);
    lblLoan->setFont(bold);
    grdHistory = Named(new QTableWidget(0, 4, this), u"grdHistory"_s);
    grdHistory->setHorizontalHeaderLabels(
        {X::HistoryHeaders[0], X::HistoryHeaders[1], X::HistoryHeaders[2], X::HistoryHeaders[3]});
    grdHistory->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdHistory->setSelectionMode(QAbstractItemView::SingleSelection);
    grdHistory->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdHistory->setWordWrap(true);
    grdHistory->verticalHeader()->hide();
    grdHistory->horizontalHeader()->setStretchLastSection(true);
    grdHistory->setColumnWidth(0, 130);
    grdHistory->setColumnWidth(1, 150);
    grdHistory->setColumnWidth(2, 200);
    cmdPutBack = Named(new QPushButton(X::CaptionPutBack, this), u"cmdPutBack"_s);
    cmdExit = Named(new QPushButton(editor_texts::CaptionExit, this), u"cmdExit"_s);
    cmdPrint = Named(new QPushButton(X::CaptionPrint, this), u"cmdPrint"_s);
    for (QPushButton* b : {cmdPrint, cmdPutBack, cmdExit}) b->setAutoDefault(false);
    cmdPutBack->setEnabled(false);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdPutBack);
    buttons->addWidget(cmdPrint);
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblLoan);
    layout->addWidget(grdHistory, 1);
    layout->addLayout(buttons);
    resize(980, 560);
}

void FormLoanHistory::Fill() {
    Connection& cnt = module().DtEn().cnt();
    entries_ = history::ReadHistory(cnt, loanId_);
    const history::Names names = history::ReadNames(cnt, entries_);
    lblLoan->setText(X::HistoryCaption + u": "_s + LoanName(loanId_, editor_.txtCode->text()) +
                     (entries_.isEmpty() ? u" - "_s + X::NoHistory : QString()));
    grdHistory->setRowCount(0);
    grdHistory->setRowCount(int(entries_.size()));
    for (int r = 0; r < entries_.size(); ++r) {
        const history::HistoryEntry& e = entries_[r];
        const QStringList texts = {
            history::words::When(e.atUtc), history::words::Who(e.employeeName, e.userId),
            history::words::What(e),
            history::words::Differences(e.before, e.after, names).join(u'\n')};
        for (int c = 0; c < texts.size(); ++c) {
            auto* item = new QTableWidgetItem(texts[c]);
            item->setTextAlignment(Qt::AlignRight | Qt::AlignTop);
            grdHistory->setItem(r, c, item);
        }
    }
    grdHistory->resizeRowsToContents();
    if (!entries_.isEmpty()) grdHistory->setCurrentCell(0, 0);
    updatePutBack();
}

QStringList FormLoanHistory::RowTexts(int row) const {
    QStringList texts;
    for (int c = 0; c < grdHistory->columnCount(); ++c)
        texts << (grdHistory->item(row, c) ? grdHistory->item(row, c)->text() : QString());
    return texts;
}

QList<snapshot::Member> FormLoanHistory::missingMembers() const {
    const int row = grdHistory->currentRow();
    if (row < 0 || row >= entries_.size()) return {};
    QSet<qint64> inGrid;
    for (int r = 1; r < editor_.FlexEmployee->Rows(); ++r)
        inGrid.insert(qint64(
            vb::Val(LatinDigits(editor_.FlexEmployee->TextMatrix(r, members::EmployeeIdColumn)))));
    QList<snapshot::Member> missing;
    for (const snapshot::Member& m :
         history::words::RemovedMembers(entries_[row].before, entries_[row].after))
        if (!inGrid.contains(m.employeeId)) missing << m;
    return missing;
}

void FormLoanHistory::updatePutBack() {
    cmdPutBack->setEnabled(module().session.LoanFormMode == ModeEdit &&
                           editor_.txtID->text().trimmed() == QString::number(loanId_) &&
                           !missingMembers().isEmpty());
}

void FormLoanHistory::cmdPutBack_Click() {
    if (module().session.LoanFormMode != ModeEdit) return;
    const data::SqlDialect& dialect = module().DtEn().Dialect();
    QStringList names;
    for (const snapshot::Member& m : missingMembers()) {
        // Every query runs before the grid changes, as when the clerk picks a member.
        Recordset rs = module().DtEn().NewRecordset();
        rs.Open(loan_sql::EmployeeRow(dialect, qint32(m.employeeId)));
        if (rs.RecordCount() == 0) continue;  // an employee no longer on file adds nothing
        members::Guarantors g;
        for (std::size_t i = 0; i < 3; ++i) {
            if (!m.guarantors[i]) continue;
            g.ids[i] = qint32(*m.guarantors[i]);
            Recordset guarantor = module().DtEn().NewRecordset();
            guarantor.Open(loan_sql::EmployeeRow(dialect, g.ids[i]));
            if (guarantor.RecordCount() > 0)
                g.names[i] = FieldText(guarantor.Fields(u"EmployeeName"_s));
        }
        controls::FlexGrid& grid = *editor_.FlexEmployee;
        grid.AddItem();
        const int r = grid.Rows() - 1;
        const QStringList cells = members::PickedRow(rs, g, r);
        for (int c = 0; c < cells.size(); ++c) grid.setTextMatrix(r, c, cells[c]);
        names << FieldText(rs.Fields(u"EmployeeName"_s));
    }
    if (!names.isEmpty()) editor_.stbLoan->ShowNotice(X::MemberPutBack.arg(names.join(u"، "_s)));
    updatePutBack();
}

void FormLoanHistory::cmdExit_Click() { close(); }

void FormLoanHistory::cmdPrint_Click() {
    PrintDocument(
        module(), this,
        TablePages(controls::GridDocument(*grdHistory, windowTitle(), {lblLoan->text()})));
}

}  // namespace kav
