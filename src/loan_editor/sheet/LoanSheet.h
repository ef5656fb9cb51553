#pragma once

// The loan sheet: the loan on paper for its borrowers and guarantors to sign. A first page
// (going on over more pages for many members) with the session's title, the loan's number (or,
// in large type, that the loan is temporary and not yet in the payroll), type, amounts, count,
// instalment, where the remainder goes, the three dates, the notes and the members with their
// guarantors; then one page per borrower with the loan's terms, his guarantors and a signature
// box for him and for each guarantor.
//
// No widget and no painting here: the stored loan is read, and what goes on each page is
// worked out as texts; SheetDocument paints them.
//
//   const sheet::Loan loan = sheet::ReadLoan(cnt, loanId);   // KavError when it is not there
//   const sheet::Content content = sheet::ContentOf(loan, session.SessionTitle);

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

#include "data/SqlDialect.h"

namespace kav {
class Connection;
}

namespace kav::sheet {

// An employee as the sheet names him.
struct Person {
    QString code;
    QString name;
};

struct Member {
    Person borrower;
    QList<Person> guarantors;  // those the member has, in their order (at most three)
};

// The loan as stored.
struct Loan {
    qint32 id = -1;
    QString code;  // empty while the loan is temporary
    QString type;
    QVariant loanValue, originalValue, monthlyValue, payBackNumber, remainderOption;
    QString paymentDate, beginDate, endDate;  // Jalali "yyyy/mm/dd"; empty when none
    QString notes;
    QList<Member> members;
};

// The members of a loan with their codes and names and their guarantors' IDs, codes and
// names, in the order the loan window lists them.
QString MembersQuery(const data::SqlDialect& dialect, qint32 loanId);

// Reads the stored loan (its header as the loan window loads it, and its members). Raises
// KavError (Usage) when the database holds no loan with that ID.
Loan ReadLoan(Connection& cnt, qint32 loanId);

// What the pages say.
struct BorrowerPage {
    QStringList facts;  // the loan, the borrower, the terms, the dates
    QString guarantorsTitle;
    QStringList guarantorColumns;
    QList<QStringList> guarantorRows;
    QString noGuarantor;     // instead of the table when he has none
    QString pledge;          // the sentence above the signatures
    QStringList signatures;  // each box's caption: the borrower, then each guarantor
};

struct Content {
    QString title;   // the session's title and the sheet's name with the loan's number
    QString notice;  // a temporary loan, in large type on every page; empty for a final one
    QStringList facts;
    QStringList memberColumns;
    QList<QStringList> memberRows;
    QList<BorrowerPage> borrowers;
};

Content ContentOf(const Loan& loan, const QString& sessionTitle);

// The words the sheet's own file name starts with: the sheet and the loan's number, or that it
// is temporary with its ID.
QStringList FileWords(const Loan& loan);

}  // namespace kav::sheet
