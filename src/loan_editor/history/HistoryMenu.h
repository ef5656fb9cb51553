#pragma once

// The history's place in the loan window: "تاريخچه وام" and "وام هاي حذف شده" after a
// separator in its Tools menu (mnuTool), and the one line in its status bar when the database
// keeps no history.

namespace kav {
class FormHRLoan;
}

namespace kav::history {

// Adds the two entries (mnuHistory, mnuDeletedLoans) and, when the database has no history
// table, says so in the status bar.
void AttachToEditor(FormHRLoan& editor);

// Enables the entries as the loan window allows: the history while it shows a stored loan in
// view or edit mode, the deleted loans in view or empty mode; both only with a history table.
// Runs whenever the Tools menu opens.
void UpdateMenu(FormHRLoan& editor);

// What the entries open: the history of the loan shown, and the deleted loans.
void ShowHistory(FormHRLoan& editor);
void ShowDeletedLoans(FormHRLoan& editor);

}  // namespace kav::history
