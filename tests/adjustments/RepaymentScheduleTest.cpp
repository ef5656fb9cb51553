// The member's schedule and its export.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "adjustments/BalanceChart.h"
#include "adjustments/RepaymentSchedule.h"
#include "adjustments/ScheduleExport.h"
#include "support/PdfText.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::schedule;
using vb::Currency;

namespace {

Currency R(qint64 rials) { return Currency::fromRaw(rials * Currency::Scale); }

LoanTerms terms(qint64 value, qint64 monthly, qint32 count, int option, const QString& begin,
                const QString& end) {
    return {R(value), R(monthly), count, option, begin, end};
}

QString amount(const std::optional<Currency>& c) { return c ? c->toString() : u"-"_s; }

// The rows as "month planned adjustment deducted balance", "-" where there is none, "R" for
// the remainder month and "S" for a month after the settlement date, joined by "; ".
QString lines(const Schedule& s) {
    QStringList out;
    for (const Row& r : s.rows)
        out << (QStringList{r.month, r.planned.toString(), amount(r.adjustment), amount(r.deducted),
                            r.balance.toString()}
                    .join(u' ') +
                (r.remainderMonth ? u" R"_s : QString()) +
                (r.afterSettlement ? u" S"_s : QString()));
    return out.join(u"; "_s);
}

}  // namespace

TEST(RepaymentSchedule, TheRemainderGoesWhereTheLoanSays) {
    // 1,000,000 in three instalments of 300,000 leaves 100,000; the loan ends in 1403/01.
    const auto plan = [](qint64 value, int option) {
        return lines(
            Compute(terms(value, 300000, 3, option, u"1402/11/30"_s, u"1403/01/31"_s), {}, {}));
    };
    EXPECT_EQ(plan(1000000, 1),
              u"1402/11 400000 - - 600000 R; 1402/12 300000 - - 300000; "
              "1403/01 300000 - - 0"_s);
    EXPECT_EQ(plan(1000000, 0),
              u"1402/11 300000 - - 700000; 1402/12 300000 - - 400000; "
              "1403/01 400000 - - 0 R"_s);
    EXPECT_EQ(plan(1000000, 2),
              u"1402/11 300000 - - 700000; 1402/12 300000 - - 400000; "
              "1403/01 300000 - - 100000; 1403/02 100000 - - 0 R S"_s);
    // No remainder: three equal months whatever the option.
    EXPECT_EQ(plan(900000, 2),
              u"1402/11 300000 - - 600000; 1402/12 300000 - - 300000; "
              "1403/01 300000 - - 0"_s);
}

TEST(RepaymentSchedule, AdjustmentsReplaceThePlanTheLatestHolding) {
    const QVector<Adjustment> adjustments = {
        {5, u"1402/02/01"_s, u"1402/04/31"_s, R(50000)},
        {9, u"1402/03/01"_s, u"1402/03/31"_s, R(0)},    // later: holds in 1402/03
        {12, u"1402/04/01"_s, u"1402/04/31"_s, R(-1)},  // latest, replaces nothing
        {3, u"1402/05/01"_s, QString(), R(150000)}};    // open-ended, past the settlement too
    const Schedule s =
        Compute(terms(600000, 100000, 6, 0, u"1402/01/31"_s, u"1402/06/31"_s), adjustments, {});
    EXPECT_EQ(lines(s),
              u"1402/01 100000 - - 500000; 1402/02 100000 50000 - 450000; "
              "1402/03 100000 0 - 450000; 1402/04 100000 - - 350000; "
              "1402/05 100000 150000 - 200000; 1402/06 100000 150000 - 50000; "
              "1402/07 50000 50000 - 0 S"_s);
    EXPECT_EQ(s.rows[2].adjustmentId, 9);
}

// What the months took (the payslip where there is one, else the adjustment or the plan) and
// the balance left add up to the loan, however far the schedule goes; the plan has no total.
TEST(RepaymentSchedule, TheTotalsAddUpToTheLoanAmount) {
    const LoanTerms loan = terms(800000000, 66666666, 12, 0, u"1403/01/31"_s, u"1403/12/30"_s);
    const QVector<Adjustment> lower = {{7, u"1403/03/01"_s, u"1403/05/31"_s, R(40000000)}};
    const QVector<Payslip> paid = {{u"1403/01"_s, R(66666666)}, {u"1403/02"_s, R(50000000)}};
    EXPECT_EQ(CsvRows(Compute(loan, lower, paid)).last().join(u','),
              u"جمع,,,116666666,800000000,0,"_s);
    const Schedule part = Compute(loan, lower, paid, 6);
    EXPECT_EQ(part.totalTaken.toString() + u" "_s + part.balance.toString(),
              u"303333332 496666668"_s);
}

