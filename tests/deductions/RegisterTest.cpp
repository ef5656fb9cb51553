// The monthly register: each member's month as his own schedule has it, the filters, the
// totals, the CSV file, a suite without the payslip columns.

#include <gtest/gtest.h>

#include <QFile>
#include <QHash>
#include <QLineEdit>
#include <random>

#include "adjustments/FormHRException.h"
#include "adjustments/RepaymentSchedule.h"
#include "adjustments/ScheduleExport.h"
#include "deductions/DeductionRegister.h"
#include "session/Csv.h"
#include "session/TextProcs.h"
#include "support/TestDatabase.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using kav::test::CheckedTsql;
using kav::test::TestModule;
using vb::Currency;

namespace {

QString amount(const std::optional<Currency>& c) { return c ? c->toString() : u"-"_s; }

// A month's row as "month planned adjustment#id deducted taken balance [R] [S]".
QString describe(const schedule::Row& r) {
    return QStringList{r.month,
                       r.planned.toString(),
                       amount(r.adjustment) + u'#' + QString::number(r.adjustmentId),
                       amount(r.deducted),
                       r.taken.toString(),
                       r.balance.toString()}
               .join(u' ') +
           (r.remainderMonth ? u" R"_s : QString()) + (r.afterSettlement ? u" S"_s : QString());
}

QString key(qint32 loan, qint32 employee) { return u"%1/%2"_s.arg(loan).arg(employee); }

// A generated set of loans: every remainder option and none, counts and instalments missing,
// fractions, open settlement dates; per member overlapping and open-ended adjustments (some
// -1, some 0); payslip rows that deduct the instalment, less, more, twice in a month, with a
// day after the month, before the first instalment and after the loan is repaid.
struct Generated {
    struct Loan {
        qint32 id;
        bool isFinal;
        int begin, settlement;
        QString option;
        QList<qint32> members;
    };
    QList<Loan> loans;
};

Generated generate(const test::TestDatabase& db, unsigned seed) {
    std::mt19937 rng(seed);
    const auto pick = [&](int lo, int hi) {
        return std::uniform_int_distribution<int>(lo, hi)(rng);
    };
    const auto text = [](int month, int day) {
        return u"'%1/%2'"_s.arg(schedule::MonthText(month)).arg(day, 2, 10, QChar(u'0'));
    };
    QStringList sql;
    for (int t = 1; t <= 3; ++t)
        sql << u"insert into tblHRLoanType (ID, Name) values (%1, 'نوع %1')"_s.arg(t);
    for (int e = 1; e <= 25; ++e)
        sql << u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
               "(%1, '%2', 'نام%1', 'خانواده%1', %3)"_s.arg(e)
                   .arg(900 + e)
                   .arg(e % 8 == 0 ? 3 : 1);
    Generated g;
    int code = 0, adjustment = 0;
    QStringList adjustments;
    for (int i = 0; i < 45; ++i) {
        Generated::Loan loan{i + 1, i % 6 != 5, 1402 * 12 + pick(0, 22), 0, {}, {}};
        const int count = pick(1, 14);
        loan.settlement = loan.begin + count - 1;
        const double monthly = pick(1, 40) * 100000 + (i % 7 == 2 ? 0.5 : 0);
        const double value = monthly * count + (pick(0, 9) < 6 ? pick(1, int(monthly) - 1) : 0);
        const QString option = i % 4 == 3 ? u"NULL"_s : QString::number(i % 3);
        loan.option = option;
        sql << u"insert into tblHRLoan (ID, Code, TypeID, FarsiBeginDate, FarsiEndDate, "
               "LoanValue, MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth) values "
               "(%1, %2, %3, %4, %5, %6, %7, %8, %9)"_s.arg(loan.id)
                   .arg(loan.isFinal ? QString::number(++code) : u"NULL"_s)
                   .arg(1 + i % 3)
                   .arg(text(loan.begin, 28), i % 9 == 4 ? u"''"_s : text(loan.settlement, 29))
                   .arg(value, 0, 'f', 1)
                   .arg(i % 11 == 7 ? u"NULL"_s : QString::number(monthly, 'f', 1))
                   .arg(i % 13 == 5 ? u"NULL"_s : QString::number(count))
                   .arg(option);
        for (int n = pick(1, 3); loan.members.size() < n;) {
            const qint32 e = pick(1, 25);
            if (!loan.members.contains(e)) loan.members << e;
        }
        for (qint32 e : loan.members) {
            sql << u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (%1, %2)"_s
                       .arg(loan.id)
                       .arg(e);
            for (int a = pick(0, 2); a > 0; --a) {
                const int from = loan.begin + pick(-1, count);
                const int debit = pick(0, 9) < 2 ? -1 : (pick(0, 9) < 1 ? 0 : pick(1, 50) * 100000);
                adjustments << u"insert into tblHRLoanException (ID, LoanID, EmployeeID, "
                               "FarsiBeginDate, FarsiEndDate, MonthlyDebit) values (%1, %2, %3, "
                               "%4, %5, %6)"_s.arg(pick(1, 1000) * 100 + ++adjustment)
                                   .arg(loan.id)
                                   .arg(e)
                                   .arg(text(from, 1),
                                        pick(0, 3) == 0 ? u"''"_s : text(from + pick(0, 4), 29))
                                   .arg(debit);
            }
            for (int m = loan.begin - 1; m <= loan.begin + count + 4 && m <= 1403 * 12 + 7; ++m) {
                const int r = pick(0, 99);
                if (r < 15 || (m < loan.begin && r < 50)) continue;
                const double paid = r < 25 ? monthly / 2 : (r < 35 ? monthly * 2 : monthly);
                const QString month =
                    r >= 40 && r < 44 ? text(m, 15) : u"'"_s + schedule::MonthText(m) + u"'"_s;
                for (int twice = r >= 35 && r < 40 ? 2 : 1; twice > 0; --twice)
                    sql << u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, "
                           "PaidValue) values (%1, %2, %3, %4)"_s.arg(loan.id)
                               .arg(e)
                               .arg(month)
                               .arg(paid, 0, 'f', 2);
            }
        }
        g.loans << loan;
    }
    db.exec(QStringList{u"begin"_s} + sql + adjustments + QStringList{u"commit"_s});
    return g;
}

}  // namespace

