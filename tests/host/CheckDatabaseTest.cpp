// kavhrloan --check-database as a terminal runs it, on embedded databases.

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QSettings>

#include "reliability/AppRun.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;
using kav::test::AppHome;
using kav::test::AppOutcome;

namespace {

QByteArray contents(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly)
               ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256)
               : QByteArray();
}

// The printed lines other than "present" ones, and how many were present.
std::pair<QStringList, int> notPresent(const AppOutcome& o) {
    QStringList lines = o.out.split(u'\n', Qt::SkipEmptyParts);
    int present = 0;
    QStringList others;
    for (const QString& line : lines) {
        if (line.startsWith(u"موجود: "_s))
            ++present;
        else
            others << line;
    }
    return {others, present};
}

// The demo database has everything; the check needs no display and writes nothing, neither
// to the database nor to the settings.
TEST(CheckDatabase, TheDemoDatabaseHasEverythingAndNothingIsWritten) {
    AppHome app;
    for (const QString& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        app.env.remove(name);
    const QString file = app.home.filePath(u"demo.db"_s);
    ASSERT_EQ(app.run({u"--create-demo-db"_s, file}).code, 0);
    const QByteArray before = contents(file);
    const QString connection = u"Provider=SQLite;Data Source="_s + file;
    const AppOutcome o =
        app.run({u"--check-database"_s, u"--connection"_s, connection, u"--user"_s, u"1"_s});
    EXPECT_EQ(o.code, 0) << o.err.toStdString();
    const auto [others, present] = notPresent(o);
    EXPECT_EQ(others, (QStringList{u"پايگاه داده: "_s + connection,
                                   u"اين پايگاه داده همه آنچه ماژول وام کارمندان نياز دارد را "
                                   u"دارد."_s}));
    EXPECT_EQ(present, 38);
    EXPECT_EQ(contents(file), before);
    EXPECT_FALSE(QFile::exists(app.settingsFile()));
    // A password of the connection string is never printed.
    const AppOutcome secret =
        app.run({u"--check-database"_s, u"--connection"_s, connection + u";Password=Sesame-41"_s});
    EXPECT_EQ(secret.code, 0);
    EXPECT_FALSE((secret.out + secret.err).contains(u"Sesame-41"_s));
    EXPECT_TRUE(secret.out.contains(u"Password=***"_s));
}

// A database short of what the module uses, checked with the stored connection, user and
// payslip columns: each shortfall on its line, and exit 2.
TEST(CheckDatabase, SaysWhatIsMissingOrReducedWithTheStoredSettings) {
    kav::test::TestDatabase db;
    db.exec(
        {u"drop view vwHRLoanException"_s, u"alter table tblHROrdinance drop column EndDate"_s,
         u"drop index IX_tblEmployee_Code"_s,
         u"alter table tblHRMonthlyPaiedLoan rename column PaidValue to Amount"_s,
         u"alter table tblHRMonthlyPaiedLoan rename column PayMonth to Month"_s,
         u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (2, 111801)"_s});
    AppHome app;
    {
        QSettings s(app.settingsFile(), QSettings::IniFormat);
        s.setValue(u"kavHRLoan1/OLEConnectionstring"_s,
                   u"Provider=SQLite;Data Source="_s + db.file());
        s.setValue(u"kavHRLoan1/UserID"_s, 2);
        s.setValue(u"Payslip/PaidColumn"_s, u"Amount"_s);
    }
    const QByteArray before = contents(db.file());
    const AppOutcome o = app.run({u"--check-database"_s});
    EXPECT_EQ(o.code, 2) << o.err.toStdString();
    const auto [others, present] = notPresent(o);
    EXPECT_EQ(
        others,
        (QStringList{
            u"پايگاه داده: Provider=SQLite;Data Source="_s + db.file(),
            u"ناموجود: جدول tblHROrdinance ستون EndDate را ندارد: افزودن کارمندان داراي حکم "
            u"به وام کار نمي‌کند"_s,
            u"ناموجود: نماي vwHRLoanException نيست: فهرست تعديل اقساط و پنجره تعديل کار "
            u"نمي‌کند"_s,
            u"محدود: پارامتر 3450 (تاريخ کاري سيستم) در tblVarekSystemParameters نيست: پنجره "
            u"وام تاريخ امروز را به کار مي‌برد"_s,
            u"محدود: ستون فيش حقوقي PayMonth (ماه به شکل yyyy/mm، تنظيم Payslip/MonthColumn) "
            u"در tblHRMonthlyPaiedLoan نيست: جدول بازپرداخت عضو فقط اقساط برنامه‌ريزي‌شده را "
            u"نشان مي‌دهد، نه آنچه در فيش‌ها کسر شده است"_s,
            u"محدود: شاخص IX_tblEmployee_Code روي tblEmployee نيست: جستجو و خواندن وام‌ها روي "
            u"داده زياد کندتر است"_s,
            u"محدود: کاربر 2 نقش 111802 را ندارد: وام تازه نمي‌سازد و وامي را حذف نمي‌کند"_s,
            u"محدود: کاربر 2 نقش 111803 را ندارد: وامي را ويرايش نمي‌کند"_s,
            u"اين پايگاه داده براي ماژول وام کارمندان آماده نيست: 2 مورد ناموجود؛ 5 مورد "
            u"محدود."_s}));
    EXPECT_EQ(present, 31);
    EXPECT_EQ(contents(db.file()), before);
}

}  // namespace
