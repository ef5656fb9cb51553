#pragma once

// The loan sheet's pages (LoanSheet.h says what they hold): the members' list as a table under
// the loan's facts, then one page per borrower with his guarantors and the signature boxes.

#include "loan_editor/sheet/LoanSheet.h"
#include "session/PagedDocument.h"

namespace kav::sheet {

PagedDocument SheetDocument(const Content& content);

}  // namespace kav::sheet
