#include "StartUp.h"

#include <QGuiApplication>

#include "data/ConnectionString.h"

using namespace Qt::StringLiterals;

namespace app {

void PrintLine(FILE* stream, const QString& line) {
    QString text = line;
    text.replace(u'\n', u' ');
    std::fprintf(stream, "kavhrloan: %s\n", text.toUtf8().constData());
}

bool OnScreen() {
    const QString platform = QGuiApplication::platformName();
    return platform != u"offscreen" && platform != u"minimal";
}

int Fail(const QString& text) {
    const QString message = kav::data::MaskPasswords(text);
    PrintLine(stderr, message);
    if (OnScreen()) kav::BuildMessageDialog(u"خطا"_s, message, 0)->exec();
    return ExitStartFailed;
}

bool HasDisplay() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool HeadlessRun(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a.startsWith("--create-demo-db") || a.startsWith("--screenshots") || a == "--help" ||
            a == "--help-all" || a == "-h" || a == "-?" || a == "--version" || a == "-v" ||
            a == "--reset-settings" || a == "--check-database" || a.startsWith("--deductions"))
            return true;
    }
    return false;
}

void StderrMessages::ClearShow() {
    PrintLine(stderr, title_ + u": "_s + message_ + (type_ == 1 ? u" [?]"_s : QString()));
}

}  // namespace app
