#pragma once

// The settings file of kavhrloan keeps the control's properties, the connection string and
// its password among them, so only its owner may read it (0600, narrowed when it was wider).

#include <QString>

class QSettings;

namespace app {

// The group under which the control's properties are kept.
QString PropertyGroup();

// Writes the settings now. A file that exists is narrowed first, so the new contents never
// stand in a file others may read; a new file is made for its owner alone.
void StoreSettings(QSettings& settings);

// --reset-settings: forgets the stored properties and the windows' sizes and column widths,
// says where, and returns the exit code.
int ResetSettings(QSettings& settings);

}  // namespace app