TEST(RepaymentSchedule, ALowerAdjustmentLengthensTheLoanAndNoMonthPlansMoreThanIsOwed) {
    EXPECT_EQ(lines(Compute(terms(600000, 100000, 6, 0, u"1403/10/30"_s, u"1404/03/31"_s),
                            {{1, u"1403/11/01"_s, u"1403/12/30"_s, R(50000)}}, {})),
              u"1403/10 100000 - - 500000; 1403/11 100000 50000 - 450000; "
              "1403/12 100000 50000 - 400000; 1404/01 100000 - - 300000; "
              "1404/02 100000 - - 200000; 1404/03 100000 - - 100000; 1404/04 100000 - - 0 S"_s);
    // Instalments worth more than the amount: the last month plans what is left; an
    // adjustment above the balance is cut to it.
    const LoanTerms over = terms(250000, 100000, 3, 0, u"1403/01/31"_s, QString());
    EXPECT_EQ(lines(Compute(over, {}, {})),
              u"1403/01 100000 - - 150000; 1403/02 100000 - - 50000; 1403/03 50000 - - 0"_s);
    EXPECT_EQ(lines(Compute(over, {{1, u"1403/02/01"_s, u"1403/02/31"_s, R(400000)}}, {})),
              u"1403/01 100000 - - 150000; 1403/02 100000 150000 - 0"_s);
}

TEST(RepaymentSchedule, PayslipRowsAreWhatWasDeducted) {
    const QVector<Payslip> payslips = {
        {u"1402/12"_s, R(20000)},                              // before the first instalment
        {u"1403/01"_s, R(100000)},  {u"1403/02"_s, R(0)},      // a month with nothing deducted
        {u"1403/03"_s, R(60000)},   {u"1403/03"_s, R(40000)},  // two rows of one month
        {u"۱۴۰۳/۰۵"_s, R(250000)},                             // more than planned
        {u"1403/08"_s, R(10000)},                              // after the debt was paid
        {u"not a month"_s, R(999)},
    };
    const Schedule s =
        Compute(terms(600000, 100000, 6, 0, u"1403/01/31"_s, u"1403/06/31"_s), {}, payslips);
    EXPECT_EQ(lines(s),
              u"1402/12 0 - 20000 580000; 1403/01 100000 - 100000 480000; "
              "1403/02 100000 - 0 480000; 1403/03 100000 - 100000 380000; "
              "1403/04 100000 - - 280000; 1403/05 100000 - 250000 30000; "
              "1403/06 30000 - - 0; 1403/07 0 - - 0 S; 1403/08 0 - 10000 -10000 S"_s);
    EXPECT_EQ(s.totalDeducted, R(480000));
    EXPECT_EQ(s.balance, R(-10000));
}

TEST(RepaymentSchedule, NoScheduleWithoutAnInstalmentOrStartAndNoEndlessSchedule) {
    const QString none = u"؛ برنامه بازپرداخت ساخته نمي‌شود."_s;
    LoanTerms unknown = terms(600000, 0, 6, 0, u"1403/01/31"_s, QString());
    unknown.monthlyValue.reset();
    Schedule s = Compute(unknown, {}, {});
    EXPECT_TRUE(s.rows.isEmpty());
    EXPECT_EQ(s.balance, R(600000));
    EXPECT_EQ(s.problem, u"قسط ماهيانه وام مشخص نشده است"_s + none);
    for (const qint64 monthly : {0LL, -100000LL}) {
        s = Compute(terms(600000, monthly, 6, 0, u"1403/01/31"_s, QString()), {}, {});
        EXPECT_TRUE(s.rows.isEmpty());
        EXPECT_EQ(s.problem, u"قسط ماهيانه وام بايد بيشتر از صفر باشد"_s + none);
    }
    s = Compute(terms(600000, 100000, 6, 0, QString(), QString()), {}, {});
    EXPECT_EQ(s.problem, u"تاريخ شروع اقساط وام مشخص نشده است"_s + none);
    // An open-ended adjustment of nothing stops after a hundred years and says so.
    s = Compute(terms(600000, 100000, 6, 0, u"1403/01/31"_s, QString()),
                {{1, u"1403/02/01"_s, QString(), R(0)}}, {});
    EXPECT_EQ(s.rows.size(), 1200);
    EXPECT_EQ(
        s.problem,
        u"مانده وام در 1200 ماه به صفر نمي‌رسد؛ فقط 1200 ماه نخست نشان داده شده است."_s);
}

namespace {

// 1,000,000 (and 300,000 a month more) at 300,000 from 1402/11, an adjustment and a payslip.
Schedule sample(int extraMonths = 0) {
    return Compute(terms(1000000 + 300000LL * extraMonths, 300000, 3 + extraMonths, 2,
                         u"1402/11/30"_s, u"1403/01/31"_s),
                   {{4, u"1402/12/01"_s, u"1402/12/29"_s, R(250000)}}, {{u"1402/11"_s, R(300000)}});
}

}  // namespace

