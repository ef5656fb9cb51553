#pragma once

// A large, believable loan database for measuring the module at the scale of a large
// payroll office: thousands of employees, tens of thousands of loans over twenty-five
// years, their members and guarantors, adjustments, payslip deductions and ordinances.
// The same seed and sizes always give the same database, row for row.

#include <QString>
#include <QtGlobal>

namespace kav::bench {

struct LargeDatabaseOptions {
    quint64 seed = 1;
    int employees = 5000;
    int loans = 25000;
    // Member rows of all loans together: every loan has 1 to 12 members, except one loan
    // with bigLoanMembers members.
    int memberRows = 100000;
    int bigLoanMembers = 1000;
    int adjustments = 20000;
    // Payslip rows (tblHRMonthlyPaiedLoan), among them longScheduleMonths consecutive months
    // of one member of a long housing loan.
    int payslipRows = 300000;
    int longScheduleMonths = 300;
    int ordinances = 10000;

    // Every count divided by factor (at least the smallest sizes that still make sense);
    // the long schedule keeps its length.
    LargeDatabaseOptions scaledDown(int factor) const;
};

// Where the measurements look: the loan with the most members (temporary, no payslip
// rows, so it can be edited and saved) and the member with the longest payslip history.
struct Landmarks {
    qint32 bigLoanId = -1;
    qint32 longScheduleLoanId = -1;
    qint32 longScheduleEmployeeId = -1;
};

// The system's working date in the generated database (parameter 3450): payslip rows run
// up to the month before it.
inline constexpr int WorkYear = 1403;
inline constexpr int WorkMonth = 7;

// Creates file (which must not exist yet) with the embedded schema and fills it in one
// transaction; the file keeps a write-ahead log (journal_mode WAL). Raises KavError (Usage) for sizes that cannot be met, (Database) when
// writing fails; a failed run leaves no file behind.
Landmarks CreateLargeDatabase(const QString& file, const LargeDatabaseOptions& options = {});

// Finds the landmarks in a database made by CreateLargeDatabase.
class RawDb;
Landmarks FindLandmarks(RawDb& db);

}  // namespace kav::bench
