#pragma once

// A loan window on a fresh database with a few loans of every kind.

#include <gtest/gtest.h>

#include "loan_editor/FormHRLoan.h"
#include "support/TestDatabase.h"

namespace kav::test {

// Loans the fixture stores.
enum SeedLoan : qint16 {
    TemporaryLoan = 1,  // type 1, two members, remainder in the first month
    FinalLoan = 2,      // code 7, remainder in the last month
    SparseLoan = 3,     // Nulls wherever a loan may hold them
    SeparateLoan = 4,   // remainder in a separate month
    PaidLoan = 5,       // temporary, with two payslip rows
};

void SeedLoans(const TestDatabase& db);

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;
    FormHRLoan& editor() { return t.module.Window<FormHRLoan>(); }
    Session& session() { return t.module.session; }
    TestModule t;
};

}  // namespace kav::test
