#pragma once

// The history window "تاريخچه وام" of the loan the loan window shows: one row per change,
// newest first (who, when, what, and the differences in words); a restored loan shows the
// history of the loan it came from too. While the loan window edits the loan, a member a row
// removed can be put back into its member grid, as a picked member is: the next save writes it.

#include <QList>

#include "data/LoanSnapshot.h"
#include "loan_editor/history/HistoryRead.h"
#include "session/WindowSupport.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace kav {
class FormHRLoan;

class FormLoanHistory : public ModuleWindow {
    Q_OBJECT
public:
    FormLoanHistory(Module& module, FormHRLoan& editor, qint32 loanId);

    // Reads the loan's history and fills the grid.
    void Fill();
    // Puts the members the selected row removed back into the loan window's grid.
    void cmdPutBack_Click();
    void cmdExit_Click();
    void cmdPrint_Click();

    const QList<history::HistoryEntry>& Entries() const { return entries_; }
    // The grid's texts of a row: when, who, what, the differences (lines joined by "\n").
    QStringList RowTexts(int row) const;

    QLabel* lblLoan;
    QTableWidget* grdHistory;
    QPushButton* cmdPutBack;
    QPushButton* cmdExit;
    QPushButton* cmdPrint;

private:
    void buildControls();
    // The members of the selected row that it removed and the loan window's grid lacks.
    QList<data::snapshot::Member> missingMembers() const;
    void updatePutBack();

    FormHRLoan& editor_;
    qint32 loanId_;
    QList<history::HistoryEntry> entries_;
};

}  // namespace kav
