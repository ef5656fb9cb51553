#pragma once

// What each mode of the loan window enables, locks or leaves alone, as a table.

#include <QString>
#include <QStringList>
#include <array>
#include <optional>
#include <vector>

namespace kav::loan_modes {

enum class Kind {
    Enable,  // enabled or disabled
    Lock,    // read-only (locked) or open
};

enum class State {
    On,
    Off,
    OnIfTemporary,  // on when the loan code is empty
    OnIfFinal,      // on when the loan code, trimmed, is not empty
    Unchanged,
    Locked,
    Open,
};

struct Rule {
    QStringList controls;  // object names of the window's controls and menu items
    Kind kind;
    std::array<State, 4> byMode;  // view, edit, new, empty
};

const std::vector<Rule>& EditorTable();

// The window caption of a mode; empty for a mode outside 0-3.
QString EditorTitle(qint32 mode);

// What a state means for a loan with the given code text: the enabled (Enable) or locked
// (Lock) value to apply, or nothing to leave the control as it is.
std::optional<bool> Resolve(Kind kind, State state, const QString& loanCode);

}  // namespace kav::loan_modes