// The register of every month from before the first instalment to after the last equals,
// member by member, the month's row of the schedule the adjustment window shows for him.
TEST(DeductionRegister, EveryMonthIsTheMonthOfEachMembersOwnSchedule) {
    TestModule t;
    const Generated g = generate(t.db, 23);
    auto& window = t.module.Window<FormHRException>();
    QHash<QString, QHash<QString, schedule::Row>> expected;  // month -> member -> row
    QHash<QString, std::pair<int, int>> period;              // member -> begin, settlement
    QHash<QString, QString> optionOf;                        // member -> remainder option
    for (const Generated::Loan& loan : g.loans) {
        if (!loan.isFinal) continue;
        for (qint32 e : loan.members) {
            window.txtPaidID->setText(QString::number(loan.id));
            window.ViewPRSBalance(e);
            for (const schedule::Row& r : window.Schedule().rows)
                expected[r.month].insert(key(loan.id, e), r);
            period.insert(key(loan.id, e), {loan.begin, loan.settlement});
            optionOf.insert(key(loan.id, e), loan.option);
        }
    }
    int starting = 0, ending = 0, after = 0, over = 0, under = 0, paidWithoutPlan = 0;
    QSet<QString> options;  // of the loans whose remainder month came
    for (int month = 1401 * 12 + 10; month <= 1404 * 12 + 6; ++month) {
        const QString m = schedule::MonthText(month);
        SCOPED_TRACE(m.toStdString());
        const deductions::Register reg =
            deductions::ReadRegister(t.module.DtEn().cnt(), t.module.session.PayslipColumns, month);
        QHash<QString, schedule::Row> got;
        for (const deductions::RegisterRow& r : reg.rows) {
            got.insert(key(r.loanId, r.employeeId), r.month);
            starting += period[key(r.loanId, r.employeeId)].first == month;
            ending += period[key(r.loanId, r.employeeId)].second == month;
            after += r.month.afterSettlement;
            if (r.month.deducted) {
                over += *r.month.deducted > r.ToDeduct();
                under += *r.month.deducted < r.ToDeduct();
            }
            paidWithoutPlan += r.PaidWithoutPlan();
            if (r.month.remainderMonth) options << optionOf[key(r.loanId, r.employeeId)];
        }
        const QHash<QString, schedule::Row>& want = expected.value(m);
        EXPECT_EQ(got.size(), want.size());
        for (auto it = want.begin(); it != want.end(); ++it) {
            ASSERT_TRUE(got.contains(it.key())) << it.key().toStdString();
            EXPECT_EQ(describe(got[it.key()]), describe(*it)) << it.key().toStdString();
        }
    }
    // The generated set gave every case its months.
    EXPECT_GT(starting, 0);
    EXPECT_GT(ending, 0);
    EXPECT_GT(after, 0);
    EXPECT_GT(over, 0);
    EXPECT_GT(under, 0);
    EXPECT_GT(paidWithoutPlan, 0);
    EXPECT_EQ(options, (QSet<QString>{u"0"_s, u"1"_s, u"2"_s, u"NULL"_s}));
}

