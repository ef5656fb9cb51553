#pragma once

// The keys of the windows' commands: one table, the same key for the same command in every
// window. Function keys, Insert and Delete, because letter shortcuts do not work while a
// Persian keyboard layout is active. A window says which of its buttons (or menu entries)
// answers which command; the key then does exactly what a click does, through the button's
// own handler, and nothing while the button is disabled or hidden. Escape is not here: it
// keeps closing or cancelling as each window already does.

#include <QKeySequence>
#include <QString>
#include <functional>
#include <initializer_list>
#include <span>
#include <utility>

class QAbstractButton;
class QAction;
class QWidget;

namespace kav::keys {

enum class Command {
    New,                  // F2
    Edit,                 // F3
    Save,                 // F5: the temporary save, a window's only save, the picker's OK
    FinalSave,            // F6
    BackToTemporary,      // F7: back to temporary, and a deleted loan back as temporary
    Delete,               // F8
    Search,               // F9: opens the search, or runs it in a search or list window
    Tools,                // F10: the loan window's Tools menu
    Balance,              // F11
    Print,                // F12
    AddMember,            // Insert
    AddOrdinanceMembers,  // Alt+Insert
    RemoveMember,         // Ctrl+Delete
    Export,               // Ctrl+F4: save to a file (CSV)
    ExportPdf,            // Ctrl+Shift+F4: save as PDF
};

struct CommandKey {
    Command command;
    QKeyCombination key;
};

// The one table of keys, in the order the README lists them.
std::span<const CommandKey> Table();
QKeySequence KeyOf(Command command);
// The key as the tooltips and the menus show it.
QString KeyText(Command command);
// A button's tooltip: its caption and its key in parentheses, e.g. "ثبت موقت (F5)".
QString ToolTip(const QString& caption, Command command);

// Buttons of the window that answer commands: while the window is the active one, the
// command's key clicks the button (its clicked() runs its guarded handler, as a mouse click
// does) when the button is enabled and shown, and does nothing otherwise. Each tooltip says
// the key.
void Bind(QWidget& window, std::initializer_list<std::pair<Command, QAbstractButton*>> buttons);
// A menu entry that answers a command of the window: the key stands beside it in the menu and
// triggers it while it is enabled. `refresh` runs first, to bring the entry's state up to
// date as opening its menu would.
void Bind(QWidget& window, Command command, QAction& entry,
          const std::function<void()>& refresh = {});
// Only shows the key beside a menu entry whose button already answers it (the entry itself
// never takes the key, so key and button cannot compete).
void ShowKey(QAction& entry, Command command);

}  // namespace kav::keys
