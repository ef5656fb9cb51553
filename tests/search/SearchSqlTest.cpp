// The search text: the SQL Server text exactly as the suite's, the same text run on the
// embedded schema finding the right rows, and the rules that need no window.

#include <gtest/gtest.h>

#include <functional>

#include "SearchFixture.h"
#include "search/SearchSql.h"
#include "support/Raises.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::test;
using search::SearchCriteria;

namespace {

const data::SqlDialect kServer(data::DatabaseKind::SqlServer);
const data::SqlDialect kLite(data::DatabaseKind::SQLite);

const QString kBase =
    u"Select *, (select x.code from tblHRLoan x where x.id=loanid) as LoanCode, (select x.FirstName from tblEmployee x where x.id=EmployeeID) as FirstName, (select x.SureName from tblEmployee x where x.id=EmployeeID) as SureName from vwHRLoanData where ID >=0 "_s;

struct Case {
    const char* name;
    std::function<void(SearchCriteria&)> set;
    QString fragments;  // what follows the base text
};

const QList<Case>& singleCriteria() {
    static const QList<Case> cases = {
        {"nothing", [](SearchCriteria&) {}, u""_s},
        {"temporary only", [](SearchCriteria& c) { c.finalSave = false; }, u" and Code is Null"_s},
        {"final only", [](SearchCriteria& c) { c.tempSave = false; }, u" and Code is Not Null"_s},
        {"neither", [](SearchCriteria& c) { c.tempSave = c.finalSave = false; },
         u" and Code is Null and Code is Not Null"_s},
        {"notes", [](SearchCriteria& c) { c.notes = u"  خانه "_s; }, u" and Notes like '%خانه%'"_s},
        {"blank notes", [](SearchCriteria& c) { c.notes = u"   "_s; }, u" and Notes like '%%'"_s},
        {"notes with a quote", [](SearchCriteria& c) { c.notes = u"'ويژه'"_s; },
         u" and Notes like '%''ويژه''%'"_s},
        {"amount from", [](SearchCriteria& c) { c.loanValueFrom = u"1/000/000"_s; },
         u" and LoanValue>=1000000"_s},
        {"amount to alone", [](SearchCriteria& c) { c.loanValueTo = u"۲۵۰۰۰۰۰"_s; },
         u" and LoanValue<=2500000"_s},
        {"type", [](SearchCriteria& c) { c.loanTypeId = 3; }, u" and TypeID=3"_s},
        {"employee", [](SearchCriteria& c) { c.employeeId = 12; }, u" and EmployeeID=12"_s},
        {"guarantor", [](SearchCriteria& c) { c.supporterId = 5; },
         u" and (SupporterEmployeeID1=5 OR SupporterEmployeeID2=5 OR SupporterEmployeeID3=5 )"_s},
        {"paid from", [](SearchCriteria& c) { c.paymentDateFrom = u"1402/01/01"_s; },
         u" and FarsiPaymentDate>='1402/01/01' "_s},
        {"paid to", [](SearchCriteria& c) { c.paymentDateTo = u"1402/12/29"_s; },
         u" and FarsiPaymentDate<='1402/12/29'  "_s},
        {"first instalment from", [](SearchCriteria& c) { c.beginDateFrom = u"1402/02/01"_s; },
         u" and FarsiBeginDate>='1402/02/01' "_s},
        {"first instalment to", [](SearchCriteria& c) { c.beginDateTo = u"1402/03/01"_s; },
         u" and FarsiBeginDate<='1402/03/01' "_s},
        {"settled from", [](SearchCriteria& c) { c.endDateFrom = u"1403/01/01"_s; },
         u" and FarsiEndDate>='1403/01/01' "_s},
        {"settled to", [](SearchCriteria& c) { c.endDateTo = u"1404/01/01"_s; },
         u" and FarsiEndDate<='1404/01/01' "_s},
        {"instalment from", [](SearchCriteria& c) { c.perMonthFrom = u"12.50"_s; },
         u" and MonthlyValue>=12.5"_s},
        {"instalment to", [](SearchCriteria& c) { c.perMonthTo = u"1,250,000"_s; },
         u" and MonthlyValue<=1250000"_s},
    };
    return cases;
}

}  // namespace

TEST(SearchQuery, EachCriterionAddsItsFragment) {
    for (const Case& c : singleCriteria()) {
        SearchCriteria criteria;
        c.set(criteria);
        EXPECT_EQ(CheckedTsql(search::SearchQuery(kServer, criteria)), kBase + c.fragments)
            << c.name;
        EXPECT_EQ(search::SearchQuery(kLite, criteria), kBase + c.fragments) << c.name;
    }
}

TEST(SearchQuery, AllCriteriaInTheirOrder) {
    SearchCriteria c;
    c.tempSave = false;
    c.notes = u"وام"_s;
    c.loanValueFrom = u"100"_s;
    c.loanValueTo = u"۹۰۰"_s;
    c.loanTypeId = 2;
    c.employeeId = 4;
    c.supporterId = 1;
    c.paymentDateFrom = u"1401/01/01"_s;
    c.paymentDateTo = u"1401/12/29"_s;
    c.beginDateFrom = u"1401/02/01"_s;
    c.beginDateTo = u"1401/02/31"_s;
    c.endDateFrom = u"1402/01/01"_s;
    c.endDateTo = u"1402/12/29"_s;
    c.perMonthFrom = u"10"_s;
    c.perMonthTo = u"20.75"_s;
    EXPECT_EQ(
        CheckedTsql(search::SearchQuery(kServer, c)),
        kBase +
            u" and Code is Not Null and Notes like '%وام%' and LoanValue>=100 and LoanValue<=900 and TypeID=2 and EmployeeID=4 and (SupporterEmployeeID1=1 OR SupporterEmployeeID2=1 OR SupporterEmployeeID3=1 ) and FarsiPaymentDate>='1401/01/01'  and FarsiPaymentDate<='1401/12/29'   and FarsiBeginDate>='1401/02/01'  and FarsiBeginDate<='1401/02/31'  and FarsiEndDate>='1402/01/01'  and FarsiEndDate<='1402/12/29'  and MonthlyValue>=10 and MonthlyValue<=20.75"_s);
}