namespace {

// Two types, three employees (one has left), four final loans and a temporary one.
void seedSmall(const test::TestDatabase& db) {
    db.exec({
        u"insert into tblHRLoanType (ID, Name) values (1, 'ضروري'), (2, 'مسکن')"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        "(1, '0042', 'علي', 'رضايي', 1), (2, '1002', 'مريم', 'احمدي', 3), "
        "(3, '1003', 'حسن', NULL, 1)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, FarsiBeginDate, FarsiEndDate, LoanValue, "
        "MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth) values "
        "(1, 1, 1, '1403/01/31', '1403/10/30', 10000000, 1000000, 10, 0),"
        "(2, 2, 2, '1403/05/31', '1404/04/31', 24000000.5, 2000000, 12, 1),"
        "(3, 3, 1, '1403/07/30', '1403/08/30', 3000000, 1500000, 2, 0),"
        "(4, 4, 2, '1402/07/30', '1403/06/31', 12000000, 1000000, 12, 0),"
        "(5, NULL, 1, '1403/01/31', '1403/10/30', 10000000, 1000000, 10, 0)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (1, 1), (1, 2), (2, 1), "
        "(3, 3), (4, 3), (5, 1)"_s,
        u"insert into tblHRLoanException (ID, LoanID, EmployeeID, FarsiBeginDate, FarsiEndDate, "
        "MonthlyDebit) values (1, 1, 2, '1403/06/01', '', 250000.25)"_s,
        u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) values "
        "(1, 1, '1403/07', 1000000), (3, 3, '1403/07', 1400000), (4, 3, '1403/07', 1000000),"
        "(5, 1, '1403/07', 1000000)"_s,
    });
}

const int kMehr1403 = 1403 * 12 + 6;

}  // namespace

