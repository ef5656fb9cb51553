#include "LargeDatabase.h"

#include <QCalendar>
#include <QDate>
#include <QFile>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

#include "RawSqlite.h"
#include "base/Errors.h"
#include "data/EmbeddedSchema.h"
#include "data/Names.h"
#include "data/SqlDialect.h"

using namespace Qt::StringLiterals;

namespace kav::bench {

namespace {

const QCalendar kJalali(QCalendar::System::Jalali);

// splitmix64: a small generator whose sequence is fixed by its seed on every platform
// (the standard library's distributions are not).
class Rng {
public:
    explicit Rng(quint64 seed) : state_(seed) {}
    quint64 next() {
        quint64 z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // A whole number from lo to hi, both included.
    int between(int lo, int hi) { return lo + int(next() % quint64(hi - lo + 1)); }
    double unit() { return double(next() >> 11) / double(1ull << 53); }
    bool chance(double p) { return unit() < p; }
    // An index drawn with the given weights.
    template <size_t N>
    int weighted(const std::array<int, N>& weights) {
        const int total = std::accumulate(weights.begin(), weights.end(), 0);
        int x = between(0, total - 1);
        for (size_t i = 0; i < N; ++i) {
            if (x < weights[i]) return int(i);
            x -= weights[i];
        }
        return int(N - 1);
    }

private:
    quint64 state_;
};

// Months are counted as year * 12 + month - 1, so that stepping is adding.
int monthIndex(int y, int m) { return y * 12 + m - 1; }
int yearOf(int index) { return index / 12; }
int monthOf(int index) { return index % 12 + 1; }
int lastDay(int index) { return kJalali.daysInMonth(monthOf(index), yearOf(index)); }

QString farsiDate(int index, int day) {
    return u"%1/%2/%3"_s.arg(yearOf(index), 4, 10, QChar(u'0'))
        .arg(monthOf(index), 2, 10, QChar(u'0'))
        .arg(day, 2, 10, QChar(u'0'));
}
QString payMonth(int index) {
    return u"%1/%2"_s.arg(yearOf(index), 4, 10, QChar(u'0'))
        .arg(monthOf(index), 2, 10, QChar(u'0'));
}
QString gregorianDate(int index, int day) {
    static const data::SqlDialect sqlite(data::DatabaseKind::SQLite);
    return sqlite.dateText(QDate(yearOf(index), monthOf(index), day, kJalali));
}

// Persian given names and surnames, combined at random as a personnel office sees them.
const std::array<const char16_t*, 40> kMaleNames = {
    u"محمد", u"علی",   u"حسین",  u"رضا",    u"مهدی",  u"امیر",    u"حسن",   u"مصطفی",
    u"سعید", u"مجید",  u"حمید",  u"جواد",   u"احمد",  u"محسن",    u"وحید",  u"کاظم",
    u"یوسف", u"بهزاد", u"فرهاد", u"کامران", u"مرتضی", u"ابراهیم", u"اکبر",  u"اصغر",
    u"عباس", u"هادی",  u"مسعود", u"ناصر",   u"داوود", u"جعفر",    u"صادق",  u"مهران",
    u"پویا", u"آرش",   u"بابک",  u"کیوان",  u"رامین", u"سجاد",    u"میلاد", u"امید"};
const std::array<const char16_t*, 30> kFemaleNames = {
    u"فاطمه",  u"زهرا",  u"مریم",   u"سارا",  u"نرگس",  u"لیلا",  u"الهام", u"مهسا",
    u"فرزانه", u"شیرین", u"معصومه", u"زینب",  u"طاهره", u"سمیرا", u"نسرین", u"پریسا",
    u"مینا",   u"ندا",   u"آزاده",  u"اعظم",  u"سمیه",  u"راضیه", u"منیژه", u"شهلا",
    u"پروانه", u"فرشته", u"نازنین", u"هانیه", u"کوثر",  u"ریحانه"};
const std::array<const char16_t*, 80> kSurnames = {u"احمدی",
                                                   u"محمدی",
                                                   u"حسینی",
                                                   u"رضایی",
                                                   u"کریمی",
                                                   u"موسوی",
                                                   u"جعفری",
                                                   u"صادقی",
                                                   u"رحیمی",
                                                   u"هاشمی",
                                                   u"قاسمی",
                                                   u"نوری",
                                                   u"عباسی",
                                                   u"کاظمی",
                                                   u"طاهری",
                                                   u"اکبری",
                                                   u"فراهانی",
                                                   u"شریفی",
                                                   u"نجفی",
                                                   u"سلطانی",
                                                   u"میرزایی",
                                                   u"یزدانی",
                                                   u"خسروی",
                                                   u"توکلی",
                                                   u"بهرامی",
                                                   u"زمانی",
                                                   u"عسگری",
                                                   u"حیدری",
                                                   u"مرادی",
                                                   u"قربانی",
                                                   u"ابراهیمی",
                                                   u"اسدی",
                                                   u"امینی",
                                                   u"باقری",
                                                   u"بابایی",
                                                   u"پورمحمدی",
                                                   u"تهرانی",
                                                   u"جلالی",
                                                   u"حسن‌زاده",
                                                   u"خلیلی",
                                                   u"دهقان",
                                                   u"رستمی",
                                                   u"زارعی",
                                                   u"سبحانی",
                                                   u"شجاعی",
                                                   u"صفری",
                                                   u"عزیزی",
                                                   u"فتحی",
                                                   u"قنبری",
                                                   u"کرمانی",
                                                   u"کیانی",
                                                   u"گودرزی",
                                                   u"لطفی",
                                                   u"مختاری",
                                                   u"منصوری",
                                                   u"نادری",
                                                   u"نظری",
                                                   u"وحیدی",
                                                   u"یوسفی",
                                                   u"اصفهانی",
                                                   u"شیرازی",
                                                   u"تبریزی",
                                                   u"رشتی",
                                                   u"سلیمانی",
                                                   u"فرجی",
                                                   u"علیزاده",
                                                   u"قلی‌پور",
                                                   u"نیک‌نام",
                                                   u"آقایی",
                                                   u"افشار",
                                                   u"بیات",
                                                   u"پاکزاد",
                                                   u"جمشیدی",
                                                   u"حاتمی",
                                                   u"خانی",
                                                   u"دلاوری",
                                                   u"رنجبر",
                                                   u"ساعدی",
                                                   u"شاکری",
                                                   u"ملکی"};

struct LoanType {
    const char16_t* name;
    qint64 maxValue;  // 0: no ceiling
    qint64 minValue;
    int minMonths, maxMonths;
    int weight;
};
const std::array<LoanType, 8> kTypes = {{
    {u"وام ضروری", 100'000'000, 10'000'000, 6, 24, 30},
    {u"وام مسکن", 1'000'000'000, 200'000'000, 36, 120, 8},
    {u"وام ازدواج", 300'000'000, 50'000'000, 12, 36, 10},
    {u"وام خرید کالا", 150'000'000, 20'000'000, 6, 20, 15},
    {u"مساعده", 0, 5'000'000, 1, 4, 15},
    {u"وام قرض‌الحسنه صندوق", 200'000'000, 20'000'000, 10, 30, 12},
    {u"وام تحصیلی", 80'000'000, 10'000'000, 10, 24, 5},
    {u"وام درمان", 120'000'000, 10'000'000, 6, 18, 5},
}};
constexpr int kHousingType = 2;
constexpr int kAdvanceType = 5;

const std::array<const char16_t*, 8> kNotes = {
    u"طبق مصوبه هیئت مدیره",     u"خرید لوازم خانگی",
    u"هزینه درمان همسر",         u"مبلغ با نظر هیئت مدیره کاهش یافت",
    u"پرداخت از محل صندوق رفاه", u"در انتظار تعیین ضامن",
    u"شهریه دانشگاه فرزند",      u"تعمیرات منزل"};
const char16_t* const kBigLoanNote = u"مساعده عیدی کارکنان";

struct Employee {
    QString code, first, sur, father;
    int status = 1;
};

struct Member {
    int employee;
    std::array<int, 3> guarantors{};  // 0: none
};

struct Loan {
    int type = 1;
    int month = 0, day = 1;  // payment date; the instalments run from this month
    int payBack = 1;
    qint64 value = 0, original = 0, monthly = 0;
    bool monthlyNull = false;
    int option = 0;
    bool isFinal = true;
    int note = -1;
    bool big = false, longSchedule = false;
    std::vector<Member> members;

    int beginMonth() const { return month; }
    int endMonth() const { return month + payBack - 1; }
    qint64 remainder() const { return value - monthly * payBack; }
};

struct Adjustment {
    int loan, employee;
    int begin, end;  // month indexes; end < 0: open-ended
    qint64 debit;
};

void check(bool ok, const QString& what) {
    if (!ok) throw KavError(KavError::Kind::Usage, u"large database: "_s + what);
}

// Spreads total over n slots of lo to hi each: drawn from the weights (slot value lo + the
// weight's index), then moved one at a time until the sum is exact.
template <size_t N>
std::vector<int> spread(Rng& rng, int n, int total, int lo, int hi,
                        const std::array<int, N>& weights) {
    std::vector<int> v(static_cast<size_t>(n));
    qint64 sum = 0;
    for (int& x : v) {
        x = std::min(hi, lo + rng.weighted(weights));
        sum += x;
    }
    while (sum != total) {
        int& x = v[size_t(rng.between(0, n - 1))];
        if (sum < total && x < hi) {
            ++x;
            ++sum;
        } else if (sum > total && x > lo) {
            --x;
            --sum;
        }
    }
    return v;
}

class Generator {
public:
    explicit Generator(const LargeDatabaseOptions& o) : o_(o), rng_(o.seed) {}

    void validate() const {
        check(o_.employees >= 20, u"at least 20 employees"_s);
        check(o_.loans >= 3, u"at least 3 loans"_s);
        check(o_.bigLoanMembers >= 13 && o_.bigLoanMembers <= o_.employees * 9 / 10,
              u"the big loan needs 13 members at least and at most nine tenths of the employees"_s);
        const int others = o_.loans - 2;
        const qint64 rest = qint64(o_.memberRows) - o_.bigLoanMembers - 1;
        check(rest >= others && rest <= qint64(others) * 12,
              u"member rows must allow 1 to 12 members per loan"_s);
        check(o_.longScheduleMonths >= 12 && o_.longScheduleMonths <= 600,
              u"the long schedule runs 12 to 600 months"_s);
        check(o_.payslipRows >= o_.longScheduleMonths, u"too few payslip rows"_s);
        check(o_.adjustments >= 3, u"at least 3 adjustments"_s);
        check(o_.ordinances >= 0 && o_.ordinances <= o_.employees * 8,
              u"at most 8 ordinances per employee"_s);
    }

    void generate() {
        validate();
        makeEmployees();
        makeLoans();
        makeMembers();
        makePayslips();
        makeAdjustments();
        makeOrdinances();
    }

    void write(RawDb& db) const;
    Landmarks landmarks() const { return landmarks_; }

private:
    int workMonth() const { return monthIndex(WorkYear, WorkMonth); }
    bool active(int id) const { return employees_[size_t(id - 1)].status != 3; }
    int randomEmployee() { return rng_.between(1, o_.employees); }
    int randomActiveEmployee() {
        for (;;)
            if (const int id = randomEmployee(); active(id)) return id;
    }

    void makeEmployees() {
        int code = 1000;
        for (int i = 0; i < o_.employees; ++i) {
            Employee e;
            code += rng_.between(1, 7);
            e.code = QString::number(code);
            e.first =
                QString::fromUtf16(rng_.chance(0.35) ? kFemaleNames[size_t(rng_.between(0, 29))]
                                                     : kMaleNames[size_t(rng_.between(0, 39))]);
            e.sur = QString::fromUtf16(kSurnames[size_t(rng_.between(0, 79))]);
            e.father = QString::fromUtf16(kMaleNames[size_t(rng_.between(0, 39))]);
            e.status = rng_.chance(0.05) ? 3 : 1;
            employees_.push_back(e);
        }
        employees_[1].status = 3;  // at least one who has left, at any size
    }

    void makeLoans() {
        const int last = workMonth() - 1;
        const int first = std::min(monthIndex(1378, 1), workMonth() - o_.longScheduleMonths);
        loans_.resize(size_t(o_.loans));
        for (size_t i = 0; i < loans_.size(); ++i) {
            Loan& l = loans_[i];
            // More loans in later years, as the staff grew.
            l.month =
                first + std::min(last - first, int((last - first + 1) * std::sqrt(rng_.unit())));
            l.day = rng_.between(1, lastDay(l.month));
            l.type = 1 + rng_.weighted(std::array<int, 8>{30, 8, 10, 15, 15, 12, 5, 5});
            const LoanType& t = kTypes[size_t(l.type - 1)];
            l.payBack = rng_.between(t.minMonths, t.maxMonths);
            const qint64 top = t.maxValue ? t.maxValue : 50'000'000;
            l.value = (t.minValue + qint64(rng_.unit() * double(top - t.minValue))) / 1'000'000 *
                      1'000'000;
            l.original = rng_.chance(0.1) ? l.value + rng_.between(1, 30) * 1'000'000 : l.value;
            l.option = rng_.weighted(std::array<int, 3>{50, 30, 20});
            l.note = rng_.chance(0.15) ? rng_.between(0, int(kNotes.size()) - 1) : -1;
            l.isFinal = l.month >= last - 5 ? rng_.chance(0.6) : rng_.chance(0.98);
        }
        // The landmarks: a loan to everyone, still temporary, paid in the last month; and a
        // housing loan whose instalments have run for longScheduleMonths months.
        Loan& big = loans_[0];
        big.big = true;
        big.month = last;
        big.day = 15;
        big.type = kAdvanceType;
        big.payBack = 4;
        big.value = big.original = 20'000'000;
        big.option = 2;
        big.isFinal = false;
        big.note = -1;
        Loan& lng = loans_[1];
        lng.longSchedule = true;
        lng.month = workMonth() - o_.longScheduleMonths;
        lng.day = 10;
        lng.type = kHousingType;
        lng.payBack = o_.longScheduleMonths;
        lng.value = lng.original = 600'000'000;
        lng.option = 1;
        lng.isFinal = true;
        for (Loan& l : loans_) {
            l.monthly = l.value / l.payBack / 10'000 * 10'000;
            l.monthlyNull = !l.isFinal && !l.big && rng_.chance(0.05);
        }
        // Loans are numbered in the order they were paid.
        std::stable_sort(loans_.begin(), loans_.end(), [](const Loan& a, const Loan& b) {
            return a.month != b.month ? a.month < b.month : a.day < b.day;
        });
        for (size_t i = 0; i < loans_.size(); ++i) {
            if (loans_[i].big) landmarks_.bigLoanId = qint32(i + 1);
            if (loans_[i].longSchedule) landmarks_.longScheduleLoanId = qint32(i + 1);
        }
    }

    void addGuarantors(Member& m) {
        const int count = rng_.weighted(std::array<int, 4>{15, 45, 30, 10});
        for (int g = 0; g < count; ++g) {
            int id;
            do id = randomActiveEmployee();
            while (id == m.employee ||
                   std::find(m.guarantors.begin(), m.guarantors.end(), id) != m.guarantors.end());
            m.guarantors[size_t(g)] = id;
        }
    }

    void makeMembers() {
        std::vector<size_t> ordinary;
        for (size_t i = 0; i < loans_.size(); ++i)
            if (!loans_[i].big && !loans_[i].longSchedule) ordinary.push_back(i);
        const std::vector<int> counts =
            spread(rng_, int(ordinary.size()), o_.memberRows - o_.bigLoanMembers - 1, 1, 12,
                   std::array<int, 12>{30, 18, 12, 9, 7, 6, 5, 4, 3, 2, 2, 2});
        for (size_t k = 0; k < ordinary.size(); ++k) {
            Loan& l = loans_[ordinary[k]];
            // Who has left is no borrower of the last years.
            const bool recent = yearOf(l.month) >= 1401;
            while (int(l.members.size()) < counts[k]) {
                const int id = recent ? randomActiveEmployee() : randomEmployee();
                if (std::none_of(l.members.begin(), l.members.end(),
                                 [id](const Member& m) { return m.employee == id; }))
                    l.members.push_back({id, {}});
            }
        }
        std::vector<int> pool;
        for (int id = 1; id <= o_.employees; ++id)
            if (active(id)) pool.push_back(id);
        check(int(pool.size()) >= o_.bigLoanMembers,
              u"too few active employees for the big loan"_s);
        for (Loan& l : loans_) {
            if (l.big) {
                for (int k = 0; k < o_.bigLoanMembers; ++k) {
                    std::swap(pool[size_t(k)], pool[size_t(rng_.between(k, int(pool.size()) - 1))]);
                    l.members.push_back({pool[size_t(k)], {}});
                }
            } else if (l.longSchedule) {
                l.members.push_back({randomActiveEmployee(), {}});
                landmarks_.longScheduleEmployeeId = l.members[0].employee;
            }
            for (Member& m : l.members) addGuarantors(m);
        }
    }

    struct Payslip {
        int month, loan, employee;
        qint64 paid;
    };

    // What a member of the loan owes in its k-th month (counting from 0), before any
    // adjustment; 0 past the end.
    static qint64 instalment(const Loan& l, int k) {
        const qint64 rem = l.remainder();
        if (k < l.payBack) {
            qint64 v = l.monthly;
            if (l.option == 1 && k == 0) v += rem;
            if (l.option == 0 && k == l.payBack - 1) v += rem;
            return v;
        }
        return l.option == 2 && k == l.payBack ? rem : 0;
    }

    void makePayslips() {
        auto deduct = [&](size_t loanIndex, const Member& m, int budget) {
            const Loan& l = loans_[loanIndex];
            int added = 0;
            for (int k = 0; added < budget; ++k) {
                const int month = l.beginMonth() + k;
                if (month >= workMonth()) break;
                const qint64 v = instalment(l, k);
                if (v <= 0) break;
                payslips_.push_back({month, int(loanIndex + 1), m.employee, v});
                ++added;
            }
            return added;
        };
        int budget = o_.payslipRows;
        for (size_t i = 0; i < loans_.size(); ++i)
            if (loans_[i].longSchedule) budget -= deduct(i, loans_[i].members[0], budget);
        // The payroll's history from the newest final loans backwards.
        for (size_t i = loans_.size(); i-- > 0 && budget > 0;) {
            const Loan& l = loans_[i];
            if (!l.isFinal || l.longSchedule) continue;
            for (const Member& m : l.members) {
                if (budget == 0) break;
                budget -= deduct(i, m, budget);
            }
        }
        check(budget == 0, u"too few instalments due for the payslip rows asked for"_s);
        // The payroll writes a month's deductions together.
        std::stable_sort(payslips_.begin(), payslips_.end(),
                         [](const Payslip& a, const Payslip& b) { return a.month < b.month; });
    }

    void makeAdjustments() {
        std::vector<size_t> finals;
        for (size_t i = 0; i < loans_.size(); ++i)
            if (loans_[i].isFinal && !loans_[i].longSchedule) finals.push_back(i);
        check(!finals.empty(), u"no final loan to adjust"_s);
        // Three on the long schedule: a lower instalment for a year, a pause, and an
        // open-ended higher one.
        for (size_t i = 0; i < loans_.size(); ++i) {
            const Loan& l = loans_[i];
            if (!l.longSchedule) continue;
            const int id = int(i + 1), e = l.members[0].employee;
            adjustments_.push_back(
                {id, e, l.beginMonth() + 24, l.beginMonth() + 35, l.monthly / 2});
            adjustments_.push_back({id, e, l.beginMonth() + 120, l.beginMonth() + 125, 0});
            adjustments_.push_back({id, e, l.beginMonth() + 250, -1, l.monthly * 3 / 2});
        }
        while (int(adjustments_.size()) < o_.adjustments) {
            const size_t i = finals[size_t(rng_.between(0, int(finals.size()) - 1))];
            const Loan& l = loans_[i];
            const Member& m = l.members[size_t(rng_.between(0, int(l.members.size()) - 1))];
            Adjustment a{int(i + 1), m.employee, l.beginMonth() + rng_.between(0, l.payBack - 1),
                         -1, -1};
            if (!rng_.chance(0.05)) a.end = a.begin + rng_.between(0, 11);
            if (!rng_.chance(0.03)) {
                const std::array<qint64, 4> factor = {0, 5, 15, 20};  // tenths
                a.debit = l.monthly * factor[size_t(rng_.between(0, 3))] / 10 / 10'000 * 10'000;
            }
            adjustments_.push_back(a);
        }
        std::stable_sort(
            adjustments_.begin(), adjustments_.end(),
            [](const Adjustment& a, const Adjustment& b) { return a.begin < b.begin; });
    }

    void makeOrdinances() {
        ordinanceCounts_ =
            spread(rng_, o_.employees, o_.ordinances, 0, 8, std::array<int, 5>{10, 30, 30, 20, 10});
    }

    LargeDatabaseOptions o_;
    Rng rng_;
    std::vector<Employee> employees_;
    std::vector<Loan> loans_;
    std::vector<Payslip> payslips_;
    std::vector<Adjustment> adjustments_;
    std::vector<int> ordinanceCounts_;
    Landmarks landmarks_;
};

void Generator::write(RawDb& db) const {
    {
        RawStatement s(db, u"insert into tblHRLoanType (ID, Name, MaxValue) values (?, ?, ?)"_s);
        for (size_t i = 0; i < kTypes.size(); ++i) {
            s.bind(1, qint64(i + 1)).bind(2, QString::fromUtf16(kTypes[i].name));
            if (kTypes[i].maxValue)
                s.bind(3, kTypes[i].maxValue);
            else
                s.bindNull(3);
            s.run();
        }
    }
    {
        RawStatement s(db,
                       u"insert into tblEmployee (ID, Code, FirstName, SureName, FatherName, "
                       u"WorkStatusID) values (?, ?, ?, ?, ?, ?)"_s);
        for (size_t i = 0; i < employees_.size(); ++i) {
            const Employee& e = employees_[i];
            s.bind(1, qint64(i + 1)).bind(2, e.code).bind(3, e.first).bind(4, e.sur);
            s.bind(5, e.father).bind(6, e.status).run();
        }
    }
    {
        RawStatement loan(db,
                          u"insert into tblHRLoan (ID, Code, TypeID, PaymentDate, "
                          u"FarsiPaymentDate, BeginDate, FarsiBeginDate, EndDate, FarsiEndDate, "
                          u"LoanValue, OriginalLoanValue, MonthlyValue, PayBackNumber, "
                          u"UseRemainedValueInFirstMonth, Notes) values "
                          u"(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_s);
        RawStatement member(db,
                            u"insert into tblHRLoanDetail (LoanID, EmployeeID, "
                            u"SupporterEmployeeID1, SupporterEmployeeID2, SupporterEmployeeID3) "
                            u"values (?, ?, ?, ?, ?)"_s);
        qint64 code = 0;
        for (size_t i = 0; i < loans_.size(); ++i) {
            const Loan& l = loans_[i];
            const qint64 id = qint64(i + 1);
            loan.bind(1, id);
            if (l.isFinal)
                loan.bind(2, ++code);
            else
                loan.bindNull(2);
            loan.bind(3, l.type);
            loan.bind(4, gregorianDate(l.month, l.day)).bind(5, farsiDate(l.month, l.day));
            // The first instalment at the end of the payment month, the last n - 1 months on.
            const int b = l.beginMonth(), e = l.endMonth();
            loan.bind(6, gregorianDate(b, lastDay(b))).bind(7, farsiDate(b, lastDay(b)));
            loan.bind(8, gregorianDate(e, lastDay(e))).bind(9, farsiDate(e, lastDay(e)));
            loan.bind(10, l.value).bind(11, l.original);
            if (l.monthlyNull)
                loan.bindNull(12);
            else
                loan.bind(12, l.monthly);
            loan.bind(13, l.payBack).bind(14, l.option);
            if (l.big)
                loan.bind(15, QString::fromUtf16(kBigLoanNote));
            else if (l.note >= 0)
                loan.bind(15, QString::fromUtf16(kNotes[size_t(l.note)]));
            else
                loan.bindNull(15);
            loan.run();
            for (const Member& m : l.members) {
                member.bind(1, id).bind(2, m.employee);
                for (int g = 0; g < 3; ++g)
                    if (m.guarantors[size_t(g)])
                        member.bind(3 + g, m.guarantors[size_t(g)]);
                    else
                        member.bindNull(3 + g);
                member.run();
            }
        }
    }
    {
        RawStatement s(db,
                       u"insert into tblHRMonthlyPaiedLoan (LoanID, EmployeeID, PayMonth, "
                       u"PaidValue) values (?, ?, ?, ?)"_s);
        for (const Payslip& p : payslips_)
            s.bind(1, p.loan).bind(2, p.employee).bind(3, payMonth(p.month)).bind(4, p.paid).run();
    }
    {
        RawStatement s(db,
                       u"insert into tblHRLoanException (LoanID, EmployeeID, BeginDate, "
                       u"FarsiBeginDate, EndDate, FarsiEndDate, MonthlyDebit) values "
                       u"(?, ?, ?, ?, ?, ?, ?)"_s);
        for (const Adjustment& a : adjustments_) {
            s.bind(1, a.loan).bind(2, a.employee);
            s.bind(3, gregorianDate(a.begin, 1)).bind(4, farsiDate(a.begin, 1));
            if (a.end < 0)
                s.bind(5, u"1900-01-01"_s).bind(6, QString());
            else
                s.bind(5, gregorianDate(a.end, lastDay(a.end)))
                    .bind(6, farsiDate(a.end, lastDay(a.end)));
            s.bind(7, a.debit).run();
        }
    }
    {
        RawStatement s(db,
                       u"insert into tblHROrdinance (EmployeeID, BeginDate, EndDate, "
                       u"FarsiBeginDate, FarsiEndDate) values (?, ?, ?, ?, ?)"_s);
        for (size_t i = 0; i < ordinanceCounts_.size(); ++i) {
            // One ordinance a year up to this year, or up to 1401 for those who have left.
            const int lastYear = employees_[i].status == 3 ? WorkYear - 2 : WorkYear;
            for (int y = lastYear - ordinanceCounts_[i] + 1; y <= lastYear; ++y) {
                const int b = monthIndex(y, 1), e = monthIndex(y, 12);
                s.bind(1, qint64(i + 1));
                s.bind(2, gregorianDate(b, 1)).bind(3, gregorianDate(e, lastDay(e)));
                s.bind(4, farsiDate(b, 1)).bind(5, farsiDate(e, lastDay(e))).run();
            }
        }
    }
    RawStatement parameter(db, u"insert into tblVarekSystemParameters (ID, Value) values (?, ?)"_s);
    parameter.bind(1, data::names::DefaultPayDateParameterID)
        .bind(2, farsiDate(workMonth(), 1))
        .run();
    RawStatement permission(
        db, u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, ?)"_s);
    for (int p : {data::names::PermissionOpenModule, data::names::PermissionNewOrDeleteLoan,
                  data::names::PermissionEditLoan})
        permission.bind(1, p).run();
}

}  // namespace

LargeDatabaseOptions LargeDatabaseOptions::scaledDown(int factor) const {
    LargeDatabaseOptions o = *this;
    auto down = [factor](int v, int least) { return std::max(least, v / factor); };
    o.employees = down(employees, 40);
    o.loans = down(loans, 20);
    o.bigLoanMembers = down(bigLoanMembers, 13);
    o.memberRows = std::max(memberRows / factor, o.bigLoanMembers + 1 + (o.loans - 2) * 3);
    o.adjustments = down(adjustments, 10);
    // The long schedule keeps its length: it is one member's history, and it must stay the
    // longest one.
    o.payslipRows = std::max(payslipRows / factor, longScheduleMonths * 2);
    o.ordinances = down(ordinances, 0);
    return o;
}

Landmarks CreateLargeDatabase(const QString& file, const LargeDatabaseOptions& options) {
    check(!QFile::exists(file), file + u" exists already"_s);
    Generator g(options);
    g.generate();
    try {
        RawDb db(file, true);
        db.exec(u"PRAGMA synchronous=OFF"_s);
        // The statements of the embedded schema, as CreateEmbeddedSchema runs them.
        db.exec(u"BEGIN"_s);
        for (const QString& sql : data::EmbeddedSchemaStatements()) db.exec(sql);
        g.write(db);
        db.exec(u"COMMIT"_s);
        // A database the module makes itself keeps a write-ahead log: a commit then waits for
        // the disk once instead of three or four times (the final save of the loan with 1,000
        // members: about 20 ms instead of 35 on this machine's disk). The mode stays with the
        // file; a database the module only opens is never switched.
        db.exec(u"PRAGMA journal_mode=WAL"_s);
    } catch (...) {
        QFile::remove(file);
        throw;
    }
    return g.landmarks();
}

Landmarks FindLandmarks(RawDb& db) {
    Landmarks l;
    l.bigLoanId = db.scalar(
                        u"select LoanID from tblHRLoanDetail group by LoanID "
                        u"order by count(*) desc, LoanID limit 1"_s)
                      .toInt();
    const QString longest =
        u"from tblHRMonthlyPaiedLoan group by LoanID, EmployeeID "
        u"order by count(*) desc, LoanID limit 1"_s;
    l.longScheduleLoanId = db.scalar(u"select LoanID "_s + longest).toInt();
    l.longScheduleEmployeeId = db.scalar(u"select EmployeeID "_s + longest).toInt();
    return l;
}

}  // namespace kav::bench
