#pragma once

// kavhrloan --check-database: before an office points the module at a database, one line per
// object the module uses says whether it is there, and the exit code whether everything the
// module needs is (0) or not (2). It reads the database's catalogue and writes nothing.

class QCommandLineOption;
class QCommandLineParser;
class QSettings;
class QString;

// Checks the database that --connection names, else the stored connection string (the
// property group `propertyGroup` of the settings), with the permissions of --user or the stored
// UserID when one is given. Prints the lines on stdout; returns the exit code. A database that
// cannot be opened raises KavError, as the module's start does.
int CheckDatabase(QSettings& settings, const QString& propertyGroup,
                  const QCommandLineParser& parser, const QCommandLineOption& connection,
                  const QCommandLineOption& user);
