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
// A message printed or shown never holds a password.

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QSettings>
#include <cstdio>
#include <functional>

#include "CheckDatabase.h"
#include "DeductionsExport.h"
#include "DemoDatabase.h"
#include "Options.h"
#include "RunModule.h"
#include "Screenshots.h"
#include "StartUp.h"
#include "StoredSettings.h"
#include "base/Errors.h"
#include "session/QtTranslation.h"

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    if (!app::HasDisplay()) {
        if (!app::HeadlessRun(argc, argv)) {
            std::fprintf(stderr,
                         "kavhrloan: no display to show the loan window on (DISPLAY is not "
                         "set); --screenshots DIR renders the windows without one.\n");
            return app::ExitStartFailed;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"KAV"_s);
    QApplication::setApplicationName(u"kavhrloan"_s);
    QApplication::setApplicationVersion(QStringLiteral(KAV_VERSION));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    // Qt's own dialogs (file, print, preview, their buttons) in Persian too.
    kav::InstallQtPersianTranslation();
    QSettings settings;

    QCommandLineParser parser;
    const app::Options options;
    options.AddTo(parser, settings.fileName());
    parser.process(application);
    const bool demoRun = parser.isSet(options.demo) || parser.isSet(options.freshDemo);
    const auto demoConnection = [&] {
        return parser.isSet(options.freshDemo) ? app::FreshDemoConnection() : app::DemoConnection();
    };

    try {
        if (parser.isSet(options.createDemo))
            return app::CreateDemoDatabaseFile(parser.value(options.createDemo));
        if (parser.isSet(options.screenshots)) {
            const int n = RenderScreenshots(parser.value(options.screenshots));
            std::printf(
                "%d screenshots in %s\n", n,
                QDir(parser.value(options.screenshots)).absolutePath().toUtf8().constData());
            return 0;
        }
        if (parser.isSet(options.resetSettings)) return app::ResetSettings(settings);
        if (parser.isSet(options.checkDatabase))
            return CheckDatabase(settings, app::PropertyGroup(), parser, options.connection,
                                 options.user);
        if (parser.isSet(options.deductions) || parser.isSet(options.csv))
            return ExportDeductions(
                settings, app::PropertyGroup(), parser,
                {options.deductions, options.csv, options.connection, options.user},
                demoRun ? std::function<QString()>(demoConnection) : std::function<QString()>());
        return app::RunModule(application, settings, parser, options);
    } catch (const kav::KavError& e) {
        return app::Fail(e.message());
    } catch (const std::exception& e) {
        return app::Fail(QString::fromUtf8(e.what()));
    }
}
