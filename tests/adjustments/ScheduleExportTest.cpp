// The schedule as the clerk takes it away: the CSV rows and the PDF's pages.

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "adjustments/ScheduleExport.h"
#include "support/Raises.h"

using namespace Qt::StringLiterals;
using namespace kav;
using namespace kav::schedule;
using vb::Currency;

namespace {

Currency R(qint64 rials) { return Currency::fromRaw(rials * Currency::Scale); }

Schedule sample(int extraMonths = 0) {
    LoanTerms t;
    t.loanValue = R(1000000 + 300000LL * extraMonths);
    t.monthlyValue = R(300000);
    t.payBackNumber = 3 + extraMonths;
    t.remainderOption = 2;
    t.farsiBeginDate = u"1402/11/30"_s;
    t.farsiEndDate = u"1403/01/31"_s;
    return Compute(t, {{4, u"1402/12/01"_s, u"1402/12/29"_s, R(250000)}},
                   {{u"1402/11"_s, R(300000)}});
}

int pdfPages(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return -1;
    const QByteArray pdf = f.readAll();
    if (!pdf.startsWith("%PDF")) return -1;
    return int(QString::fromLatin1(pdf).count(QRegularExpression(u"/Type\\s*/Page[^s]"_s)));
}

}  // namespace

TEST(ScheduleExport, CsvRowsHoldPlainAmountsNotesAndTotals) {
    const QList<QStringList> rows = CsvRows(sample());
    const QList<QStringList> expected = {
        {u"ماه"_s, u"قسط برنامه"_s, u"تعديل"_s, u"کسر شده در فيش"_s, u"مانده پس از ماه"_s,
         u"توضيح"_s},
        {u"1402/11"_s, u"300000"_s, u""_s, u"300000"_s, u"700000"_s, u""_s},
        {u"1402/12"_s, u"300000"_s, u"250000"_s, u""_s, u"450000"_s, u""_s},
        {u"1403/01"_s, u"300000"_s, u""_s, u""_s, u"150000"_s, u""_s},
        {u"1403/02"_s, u"100000"_s, u""_s, u""_s, u"50000"_s,
         u"باقيمانده وام، پس از تاريخ تسويه"_s},
        {u"1403/03"_s, u"50000"_s, u""_s, u""_s, u"0"_s, u"پس از تاريخ تسويه"_s},
        {u"جمع"_s, u"1050000"_s, u"250000"_s, u"300000"_s, u"0"_s, u""_s},
    };
    EXPECT_EQ(rows, expected);
    EXPECT_EQ(AmountText(R(1050000)), u"1/050/000"_s);
}

TEST(ScheduleExport, PdfHasAPagePerScreenfulAndIsWrittenWholeOrNotAtAll) {
    QTemporaryDir dir;
    const QString shortPdf = dir.filePath(u"short.pdf"_s), longPdf = dir.filePath(u"long.pdf"_s);
    SavePdf(shortPdf, u"برنامه بازپرداخت وام"_s, {u"وام: 4"_s, u"کارمند: 1001 - علي رضايي"_s},
            sample());
    EXPECT_EQ(pdfPages(shortPdf), 1);
    SavePdf(longPdf, u"برنامه بازپرداخت وام"_s, {u"وام: 4"_s}, sample(200));
    EXPECT_GE(pdfPages(longPdf), 4);

    const QString blocked = dir.filePath(u"missing-folder/x.pdf"_s);
    EXPECT_EQ(test::RaisedKind([&] { SavePdf(blocked, u"t"_s, {}, sample()); }),
              KavError::Kind::Usage);
    EXPECT_FALSE(QFile::exists(blocked));
}
