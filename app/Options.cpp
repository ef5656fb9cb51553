#include "Options.h"

#include "base/Errors.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace app {

Options::Options()
    : demo(u"demo"_s,
           u"Open the demo database as the demo user, whatever the stored properties say. The "
           "control's properties are not stored; the loans saved stay in the demo database."_s),
      freshDemo(
          u"fresh-demo"_s,
          u"As --demo, on a demo database made afresh: what earlier runs saved in it is gone."_s),
      connection(
          u"connection"_s,
          u"OLE DB connection string: a SQL Server provider (SQLOLEDB, SQLNCLI, MSOLEDBSQL) with "
          "Data Source, Initial Catalog, User ID, Password or Integrated Security; "
          "\"Provider=SQLite;Data Source=FILE\"; an ODBC data source \"Provider=MSDASQL;Data "
          "Source=DSN\" or \"DSN=...\"; or an ODBC string \"Driver=...;...\"."_s,
          u"string"_s),
      user(u"user"_s, u"The user id (UserID)."_s, u"id"_s),
      position(u"position"_s, u"The user's position (PositionID)."_s, u"id"_s),
      employee(u"employee"_s, u"The employee (EmployeeID)."_s, u"id"_s),
      prsEmployee(
          u"prs-employee"_s,
          u"An employee whose loan is to be defined (PRSEmployeeID): a positive id opens the "
          "window in new mode. Not kept between runs."_s,
          u"id"_s),
      caption(u"caption"_s, u"The module's title (Caption)."_s, u"text"_s),
      view(u"view"_s, u"Open the loan with this id read-only (View)."_s, u"id"_s),
      bench(u"bench"_s, u"Show the control's test bench."_s),
      resetSettings(
          u"reset-settings"_s,
          u"Forget the stored properties of the control and the windows' remembered sizes and "
          "column widths, and exit."_s),
      createDemo(u"create-demo-db"_s, u"Create a demo database in FILE and exit."_s, u"FILE"_s),
      screenshots(u"screenshots"_s,
                  u"Render every window and control to PNG files in DIR and exit."_s, u"DIR"_s),
      quitWhenShown(
          u"quit-when-shown"_s,
          u"Close the loan window as soon as it has been shown (for timing the start); the run "
          "ends as if the clerk had closed it."_s),
      checkDatabase(
          u"check-database"_s,
          u"Check, without writing anything, that the database (--connection, else the stored "
          "connection string) has every table, view, column and stored procedure the module uses, "
          "the rights it needs and the user's permissions (--user, else the stored UserID): one "
          "line each, then exit 0 when everything the module needs is there, else 2."_s),
      deductions(
          u"deductions"_s,
          u"Write the monthly deduction register of MONTH (a Jalali month, e.g. 1403/07) to the "
          "CSV file --csv names, with no window, and exit: 0 written, 2 it could not be (one line "
          "on stderr), 3 the user (--user, else the stored UserID) lacks the module's role. The "
          "database is --connection (or --demo), else the stored connection string."_s,
          u"MONTH"_s),
      csv(u"csv"_s, u"The CSV file --deductions writes."_s, u"FILE"_s) {}

void Options::AddTo(QCommandLineParser& parser, const QString& settingsFile) const {
    parser.setApplicationDescription(
        u"Employee loans of the HR and payroll suite.\n"
        "Without options the loan window opens with the control's stored properties; when no "
        "connection is stored, on the embedded demo database (made in the user's data folder "
        "when missing or empty) as the demo user who holds every permission. On any other "
        "database the user must be given (--user, or a stored UserID). Options given here "
        "replace the stored properties, which are kept after a successful start in\n  "_s +
        settingsFile +
        u"\n(group [kavHRLoan1]; the windows' sizes and column widths in [Windows]; "
        "--reset-settings forgets both)."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({demo, freshDemo, connection, user, position, employee, prsEmployee, caption,
                       view, bench, resetSettings, createDemo, screenshots, quitWhenShown,
                       checkDatabase, deductions, csv});
}

qint16 Int16Option(const QCommandLineParser& parser, const QCommandLineOption& option) {
    try {
        return kav::vb::CInt(parser.value(option));
    } catch (const kav::KavError& e) {
        throw kav::KavError(e.kind(), u"--%1: %2"_s.arg(option.names().constFirst(), e.message()));
    }
}

}  // namespace app
