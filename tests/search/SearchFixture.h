#pragma once

// A search window on a fresh database, and a loan editor that records what it is asked.

#include <gtest/gtest.h>

#include <QStringList>

#include "search/FormSearch.h"
#include "session/WindowPorts.h"
#include "support/TestDatabase.h"

namespace kav::test {

// Loans the fixture stores. The search lists one row per member, a loan without members once.
enum SearchLoan : qint32 {
    HouseLoan = 1,        // temporary, type 1, two members, notes
    QuotedLoan = 2,       // final (code 7), type 2, no instalment, notes with quotes
    FinalLoan = 3,        // final (code 8), type 1, guarantor in the third place, no notes
    LargeIdLoan = 40000,  // temporary, type 3, no members
};

void SeedSearchLoans(const TestDatabase& db);

// The editor as the search sees it: records the id text and the loans opened.
class FakeEditor : public QObject, public LoanEditorPort {
public:
    explicit FakeEditor(Module&) {}
    bool ViewPRSLoansInfo(qint32 loanId) override {
        opened << loanId;
        return true;
    }
    void SetLoanIdText(const QString& text) override { idText = text; }
    int StateValue() const override { return idText.isEmpty() ? 0 : 1; }
    QString LoanValueText() const override { return {}; }
    QList<qint32> opened;
    QString idText;
};

class SearchTest : public ::testing::Test {
protected:
    void SetUp() override;
    FormSearch& form() { return t.module.Window<FormSearch>(); }
    FakeEditor& editor() { return t.module.Window<FakeEditor>(); }
    // The result grid's data rows (cells, or joined by '|') and a column of them.
    QList<QStringList> gridRows();
    QStringList rows() {
        QStringList rows;
        for (const QStringList& cells : gridRows()) rows << cells.join(u'|');
        return rows;
    }
    QStringList column(int col) {
        QStringList cells;
        for (const QStringList& row : gridRows()) cells << row[col];
        return cells;
    }
    // The messages shown since the last call, each as "title: text".
    QStringList Shown();
    TestModule t;
};

}  // namespace kav::test
