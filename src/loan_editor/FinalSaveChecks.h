#pragma once

// What needs a second look before a loan is saved as final, and the one question that lists
// it: terms that do not add up, a member who guarantees himself, the same guarantor twice for
// one member, a member who has left. Only "yes" goes on; a loan with nothing to list is saved
// without a word from here. Adding members and the temporary save check none of this.
//
// No widget here: the loan comes in as the editor holds it, the database tells the rest.

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "data/SqlDialect.h"
#include "loan_editor/LoanSave.h"

namespace kav {
class Connection;
class Module;
}  // namespace kav

namespace kav::final_checks {

// An employee of the loan (member or guarantor) as tblEmployee holds him.
struct Person {
    QString name;
    QString code;
    bool hasLeft = false;  // WorkStatusID 3
};

// What the database tells about the loan.
struct DatabaseFacts {
    QVariant ceiling;              // MaxValue of the loan's type; Null: no ceiling
    QHash<qint64, Person> people;  // the members and guarantors found, by ID
};

// The IDs of the members and their guarantors, each once, in grid order; cells that are not
// a whole number (a missing guarantor's "null") are left out.
QList<qint64> PeopleIds(const loan_save::LoanRecord& loan);
// Those employees with their names and work status.
QString PeopleQuery(const data::SqlDialect& dialect, const QList<qint64>& ids);
DatabaseFacts ReadFacts(Connection& cnt, const loan_save::LoanRecord& loan);

// One line per problem, in a fixed order; `remainder` is the remainder box's value text.
// Empty when there is nothing to list.
QStringList Problems(const loan_save::LoanRecord& loan, const QString& remainder,
                     const DatabaseFacts& facts);

// The question's title and text, every problem on its own line.
QString QuestionTitle();
QString QuestionText(const QStringList& problems);

// Asks about the problems of a loan about to be saved as final. True when there is nothing to
// list or the clerk answered yes; no and no answer are false.
bool Confirmed(Module& module, const loan_save::LoanRecord& loan, const QString& remainder);

}  // namespace kav::final_checks
