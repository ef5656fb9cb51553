#include "session/BusyPointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace kav {

BusyPointer::BusyPointer() : active_(qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
    if (active_) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer() {
    if (active_) QGuiApplication::restoreOverrideCursor();
}

}  // namespace kav
