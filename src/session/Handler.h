#pragma once

// The boundary of every event handler: whatever the handler raises is caught here and
// shown through ShowMessage titled "خطا"; nothing crosses the event loop.

#include <exception>
#include <utility>

#include "session/Module.h"

namespace kav {

// Shows the error that is being handled (call inside a catch block only).
void ShowCurrentError(const Module& module) noexcept;

template <class F>
bool RunHandler(const Module& module, F&& handler) noexcept {
    try {
        std::forward<F>(handler)();
        return true;
    } catch (...) {
        ShowCurrentError(module);
        return false;
    }
}

}  // namespace kav
