#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "controls/ControlGallery.h"

using namespace Qt::StringLiterals;

// Set KAV_GALLERY_DIR to keep the pictures for a look.
TEST(ControlGallery, RendersEveryControlFilledAndEmpty) {
    QTemporaryDir temp;
    const QString dir = qEnvironmentVariableIsEmpty("KAV_GALLERY_DIR")
                            ? temp.path()
                            : qEnvironmentVariable("KAV_GALLERY_DIR");
    EXPECT_EQ(kav::controls::RenderControlGallery(dir), 0);
    for (const QString& name :
         {u"date_empty"_s, u"date_filled"_s, u"date_calendar"_s, u"currency_empty"_s,
          u"currency_filled"_s, u"selector_empty"_s, u"selector_filled"_s, u"selector_list"_s,
          u"flexgrid_empty"_s, u"flexgrid_filled"_s}) {
        const QImage image(QDir(dir).filePath(name + u".png"_s));
        EXPECT_FALSE(image.isNull()) << qPrintable(name);
        EXPECT_GT(image.width(), 50) << qPrintable(name);
    }
}

TEST(ControlGallery, SaysHowManyPicturesItCouldNotWrite) {
    QTemporaryDir temp;
    QFile blocker(temp.filePath(u"file"_s));  // a file where the folder should be
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EXPECT_EQ(kav::controls::RenderControlGallery(temp.filePath(u"file/gallery"_s)), 10);
}
