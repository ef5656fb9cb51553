// kavhrloan: the host application. It embeds the loan control and opens the module, by
// default on the embedded demo database as the demo user who holds every permission.
//
// Exit codes: 0 the window was closed (or a headless option finished, or --check-database found
// everything the module needs); 1 a command-line usage error (Qt's own); 2 the module could
// not start (no display, a database that does not open, a loan --view names that is not there,
// a stored property that cannot be read, no user for a database other than the demo, a
// screenshot that cannot be written), or --check-database found something missing, or
// --deductions could not write its file; 3 the user's role was refused.
//
// The settings file keeps the connection string, password and all, so only its owner may read
// it (0600, narrowed when it was wider). A message printed or shown never holds a password.

#include <sys/stat.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <optional>

#include "CheckDatabase.h"
#include "DeductionsExport.h"
#include "Screenshots.h"
#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DemoData.h"
#include "host/PropertyBag.h"
#include "host/kavHRLoan1.h"
#include "session/MessageDialogs.h"
#include "session/Module.h"
#include "session/QtTranslation.h"
#include "session/Vb.h"
#include "session/WindowMemory.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int ExitStartFailed = 2;
constexpr int ExitRoleRefused = 3;

// The group under which the control's properties are kept in the settings file.
const QString kPropertyGroup = u"kavHRLoan1"_s;

// One line on the terminal: a message's own line breaks become blanks.
void printLine(FILE* stream, const QString& line) {
    QString text = line;
    text.replace(u'\n', u' ');
    std::fprintf(stream, "kavhrloan: %s\n", text.toUtf8().constData());
}

// True when there is a screen a person looks at (not the offscreen or minimal platform).
bool onScreen() {
    const QString platform = QGuiApplication::platformName();
    return platform != u"offscreen" && platform != u"minimal";
}

// A start-up failure: on stderr, and in a message box when there is a screen to show it on.
int fail(const QString& text) {
    const QString message = kav::data::MaskPasswords(text);
    printLine(stderr, message);
    if (onScreen()) kav::BuildMessageDialog(u"خطا"_s, message, 0)->exec();
    return ExitStartFailed;
}

