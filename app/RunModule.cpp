#include "RunModule.h"

#include <QApplication>
#include <QDialog>
#include <QSettings>
#include <QTimer>
#include <memory>
#include <optional>

#include "DemoDatabase.h"
#include "Options.h"
#include "StartUp.h"
#include "StoredSettings.h"
#include "base/Errors.h"
#include "data/ConnectionString.h"
#include "data/DemoData.h"
#include "host/PropertyBag.h"
#include "host/kavHRLoan1.h"
#include "session/Module.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

// The database and the user: the demo's on a demo run; else the option given, the stored
// property, or the demo database when nothing is stored. A user must be named on any other
// database. Returns a failure's text, empty when the control is set.
QString chooseDatabase(kav::kavHRLoan1& control, const QCommandLineParser& parser, const Options& o,
                       const std::function<bool(const QString&, const QCommandLineOption&)>& given,
                       const QStringList& unread) {
    if (parser.isSet(o.demo) || parser.isSet(o.freshDemo)) {
        control.setOLEConnectionstring(parser.isSet(o.freshDemo) ? FreshDemoConnection()
                                                                 : DemoConnection());
        control.setUserID(kav::data::DemoUserWithPermissions);
        return {};
    }
    const QString demoDb = kav::data::EmbeddedConnectionString(DemoDatabasePath());
    if (given(u"OLEConnectionstring"_s, o.connection))
        control.setOLEConnectionstring(parser.value(o.connection));
    else if (control.OLEConnectionstring() == u"0" || control.OLEConnectionstring() == demoDb)
        control.setOLEConnectionstring(DemoConnection());
    const bool onDemo = control.OLEConnectionstring() == demoDb;
    if (given(u"UserID"_s, o.user)) {
        control.setUserID(Int16Option(parser, o.user));
    } else if (control.UserID() == 0 && !unread.contains(u"UserID"_s)) {
        if (!onDemo)
            return u"کاربر مشخص نشده است: روي پايگاه داده‌اي جز پايگاه داده نمايشي، شناسه "
                   u"کاربر را با --user ID بدهيد (يا UserID ذخيره شده). کاربر نمايشي (1) "
                   u"فقط روي پايگاه داده نمايشي به کار مي‌رود."_s;
        control.setUserID(kav::data::DemoUserWithPermissions);
    }
    return {};
}

// The control's properties: stored ones first (unless on a demo run), then the options given.
// Returns a failure's text, empty when the control is ready.
QString configureControl(kav::kavHRLoan1& control, kav::SettingsPropertyBag& bag,
                         const QSettings& settings, const QCommandLineParser& parser,
                         const Options& o) {
    // A stored value that cannot be read is reported only when no option replaces it.
    std::optional<kav::KavError> unreadable;
    QStringList unread;
    if (!parser.isSet(o.demo) && !parser.isSet(o.freshDemo)) {
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
    if (QString failure = chooseDatabase(control, parser, o, given, unread); !failure.isEmpty())
        return failure;
    if (given(u"PositionID"_s, o.position)) control.setPositionID(Int16Option(parser, o.position));
    if (given(u"EmployeeID"_s, o.employee)) control.setEmployeeID(Int16Option(parser, o.employee));
    if (parser.isSet(o.prsEmployee))
        control.setPRSEmployeeID(kav::vb::CLng(parser.value(o.prsEmployee)));
    if (given(u"Caption"_s, o.caption)) control.setCaption(parser.value(o.caption));
    if (unreadable && !unread.isEmpty())
        return unreadable->message() +
               u"\nبا گزينه خط فرمان مقدار درست را بدهيد، يا kavhrloan --reset-settings "
               u"ويژگي‌هاي ذخيره شده را پاک مي‌کند (%1)."_s.arg(
                   settings.fileName());
    return {};
}

}  // namespace

int RunModule(QApplication& app, QSettings& settings, const QCommandLineParser& parser,
              const Options& options) {
    auto module = std::make_shared<kav::Module>();
    if (!OnScreen()) module->SetMessageFactory([] { return std::make_unique<StderrMessages>(); });
    if (parser.isSet(options.quitWhenShown))
        module->SetModalRunner([](QDialog& dialog) {
            QTimer::singleShot(0, &dialog, [&dialog] { dialog.done(0); });
            return dialog.exec();
        });
    kav::kavHRLoan1 control(module);
    kav::SettingsPropertyBag bag(settings, PropertyGroup());
    if (QString failure = configureControl(control, bag, settings, parser, options);
        !failure.isEmpty())
        return Fail(failure);

    // On the demo database the loan window's caption says so.
    if (control.OLEConnectionstring() == kav::data::EmbeddedConnectionString(DemoDatabasePath()))
        module->SetCaptionNote(u" - پايگاه داده نمايشي"_s);

    const bool keep = !parser.isSet(options.demo) && !parser.isSet(options.freshDemo);
    const auto keepProperties = [&] {
        if (!keep) return;
        control.WriteProperties(bag);
        StoreSettings(settings);
    };
    if (parser.isSet(options.bench)) {
        control.setWindowTitle(u"kavHRLoan1"_s);
        control.show();
        if (parser.isSet(options.quitWhenShown)) QTimer::singleShot(0, &app, &QApplication::quit);
        const int rc = app.exec();
        keepProperties();
        return rc;
    }
    if (parser.isSet(options.view)) {
        qint32 id = kav::vb::CLng(parser.value(options.view));
        control.View(id);
    } else {
        control.ClearShow();
        if (control.RoleWasRefused()) {
            // The refusal was shown; the terminal hears of it too (without a screen the
            // message itself went there).
            if (OnScreen())
                PrintLine(stderr,
                          kav::Module::RoleRefusalText() + u" (UserID %1)"_s.arg(control.UserID()));
            return ExitRoleRefused;
        }
    }
    keepProperties();
    return 0;
}

}  // namespace app