// In 1403/07: loan 1 of employees 1 and 2 (2 adjusted, 2 has left), loan 2 of employee 1
// (its third month), loan 3 of employee 3 (starting), loan 4 of employee 3 repaid the month
// before but deducted once more; the temporary loan 5 is left out.
TEST(DeductionRegister, TotalsPerEmployeeLoanTypeAndOverall) {
    TestModule t;
    seedSmall(t.db);
    const deductions::Register reg =
        deductions::ReadRegister(t.module.DtEn().cnt(), t.module.session.PayslipColumns, kMehr1403);
    QStringList rows;
    for (const auto& r : reg.rows) rows << deductions::RowCells(r, true).join(u'|');
    EXPECT_EQ(rows,
              (QStringList{u"0042|علي رضايي|1|ضروري|1/000/000||1/000/000|1/000/000|3/000/000|"_s,
                           u"0042|علي رضايي|2|مسکن|2/000/000||2/000/000||18/000/000|"_s,
                           u"1002|مريم احمدي|1|ضروري|1/000/000|250/000.25|250/000.25||"
                           "4/499/999.5|ترک کار کرده"_s,
                           u"1003|حسن|3|ضروري|1/500/000||1/500/000|1/400/000|1/600/000|"_s,
                           u"1003|حسن|4|مسکن|1/000/000||0|1/000/000|-1/000/000|"
                           "پس از تاريخ تسويه، کسر در فيش بدون قسط"_s}));
    const deductions::Totals totals = deductions::ComputeTotals(reg.rows);
    QStringList lines;
    for (const QStringList& l : deductions::TotalLines(totals, false, true)) lines << l.join(u'|');
    EXPECT_EQ(lines,
              (QStringList{u"0042|علي رضايي|||||3000000|1000000|21000000|جمع کارمند (2 وام)"_s,
                           u"1002|مريم احمدي|||||250000.25|0|4499999.5|جمع کارمند (1 وام)"_s,
                           u"1003|حسن|||||1500000|2400000|600000|جمع کارمند (2 وام)"_s,
                           u"|||ضروري|||2750000.25|2400000|9099999.5|جمع نوع وام (3 رديف)"_s,
                           u"|||مسکن|||2000000|1000000|17000000|جمع نوع وام (2 رديف)"_s,
                           u"||||||4750000.25|3400000|26099999.5|جمع کل (5 رديف)"_s}));

    // Filtered by type or by employee: the same rows, no others.
    const auto filtered = [&](std::optional<qint32> type, std::optional<qint32> employee) {
        deductions::Filter f;
        f.loanTypeId = type;
        f.employeeId = employee;
        QStringList out;
        for (const auto& r : deductions::ReadRegister(t.module.DtEn().cnt(),
                                                      t.module.session.PayslipColumns, kMehr1403, f)
                                 .rows)
            out << deductions::RowCells(r, true).join(u'|');
        return out;
    };
    EXPECT_EQ(filtered(2, std::nullopt), (QStringList{rows[1], rows[4]}));
    EXPECT_EQ(filtered(std::nullopt, 3), (QStringList{rows[3], rows[4]}));
    EXPECT_EQ(filtered(1, 3), (QStringList{rows[3]}));
    EXPECT_EQ(filtered(1, 99), QStringList());
}

// The CSV file: a byte-order mark, the titles, the personnel code quoted, plain amounts with
// their fractions, CR LF, a blank line, then the totals.
TEST(DeductionRegister, CsvFile) {
    TestModule t;
    seedSmall(t.db);
    deductions::Filter filter;
    filter.loanTypeId = 1;
    const deductions::Register reg = deductions::ReadRegister(
        t.module.DtEn().cnt(), t.module.session.PayslipColumns, kMehr1403, filter);
    const QString file = t.db.file() + u".csv"_s;
    SaveCsv(file, deductions::CsvRows(reg, deductions::ComputeTotals(reg.rows)),
            {deductions::ColCode});
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(),
              u"\uFEFF\"کد پرسنلي\",نام و نام خانوادگي,شماره وام,نوع وام,قسط ماهيانه,تعديل,"
              "کسر اين ماه,کسر شده در فيش,مانده پس از ماه,توضيح\r\n"
              "\"0042\",علي رضايي,1,ضروري,1000000,,1000000,1000000,3000000,\r\n"
              "\"1002\",مريم احمدي,1,ضروري,1000000,250000.25,250000.25,,4499999.5,ترک کار کرده\r\n"
              "\"1003\",حسن,3,ضروري,1500000,,1500000,1400000,1600000,\r\n"
              "\r\n"
              "\"0042\",علي رضايي,,,,,1000000,1000000,3000000,جمع کارمند (1 وام)\r\n"
              "\"1002\",مريم احمدي,,,,,250000.25,0,4499999.5,جمع کارمند (1 وام)\r\n"
              "\"1003\",حسن,,,,,1500000,1400000,1600000,جمع کارمند (1 وام)\r\n"
              ",,,ضروري,,,2750000.25,2400000,9099999.5,جمع نوع وام (3 رديف)\r\n"
              ",,,,,,2750000.25,2400000,9099999.5,جمع کل (3 رديف)\r\n"_s.toUtf8());
}

