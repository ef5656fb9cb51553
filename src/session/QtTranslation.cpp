#include "session/QtTranslation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace kav {

bool InstallQtPersianTranslation() {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app) return false;
    if (app->findChild<QTranslator*>(u"kav-qt-fa"_s)) return true;
    auto* translator = new QTranslator(app);
    translator->setObjectName(u"kav-qt-fa"_s);
    if (!translator->load(QLocale(QLocale::Persian, QLocale::Iran), u"qtbase"_s, u"_"_s,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    return true;
}

}  // namespace kav
