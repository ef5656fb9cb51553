#pragma once

// Bringing a deleted loan back, without a widget. The loan as its Delete found it (the
// snapshot of the delete's history row) is saved again as a temporary loan with the same terms,
// members and guarantors, under the ID the database gives it; the adjustments the Delete left
// behind move to that ID; one history row records it (the loan it came from, before and
// after). All of it is one serialised transaction.

#include <QString>

#include "base/Errors.h"
#include "loan_editor/LoanSave.h"
#include "session/LoanHistory.h"

namespace kav {
class Connection;
}

namespace kav::history {

// A restore refused because the database no longer holds the loan as deleted: another clerk
// restored it already, or there is no delete on record.
class RestoreRefused : public KavError {
public:
    explicit RestoreRefused(const QString& text) : KavError(Kind::Database, text) {}
};

// The loan a snapshot describes, as the save writes it (temporary: no number).
loan_save::LoanRecord RecordOf(const QString& snapshotText);

// Restores the deleted loan and returns its new ID. Raises RestoreRefused (nothing written)
// when it was restored already or is stored, or when the history holds no delete of it; any
// failure rolls everything back.
qint32 RestoreLoan(Connection& cnt, qint32 deletedLoanId, const Actor& actor);

}  // namespace kav::history