// A suite whose payslip table lacks the settings' columns: the plan alone, the payslip cells
// and totals empty, and the register says so.
TEST(DeductionRegister, WithoutThePayslipColumnsThePlanAlone) {
    TestModule t;
    seedSmall(t.db);
    t.db.exec({u"drop table tblHRMonthlyPaiedLoan"_s,
               u"create table tblHRMonthlyPaiedLoan (ID integer primary key, LoanID int)"_s,
               u"insert into tblHRMonthlyPaiedLoan (LoanID) values (4)"_s});
    t.module.OpenSessionConnection();  // a new session finds the columns out anew
    const deductions::Register reg =
        deductions::ReadRegister(t.module.DtEn().cnt(), t.module.session.PayslipColumns, kMehr1403);
    EXPECT_FALSE(reg.payslipsKnown);
    QStringList rows;
    for (const auto& r : reg.rows) rows << deductions::RowCells(r, false).join(u'|');
    EXPECT_EQ(rows, (QStringList{u"0042|علي رضايي|1|ضروري|1000000||1000000||3000000|"_s,
                                 u"0042|علي رضايي|2|مسکن|2000000||2000000||18000000|"_s,
                                 u"1002|مريم احمدي|1|ضروري|1000000|250000.25|250000.25||"
                                 "4499999.5|ترک کار کرده"_s,
                                 u"1003|حسن|3|ضروري|1500000||1500000||1500000|"_s}));
    EXPECT_EQ(
        deductions::TotalLines(deductions::ComputeTotals(reg.rows), false, false).last(),
        (QStringList{
            {}, {}, {}, {}, {}, {}, u"4750000.25"_s, {}, u"26999999.5"_s, u"جمع کل (4 رديف)"_s}));
}

// The texts on SQL Server, byte for byte, with the office's payslip column names.
TEST(DeductionRegister, SqlTexts) {
    deductions::Filter f;
    EXPECT_EQ(
        CheckedTsql(deductions::deductions_sql::MembersQuery(f)),
        u"select d.LoanID, d.EmployeeID, l.Code as LoanCode, l.TypeID, t.Name as LoanTypeName, "
        "l.LoanValue, l.MonthlyValue, l.PayBackNumber, l.UseRemainedValueInFirstMonth, "
        "l.FarsiBeginDate, l.FarsiEndDate, e.Code as EmployeeCode, e.FirstName, e.SureName, "
        "e.WorkStatusID from tblHRLoanDetail d inner join tblHRLoan l on l.ID=d.LoanID left outer "
        "join tblHRLoanType t on t.ID=l.TypeID left outer join tblEmployee e on "
        "e.ID=d.EmployeeID where l.Code is not null"_s);
    const data::PayslipColumns columns{u"PersonID"_s, u"SalaryMonth"_s, u"mm-yyyy"_s, u"Amount"_s};
    EXPECT_EQ(CheckedTsql(deductions::deductions_sql::AdjustmentsQuery(f)),
              u"select ID, LoanID, EmployeeID, FarsiBeginDate, FarsiEndDate, MonthlyDebit from "
              "tblHRLoanException"_s);
    EXPECT_EQ(CheckedTsql(deductions::deductions_sql::PayslipsQuery(columns, f)),
              u"select LoanID, PersonID, SalaryMonth, Amount from tblHRMonthlyPaiedLoan"_s);
    f.loanTypeId = 2;
    f.employeeId = 17;
    EXPECT_TRUE(deductions::deductions_sql::MembersQuery(f).endsWith(
        u" where l.Code is not null and l.TypeID=2 and d.EmployeeID=17"_s));
    EXPECT_EQ(CheckedTsql(deductions::deductions_sql::AdjustmentsQuery(f)),
              u"select ID, LoanID, EmployeeID, FarsiBeginDate, FarsiEndDate, MonthlyDebit from "
              "tblHRLoanException where LoanID in (select ID from tblHRLoan where TypeID=2) and "
              "EmployeeID=17"_s);
    f.loanTypeId.reset();
    EXPECT_EQ(CheckedTsql(deductions::deductions_sql::PayslipsQuery({}, f)),
              u"select LoanID, EmployeeID, PayMonth, PaidValue from tblHRMonthlyPaiedLoan where "
              "EmployeeID=17"_s);
}

