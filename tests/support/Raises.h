#pragma once

#include <gtest/gtest.h>

#include "base/Errors.h"

namespace kav::test {

// The kind of KavError the call raises; a call that raises nothing fails the test.
template <class F>
KavError::Kind RaisedKind(F&& call) {
    try {
        call();
    } catch (const KavError& e) {
        return e.kind();
    }
    ADD_FAILURE() << "no error raised";
    return KavError::Kind::Usage;
}

}  // namespace kav::test
