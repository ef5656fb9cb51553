#pragma once

#include <QString>
#include <QtGlobal>
#include <array>

#include "data/Names.h"
#include "data/PayslipColumns.h"

namespace kav {

// The session variables the entry calls fill before any window opens, and the module-wide
// values the windows share. One set per module.
struct Session {
    qint16 SessionUserID = 0;
    qint16 SessionPositionID = 0;
    qint16 SessionEmployeeID = 0;
    QString SessionConnectionString;
    QString SessionTitle;
    QString SessionSearchTitle;

    // Mode of the loan editor (shared with the adjustment window).
    qint32 LoanFormMode = 3;
    // The id last passed to the editor's ViewPRSLoansInfo (32-bit, as every record id).
    qint32 CurrentLoanID = 0;
    // 1 while a loan or an adjustment is being edited; 2 set by the adjustment window
    // before it opens its list; otherwise 0.
    qint16 LoanEditStarted = 0;
    // The sort code last applied to each column (0-30) of the search window's results; 0 while
    // never sorted. Kept for the module's life: neither a new search nor closing the window
    // resets it.
    std::array<qint16, 31> SearchSortOrder{};
    // Set by the local yes/no dialog: 6 yes, 7 no.
    qint16 DialogAnswer = 0;

    // The payslip table's columns beyond the loan id, as this office's suite names them
    // (the entry calls read them from the host application's settings).
    data::PayslipColumns PayslipColumns;
};

// The modes of the loan editor and the adjustment window.
enum LoanMode : qint32 { ModeView = 0, ModeEdit = 1, ModeNew = 2, ModeEmpty = 3 };

using data::names::Permission;
using data::names::PermissionEditLoan;
using data::names::PermissionNewOrDeleteLoan;
using data::names::PermissionOpenModule;

}  // namespace kav
