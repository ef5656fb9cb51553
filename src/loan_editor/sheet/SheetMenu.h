#pragma once

// The loan sheet's place in the loan window: "چاپ برگه وام" (print with a preview) and
// "ذخيره برگه وام (PDF)" after a separator in its Tools menu (mnuTool), both enabled while the
// window shows a stored loan in view mode: the sheet is the loan as stored.

namespace kav {
class FormHRLoan;
}

namespace kav::sheet {

// Adds the two entries (mnuPrintSheet, mnuSaveSheetPdf).
void AttachToEditor(FormHRLoan& editor);

// Enables the entries as the loan window's mode allows; runs whenever the Tools menu opens.
void UpdateMenu(FormHRLoan& editor);

// What the entries do with the loan the window shows: print it with a preview, or save it as
// PDF through the save dialog (proposing the sheet's name with the loan's number and the date)
// and say so in the window's status bar.
void PrintSheet(FormHRLoan& editor);
void SaveSheetPdf(FormHRLoan& editor);

}  // namespace kav::sheet
