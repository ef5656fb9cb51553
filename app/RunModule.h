#pragma once

// kavhrloan's ordinary run: the control takes its stored properties, the options given replace
// them, and the module opens (the loan window, a loan read-only, or the control's test bench).
// The properties are kept once the module has opened with them; a demo run keeps none, so it
// never replaces a real configuration.

class QApplication;
class QCommandLineParser;
class QSettings;

namespace app {

struct Options;

// Returns the exit code: 0 the window was closed, 2 the module could not start, 3 the user's
// role was refused. Raises KavError for a database that does not open or a loan --view names
// that is not there.
int RunModule(QApplication& app, QSettings& settings, const QCommandLineParser& parser,
              const Options& options);

}  // namespace app