TEST(SearchQuery, AnAmountThatIsNoNumberStopsWithAClearMessage) {
    auto failure = [](const std::function<void(SearchCriteria&)>& set) {
        SearchCriteria c;
        set(c);
        try {
            search::SearchQuery(kServer, c);
        } catch (const KavError& e) {
            return e.message();
        }
        return QString();
    };
    EXPECT_EQ(failure([](SearchCriteria& c) { c.loanValueFrom = u"12a"_s; }),
              u"مبلغ «12a» در «مبلغ از» عدد نيست."_s);
    EXPECT_EQ(failure([](SearchCriteria& c) { c.loanValueTo = u" "_s; }),
              u"مبلغ « » در «مبلغ تا» عدد نيست."_s);
    EXPECT_EQ(failure([](SearchCriteria& c) { c.perMonthFrom = u"."_s; }),
              u"مبلغ «.» در «مبلغ ماهيانه از» عدد نيست."_s);
    EXPECT_EQ(failure([](SearchCriteria& c) { c.perMonthTo = u"99999999999999999999"_s; }),
              u"مبلغ «99999999999999999999» در «مبلغ ماهيانه تا» عدد نيست."_s);
    EXPECT_EQ(search::AmountBound(u"۱۲٫۵"_s, u"x"_s), u"12.5"_s);  // the Persian decimal sign
}

TEST(SearchQuery, TheTextFindsTheRightRowsOnTheEmbeddedDatabase) {
    TestDatabase db;
    SeedSearchLoans(db);
    auto ids = [&](const std::function<void(SearchCriteria&)>& set) {
        SearchCriteria c;
        set(c);
        QList<qint64> found;
        for (const Row& r : db.rows(search::SearchQuery(kLite, c)))
            found << r[u"id"_s].toLongLong();
        std::sort(found.begin(), found.end());
        return found;
    };
    using L = QList<qint64>;
    EXPECT_EQ(ids([](SearchCriteria&) {}), (L{1, 1, 2, 3, 40000}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.finalSave = false; }), (L{1, 1, 40000}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.tempSave = false; }), (L{2, 3}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.tempSave = c.finalSave = false; }), L{});
    EXPECT_EQ(ids([](SearchCriteria& c) { c.notes = u"'ويژه'"_s; }), L{2});
    EXPECT_EQ(ids([](SearchCriteria& c) { c.notes = u"  "_s; }), (L{1, 1, 2}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.loanValueTo = u"900/000"_s; }), (L{2, 40000}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.loanValueFrom = u"12500000"_s; }), (L{1, 1, 3}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.loanTypeId = 1; }), (L{1, 1, 3}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.employeeId = 4; }), L{1});
    EXPECT_EQ(ids([](SearchCriteria& c) { c.supporterId = 5; }), L{3});  // third guarantor
    EXPECT_EQ(ids([](SearchCriteria& c) {
                  c.paymentDateFrom = u"1402/01/15"_s;
                  c.paymentDateTo = u"1403/05/01"_s;
              }),
              (L{1, 1, 2, 40000}));  // both bounds inclusive
    EXPECT_EQ(ids([](SearchCriteria& c) { c.endDateTo = u"1402/09/30"_s; }), L{3});
    EXPECT_EQ(ids([](SearchCriteria& c) { c.beginDateFrom = u"1403/06/31"_s; }), L{2});
    // A loan without an instalment is outside every instalment bound.
    EXPECT_EQ(ids([](SearchCriteria& c) { c.perMonthFrom = u"0"_s; }), (L{1, 1, 3, 40000}));
    EXPECT_EQ(ids([](SearchCriteria& c) { c.perMonthTo = u"1041666"_s; }), (L{1, 1, 40000}));
}

TEST(SearchRules, SortCodesAlternatePerColumnGroup) {
    QList<int> numeric;
    for (int c = 0; c < search::SortSlots; ++c)
        if (search::IsNumericSortColumn(c)) numeric << c;
    EXPECT_EQ(numeric, (QList<int>{1, 4, 6, 9, 10, 11}));
    for (int c : {1, 4, 6, 9, 10, 11}) {
        EXPECT_EQ(search::NextSortCode(c, 0), 3);
        EXPECT_EQ(search::NextSortCode(c, 3), 4);
        EXPECT_EQ(search::NextSortCode(c, 4), 3);
    }
    for (int c : {0, 2, 3, 12, 16, 30}) {
        EXPECT_EQ(search::NextSortCode(c, 0), 1);
        EXPECT_EQ(search::NextSortCode(c, 1), 2);
        EXPECT_EQ(search::NextSortCode(c, 2), 1);
    }
    EXPECT_EQ(RaisedKind([] { search::NextSortCode(31, 0); }), KavError::Kind::Usage);
    EXPECT_EQ(RaisedKind([] { search::NextSortCode(-1, 0); }), KavError::Kind::Usage);
}
