// kav_make_large_db FILE [--seed N] [--scale-down F]: writes the large loan database that
// the benchmarks run on, and says how long it took and where its landmarks are.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "LargeDatabase.h"
#include "base/Errors.h"

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Writes a large, believable loan database to FILE."_s);
    parser.addHelpOption();
    const QCommandLineOption seed(u"seed"_s, u"The seed (default 1)."_s, u"N"_s, u"1"_s);
    const QCommandLineOption scale(u"scale-down"_s, u"Divide every count by F."_s, u"F"_s, u"1"_s);
    parser.addOptions({seed, scale});
    parser.addPositionalArgument(u"FILE"_s, u"The database file to create."_s);
    parser.process(app);
    if (parser.positionalArguments().size() != 1) parser.showHelp(2);

    kav::bench::LargeDatabaseOptions options;
    options.seed = parser.value(seed).toULongLong();
    if (const int f = parser.value(scale).toInt(); f > 1) options = options.scaledDown(f);
    try {
        QElapsedTimer timer;
        timer.start();
        const kav::bench::Landmarks l =
            kav::bench::CreateLargeDatabase(parser.positionalArguments().first(), options);
        std::printf(
            "%d employees, %d loans, %d member rows, %d adjustments, %d payslip rows, "
            "%d ordinances in %.2f s\nloan with %d members: %d; %d months of payslips: loan %d, "
            "employee %d\n",
            options.employees, options.loans, options.memberRows, options.adjustments,
            options.payslipRows, options.ordinances, double(timer.elapsed()) / 1000.0,
            options.bigLoanMembers, l.bigLoanId, options.longScheduleMonths, l.longScheduleLoanId,
            l.longScheduleEmployeeId);
        return 0;
    } catch (const kav::KavError& e) {
        std::fprintf(stderr, "kav_make_large_db: %s\n", e.message().toUtf8().constData());
        return 1;
    }
}
