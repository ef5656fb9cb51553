#pragma once

// The demo database of kavhrloan, in the user's data folder.

#include <QString>

namespace app {

// The demo database's file.
QString DemoDatabasePath();

// The demo database's connection string; the database is made when it is missing, empty (a
// zero-byte file) or without the loan tables, and a file there that is no database at all is
// replaced.
QString DemoConnection();

// The demo database made afresh (--fresh-demo): the file and its journal go first, so the
// loans earlier runs saved in it are gone.
QString FreshDemoConnection();

// --create-demo-db FILE: makes a demo database there and prints its path; the exit code.
int CreateDemoDatabaseFile(const QString& file);

}  // namespace app
