#include "session/BusyPointer.h"

#include <QCursor>
#include <QGuiApplication>
#include <QThread>

namespace kav {

// Only the GUI thread owns the pointer: a statement run on another thread (a host's worker)
// leaves it alone.
BusyPointer::BusyPointer()
    : active_(qobject_cast<QGuiApplication*>(QCoreApplication::instance()) &&
              QThread::currentThread() == QCoreApplication::instance()->thread()) {
    if (active_) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer() {
    if (active_) QGuiApplication::restoreOverrideCursor();
}

}  // namespace kav
