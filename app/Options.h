#pragma once

// kavhrloan's command line: every option with its help text, and the parser that knows them.

#include <QCommandLineOption>
#include <QCommandLineParser>

namespace app {

struct Options {
    Options();

    // Adds the options, --help and --version to the parser; the help names the settings file.
    void AddTo(QCommandLineParser& parser, const QString& settingsFile) const;

    const QCommandLineOption demo, freshDemo, connection, user, position, employee, prsEmployee,
        caption, view, bench, resetSettings, createDemo, screenshots, quitWhenShown, checkDatabase,
        deductions, csv;
};

// A 16-bit id given on the command line; a text that is no such number names the option.
qint16 Int16Option(const QCommandLineParser& parser, const QCommandLineOption& option);

}  // namespace app
