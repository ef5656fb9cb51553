#include "data/DemoData.h"

#include <QCalendar>
#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>
#include <QVariant>
#include <algorithm>
#include <array>
#include <vector>

#include "data/EmbeddedSchema.h"
#include "data/LoanSnapshot.h"
#include "data/Names.h"
#include "data/SqlDialect.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;

namespace kav::data {

namespace {

const QCalendar kJalali(QCalendar::System::Jalali);
const SqlDialect kSqlite(DatabaseKind::SQLite);

// The demo's working date (system parameter 3450).
constexpr int kWorkYear = 1403;
constexpr int kWorkMonth = 7;

struct JDate {
    int y = 0, m = 0, d = 0;
    QDate gregorian() const { return QDate(y, m, d, kJalali); }
    QString farsi() const {
        return u"%1/%2/%3"_s.arg(y, 4, 10, QChar(u'0'))
            .arg(m, 2, 10, QChar(u'0'))
            .arg(d, 2, 10, QChar(u'0'));
    }
    int lastDay() const { return kJalali.daysInMonth(m, y); }
    // The last day of the month n months later.
    JDate monthEnd(int n) const {
        JDate r{y, m + n, 1};
        while (r.m > 12) {
            r.m -= 12;
            ++r.y;
        }
        r.d = kJalali.daysInMonth(r.m, r.y);
        return r;
    }
};

// Each text below is a believable Persian name; employees combine them so that no two
// employees share first name and surname.
const std::array<const char16_t*, 30> kFirstNames = {
    u"محمد",  u"علی",  u"حسین", u"رضا",  u"مهدی", u"امیر", u"حسن",   u"مصطفی", u"سعید",   u"مجید",
    u"حمید",  u"جواد", u"احمد", u"محسن", u"وحید", u"کاظم", u"یوسف",  u"بهزاد", u"فرهاد",  u"کامران",
    u"فاطمه", u"زهرا", u"مریم", u"سارا", u"نرگس", u"لیلا", u"الهام", u"مهسا",  u"فرزانه", u"شیرین"};
const std::array<const char16_t*, 30> kSurnames = {
    u"احمدی",   u"محمدی", u"حسینی", u"رضایی",  u"کریمی",   u"موسوی",  u"جعفری", u"صادقی",
    u"رحیمی",   u"هاشمی", u"قاسمی", u"نوری",   u"عباسی",   u"کاظمی",  u"طاهری", u"اکبری",
    u"فراهانی", u"شریفی", u"نجفی",  u"سلطانی", u"میرزایی", u"یزدانی", u"خسروی", u"توکلی",
    u"بهرامی",  u"زمانی", u"عسگری", u"حیدری",  u"مرادی",   u"قربانی"};

constexpr int kEmployeeCount = 60;
// Employees (by ID) who have left: work status 3.
constexpr std::array<int, 5> kLeft = {6, 19, 34, 48, 59};

bool hasLeft(int id) {
    for (int l : kLeft)
        if (l == id) return true;
    return false;
}

struct LoanType {
    const char16_t* name;
    qint64 maxValue;  // 0: no ceiling (Null)
};
const std::array<LoanType, 6> kLoanTypes = {{
    {u"وام ضروری", 100'000'000},
    {u"وام مسکن", 1'000'000'000},
    {u"وام ازدواج", 300'000'000},
    {u"وام خرید کالا", 150'000'000},
    {u"مساعده", 0},
    {u"وام قرض‌الحسنه صندوق", 200'000'000},
}};

struct Member {
    int employee;
    int guarantors[3];  // 0: none
};

struct Loan {
    int type;  // 1-based index into kLoanTypes
    JDate payment;
    qint64 value;
    qint64 originalValue;  // 0: same as value
    int payBack;
    int remainderOption;  // 1 first month, 0 last month, 2 a separate month
    bool isFinal;
    const char16_t* notes;  // nullptr: Null
    std::vector<Member> members;
};

std::vector<Loan> demoLoans() {
    return {
        {1,
         {1401, 3, 10},
         60'000'000,
         0,
         12,
         0,
         true,
         nullptr,
         {{1, {2, 0, 0}}, {3, {4, 7, 0}}, {8, {9, 0, 0}}}},
        {2,
         {1401, 8, 15},
         800'000'000,
         1'000'000'000,
         36,
         1,
         true,
         u"مبلغ با نظر هیئت مدیره کاهش یافت",
         {{10, {11, 12, 13}}}},
        {3,
         {1402, 1, 20},
         250'000'000,
         0,
         24,
         2,
         true,
         nullptr,
         {{14, {15, 0, 0}}, {20, {21, 22, 0}}}},
        {4,
         {1402, 5, 5},
         90'000'000,
         0,
         10,
         0,
         true,
         u"خرید لوازم خانگی",
         {{23, {24, 0, 0}}, {25, {26, 0, 0}}, {27, {28, 0, 0}}, {29, {30, 0, 0}}}},
        {1,
         {1402, 10, 1},
         45'000'000,
         0,
         9,
         0,
         true,
         nullptr,
         {{31, {32, 0, 0}}, {35, {36, 37, 0}}}},
        {5,
         {1403, 1, 25},
         20'000'000,
         0,
         4,
         0,
         true,
         u"مساعده نوروزی",
         {{38, {0, 0, 0}}, {39, {0, 0, 0}}, {40, {0, 0, 0}}, {41, {0, 0, 0}}}},
        {6,
         {1403, 3, 12},
         150'000'000,
         160'000'000,
         20,
         1,
         true,
         nullptr,
         {{42, {43, 44, 45}}, {46, {47, 0, 0}}}},
        {2, {1403, 5, 18}, 500'000'000, 0, 48, 2, true, nullptr, {{49, {50, 51, 0}}}},
        {1,
         {1403, 6, 30},
         70'000'000,
         0,
         14,
         0,
         true,
         nullptr,
         {{52, {53, 0, 0}}, {54, {55, 0, 0}}, {56, {57, 0, 0}}}},
        {3, {1403, 7, 1}, 200'000'000, 0, 20, 2, false, nullptr, {{58, {60, 0, 0}}}},
        {4, {1403, 7, 1}, 120'000'000, 0, 12, 0, false, u"در انتظار تعیین کارمندان", {}},
        {1, {1403, 6, 15}, 35'000'000, 0, 7, 1, false, nullptr, {{2, {1, 0, 0}}, {4, {3, 0, 0}}}},
        {6,
         {1403, 7, 1},
         180'000'000,
         0,
         18,
         2,
         false,
         u"صندوق قرض‌الحسنه واحد مالی",
         {{12, {14, 15, 16}}}},
        // An advance whose first instalment falls in the working month, to an employee who
        // repays another loan (3) too.
        {5, {1403, 7, 5}, 30'000'000, 0, 6, 0, true, nullptr, {{20, {21, 0, 0}}}},
    };
}

// The final loans (1-based, in demoLoans order) whose instalments the payroll has deducted
// up to the month before the working date, and those of them it has deducted for the working
// month too.
constexpr std::array<int, 6> kPaidLoans = {2, 3, 4, 5, 7, 9};
constexpr std::array<int, 2> kPaidThisMonth = {2, 7};

struct Adjustment {
    int loan;  // 1-based, in demoLoans order
    int employee;
    JDate begin;
    JDate end;  // y == 0: open-ended
    qint64 monthlyDebit;
};
// Lower instalments stretch a member's repayment past the loan's settlement date (loans 2,
// 4 and 5); a later adjustment overlapping an earlier one holds (loan 2); a higher one
// shortens it (loan 3); loan 9's lies ahead of the working date, loan 8's covers it.
const std::array<Adjustment, 9> kAdjustments = {{
    {2, 10, {1402, 1, 1}, {1402, 6, 31}, 10'000'000},
    {3, 20, {1402, 7, 1}, {1402, 9, 30}, 5'000'000},
    {4, 27, {1402, 8, 1}, {1402, 10, 30}, 4'000'000},
    {5, 35, {1403, 4, 1}, {1403, 6, 31}, 2'000'000},
    {7, 46, {1403, 8, 1}, {0, 0, 0}, 5'000'000},
    {2, 10, {1402, 4, 1}, {1402, 5, 31}, 15'000'000},
    {3, 14, {1403, 8, 1}, {1403, 9, 30}, 15'000'000},
    {9, 54, {1403, 9, 1}, {1403, 11, 30}, 3'000'000},
    {8, 49, {1403, 7, 1}, {1403, 9, 30}, 8'000'000},
}};

// A month the payroll deducted nothing for a member (unpaid leave): loan, employee, month.
struct MissedMonth {
    int loan;
    int employee;
    int y, m;
};
constexpr MissedMonth kMissedMonth = {3, 14, 1402, 11};
// A month the payroll deducted an instalment from a member who owed nothing any more (his loan
// was repaid the month before): loan, employee, month and the amount.
struct ExtraDeduction {
    int loan;
    int employee;
    int y, m;
    qint64 amount;
};
constexpr ExtraDeduction kExtraDeduction = {5, 31, 1403, 7, 5'000'000};

// What the payroll deducts from a member in the k-th month (1-based) of a loan: the
// instalment, with the remainder where the loan puts it, an adjustment's amount while one
// covers the month (the last recorded holds), never more than is still owed.
qint64 deduction(int loan, int employee, const JDate& month, int k, qint64 monthly,
                 qint64 remainder, int payBack, int option, qint64 owed) {
    qint64 amount = monthly;
    if (remainder > 0 && ((option == 1 && k == 1) || (option == 0 && k == payBack)))
        amount += remainder;
    else if (remainder > 0 && option == 2 && k == payBack + 1)
        amount = remainder;
    const int key = month.y * 100 + month.m;
    for (const Adjustment& a : kAdjustments)
        if (a.loan == loan && a.employee == employee && key >= a.begin.y * 100 + a.begin.m &&
            (a.end.y == 0 || key <= a.end.y * 100 + a.end.m))
            amount = a.monthlyDebit;
    return std::min(amount, owed);
}

class Writer {
public:
    explicit Writer(QSqlDatabase& db) : db_(db) {}

    void exec(const QString& sql, const QVariantList& values = {}) {
        QSqlQuery q(db_);
        if (!q.prepare(sql)) fail(q, sql);
        for (const QVariant& v : values) q.addBindValue(v);
        if (!q.exec()) fail(q, sql);
    }

    QVariant scalar(const QString& sql) {
        QSqlQuery q(db_);
        if (!q.exec(sql)) fail(q, sql);
        return q.next() ? q.value(0) : QVariant();
    }

    QList<QVariantList> rows(const QString& sql) {
        QSqlQuery q(db_);
        if (!q.exec(sql)) fail(q, sql);
        QList<QVariantList> out;
        while (q.next()) {
            QVariantList row;
            for (int c = 0; c < q.record().count(); ++c) row << q.value(c);
            out << row;
        }
        return out;
    }

private:
    [[noreturn]] static void fail(const QSqlQuery& q, const QString& sql) {
        throw KavError(KavError::Kind::Database, q.lastError().text() + u"\n"_s + sql);
    }
    QSqlDatabase& db_;
};

QVariant dateValue(const JDate& d) { return kSqlite.dateText(d.y == 0 ? QDate() : d.gregorian()); }

void writeEmployees(Writer& w) {
    for (int i = 0; i < kEmployeeCount; ++i) {
        const int id = i + 1;
        // Personnel codes: four digits for the older staff, five and six for later hires.
        const qint64 code = i < 40 ? 1001 + i * 3 : (i < 54 ? 20000 + i * 137 : 100000 + i * 1013);
        const QString first = QString::fromUtf16(kFirstNames[(i * 7) % 30]);
        const QString sur = QString::fromUtf16(kSurnames[(i * 11 + i / 30) % 30]);
        const QString father = QString::fromUtf16(kFirstNames[(i * 13 + 5) % 20]);
        w.exec(
            u"insert into tblEmployee (ID, Code, FirstName, SureName, FatherName, WorkStatusID) "
            u"values (?, ?, ?, ?, ?, ?)"_s,
            {id, QString::number(code), first, sur, father, hasLeft(id) ? 3 : 1});
    }
}

void writeOrdinances(Writer& w) {
    // One ordinance per Persian year from the year of hiring; those who left stop in 1401;
    // two recent hires have none yet.
    for (int id = 1; id <= kEmployeeCount; ++id) {
        if (id == 17 || id == 51) continue;
        const int hired = 1397 + (id % 5);
        const int last = hasLeft(id) ? 1401 : kWorkYear;
        for (int y = hired; y <= last; ++y) {
            const JDate begin{y, 1, 1};
            const JDate end{y, 12, kJalali.daysInMonth(12, y)};
            w.exec(
                u"insert into tblHROrdinance (EmployeeID, BeginDate, EndDate, FarsiBeginDate, "
                u"FarsiEndDate) values (?, ?, ?, ?, ?)"_s,
                {id, dateValue(begin), dateValue(end), begin.farsi(), end.farsi()});
        }
    }
}

void writeLoanTypes(Writer& w) {
    int id = 0;
    for (const LoanType& t : kLoanTypes)
        w.exec(u"insert into tblHRLoanType (ID, Name, MaxValue) values (?, ?, ?)"_s,
               {++id, QString::fromUtf16(t.name),
                t.maxValue ? QVariant(t.maxValue) : QVariant(QMetaType::fromType<qint64>())});
}

void writeLoans(Writer& w) {
    const std::vector<Loan> loans = demoLoans();
    int loanId = 0;
    int code = 0;
    for (const Loan& l : loans) {
        ++loanId;
        // The first instalment falls at the end of the payment month, the last n - 1
        // months later; what the equal instalments leave over is the remainder.
        const JDate begin = l.payment.monthEnd(0);
        const JDate end = begin.monthEnd(l.payBack - 1);
        const qint64 monthly = l.value / l.payBack / 10'000 * 10'000;
        w.exec(
            u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, FarsiPaymentDate, "
            u"BeginDate, FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, "
            u"MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth, Notes) "
            u"values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_s,
            {loanId, l.isFinal ? QVariant(++code) : QVariant(QMetaType::fromType<int>()), l.type,
             dateValue(l.payment), l.payment.farsi(), dateValue(begin), begin.farsi(),
             dateValue(end), end.farsi(), l.value, l.originalValue ? l.originalValue : l.value,
             monthly, l.payBack, l.remainderOption,
             l.notes ? QVariant(QString::fromUtf16(l.notes))
                     : QVariant(QMetaType::fromType<QString>())});
        for (const Member& m : l.members) {
            QVariantList values{loanId, m.employee};
            for (int g : m.guarantors)
                values << (g ? QVariant(g) : QVariant(QMetaType::fromType<int>()));
            w.exec(
                u"insert into tblHRLoanDetail (LoanID, EmployeeID, SupporterEmployeeID1, "
                u"SupporterEmployeeID2, SupporterEmployeeID3) values (?, ?, ?, ?, ?)"_s,
                values);
        }
        if (std::find(kPaidLoans.begin(), kPaidLoans.end(), loanId) != kPaidLoans.end()) {
            // Every instalment up to the month before the working date (or up to the working
            // month) was deducted, as the loan and the member's adjustments plan it, until
            // nothing is owed.
            const qint64 remainder = l.value - monthly * l.payBack;
            const bool thisMonth = std::find(kPaidThisMonth.begin(), kPaidThisMonth.end(),
                                             loanId) != kPaidThisMonth.end();
            const int upTo = kWorkYear * 100 + kWorkMonth + (thisMonth ? 1 : 0);
            for (const Member& m : l.members) {
                JDate month{begin.y, begin.m, 1};
                qint64 owed = l.value;
                for (int k = 1; owed > 0; ++k, month = month.monthEnd(1)) {
                    if (month.y * 100 + month.m >= upTo) break;
                    qint64 paid = deduction(loanId, m.employee, month, k, monthly, remainder,
                                            l.payBack, l.remainderOption, owed);
                    if (loanId == kMissedMonth.loan && m.employee == kMissedMonth.employee &&
                        month.y == kMissedMonth.y && month.m == kMissedMonth.m)
                        paid = 0;
                    owed -= paid;
                    w.exec(
                        u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, "
                        u"PaidValue) values (?, ?, ?, ?)"_s,
                        {loanId, m.employee,
                         u"%1/%2"_s.arg(month.y).arg(month.m, 2, 10, QChar(u'0')), paid});
                }
            }
        }
        if (loanId == kExtraDeduction.loan)
            w.exec(
                u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, PaidValue) "
                u"values (?, ?, ?, ?)"_s,
                {loanId, kExtraDeduction.employee,
                 u"%1/%2"_s.arg(kExtraDeduction.y).arg(kExtraDeduction.m, 2, 10, QChar(u'0')),
                 kExtraDeduction.amount});
    }
}

void writeAdjustments(Writer& w) {
    for (const Adjustment& a : kAdjustments)
        w.exec(
            u"insert into tblHRLoanException (LoanID, EmployeeID, BeginDate, FarsiBeginDate, "
            u"EndDate, FarsiEndDate, MonthlyDebit) values (?, ?, ?, ?, ?, ?, ?)"_s,
            {a.loan, a.employee, dateValue(a.begin), a.begin.farsi(), dateValue(a.end),
             a.end.y ? a.end.farsi() : u""_s, a.monthlyDebit});
}

// ---- History ----

namespace snapshot = data::snapshot;

// A loan of the demo database as the history keeps it.
snapshot::Parts storedLoan(Writer& w, int loanId) {
    snapshot::Parts parts;
    const auto loan = w.rows(snapshot::LoanQuery(loanId));
    if (!loan.isEmpty()) parts.loan = snapshot::RowObject(snapshot::LoanColumns(), loan.first());
    for (const QVariantList& m : w.rows(snapshot::MembersQuery(loanId)))
        parts.members << snapshot::MemberOf(m);
    return parts;
}

snapshot::Member member(int employee, int guarantor) {
    snapshot::Member m;
    m.employeeId = employee;
    if (guarantor) m.guarantors[0] = guarantor;
    return m;
}

struct Change {
    int loan;
    snapshot::Command command;
    const char16_t* atUtc;
    int employee;  // the session's employee; 0 for none (the window names the user)
    const snapshot::Parts* before;
    const snapshot::Parts* after;
};

void writeChange(Writer& w, const Change& c) {
    const QString before = c.before ? snapshot::Text(*c.before) : QString();
    const QString after = c.after ? snapshot::Text(*c.after) : QString();
    // The loan's number at that moment: the one it has after, else the one it had.
    const auto codeOf = [](const snapshot::Parts* p) {
        return p && p->loan ? p->loan->value(u"Code"_s) : QJsonValue();
    };
    const QJsonValue code = codeOf(c.after).isDouble() ? codeOf(c.after) : codeOf(c.before);
    w.exec(
        u"insert into tblHRLoanHistory (LoanID, RestoredFromLoanID, LoanCode, Command, UserID, "
        u"PositionID, EmployeeID, ChangedAtUtc, LoanBefore, LoanAfter) values "
        u"(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_s,
        {c.loan, QVariant(QMetaType::fromType<int>()),
         code.isDouble() ? QVariant(code.toInteger()) : QVariant(QMetaType::fromType<qint64>()),
         snapshot::CommandCode(c.command), int(DemoUserWithPermissions), 0, c.employee,
         QString::fromUtf16(c.atUtc),
         before.isNull() ? QVariant(QMetaType::fromType<QString>()) : before,
         after.isNull() ? QVariant(QMetaType::fromType<QString>()) : after});
}

// A few loans with a past: loan 9 saved three times as temporary (its amount raised, a member
// added and a guarantor changed on the way) before it was made final; loan 12 lost a member;
// loan 15 was made final, returned to temporary and deleted, and waits in the deleted loans
// for a restore.
void writeHistory(Writer& w) {
    using C = snapshot::Command;
    constexpr int clerk = 5;  // the employee the demo's clerk works as

    const snapshot::Parts final9 = storedLoan(w, 9);
    snapshot::Parts second9 = final9;  // before the final save
    second9.loan->insert(u"Code"_s, QJsonValue::Null);
    snapshot::Parts first9 = second9;  // two members, a lower amount, another guarantor
    first9.loan->insert(u"LoanValue"_s, 65'000'000);
    first9.loan->insert(u"OriginalLoanValue"_s, 65'000'000);
    first9.loan->insert(u"MonthlyValue"_s, 4'640'000);
    first9.members = {member(52, 53), member(54, 57)};
    snapshot::Parts new9 = first9;
    new9.members.clear();

    const snapshot::Parts now12 = storedLoan(w, 12);
    snapshot::Parts before12 = now12;
    before12.members << member(7, 8);

    // Loan 15: stored, then deleted; its ID is never handed out again.
    w.exec(
        u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, FarsiPaymentDate, BeginDate, "
        u"FarsiBeginDate, EndDate, FarsiEndDate, LoanValue, OriginalLoanValue, MonthlyValue, "
        u"PayBackNumber, UseRemainedValueInFirstMonth, Notes) values "
        u"(15, NULL, 4, ?, '1403/06/10', ?, '1403/06/31', ?, '1404/02/31', 40000000, 40000000, "
        u"5000000, 8, 0, ?)"_s,
        {dateValue({1403, 6, 10}), dateValue({1403, 6, 31}), dateValue({1404, 2, 31}),
         u"خرید یخچال"_s});
    for (const auto& [employee, guarantor] : {std::pair{18, 20}, std::pair{21, 0}})
        w.exec(
            u"insert into tblHRLoanDetail (LoanID, EmployeeID, SupporterEmployeeID1) values "
            u"(15, ?, ?)"_s,
            {employee, guarantor ? QVariant(guarantor) : QVariant(QMetaType::fromType<int>())});
    const snapshot::Parts deleted15 = storedLoan(w, 15);
    snapshot::Parts final15 = deleted15;  // for a day it was final, with the number 10
    final15.loan->insert(u"Code"_s, 10);
    w.exec(u"delete from tblHRLoanDetail where LoanID=15"_s);
    w.exec(u"delete from tblHRLoan where ID=15"_s);

    const Change changes[] = {
        {9, C::TemporarySave, u"2024-09-20 05:42:10.250", clerk, nullptr, &new9},
        {9, C::TemporarySave, u"2024-09-20 05:50:31.000", clerk, &new9, &first9},
        {9, C::TemporarySave, u"2024-09-21 07:05:02.500", 0, &first9, &second9},
        {9, C::FinalSave, u"2024-09-21 07:31:44.125", clerk, &second9, &final9},
        {12, C::TemporarySave, u"2024-09-22 06:15:00.000", clerk, nullptr, &before12},
        {12, C::RemoveMember, u"2024-09-22 08:47:19.000", clerk, &before12, &now12},
        {15, C::TemporarySave, u"2024-09-23 05:30:00.000", clerk, nullptr, &deleted15},
        {15, C::FinalSave, u"2024-09-23 05:34:12.000", clerk, &deleted15, &final15},
        {15, C::BackToTemporary, u"2024-09-24 06:20:48.000", 0, &final15, &deleted15},
        {15, C::Delete, u"2024-09-24 06:21:30.000", 0, &deleted15, nullptr},
    };
    for (const Change& c : changes) writeChange(w, c);
}

void writeParametersAndUsers(Writer& w) {
    w.exec(u"insert into tblVarekSystemParameters (ID, Value) values (?, ?)"_s,
           {names::DefaultPayDateParameterID, JDate{kWorkYear, kWorkMonth, 1}.farsi()});
    for (int p :
         {names::PermissionOpenModule, names::PermissionNewOrDeleteLoan, names::PermissionEditLoan})
        w.exec(u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (?, ?)"_s,
               {int(DemoUserWithPermissions), p});
}

void fill(QSqlDatabase& db) {
    Writer w(db);
    if (HasEmbeddedSchema(db) && w.scalar(u"select count(*) from tblEmployee"_s).toInt() > 0) {
        // Already a demo (or real) database: its rows are left alone; only what the module
        // has added since it was made (the history table) is created.
        CreateEmbeddedSchema(db);
        return;
    }
    CreateEmbeddedSchema(db);
    if (!db.transaction()) throw KavError(KavError::Kind::Database, db.lastError().text());
    try {
        writeEmployees(w);
        writeOrdinances(w);
        writeLoanTypes(w);
        writeLoans(w);
        writeAdjustments(w);
        writeHistory(w);
        writeParametersAndUsers(w);
    } catch (...) {
        db.rollback();
        throw;
    }
    if (!db.commit()) throw KavError(KavError::Kind::Database, db.lastError().text());
}

}  // namespace

void CreateDemoDatabase(const QString& file) {
    const QString name = u"kav-demo-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        if (!db.open()) {
            const QString error = db.lastError().text();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw KavError(KavError::Kind::Connection,
                           u"پايگاه داده نمايشي «%1» ساخته نشد: %2"_s.arg(file, error));
        }
        try {
            fill(db);
        } catch (...) {
            db.close();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
            throw;
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

QString EmbeddedConnectionString(const QString& file) {
    return u"Provider=SQLite;Data Source="_s + file;
}

}  // namespace kav::data
