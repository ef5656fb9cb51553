#include "session/WindowSupport.h"

#include <QAbstractButton>
#include <QAction>
#include <QCloseEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QVariant>

#include "base/Errors.h"
#include "session/ReadingOrder.h"
#include "session/TextProcs.h"
#include "session/WindowMemory.h"

using namespace Qt::StringLiterals;

namespace kav {

// ---- Mode tables ----

namespace modes {

std::optional<bool> Resolve(Kind kind, State state, const QString& loanCode) {
    switch (state) {
        case State::On:
            return kind == Kind::Enable ? std::optional<bool>(true) : std::nullopt;
        case State::Off:
            return kind == Kind::Enable ? std::optional<bool>(false) : std::nullopt;
        case State::OnIfTemporary:
            return kind == Kind::Enable ? std::optional<bool>(loanCode.isEmpty()) : std::nullopt;
        case State::OnIfFinal:
            return kind == Kind::Enable ? std::optional<bool>(!loanCode.trimmed().isEmpty())
                                        : std::nullopt;
        case State::Locked:
            return kind == Kind::Lock ? std::optional<bool>(true) : std::nullopt;
        case State::Open:
            return kind == Kind::Lock ? std::optional<bool>(false) : std::nullopt;
        case State::Unchanged:
            return std::nullopt;
    }
    return std::nullopt;
}

void Apply(QWidget& window, const Table& table, qint32 mode, const QString& loanCode) {
    if (mode < 0 || mode > 3) return;
    for (const Rule& rule : table) {
        const std::optional<bool> value = Resolve(rule.kind, rule.byMode[std::size_t(mode)], loanCode);
        for (const QString& name : rule.controls) {
            QObject* target = window.findChild<QObject*>(name);
            if (!target)
                throw KavError(KavError::Kind::Usage,
                               u"كنترل «%1» در پنجره «%2» وجود ندارد."_s.arg(name, window.objectName()));
            if (!value) continue;
            if (rule.kind == Kind::Enable) {
                if (auto* action = qobject_cast<QAction*>(target))
                    action->setEnabled(*value);
                else if (auto* widget = qobject_cast<QWidget*>(target))
                    widget->setEnabled(*value);
            } else if (target->metaObject()->indexOfProperty("locked") >= 0) {
                target->setProperty("locked", *value);
            } else if (auto* edit = qobject_cast<QLineEdit*>(target)) {
                edit->setReadOnly(*value);
            }
        }
    }
}

}  // namespace modes

// ---- Windows ----

ModuleWindow::ModuleWindow(Module& module, QWidget* parent) : QDialog(parent), module_(module) {
    setModal(true);
}

ModuleWindow::~ModuleWindow() {
    // Destroying the children moves the focus; no handler may run on a window that is
    // being destroyed.
    for (QObject* child : findChildren<QObject*>()) QObject::disconnect(child, nullptr, this, nullptr);
}

void ModuleWindow::ForwardMenu(QAction* item, QAbstractButton* button) {
    connect(item, &QAction::triggered, this, [button] {
        if (button->isEnabled()) button->click();
    });
}

void ModuleWindow::closeEvent(QCloseEvent* event) {
    bool close = true;
    RunHandler(module_, [&] { close = QueryUnload(); });
    if (!close) {
        event->ignore();
        return;
    }
    event->accept();
    unloaded_ = true;
    QDialog::done(QDialog::Rejected);
}

void ModuleWindow::reject() { close(); }

bool ModuleWindow::PressFocusedButton(QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (!button || !button->isEnabled() || !button->isVisible()) return false;
    event.accept();
    button->click();
    return true;
}

void ModuleWindow::keyPressEvent(QKeyEvent* event) {
    if (!PressFocusedButton(*event)) QDialog::keyPressEvent(event);
}

void ModuleWindow::showEvent(QShowEvent* event) {
    // The size first: a dialog centres itself with the size it has when shown.
    if (!shownBefore_ && !event->spontaneous() && module_.RemembersWindows()) {
        QSettings settings;
        window_memory::Restore(*this, settings);
    }
    shownBefore_ = true;
    ApplyReadingOrder(*this);
    QDialog::showEvent(event);
    unloaded_ = false;
}

void ModuleWindow::hideEvent(QHideEvent* event) {
    if (!event->spontaneous() && module_.RemembersWindows()) {
        QSettings settings;
        window_memory::Remember(*this, settings);
    }
    QDialog::hideEvent(event);
}

// ---- Keys and focus ----

int KeyCodeOf(const QKeyEvent& e) {
    const int k = e.key();
    if ((k >= Qt::Key_A && k <= Qt::Key_Z) || (k >= Qt::Key_0 && k <= Qt::Key_9)) return k;
    if (k >= Qt::Key_F1 && k <= Qt::Key_F24) return 112 + (k - Qt::Key_F1);
    switch (k) {
        case Qt::Key_Backspace:
            return 8;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return 9;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Shift:
            return 16;
        case Qt::Key_Control:
            return 17;
        case Qt::Key_Alt:
            return 18;
        case Qt::Key_Escape:
            return 27;
        case Qt::Key_Space:
            return 32;
        case Qt::Key_PageUp:
            return 33;
        case Qt::Key_PageDown:
            return 34;
        case Qt::Key_End:
            return 35;
        case Qt::Key_Home:
            return 36;
        case Qt::Key_Left:
            return 37;
        case Qt::Key_Up:
            return 38;
        case Qt::Key_Right:
            return 39;
        case Qt::Key_Down:
            return 40;
        case Qt::Key_Insert:
            return 45;
        case Qt::Key_Delete:
            return 46;
        default:
            return 0;
    }
}

int KeyAsciiOf(const QKeyEvent& e) {
    switch (e.key()) {
        case Qt::Key_Backspace:
            return 8;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Escape:
            return 27;
        default:
            break;
    }
    if (e.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return 0;
    const QString text = LatinDigits(e.text());
    if (text.size() != 1 || !text[0].isPrint()) return 0;
    return text[0].unicode();
}

int ShiftOf(const QKeyEvent& e) {
    int shift = 0;
    if (e.modifiers() & Qt::ShiftModifier) shift |= 1;
    if (e.modifiers() & Qt::ControlModifier) shift |= 2;
    if (e.modifiers() & Qt::AltModifier) shift |= 4;
    return shift;
}

bool IsFieldFocusChange(const QFocusEvent& event) {
    return event.reason() != Qt::PopupFocusReason && event.reason() != Qt::ActiveWindowFocusReason;
}

}  // namespace kav
