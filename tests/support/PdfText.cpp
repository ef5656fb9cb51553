#include "PdfText.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "session/Module.h"

using namespace Qt::StringLiterals;

namespace kav::test {

QString Plain(const QString& text) {
    QString plain;
    for (const QChar c : text.normalized(QString::NormalizationForm_KC)) {
        const char16_t u = c.unicode();
        if (c.isSpace() || u == 0x200E || u == 0x200F || (u >= 0x202A && u <= 0x202E) ||
            (u >= 0x2066 && u <= 0x2069))
            continue;
        plain += u == 0x064A ? QChar(0x06CC) : u == 0x0643 ? QChar(0x06A9) : c;
    }
    return plain;
}

namespace {

// pdftotext's pages, unchanged.
QStringList pdftotext(const QString& path, const QStringList& options) {
    QProcess run;
    run.start(u"pdftotext"_s, options + QStringList{u"-enc"_s, u"UTF-8"_s, path, u"-"_s});
    if (!run.waitForFinished(30000) || run.exitCode() != 0) {
        ADD_FAILURE() << "pdftotext (poppler-utils) could not read " << path.toStdString() << ": "
                      << run.errorString().toStdString()
                      << QString::fromUtf8(run.readAllStandardError()).toStdString();
        return {};
    }
    QStringList pages = QString::fromUtf8(run.readAllStandardOutput()).split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty()) pages.removeLast();
    return pages;
}

}  // namespace

QStringList PdfPages(const QString& path) {
    QStringList pages = pdftotext(path, {});
    for (QString& page : pages) page = Plain(page);
    return pages;
}

QList<QStringList> PdfRows(const QString& path) {
    static const QRegularExpression gap(u"\\s{2,}"_s);
    QList<QStringList> pages;
    for (const QString& page : pdftotext(path, {u"-layout"_s})) {
        QStringList rows;
        for (const QString& line : page.split(u'\n')) {
            QStringList cells;
            // Laid out from the left: the right edge's cell is the last.
            for (const QString& cell : line.split(gap, Qt::SkipEmptyParts))
                if (const QString plain = Plain(cell); !plain.isEmpty()) cells.prepend(plain);
            if (!cells.isEmpty()) rows << cells.join(u'|');
        }
        pages << rows;
    }
    return pages;
}

namespace {

// Prints to a PDF file in the folder; true when something was printed.
bool printToPdf(Module& module, const std::function<void()>& print, const QString& path) {
    module.SetPrintPreview(
        [&](QWidget*, QPrinter& printer, const std::function<void(QPrinter&)>& paint) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(path);
            paint(printer);
        });
    print();
    module.SetPrintPreview({});
    return QFileInfo::exists(path);
}

}  // namespace

QStringList PrintedPages(Module& module, const std::function<void()>& print) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"printed.pdf"_s);
    return printToPdf(module, print, path) ? PdfPages(path) : QStringList();
}

QList<QStringList> PrintedRows(Module& module, const std::function<void()>& print) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"printed.pdf"_s);
    return printToPdf(module, print, path) ? PdfRows(path) : QList<QStringList>();
}

}  // namespace kav::test
