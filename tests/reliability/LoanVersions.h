#pragma once

// The loans the reliability tests save, each a function of a number, so that what a database
// holds after a crash can be checked against exactly one version: a loan is wholly one
// version (its header, its code and every member row with its guarantors) or it is wrong.

#include <QSqlDatabase>
#include <QString>

#include "loan_editor/LoanSave.h"

namespace kav::reliability {

// Members of each new loan the crash test's client stores besides the large one.
inline constexpr int NewLoanMembers = 40;

// Version v of the large loan: notes "v<v>", final on odd versions and temporary on even
// ones, `members` member rows whose guarantors all change from one version to the next.
loan_save::LoanRecord LargeLoanVersion(qint64 version, int members);
// The version of the large loan that notes name ("v12" -> 12); 0 for anything else.
qint64 VersionOf(const QString& notes);

// The j-th new final loan (notes "n<j>") with NewLoanMembers members chosen among
// `employees` employees.
loan_save::LoanRecord NewLoan(qint64 j, int employees);

// The i-th new final loan of a client (notes "TAG:i"), its members TAG*1000 + 0..members-1.
loan_save::LoanRecord TaggedLoan(int tag, int i, int members);

// How the stored loan `id` differs from the record: the empty text when its header (notes,
// amounts, count, remainder option, temporary or final) and its member rows, in order, are
// exactly the record's.
QString LoanDifference(QSqlDatabase db, qint64 id, const loan_save::LoanRecord& expected);

}  // namespace kav::reliability
