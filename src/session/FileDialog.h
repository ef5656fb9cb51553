#pragma once

// The one question every export asks for its file: Qt's own save dialog (so it speaks Persian
// once the application loaded Qt's Persian translation), opening in the user's Documents folder
// the first time and in the folder last used after that, proposing a name that says what the
// file holds with today's Jalali date, and showing the files' dates as Jalali dates read left
// to right (the system's date text comes out reordered in a right-to-left dialog).

#include <QDate>
#include <QString>
#include <functional>
#include <memory>

class QFileDialog;
class QWidget;
class QSettings;

namespace kav {

class Module;

// Asks for a file to save: the dialog's caption, the proposed path (folder and name) and the
// filter ("PDF (*.pdf)"); an empty answer is no file. Tests answer it without a dialog.
using SaveFileQuestion = std::function<QString(QWidget* parent, const QString& caption,
                                               const QString& proposedPath, const QString& filter)>;

// Qt's save dialog as described above, ready to show.
std::unique_ptr<QFileDialog> BuildSaveDialog(QWidget* parent, const QString& caption,
                                             const QString& proposedPath, const QString& filter);
// Shows it and returns the file chosen.
QString AskWithFileDialog(QWidget* parent, const QString& caption, const QString& proposedPath,
                          const QString& filter);

// The folder a save dialog opens in: the last one used (kept in the host application's
// settings, group "Files"), else the user's Documents folder.
QString SaveFolder(QSettings& settings);
void RememberSaveFolder(QSettings& settings, const QString& chosenPath);

// Asks through the module's question for a file named `name` (no folder) with the suffix of
// `suffix` ("csv", "pdf"), in SaveFolder; remembers the folder of the answer. The answer ends
// with the suffix; empty when the clerk did not choose a file.
QString AskSaveFile(const Module& module, QWidget* parent, const QString& caption,
                    const QString& name, const QString& suffix);

// A file name: the words joined by "-", then the Jalali date ("1403-07-15"); characters that a
// file name cannot hold become "-".
QString ProposedFileName(const QStringList& words, const QDate& day = QDate::currentDate());

}  // namespace kav
