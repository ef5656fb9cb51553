#pragma once

// Loans that are each a function of a number, so that what a database holds after a crash
// matches exactly one version: its header, its code and every member row.

#include "loan_editor/LoanSave.h"

namespace kav::reliability {

// Version v of the large loan: notes "v<v>", final on odd versions, temporary on even ones;
// the guarantors of its `members` rows change from one version to the next.
loan_save::LoanRecord LargeLoanVersion(qint64 version, int members);
// The j-th new final loan, notes "n<j>", 40 members among `employees`.
loan_save::LoanRecord NewLoan(qint64 j, int employees);
// A client's i-th final loan, notes "TAG:i", members TAG*1000 + 0..members-1.
loan_save::LoanRecord TaggedLoan(int tag, int i, int members);

}  // namespace kav::reliability
