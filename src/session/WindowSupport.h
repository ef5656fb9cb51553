#pragma once

// What every window of the module shares: the mode table that decides which controls are
// enabled or locked, the handler boundary around event handlers and menu items, showing a
// shared window modally and letting it go when it unloaded itself, the classic key codes,
// the busy pointer, and the focus rule that a message box opening is not the clerk leaving
// a field.

#include <QDialog>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "session/BusyPointer.h"
#include "session/Handler.h"
#include "session/Module.h"

class QAbstractButton;
class QAction;
class QFocusEvent;
class QKeyEvent;
class QWidget;

namespace kav {

// ---- Mode tables ----

namespace modes {

enum class Kind {
    Enable,  // enabled or disabled
    Lock,    // locked (read-only, not greyed) or open
};

enum class State {
    On,
    Off,
    Unchanged,
    Locked,
    Open,
    OnIfTemporary,  // on when the loan code is empty
    OnIfFinal,      // on when the loan code, trimmed, is not empty
};

struct Rule {
    QStringList controls;  // object names of the window's controls and menu items
    Kind kind;
    std::array<State, 4> byMode;  // modes 0 view, 1 edit, 2 new, 3 empty
};
using Table = std::vector<Rule>;

// The value a state gives a control: enabled (Enable) or locked (Lock), or nothing to leave
// it as it is. Locked and Open mean nothing to an Enable rule, On and Off nothing to a
// Lock rule.
std::optional<bool> Resolve(Kind kind, State state, const QString& loanCode);

// Applies the column of `mode` (0-3) to the window's controls, found by object name: an
// action or widget is enabled or disabled; a widget with a "locked" property is locked,
// a line edit made read-only. A mode outside 0-3 changes nothing. A name the window does
// not hold raises KavError (Usage): a table and its window must agree.
void Apply(QWidget& window, const Table& table, qint32 mode, const QString& loanCode = {});

}  // namespace modes

// ---- Windows ----

// A window of the module: a dialog the module shows modally as its single shared instance.
// Closing it (close box, Escape or its exit command) first asks QueryUnload, inside the
// handler boundary; when that agrees, the window is unloaded and the next use makes a new
// one (see ShowShared). Each time it is shown Tab follows its reading order; the first time,
// it takes the size and column widths it had when last hidden, and hiding it keeps them
// (when the module remembers windows).
class ModuleWindow : public QDialog {
    Q_OBJECT
public:
    explicit ModuleWindow(Module& module, QWidget* parent = nullptr);
    ~ModuleWindow() override;

    Module& module() const { return module_; }
    // True once the window has been closed; its owner then lets it go.
    bool IsUnloaded() const { return unloaded_; }

    // A slot that runs a handler of the window inside the handler boundary.
    template <class W>
    auto Guarded(void (W::*handler)()) {
        W* self = static_cast<W*>(this);
        return [this, self, handler] { RunHandler(module_, [&] { (self->*handler)(); }); };
    }
    // Runs any callable inside the handler boundary; false when it raised.
    template <class F>
    bool Guard(F&& f) {
        return RunHandler(module_, std::forward<F>(f));
    }
    // A menu item that clicks its button, and does nothing while the button is disabled.
    void ForwardMenu(QAction* item, QAbstractButton* button);

protected:
    // Asked before the window closes; false keeps it open.
    virtual bool QueryUnload() { return true; }
    // Enter on a focused push button presses that button: the module's buttons are not
    // auto-default, so the dialog would otherwise press its default button or let the window
    // act on Enter. True when it pressed one.
    bool PressFocusedButton(QKeyEvent& event);
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;  // Escape closes the way the close box does
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Module& module_;
    bool unloaded_ = false;
    bool shownBefore_ = false;
};

// Shows the module's shared window of type W modally and returns the dialog's result; when
// the window unloaded itself the module lets it go, so the next use makes a new one.
template <class W>
int ShowShared(Module& module) {
    W& window = module.Window<W>();
    const int result = module.ShowModal(window);
    if (window.IsUnloaded()) module.UnloadWindow<W>();
    return result;
}

// Gives a control the object name the window's mode table and tests find it by.
template <class W>
W* Named(W* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

// ---- Keys and focus ----

// The classic key code of a key (KeyDown): letters and digits their capital's code, 8
// backspace, 9 tab, 13 Enter, 27 Escape, 33-40 the paging and arrow keys, 45 Insert,
// 46 Delete, 112- the function keys; 0 for a key without one.
int KeyCodeOf(const QKeyEvent& event);
// The typed character of a key (KeyPress): 8 backspace, 13 Enter, 27 Escape, else the code
// of the printable character typed, Persian and Arabic-Indic digits as "0".."9"; 0 when the
// key types nothing (navigation, shortcuts with Ctrl or Alt).
int KeyAsciiOf(const QKeyEvent& event);
// The shift mask of a key: 1 Shift, 2 Ctrl, 4 Alt.
int ShiftOf(const QKeyEvent& event);

// True when a focus event is the clerk entering or leaving a field: not a popup opening or
// closing (a calendar, a list) and not the window losing or regaining activation (a message
// box or another program), so no lost-focus rule runs while a message is on screen.
bool IsFieldFocusChange(const QFocusEvent& event);

}  // namespace kav
