#pragma once

// Qt's own dialogs in Persian: the file dialog, the print and print preview dialogs, the
// standard buttons. Qt ships their Persian translation (Debian qt6-translations-l10n); the
// application installs it when it starts. The library never installs it by itself: a host's
// own dialogs are the host's, so a host that wants it calls this too.

namespace kav {

// Loads Qt's Persian translation into the running application; false when it is not
// installed (the dialogs then stay in English). Calling it again changes nothing.
bool InstallQtPersianTranslation();

}  // namespace kav
