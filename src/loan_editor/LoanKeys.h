#pragma once

// The loan window's keys and Tab stops: which button or Tools menu entry answers which
// command key (session/CommandKeys.h), the keys beside the menu's entries, and the boxes the
// clerk never types into left out of Tab, so that Tab starts at the loan type.

namespace kav {
class FormHRLoan;
}

namespace kav::loan_keys {

// Wires the keys; runs once the Tools menu holds all its entries.
void AttachToEditor(FormHRLoan& editor);

}  // namespace kav::loan_keys