// Only the owner may read or write the settings file.
void keepPrivate(const QSettings& settings) {
    const QString file = settings.fileName();
    if (QFileInfo::exists(file))
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

// Writes the settings now. A file that exists is narrowed first, so the new contents never
// stand in a file others may read (the rewrite keeps the file's rights); a new file is made
// for its owner alone.
void storeSettings(QSettings& settings) {
    keepPrivate(settings);
    const mode_t before = ::umask(077);
    settings.sync();
    ::umask(before);
    keepPrivate(settings);
}

// Without a screen nobody could answer a message box: messages go to stderr, and a question
// gets no answer.
class StderrMessages : public kav::MessageComponent {
public:
    void SetFormTitle(const QVariant& title) override { title_ = title.toString(); }
    void SetFormMessage(const QString& message) override { message_ = message; }
    void SetFormType(qint16 type) override { type_ = type; }
    void ClearShow() override {
        printLine(stderr, title_ + u": "_s + message_ + (type_ == 1 ? u" [?]"_s : QString()));
    }
    QVariant Resualt() const override { return -1; }

private:
    QString title_, message_;
    qint16 type_ = 0;
};

QString demoDatabasePath() {
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return QDir(dir).filePath(u"kavhrloan-demo.db"_s);
}

// The demo database, made when it is missing, empty (a zero-byte file) or without the loan
// tables; a file there that is no database at all is replaced.
QString demoConnection() {
    const QString file = demoDatabasePath();
    try {
        kav::data::CreateDemoDatabase(file);
    } catch (const kav::KavError&) {
        if (!QFileInfo::exists(file) || !QFile::remove(file)) throw;
        kav::data::CreateDemoDatabase(file);
    }
    return kav::data::EmbeddedConnectionString(file);
}

// The demo database made afresh (--fresh-demo): the file and its journal go first, so the loans
// earlier runs saved in it are gone.
QString freshDemoConnection() {
    const QString file = demoDatabasePath();
    for (const QString& f : {file, file + u"-journal"_s, file + u"-wal"_s, file + u"-shm"_s})
        if (QFileInfo::exists(f) && !QFile::remove(f))
            throw kav::KavError(kav::KavError::Kind::Connection,
                                u"پايگاه داده نمايشي «%1» پاک نشد؛ از نو ساخته نشد."_s.arg(f));
    return demoConnection();
}

// A 16-bit id given on the command line; a text that is no such number names the option.
qint16 int16Option(const QCommandLineParser& parser, const QCommandLineOption& option) {
    try {
        return kav::vb::CInt(parser.value(option));
    } catch (const kav::KavError& e) {
        throw kav::KavError(e.kind(), u"--%1: %2"_s.arg(option.names().constFirst(), e.message()));
    }
}

// Options that show no window work without a display.
bool headlessRun(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a.startsWith("--create-demo-db") || a.startsWith("--screenshots") || a == "--help" ||
            a == "--help-all" || a == "-h" || a == "-?" || a == "--version" || a == "-v" ||
            a == "--reset-settings" || a == "--check-database" || a.startsWith("--deductions"))
            return true;
    }
    return false;
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
    if (!hasDisplay()) {
        if (!headlessRun(argc, argv)) {
            std::fprintf(stderr,
                         "kavhrloan: no display to show the loan window on (DISPLAY is not "
                         "set); --screenshots DIR renders the windows without one.\n");
            return ExitStartFailed;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName(u"KAV"_s);
    QApplication::setApplicationName(u"kavhrloan"_s);
    QApplication::setApplicationVersion(QStringLiteral(KAV_VERSION));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    // Qt's own dialogs (file, print, preview, their buttons) in Persian too.
    kav::InstallQtPersianTranslation();
    QSettings settings;

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Employee loans of the HR and payroll suite.\n"
        "Without options the loan window opens with the control's stored properties; when no "
        "connection is stored, on the embedded demo database (made in the user's data folder "
        "when missing or empty) as the demo user who holds every permission. On any other "
        "database the user must be given (--user, or a stored UserID). Options given here "
        "replace the stored properties, which are kept after a successful start in\n  "_s +
        settings.fileName() +
        u"\n(group [kavHRLoan1]; the windows' sizes and column widths in [Windows]; "
        "--reset-settings forgets both)."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption demo(
        u"demo"_s,
        u"Open the demo database as the demo user, whatever the stored properties say. The "
        "control's properties are not stored; the loans saved stay in the demo database."_s);
    const QCommandLineOption freshDemo(
        u"fresh-demo"_s,
        u"As --demo, on a demo database made afresh: what earlier runs saved in it is gone."_s);
    const QCommandLineOption connection(
        u"connection"_s,
        u"OLE DB connection string: a SQL Server provider (SQLOLEDB, SQLNCLI, MSOLEDBSQL) with "
        "Data Source, Initial Catalog, User ID, Password or Integrated Security; "
        "\"Provider=SQLite;Data Source=FILE\"; an ODBC data source \"Provider=MSDASQL;Data "
        "Source=DSN\" or \"DSN=...\"; or an ODBC string \"Driver=...;...\"."_s,
        u"string"_s);
    const QCommandLineOption user(u"user"_s, u"The user id (UserID)."_s, u"id"_s);
    const QCommandLineOption position(u"position"_s, u"The user's position (PositionID)."_s,
                                      u"id"_s);
    const QCommandLineOption employee(u"employee"_s, u"The employee (EmployeeID)."_s, u"id"_s);
    const QCommandLineOption prsEmployee(
        u"prs-employee"_s,
        u"An employee whose loan is to be defined (PRSEmployeeID): a positive id opens the "
        "window in new mode. Not kept between runs."_s,
        u"id"_s);
    const QCommandLineOption caption(u"caption"_s, u"The module's title (Caption)."_s, u"text"_s);
    const QCommandLineOption view(u"view"_s, u"Open the loan with this id read-only (View)."_s,
                                  u"id"_s);
    const QCommandLineOption bench(u"bench"_s, u"Show the control's test bench."_s);
    const QCommandLineOption resetSettings(
        u"reset-settings"_s,
        u"Forget the stored properties of the control and the windows' remembered sizes and "
        "column widths, and exit."_s);
    const QCommandLineOption createDemo(u"create-demo-db"_s,
                                        u"Create a demo database in FILE and exit."_s, u"FILE"_s);
    const QCommandLineOption screenshots(
        u"screenshots"_s, u"Render every window and control to PNG files in DIR and exit."_s,
        u"DIR"_s);
    const QCommandLineOption quitWhenShown(
        u"quit-when-shown"_s,
        u"Close the loan window as soon as it has been shown (for timing the start); the run "
        "ends as if the clerk had closed it."_s);
    const QCommandLineOption checkDatabase(
        u"check-database"_s,
        u"Check, without writing anything, that the database (--connection, else the stored "
        "connection string) has every table, view, column and stored procedure the module uses, "
        "the rights it needs and the user's permissions (--user, else the stored UserID): one "
        "line each, then exit 0 when everything the module needs is there, else 2."_s);
    const QCommandLineOption deductions(
        u"deductions"_s,
        u"Write the monthly deduction register of MONTH (a Jalali month, e.g. 1403/07) to the "
        "CSV file --csv names, with no window, and exit: 0 written, 2 it could not be (one line "
        "on stderr), 3 the user (--user, else the stored UserID) lacks the module's role. The "
        "database is --connection (or --demo), else the stored connection string."_s,
        u"MONTH"_s);
    const QCommandLineOption csv(u"csv"_s, u"The CSV file --deductions writes."_s, u"FILE"_s);
    parser.addOptions({demo, freshDemo, connection, user, position, employee, prsEmployee, caption,
                       view, bench, resetSettings, createDemo, screenshots, quitWhenShown,
                       checkDatabase, deductions, csv});
    parser.process(app);
    const bool demoRun = parser.isSet(demo) || parser.isSet(freshDemo);

    try {
        if (parser.isSet(createDemo)) {
            const QString file = parser.value(createDemo);
            kav::data::CreateDemoDatabase(file);
            std::printf("%s\n", QFileInfo(file).absoluteFilePath().toUtf8().constData());
            return 0;
        }
        if (parser.isSet(screenshots)) {
            const int n = RenderScreenshots(parser.value(screenshots));
            std::printf("%d screenshots in %s\n", n,
                        QDir(parser.value(screenshots)).absolutePath().toUtf8().constData());
            return 0;
        }
        if (parser.isSet(resetSettings)) {
            settings.remove(kPropertyGroup);
            kav::window_memory::Forget(settings);
            storeSettings(settings);
            std::printf("the stored properties and window sizes in %s are forgotten\n",
                        settings.fileName().toUtf8().constData());
            return 0;
        }

        if (parser.isSet(checkDatabase))
            return CheckDatabase(settings, kPropertyGroup, parser, connection, user);
        if (parser.isSet(deductions) || parser.isSet(csv))
            return ExportDeductions(
                settings, kPropertyGroup, parser, {deductions, csv, connection, user},
                demoRun ? std::function<QString()>([&] {
                    return parser.isSet(freshDemo) ? freshDemoConnection() : demoConnection();
                })
                        : std::function<QString()>());

        auto module = std::make_shared<kav::Module>();
        if (!onScreen())
            module->SetMessageFactory([] { return std::make_unique<StderrMessages>(); });
        if (parser.isSet(quitWhenShown))
            module->SetModalRunner([](QDialog& dialog) {
                QTimer::singleShot(0, &dialog, [&dialog] { dialog.done(0); });
                return dialog.exec();
            });
        kav::kavHRLoan1 control(module);
        kav::SettingsPropertyBag bag(settings, kPropertyGroup);
        // A stored value that cannot be read is reported only when no option replaces it.
        std::optional<kav::KavError> unreadable;
        QStringList unread;
        if (!demoRun) {
            try {
                control.ReadProperties(bag);
            } catch (const kav::KavError& e) {
                unreadable = e;
                unread = control.UnreadProperties();
            }
        }
        const auto given = [&](const QString& property, const QCommandLineOption& option) {
            if (parser.isSet(option)) unread.removeAll(property);
            return parser.isSet(option);
        };

        if (demoRun) {
            control.setOLEConnectionstring(parser.isSet(freshDemo) ? freshDemoConnection()
                                                                   : demoConnection());
            control.setUserID(kav::data::DemoUserWithPermissions);
        } else {
            const QString demoDb = kav::data::EmbeddedConnectionString(demoDatabasePath());
            if (given(u"OLEConnectionstring"_s, connection))
                control.setOLEConnectionstring(parser.value(connection));
            else if (control.OLEConnectionstring() == u"0" ||
                     control.OLEConnectionstring() == demoDb)
                control.setOLEConnectionstring(demoConnection());
            const bool onDemo = control.OLEConnectionstring() == demoDb;
            if (given(u"UserID"_s, user)) {
                control.setUserID(int16Option(parser, user));
            } else if (control.UserID() == 0 && !unread.contains(u"UserID"_s)) {
                if (!onDemo)
                    return fail(
                        u"کاربر مشخص نشده است: روي پايگاه داده‌اي جز پايگاه داده نمايشي، شناسه "
                        u"کاربر را با --user ID بدهيد (يا UserID ذخيره شده). کاربر نمايشي (1) "
                        u"فقط روي پايگاه داده نمايشي به کار مي‌رود."_s);
                control.setUserID(kav::data::DemoUserWithPermissions);
            }
        }
        if (given(u"PositionID"_s, position)) control.setPositionID(int16Option(parser, position));
        if (given(u"EmployeeID"_s, employee)) control.setEmployeeID(int16Option(parser, employee));
        if (parser.isSet(prsEmployee))
            control.setPRSEmployeeID(kav::vb::CLng(parser.value(prsEmployee)));
        if (given(u"Caption"_s, caption)) control.setCaption(parser.value(caption));
        if (unreadable && !unread.isEmpty())
            return fail(
                unreadable->message() +
                u"\nبا گزينه خط فرمان مقدار درست را بدهيد، يا kavhrloan --reset-settings "
                u"ويژگي‌هاي ذخيره شده را پاک مي‌کند (%1)."_s.arg(
                    settings.fileName()));

        // On the demo database the loan window's caption says so.
        if (control.OLEConnectionstring() ==
            kav::data::EmbeddedConnectionString(demoDatabasePath()))
            module->SetCaptionNote(u" - پايگاه داده نمايشي"_s);

        // The properties are kept once the module has opened with them; a demo run keeps
        // none, so it never replaces a real configuration.
        const bool keep = !demoRun;
        if (parser.isSet(bench)) {
            control.setWindowTitle(u"kavHRLoan1"_s);
            control.show();
            if (parser.isSet(quitWhenShown)) QTimer::singleShot(0, &app, &QApplication::quit);
            const int rc = app.exec();
            if (keep) {
                control.WriteProperties(bag);
                storeSettings(settings);
            }
            return rc;
        }
        if (parser.isSet(view)) {
            qint32 id = kav::vb::CLng(parser.value(view));
            control.View(id);
        } else {
            control.ClearShow();
            if (control.RoleWasRefused()) {
                // The refusal was shown; the terminal hears of it too (without a screen the
                // message itself went there).
                if (onScreen())
                    printLine(stderr, kav::Module::RoleRefusalText() +
                                          u" (UserID %1)"_s.arg(control.UserID()));
                return ExitRoleRefused;
            }
        }
        if (keep) {
            control.WriteProperties(bag);
            storeSettings(settings);
        }
        return 0;
    } catch (const kav::KavError& e) {
        return fail(e.message());
    } catch (const std::exception& e) {
        return fail(QString::fromUtf8(e.what()));
    }
}
