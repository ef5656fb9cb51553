#include "DeductionsExport.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QSettings>
#include <cstdio>
#include <optional>

#include "adjustments/RepaymentSchedule.h"
#include "adjustments/ScheduleSource.h"
#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DemoData.h"
#include "data/LoanDatabaseCheck.h"
#include "data/PayslipColumns.h"
#include "deductions/DeductionRegister.h"
#include "deductions/DeductionsTexts.h"
#include "host/PropertyBag.h"
#include "session/Csv.h"
#include "session/Module.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;
namespace T = kav::deductions_texts;

namespace {

constexpr int ExitWritten = 0;
constexpr int ExitFailed = 2;
constexpr int ExitRoleRefused = 3;

void printLine(FILE* stream, const QString& line) {
    QString text = line;
    text.replace(u'\n', u' ');
    std::fprintf(stream, "kavhrloan: %s\n", text.toUtf8().constData());
}

int fail(const QString& line) {
    printLine(stderr, line);
    return ExitFailed;
}

}  // namespace

int ExportDeductions(QSettings& settings, const QString& propertyGroup,
                     const QCommandLineParser& parser, const DeductionsOptions& options,
                     const std::function<QString()>& demoConnection) {
    if (!parser.isSet(options.month) || !parser.isSet(options.csv)) return fail(T::CommandNeedsCsv);
    const std::optional<int> month = kav::deductions::ParseMonth(parser.value(options.month));
    if (!month)
        return fail(u"--deductions: "_s +
                    kav::deductions::NotAMonthText(parser.value(options.month)));
    const QString file = parser.value(options.csv);

    kav::SettingsPropertyBag stored(settings, propertyGroup);
    QString connection;
    try {
        connection = demoConnection ? demoConnection()
                     : parser.isSet(options.connection)
                         ? parser.value(options.connection)
                         : stored.ReadProperty(u"OLEConnectionstring"_s, u"0"_s).toString();
    } catch (const kav::KavError& e) {
        return fail(e.message());
    }
    if (connection.trimmed().isEmpty() || connection == u"0") return fail(T::CommandNoDatabase);
    const QString userText = demoConnection ? QString::number(kav::data::DemoUserWithPermissions)
                             : parser.isSet(options.user)
                                 ? parser.value(options.user)
                                 : stored.ReadProperty(u"UserID"_s, QString()).toString();
    if (userText.trimmed().isEmpty() || userText.trimmed() == u"0") return fail(T::CommandNoUser);

    try {
        kav::Module module;
        module.SetMessageFactory([] { return nullptr; });  // nobody to answer a message
        kav::Session& s = module.session;
        try {
            s.SessionUserID = kav::vb::CInt(userText);
        } catch (const kav::KavError& e) {
            return fail(u"--user: "_s + e.message());
        }
        s.SessionConnectionString = connection;
        s.PayslipColumns = kav::data::PayslipColumns::FromSettings(settings);
        // The module's own start: the database must be the loan database, the role granted.
        module.OpenSessionConnection();
        QSqlDatabase db = module.DtEn().cnt().Database();
        kav::data::CheckLoanDatabase(db,
                                     db.driverName() == u"QSQLITE" ? db.databaseName() : QString());
        if (!module.HasPermission(kav::PermissionOpenModule)) {
            printLine(stderr,
                      kav::Module::RoleRefusalText() + u" (UserID %1)"_s.arg(s.SessionUserID));
            return ExitRoleRefused;
        }
        const kav::deductions::Register reg =
            kav::deductions::ReadRegister(module.DtEn().cnt(), s.PayslipColumns, *month);
        kav::SaveCsv(file, kav::deductions::CsvRows(reg, kav::deductions::ComputeTotals(reg.rows)),
                     {kav::deductions::ColCode});
        if (!reg.payslipsKnown)
            printLine(stderr, kav::schedule::PayslipColumnsMissingText(s.PayslipColumns));
        printLine(stdout,
                  T::CommandWritten.arg(reg.rows.size())
                      .arg(kav::schedule::MonthText(*month), QFileInfo(file).absoluteFilePath()));
        return ExitWritten;
    } catch (const kav::KavError& e) {
        return fail(kav::data::MaskPasswords(e.message(), connection));
    }
}
