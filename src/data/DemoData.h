#pragma once

#include <QString>

namespace kav::data {

// The demo users: one holding the permissions 111801-111803, one holding none.
constexpr short DemoUserWithPermissions = 1;
constexpr short DemoUserWithoutPermissions = 2;

// Creates (or opens and completes) an embedded database at file with the schema and
// believable Persian demo data. Raises KavError when the file cannot be written.
void CreateDemoDatabase(const QString& file);

// The OLE DB style connection string that opens an embedded database file.
QString EmbeddedConnectionString(const QString& file);

}  // namespace kav::data
