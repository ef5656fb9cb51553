#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDialog>
#include <QTemporaryDir>

#include "session/PagedDocument.h"
#include "session/Printing.h"
#include "session/TableDocument.h"
#include "support/PdfText.h"
#include "support/QtPrinters.h"
#include "support/TestDatabase.h"
#include "support/TsqlCheck.h"

using namespace Qt::StringLiterals;
using namespace kav;
using test::Plain;

namespace {

// A table of 150 members, the fifth with a note of three lines.
TableDocument members() {
    TableDocument doc;
    doc.title = u"فهرست کارمندان"_s;
    doc.facts = {u"ماه: 1403/07"_s};
    doc.columnTitles = {u"کد"_s, u"نام"_s, u"توضيح"_s};
    doc.columnShares = {1, 2, 3};
    doc.wrapColumns = {2};
    for (int i = 1; i <= 150; ++i)
        doc.lines << TableDocument::Line{{u"C%1"_s.arg(i, 3, 10, QChar(u'0')), u"کارمند"_s,
                                          i == 5 ? u"سطر اول\nسطر دوم\nسطر سوم"_s : QString()}};
    return doc;
}

}  // namespace

// Who printed: the employee's name where the database knows him, the user's number always, the
// Jalali date and the time.
TEST(Printing, TheFootNamesWhoPrintedAndWhen) {
    EXPECT_EQ(PrintedText(u"علي رضايي (کاربر 3)"_s, QDateTime(QDate(2024, 10, 6), QTime(14, 5))),
              u"چاپ توسط علي رضايي (کاربر 3)، 1403/07/15 ساعت 14:05"_s);
    EXPECT_EQ(
        test::CheckedTsql(PrinterNameQuery(data::SqlDialect(data::DatabaseKind::SqlServer), 12)),
        u"select e.FirstName +' '+e.SureName as 'EmployeeName' from tblEmployee e Where "
        "e.ID=12"_s);

    test::TestModule t;
    t.db.exec(
        u"insert into tblEmployee (ID, Code, FirstName, SureName) values (12, '1001', "
        "'علي', 'رضايي')"_s);
    Session& s = t.module.session;
    s.SessionUserID = 3;
    QStringList names;
    for (const qint16 employee : {12, 0, 99}) {
        s.SessionEmployeeID = employee;
        names << SessionPrinterName(t.module);
    }
    EXPECT_EQ(names, (QStringList{u"علي رضايي (کاربر 3)"_s, u"کاربر 3"_s, u"کاربر 3"_s}));
}

// Every page of a long table: the title, the facts, the column titles and the foot with who
// printed it and the page's number; each line once, in order; a cell's lines all kept.
TEST(Printing, ATableRepeatsItsHeadingAndFootOnEveryPage) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"t.pdf"_s);
    const QString printed = u"چاپ توسط کاربر 3، 1403/07/15 ساعت 14:05"_s;
    const PagedDocument doc = TablePages(members());
    SavePdf(path, doc, printed);
    const QStringList pages = test::PdfPages(path);
    ASSERT_GE(pages.size(), 4);
    QString all;
    for (int n = 0; n < pages.size(); ++n) {
        SCOPED_TRACE(n);
        // pdftotext moves punctuation and numbers about within a line: the words and the
        // numbers each.
        for (const QString& text : {u"فهرست کارمندان"_s, u"ماه"_s, u"1403/07"_s, u"توضيح"_s,
                                    u"چاپ توسط کاربر"_s, u"1403/07/15"_s, u"14:05"_s})
            EXPECT_TRUE(pages[n].contains(Plain(text))) << text.toStdString();
        EXPECT_TRUE(pages[n].contains(Plain(u"صفحه %1 از %2"_s.arg(n + 1).arg(pages.size()))));
        all += pages[n];
    }
    qsizetype at = -1;
    for (int i = 1; i <= 150; ++i) {
        const QString code = u"C%1"_s.arg(i, 3, 10, QChar(u'0'));
        EXPECT_EQ(all.count(code), 1) << code.toStdString();
        EXPECT_GT(all.indexOf(code), at) << code.toStdString();
        at = all.indexOf(code);
    }
    for (const QString& line : {u"سطر اول"_s, u"سطر دوم"_s, u"سطر سوم"_s})
        EXPECT_TRUE(all.contains(Plain(line)));
    EXPECT_FALSE(PageImage(doc, printed, int(pages.size()) - 1).isNull());
    EXPECT_TRUE(PageImage(doc, printed, int(pages.size())).isNull());
}

// Printing paints the PDF's pages on the printer; the module's default preview is Qt's, shown
// through the modal seam, and asks for the pages when it shows.
TEST(Printing, PrintingPaintsThePagesOfThePdf) {
    test::TestModule t;
    t.module.session.SessionUserID = 3;
    const QStringList pages = test::PrintedPages(
        t.module, [&] { PrintDocument(t.module, nullptr, TablePages(members())); });
    ASSERT_GE(pages.size(), 4);
    EXPECT_TRUE(pages.last().contains(u"C150"_s));
    EXPECT_TRUE(pages.last().contains(Plain(u"چاپ توسط کاربر"_s)));

    QString shown;
    int painted = 0;
    t.module.SetModalRunner([&](QDialog& d) {
        shown = QString::fromLatin1(d.metaObject()->className());
        d.show();
        QCoreApplication::processEvents();
        d.hide();
        return 0;
    });
    PagedDocument counted = TablePages(members());
    const auto paint = counted.paint;
    counted.paint = [&](QPainter& p, QPaintDevice& device, const QSizeF& area,
                        const NewPage& next) {
        ++painted;
        paint(p, device, area, next);
    };
    PrintDocument(t.module, nullptr, counted);
    EXPECT_EQ(shown, u"QPrintPreviewDialog"_s);
    EXPECT_GE(painted, 1);
}
