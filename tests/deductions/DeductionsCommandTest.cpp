// kavhrloan --deductions MONTH --csv FILE as a scheduled job runs it: no display, the file
// written or one line saying why not, and the exit code.

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "support/TestDatabase.h"

using namespace Qt::StringLiterals;

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

TEST(DeductionsCommand, WritesTheFileOrSaysWhyNot) {
    kav::test::TestDatabase db;
    db.exec({
        u"insert into tblHRLoanType (ID, Name) values (1, 'ضروري')"_s,
        u"insert into tblEmployee (ID, Code, FirstName, SureName, WorkStatusID) values "
        "(1, '0042', 'علي', 'رضايي', 1)"_s,
        u"insert into tblHRLoan (ID, Code, TypeID, FarsiBeginDate, FarsiEndDate, LoanValue, "
        "MonthlyValue, PayBackNumber, UseRemainedValueInFirstMonth) values "
        "(1, 1, 1, '1403/01/31', '1403/10/30', 10000000, 1000000, 10, 0)"_s,
        u"insert into tblHRLoanDetail (LoanID, EmployeeID) values (1, 1)"_s,
        u"insert into tblVarekUserPermission (UserID, FormPermissionID) values (1, 111801)"_s,
    });
    QTemporaryDir home;
    // No display at all: the job runs without one.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        env.remove(name);
    env.insert(u"HOME"_s, home.path());
    env.insert(u"XDG_CONFIG_HOME"_s, home.filePath(u"config"_s));
    env.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
    env.insert(u"XDG_RUNTIME_DIR"_s, home.path());
    const auto run = [&](const QStringList& args) {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(KAVHRLOAN_BINARY), args);
        if (!p.waitForFinished(30000)) {
            p.kill();
            p.waitForFinished();
            ADD_FAILURE() << "kavhrloan did not finish";
            return Outcome{};
        }
        return Outcome{p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                       QString::fromUtf8(p.readAllStandardOutput()),
                       QString::fromUtf8(p.readAllStandardError())};
    };
    const QString file = home.filePath(u"1403-07.csv"_s);
    const QStringList database = {u"--connection"_s, db.connectionString(), u"--user"_s, u"1"_s};

    const Outcome written =
        run(database + QStringList{u"--deductions"_s, u"1403/07"_s, u"--csv"_s, file});
    EXPECT_EQ(written.code, 0) << written.err.toStdString();
    EXPECT_EQ(written.out,
              u"kavhrloan: 1 رديف کسور ماه 1403/07 در فايل «%1» نوشته شد.\n"_s.arg(file));
    QFile csv(file);
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    EXPECT_EQ(csv.readAll().split('\n').value(1),
              u"\"0042\",علي رضايي,1,ضروري,1000000,,1000000,,3000000,\r"_s.toUtf8());

    struct Case {
        QStringList args;
        int code;
        QString says;
    };
    const QString other = home.filePath(u"other.csv"_s);
    const Case refused[] = {
        {database + QStringList{u"--deductions"_s, u"1403/13"_s, u"--csv"_s, other}, 2,
         u"kavhrloan: --deductions: «1403/13» ماه شمسي نيست؛ ماه را به شکل سال/ماه بنويسيد، "
         "مانند 1403/07.\n"_s},
        {QStringList{u"--connection"_s, db.connectionString(), u"--user"_s, u"2"_s,
                     u"--deductions"_s, u"1403/07"_s, u"--csv"_s, other},
         3,
         u"kavhrloan: شما فاقد نقش مورد نظر هستيد. به نگهدارنده سيستم رجوع فرمائيد. "
         "(UserID 2)\n"_s},
        {{u"--deductions"_s, u"1403/07"_s, u"--csv"_s, other},
         2,
         u"kavhrloan: پايگاه داده مشخص نشده است: آن را با --connection بدهيد (يا رشته اتصال "
         "ذخيره شده)، يا --demo براي پايگاه داده نمايشي.\n"_s},
        {database + QStringList{u"--deductions"_s, u"1403/07"_s}, 2,
         u"kavhrloan: --deductions ماه را مي‌گيرد و --csv فايلي را که نوشته مي‌شود؛ هر دو لازم "
         "است.\n"_s},
        {database + QStringList{u"--deductions"_s, u"1403/07"_s, u"--csv"_s,
                                home.filePath(u"no/such/folder/x.csv"_s)},
         2, u"kavhrloan: فايل «%1» نوشته نشد: "_s.arg(home.filePath(u"no/such/folder/x.csv"_s))},
    };
    for (const Case& c : refused) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const Outcome r = run(c.args);
        EXPECT_EQ(r.code, c.code);
        EXPECT_TRUE(r.err.startsWith(c.says)) << r.err.toStdString();
        EXPECT_EQ(r.err.count(u'\n'), 1);
        EXPECT_TRUE(r.out.isEmpty());
    }
    EXPECT_FALSE(QFile::exists(other));
}

}  // namespace
