#pragma once

// While the module starts (an entry call opens the database and checks it, the loan window
// reads what it shows), another client holding the database makes the start wait, up to the
// lock wait. Meanwhile a small Persian notice says so, so the clerk knows why no window has
// opened yet; it goes when the start is over, before any other window or message.

#include <QString>
#include <memory>

class QLabel;

namespace kav {

class Module;

class LockWaitNotice {
public:
    explicit LockWaitNotice(Module& module);
    ~LockWaitNotice();
    LockWaitNotice(const LockWaitNotice&) = delete;
    LockWaitNotice& operator=(const LockWaitNotice&) = delete;

    // The start is over: the notice goes and later waits show nothing.
    void Dismiss();

    // The notice while it is shown, else nullptr.
    QLabel* Window() const { return window_.get(); }
    static QString Text();

private:
    void waiting();

    Module& module_;
    bool active_ = true;
    std::unique_ptr<QLabel> window_;
};

}  // namespace kav