TEST(ScheduleExport, CsvRowsHoldPlainAmountsNotesAndTotals) {
    QStringList lines;
    for (const QStringList& row : CsvRows(sample())) lines << row.join(u',');
    EXPECT_EQ(
        lines,
        (QStringList{u"ماه,قسط برنامه,تعديل,کسر شده در فيش,کاهش مانده,مانده پس از ماه,توضيح"_s,
                     u"1402/11,300000,,300000,300000,700000,"_s,
                     u"1402/12,300000,250000,,250000,450000,"_s, u"1403/01,300000,,,300000,150000,"_s,
                     u"1403/02,100000,,,100000,50000,باقيمانده وام، پس از تاريخ تسويه"_s,
                     u"1403/03,50000,,,50000,0,پس از تاريخ تسويه"_s,
                     u"جمع,,,300000,1000000,0,"_s}));
    EXPECT_EQ(AmountText(R(1050000)), u"1/050/000"_s);
}

// The PDF: the months, the totals that add up with the balance to the loan amount, the facts;
// the chart on a page of its own after the table. A file that cannot be written leaves
// nothing.
TEST(ScheduleExport, ThePdfHoldsTheMonthsTheTotalsAndTheChart) {
    QTemporaryDir dir;
    const Schedule s = sample();
    const auto chart =
        ChartOf(terms(1000000, 300000, 3, 2, u"1402/11/30"_s, u"1403/01/31"_s), s, s);
    const PagedDocument doc =
        Document(u"برنامه بازپرداخت وام"_s, {u"کارمند: 1001 - علي رضايي"_s}, s, chart);
    const QString path = dir.filePath(u"s.pdf"_s);
    SavePdf(path, doc, u"چاپ توسط کاربر 3"_s);
    const QList<QStringList> rows = test::PdfRows(path);
    ASSERT_EQ(rows.size(), 2);
    // Each month's cells from the right, and the totals: what the payslips deducted, what the
    // months took (the loan amount with the balance left), the balance left.
    const auto month = [&](const QString& m) {
        const auto it = std::find_if(rows[0].begin(), rows[0].end(),
                                     [&](const QString& r) { return r.startsWith(m); });
        return it == rows[0].end() ? QString() : *it;
    };
    EXPECT_EQ(month(u"1402/11"_s), u"1402/11|300/000|300/000|300/000|700/000"_s);
    EXPECT_EQ(month(u"1402/12"_s), u"1402/12|300/000|250/000|250/000|450/000"_s);
    EXPECT_EQ(month(test::Plain(u"جمع"_s)), test::Plain(u"جمع|300/000|1/000/000|0"_s));
    const QString chartPage = rows[1].join(u'|');
    for (const QString& text : {u"برنامه بازپرداخت وام"_s, u"علي رضايي"_s, u"مانده طبق برنامه"_s,
                                u"تسويه"_s, u"1403/01"_s, u"1/000/000"_s})
        EXPECT_TRUE(chartPage.contains(test::Plain(text))) << text.toStdString();

    const QString blocked = dir.filePath(u"missing-folder/x.pdf"_s);
    EXPECT_EQ(test::RaisedKind([&] { SavePdf(blocked, doc, QString()); }), KavError::Kind::Usage);
    EXPECT_FALSE(QFile::exists(blocked));
}

// The chart of a loan whose second payslip deducted less than planned: the plan, the schedule
// (what was deducted, then what is left to come at the plan's pace), the months deducted and
// the settlement month.
TEST(BalanceChart, PlanAndDeductionsMonthByMonth) {
    const LoanTerms t = terms(1000000, 300000, 3, 0, u"1402/11/30"_s, u"1403/01/31"_s);
    const QVector<Payslip> paid = {{u"1402/11"_s, R(300000)}, {u"1402/12"_s, R(200000)}};
    const std::optional<BalanceChart> chart = ChartOf(t, Compute(t, {}, paid), Compute(t, {}, {}));
    ASSERT_TRUE(chart);
    EXPECT_EQ(chart->planned, (QVector<Currency>{R(700000), R(400000), R(0)}));
    EXPECT_EQ(chart->actual, (QVector<Currency>{R(700000), R(500000), R(100000), R(0)}));
    EXPECT_EQ(chart->deductedMonths, 2);
    EXPECT_EQ(chart->settlement, 2);
    EXPECT_EQ(chart->months(), 4);
    EXPECT_EQ(chart->monthText(0) + u' ' + chart->monthText(3), u"1402/11 1403/02"_s);
    EXPECT_EQ(chart->loanValue, R(1000000));

    // No settlement date, or one before the first month: nothing marked; no instalment: no chart.
    EXPECT_FALSE(ChartOf(terms(1000000, 300000, 3, 0, u"1402/11/30"_s, u""_s), Compute(t, {}, paid),
                         Compute(t, {}, {}))
                     ->settlement);
    EXPECT_FALSE(ChartOf(terms(1000000, 300000, 3, 0, u"1402/11/30"_s, u"1401/01/01"_s),
                         Compute(t, {}, paid), Compute(t, {}, {}))
                     ->settlement);
    LoanTerms none = t;
    none.monthlyValue.reset();
    EXPECT_FALSE(ChartOf(none, Compute(none, {}, paid), Compute(none, {}, {})));
}
