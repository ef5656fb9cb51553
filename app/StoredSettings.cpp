#include "StoredSettings.h"

#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <cstdio>

#include "session/WindowMemory.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

// Only the owner may read or write the settings file.
void keepPrivate(const QSettings& settings) {
    const QString file = settings.fileName();
    if (QFileInfo::exists(file))
        QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

}  // namespace

QString PropertyGroup() { return u"kavHRLoan1"_s; }

void StoreSettings(QSettings& settings) {
    keepPrivate(settings);
    const mode_t before = ::umask(077);
    settings.sync();
    ::umask(before);
    keepPrivate(settings);
}

int ResetSettings(QSettings& settings) {
    settings.remove(PropertyGroup());
    kav::window_memory::Forget(settings);
    StoreSettings(settings);
    std::printf("the stored properties and window sizes in %s are forgotten\n",
                settings.fileName().toUtf8().constData());
    return 0;
}

}  // namespace app
