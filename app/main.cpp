// kavhrloan: the host application. It embeds the loan control and opens the module, by
// default on the embedded demo database as the demo user who holds every permission.

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <cstdio>

#include "Screenshots.h"
#include "data/DemoData.h"
#include "host/PropertyBag.h"
#include "host/kavHRLoan1.h"
#include "base/Errors.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace {

int fail(const QString& line) {
    std::fprintf(stderr, "kavhrloan: %s\n", line.toUtf8().constData());
    return 2;
}

QString demoDatabasePath() {
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return QDir(dir).filePath(u"kavhrloan-demo.db"_s);
}

}  // namespace

// Options that show no window work without a display.
bool headlessRun(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a.startsWith("--create-demo-db") || a.startsWith("--screenshots") || a == "--help" ||
            a == "-h" || a == "-?")
            return true;
    }
    return false;
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

int main(int argc, char** argv) {
    if (!hasDisplay()) {
        if (!headlessRun(argc, argv)) {
            std::fprintf(stderr,
                         "kavhrloan: no display to show the loan window on (DISPLAY is not "
                         "set); --screenshots DIR renders the windows without one.\n");
            return 2;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName(u"KAV"_s);
    QApplication::setApplicationName(u"kavhrloan"_s);
    QApplication::setLayoutDirection(Qt::RightToLeft);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Employee loans of the HR and payroll suite.\n"
        "Without options the loan window opens on the embedded demo database (created in the "
        "user's data folder when missing) as the demo user who holds every permission. The "
        "control's properties are kept between runs; options given here replace them."_s);
    parser.addHelpOption();
    const QCommandLineOption connection(
        u"connection"_s,
        u"OLE DB connection string: a SQL Server provider (SQLOLEDB, SQLNCLI, MSOLEDBSQL) with "
        "Data Source, Initial Catalog, User ID, Password or Integrated Security; "
        "\"Provider=SQLite;Data Source=FILE\"; or an ODBC string \"Driver=...;...\"."_s,
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
    const QCommandLineOption createDemo(u"create-demo-db"_s,
                                        u"Create a demo database in FILE and exit."_s, u"FILE"_s);
    const QCommandLineOption screenshots(
        u"screenshots"_s, u"Render every window and control to PNG files in DIR and exit."_s,
        u"DIR"_s);
    const QCommandLineOption quitWhenShown(
        u"quit-when-shown"_s,
        u"Close the first window as soon as it has been painted (for measuring start-up)."_s);
    parser.addOptions({connection, user, position, employee, prsEmployee, caption, view, bench,
                       createDemo, screenshots, quitWhenShown});
    parser.process(app);
    // Closes the first dialog that paints, the way its close box would.
    struct CloseWhenPainted : QObject {
        bool eventFilter(QObject* object, QEvent* event) override {
            if (event->type() == QEvent::Paint && object->inherits("QDialog")) {
                QMetaObject::invokeMethod(object, "close", Qt::QueuedConnection);
                QCoreApplication::instance()->removeEventFilter(this);
            }
            return false;
        }
    } closeWhenPainted;
    if (parser.isSet(quitWhenShown)) app.installEventFilter(&closeWhenPainted);

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

        kav::kavHRLoan1 control;
        QSettings settings;
        kav::SettingsPropertyBag bag(settings, u"kavHRLoan1"_s);
        control.ReadProperties(bag);

        if (parser.isSet(connection)) {
            control.setOLEConnectionstring(parser.value(connection));
        } else if (control.OLEConnectionstring() == u"0") {
            const QString file = demoDatabasePath();
            if (!QFileInfo::exists(file)) kav::data::CreateDemoDatabase(file);
            control.setOLEConnectionstring(kav::data::EmbeddedConnectionString(file));
        }
        if (parser.isSet(user))
            control.setUserID(kav::vb::CInt(parser.value(user)));
        else if (control.UserID() == 0)
            control.setUserID(kav::data::DemoUserWithPermissions);
        if (parser.isSet(position)) control.setPositionID(kav::vb::CInt(parser.value(position)));
        if (parser.isSet(employee)) control.setEmployeeID(kav::vb::CInt(parser.value(employee)));
        if (parser.isSet(prsEmployee))
            control.setPRSEmployeeID(kav::vb::CLng(parser.value(prsEmployee)));
        if (parser.isSet(caption)) control.setCaption(parser.value(caption));

        // The properties are kept once the module has opened with them.
        if (parser.isSet(bench)) {
            control.setWindowTitle(u"kavHRLoan1"_s);
            control.show();
            const int rc = app.exec();
            control.WriteProperties(bag);
            return rc;
        }
        if (parser.isSet(view)) {
            qint32 id = kav::vb::CLng(parser.value(view));
            control.View(id);
        } else {
            control.ClearShow();
        }
        control.WriteProperties(bag);
        return 0;
    } catch (const kav::KavError& e) {
        return fail(e.message());
    } catch (const std::exception& e) {
        return fail(QString::fromUtf8(e.what()));
    }
}
