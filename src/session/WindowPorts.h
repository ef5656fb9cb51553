#pragma once

// The small interfaces through which windows call each other, so that no two window folders
// include each other: the loan editor serves LoanEditorPort to the search and adjustment
// windows; the adjustment and search windows serve their ports to the editor. Whoever
// assembles the module (the host control) says which window serves which port.

#include <QString>
#include <QtGlobal>

namespace kav {

// The loan editor as the other windows see it.
class LoanEditorPort {
public:
    virtual ~LoanEditorPort() = default;
    // Loads the loan with this id into the editor in view mode.
    virtual bool ViewPRSLoansInfo(qint32 loanId) = 0;
    // The editor's loan id box (txtID).
    virtual void SetLoanIdText(const QString& text) = 0;
    // 1 while the editor shows a stored loan (its txtID holds an id), else 0.
    virtual int StateValue() const = 0;
    // The displayed text of the editor's amount box (txtLoanValue).
    virtual QString LoanValueText() const = 0;
};

// The adjustment window as the editor's balance button opens it.
class AdjustmentPort {
public:
    virtual ~AdjustmentPort() = default;
    // Shows the adjustment window modally on a loan (the text of the editor's txtID) and,
    // when employeeId is not -1, on that member; returns when the window is closed.
    virtual void ShowBalance(const QString& loanIdText, qint32 employeeId) = 0;
};

// The search window as the editor's search button opens it.
class SearchPort {
public:
    virtual ~SearchPort() = default;
    // Shows the search window modally; returns when it is closed or hidden to open a loan.
    virtual void ShowSearch() = 0;
};

// The monthly deduction register as the editor's Tools menu opens it.
class DeductionsPort {
public:
    virtual ~DeductionsPort() = default;
    // Shows the register modally; returns when it is closed or hidden to open a loan.
    virtual void ShowDeductions() = 0;
};

}  // namespace kav
