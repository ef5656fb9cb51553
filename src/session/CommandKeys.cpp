#include "session/CommandKeys.h"

#include <QAbstractButton>
#include <QAction>
#include <QShortcut>
#include <QWidget>
#include <array>

using namespace Qt::StringLiterals;

namespace kav::keys {

namespace {

constexpr std::array kTable = {
    CommandKey{Command::New, Qt::Key_F2},
    CommandKey{Command::Edit, Qt::Key_F3},
    CommandKey{Command::Save, Qt::Key_F5},
    CommandKey{Command::FinalSave, Qt::Key_F6},
    CommandKey{Command::BackToTemporary, Qt::Key_F7},
    CommandKey{Command::Delete, Qt::Key_F8},
    CommandKey{Command::Search, Qt::Key_F9},
    CommandKey{Command::Tools, Qt::Key_F10},
    CommandKey{Command::Balance, Qt::Key_F11},
    CommandKey{Command::Print, Qt::Key_F12},
    CommandKey{Command::AddMember, Qt::Key_Insert},
    CommandKey{Command::AddOrdinanceMembers, Qt::ALT | Qt::Key_Insert},
    CommandKey{Command::RemoveMember, Qt::CTRL | Qt::Key_Delete},
    CommandKey{Command::Export, Qt::CTRL | Qt::Key_F4},
    CommandKey{Command::ExportPdf, Qt::CTRL | Qt::SHIFT | Qt::Key_F4},
};

QShortcut* shortcut(QWidget& window, Command command) {
    auto* s = new QShortcut(KeyOf(command), &window);
    s->setContext(Qt::WindowShortcut);
    s->setAutoRepeat(false);  // a key held down saves once
    return s;
}

}  // namespace

std::span<const CommandKey> Table() { return kTable; }

QKeySequence KeyOf(Command command) {
    for (const CommandKey& k : kTable)
        if (k.command == command) return QKeySequence(k.key);
    return {};
}

QString KeyText(Command command) { return KeyOf(command).toString(QKeySequence::NativeText); }

QString ToolTip(const QString& caption, Command command) {
    // The key reads left to right inside the right-to-left text.
    return QString(caption).remove(u'&') + u" ("_s + QChar(0x2066) + KeyText(command) +
           QChar(0x2069) + u")"_s;
}

void Bind(QWidget& window, std::initializer_list<std::pair<Command, QAbstractButton*>> buttons) {
    for (const auto& [command, button] : buttons) {
        QObject::connect(shortcut(window, command), &QShortcut::activated, button, [b = button] {
            if (b->isEnabled() && b->isVisible()) b->click();
        });
        button->setToolTip(ToolTip(button->text(), command));
    }
}

void Bind(QWidget& window, Command command, QAction& entry, const std::function<void()>& refresh) {
    ShowKey(entry, command);
    QObject::connect(shortcut(window, command), &QShortcut::activated, &entry, [&entry, refresh] {
        if (refresh) refresh();
        if (entry.isEnabled()) entry.trigger();
    });
}

void ShowKey(QAction& entry, Command command) {
    entry.setShortcut(KeyOf(command));
    // The entry lives in a pop-up menu only: the key is the window's, never the menu's.
    entry.setShortcutContext(Qt::WidgetShortcut);
}

}  // namespace kav::keys
