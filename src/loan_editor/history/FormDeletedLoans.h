#pragma once

// The deleted loans: each loan Delete removed and nobody has restored yet (its ID, the last
// number it had, its type, how many members, who deleted it and when). A user who may create
// and delete loans (111802) brings one back after a question, while the loan window shows a
// loan or nothing: a temporary loan with the same terms, members and guarantors under a new
// ID, with the adjustments the Delete left behind; the loan window then shows it.

#include <QList>

#include "loan_editor/history/HistoryRead.h"
#include "session/WindowSupport.h"

class QPushButton;
class QTableWidget;

namespace kav {
class FormHRLoan;

class FormDeletedLoans : public ModuleWindow {
    Q_OBJECT
public:
    FormDeletedLoans(Module& module, FormHRLoan& editor);

    void Fill();
    void cmdRestore_Click();
    void cmdExit_Click();
    void cmdPrint_Click();

    const QList<history::DeletedLoan>& Loans() const { return loans_; }
    // The grid's texts of a row, in the order of its columns.
    QStringList RowTexts(int row) const;

    QTableWidget* grdDeleted;
    QPushButton* cmdRestore;
    QPushButton* cmdExit;
    QPushButton* cmdPrint;

private:
    void buildControls();

    FormHRLoan& editor_;
    QList<history::DeletedLoan> loans_;
};

}  // namespace kav
