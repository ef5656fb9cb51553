#include "session/FileDialog.h"

#include <QCalendar>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTreeView>

#include "session/Module.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

const QString kFolderKey = u"Files/LastSaveFolder"_s;

QString jalali(const QDate& day, const QString& separator) {
    const QCalendar::YearMonthDay ymd = QCalendar(QCalendar::System::Jalali).partsFromDate(day);
    return QStringList{u"%1"_s.arg(ymd.year, 4, 10, QChar(u'0')),
                       u"%1"_s.arg(ymd.month, 2, 10, QChar(u'0')),
                       u"%1"_s.arg(ymd.day, 2, 10, QChar(u'0'))}
        .join(separator);
}

// The file list's date column as a Jalali date and time, isolated left to right.
class JalaliDates : public QIdentityProxyModel {
public:
    using QIdentityProxyModel::QIdentityProxyModel;
    QVariant data(const QModelIndex& index, int role) const override {
        auto* files = qobject_cast<QFileSystemModel*>(sourceModel());
        // A size ("40.50 KiB") reads left to right too.
        if (role == Qt::DisplayRole && index.column() == 1) {
            const QString size = QIdentityProxyModel::data(index, role).toString();
            return size.isEmpty() ? size : QChar(0x2066) + size + QChar(0x2069);
        }
        if (role == Qt::DisplayRole && files && index.column() == 3) {
            const QDateTime when = files->lastModified(mapToSource(index));
            if (when.isValid())
                return QChar(0x2066) + jalali(when.date(), u"/"_s) + u' ' +
                       when.time().toString(u"HH:mm"_s) + QChar(0x2069);
        }
        return QIdentityProxyModel::data(index, role);
    }
};

}  // namespace

std::unique_ptr<QFileDialog> BuildSaveDialog(QWidget* parent, const QString& caption,
                                             const QString& proposedPath, const QString& filter) {
    auto dialog = std::make_unique<QFileDialog>(parent, caption, proposedPath, filter);
    // Qt's own dialog, not the desktop's: it speaks the application's translation and shows
    // the dates through the proxy.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setLayoutDirection(Qt::RightToLeft);
    dialog->setProxyModel(new JalaliDates(dialog.get()));
    dialog->selectFile(QFileInfo(proposedPath).fileName());
    // The size, kind and date columns as wide as what they show, the name taking the rest.
    if (auto* list = dialog->findChild<QTreeView*>(u"treeView"_s)) {
        list->header()->setStretchLastSection(false);
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
    return dialog;
}

QString AskWithFileDialog(QWidget* parent, const QString& caption, const QString& proposedPath,
                          const QString& filter) {
    const std::unique_ptr<QFileDialog> dialog =
        BuildSaveDialog(parent, caption, proposedPath, filter);
    if (dialog->exec() != QDialog::Accepted || dialog->selectedFiles().isEmpty()) return {};
    return dialog->selectedFiles().constFirst();
}

QString SaveFolder(QSettings& settings) {
    const QString last = settings.value(kFolderKey).toString();
    if (!last.isEmpty() && QFileInfo(last).isDir()) return last;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!documents.isEmpty() && QDir().mkpath(documents)) return documents;
    return QDir::homePath();
}

void RememberSaveFolder(QSettings& settings, const QString& chosenPath) {
    settings.setValue(kFolderKey, QFileInfo(chosenPath).absolutePath());
}

QString AskSaveFile(const Module& module, QWidget* parent, const QString& caption,
                    const QString& name, const QString& suffix) {
    QSettings settings;
    const QString ending = u"."_s + suffix;
    QString path = module.saveFileQuestion()(parent, caption,
                                             QDir(SaveFolder(settings)).filePath(name + ending),
                                             suffix.toUpper() + u" (*"_s + ending + u")"_s);
    if (path.isEmpty()) return {};
    if (!path.endsWith(ending, Qt::CaseInsensitive)) path += ending;
    RememberSaveFolder(settings, path);
    return path;
}

QString ProposedFileName(const QStringList& words, const QDate& day) {
    static const QRegularExpression unfit(u"[\\\\/:*?\"<>|\\s]+"_s);
    QStringList parts;
    for (const QString& w : words)
        if (const QString fit = w.trimmed().replace(unfit, u"-"_s); !fit.isEmpty()) parts << fit;
    return (parts << jalali(day, u"-"_s)).join(u'-');
}

}  // namespace kav
