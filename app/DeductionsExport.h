#pragma once

// kavhrloan --deductions MONTH --csv FILE: the payroll run's monthly deduction register,
// written as the register window saves it, with no window and no display (as a scheduled job
// runs it). The database and the user come from --connection and --user, else from the stored
// properties (or --demo). The user's role to open the module (111801) is checked as the module's
// start checks it.
//
// Exit codes: 0 the file was written; 2 it could not be (a month that is not a Jalali month,
// no database, no user, a database error, a file that cannot be written), with one line on
// stderr; 3 the user's role was refused.

#include <QString>
#include <functional>

class QCommandLineOption;
class QCommandLineParser;
class QSettings;

struct DeductionsOptions {
    const QCommandLineOption& month;  // --deductions
    const QCommandLineOption& csv;
    const QCommandLineOption& connection;
    const QCommandLineOption& user;
};

// Writes the register; returns the exit code. demoConnection, when given, names the demo
// database (--demo), whose demo user is then the user.
int ExportDeductions(QSettings& settings, const QString& propertyGroup,
                     const QCommandLineParser& parser, const DeductionsOptions& options,
                     const std::function<QString()>& demoConnection);