// Months as the window and the command line take them, and the fast readings of stored texts
// agree with the plain ones.
TEST(DeductionRegister, MonthsAndAmounts) {
    for (const auto& [text, month] :
         std::initializer_list<std::pair<QString, int>>{{u"1403/07"_s, 1403 * 12 + 6},
                                                        {u" 1403/7 "_s, 1403 * 12 + 6},
                                                        {u"۱۴۰۳/۱۲"_s, 1403 * 12 + 11},
                                                        {u"1403/13"_s, -1},
                                                        {u"1403/00"_s, -1},
                                                        {u"1403-07"_s, -1},
                                                        {u"1403/07/01"_s, -1},
                                                        {u"03/07"_s, -1},
                                                        {QString(), -1}})
        EXPECT_EQ(deductions::ParseMonth(text).value_or(-1), month) << text.toStdString();
    EXPECT_EQ(deductions::NotAMonthText(u" 1403/13 "_s),
              u"«1403/13» ماه شمسي نيست؛ ماه را به شکل سال/ماه بنويسيد، مانند 1403/07."_s);

    const data::PayslipColumns yearFirst, monthFirst{u"E"_s, u"M"_s, u"mm.yyyy"_s, u"P"_s};
    for (const QString& t :
         {u"1403/07"_s, u"1403/7"_s, u" 1403/07/15"_s, u"1403/07/"_s, u"+1403/07"_s, u"1403 / 07"_s,
          u"۱۴۰۳/۰۷"_s, u"1403/13"_s, u"0/01"_s, u"1403"_s, u"1403/07x"_s, u"99999999/01"_s,
          u"07.1403"_s, u"7.1403"_s, u" 1403/07"_s, QString()}) {
        const QByteArray utf8 = t.toUtf8();
        EXPECT_EQ(schedule::MonthNumber(QByteArrayView(utf8)), schedule::MonthNumber(t))
            << t.toStdString();
        for (const data::PayslipColumns& c : {yearFirst, monthFirst})
            EXPECT_EQ(c.MonthNumber(QByteArrayView(utf8)), c.MonthNumber(QVariant(t)))
                << t.toStdString();
    }
    for (qint64 raw : {0LL, 12345LL * 10000, 123456789LL * 10000 + 5000, -150000LL * 10000, -2500LL,
                       1234LL * 10000 + 1, 922337203685477LL * 10000 + 5807LL,
                       -922337203685477LL * 10000 - 5807LL, 10000LL * 10000}) {
        std::array<char, 40> buffer;
        EXPECT_EQ(QString::fromUtf8(GroupedAmountUtf8(Currency::fromRaw(raw), buffer)),
                  schedule::AmountText(Currency::fromRaw(raw)))
            << raw;
    }
}

// A header click sorts by the column, the amounts as numbers and the empty cells lowest; the
// same column again turns the order round.
TEST(DeductionRegister, SortsByAnyColumn) {
    TestModule t;
    seedSmall(t.db);
    deductions::Register reg =
        deductions::ReadRegister(t.module.DtEn().cnt(), t.module.session.PayslipColumns, kMehr1403);
    const auto column = [&](int c) {
        QStringList out;
        for (const auto& r : reg.rows) out << deductions::RowCells(r, false)[c];
        return out.join(u',');
    };
    deductions::SortRows(reg.rows, deductions::ColBalance, false);
    EXPECT_EQ(column(deductions::ColBalance), u"-1000000,1600000,3000000,4499999.5,18000000"_s);
    deductions::SortRows(reg.rows, deductions::ColDeducted, true);
    EXPECT_EQ(column(deductions::ColDeducted), u"1400000,1000000,1000000,,"_s);
    deductions::SortRows(reg.rows, deductions::ColName, false);
    EXPECT_EQ(column(deductions::ColName), u"حسن,حسن,علي رضايي,علي رضايي,مريم احمدي"_s);
    deductions::SortRows(reg.rows, deductions::ColCode, true);
    EXPECT_EQ(column(deductions::ColCode), u"1003,1003,1002,0042,0042"_s);
}
