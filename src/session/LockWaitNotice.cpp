#include "session/LockWaitNotice.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>

#include "data/SqlDialect.h"
#include "session/Module.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

LockWaitNotice::LockWaitNotice(Module& module) : module_(module) {
    module_.SetLockWaitHook([this] { waiting(); });
}

LockWaitNotice::~LockWaitNotice() { Dismiss(); }

void LockWaitNotice::Dismiss() {
    if (!active_) return;
    active_ = false;
    module_.SetLockWaitHook({});
    window_.reset();
}

QString LockWaitNotice::Text() {
    return u"پايگاه داده در اين لحظه در اختيار کاربر ديگري است؛ تا %1 ثانيه منتظر مي\u200Cمانيم…"_s
        .arg(data::SqlDialect::LockWaitMilliseconds / 1000);
}

void LockWaitNotice::waiting() {
    if (!active_ || !qobject_cast<QApplication*>(QCoreApplication::instance())) return;
    if (!window_) {
        window_ = std::make_unique<QLabel>(Text());
        window_->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        window_->setObjectName(u"LockWaitNotice"_s);
        ApplyPersianStyle(window_.get());
        window_->setFont(PersianFont(11));
        window_->setAlignment(Qt::AlignCenter);
        window_->setMargin(24);
        window_->setFrameStyle(QFrame::Box | QFrame::Plain);
        window_->adjustSize();
        if (const QScreen* screen = QGuiApplication::primaryScreen()) {
            const QRect area = screen->availableGeometry();
            window_->move(area.center() - window_->rect().center());
        }
        window_->show();
    }
    // The statement waits on this thread: the notice is painted now, and nothing the clerk
    // does reaches a window meanwhile.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace kav
