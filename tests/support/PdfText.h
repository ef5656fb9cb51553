#pragma once

// What a PDF the module wrote says, page by page, read back with pdftotext (poppler-utils):
// Persian comes back in the letters' presentation forms, with the direction marks of the
// layout and its blanks moved about, so both the text read and the text expected are compared
// as Plain texts: the letters' own forms, Arabic yeh and kaf as the Persian ones, without
// direction marks and without blanks.
//
//   const QStringList pages = PdfPages(path);
//   EXPECT_TRUE(pages[0].contains(Plain(u"وام شماره 7"_s)));

#include <QString>
#include <QStringList>
#include <functional>

namespace kav {
class Module;
}

namespace kav::test {

QString Plain(const QString& text);

// The pages' Plain texts; a failure of the test (and no pages) when pdftotext cannot read it.
QStringList PdfPages(const QString& path);

// The pages' lines as laid out, each a table's row: its cells (apart by two blanks or more on
// paper) from the right edge, as Plain texts joined by '|'. Empty cells leave no trace.
QList<QStringList> PdfRows(const QString& path);

// Makes the module's print preview print straight to a PDF file (QPrinter's PDF format) and
// returns the pages printed by `print`; no pages when nothing was printed.
QStringList PrintedPages(Module& module, const std::function<void()>& print);
// The same as the pages' rows (PdfRows).
QList<QStringList> PrintedRows(Module& module, const std::function<void()>& print);

}  // namespace kav::test
