#pragma once

// The data tests use the shared test database.

#include "support/TestDatabase.h"

namespace kav::data::test {
using ScratchDb = kav::test::TestDatabase;
using kav::test::Row;
}  // namespace kav::data::test
