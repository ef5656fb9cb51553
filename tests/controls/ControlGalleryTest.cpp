#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include "controls/ControlGallery.h"

using namespace Qt::StringLiterals;

// Every control is drawn filled and empty (set KAV_GALLERY_DIR to keep the pictures for a
// look).
TEST(ControlGallery, RendersEveryControlFilledAndEmpty) {
    QTemporaryDir temp;
    const QString dir = qEnvironmentVariable("KAV_GALLERY_DIR", temp.path());
    EXPECT_EQ(kav::controls::RenderControlGallery(dir), 0);
    for (const QString& name :
         {u"date_empty"_s, u"date_filled"_s, u"date_calendar"_s, u"currency_empty"_s,
          u"currency_filled"_s, u"selector_empty"_s, u"selector_filled"_s, u"selector_list"_s,
          u"flexgrid_empty"_s, u"flexgrid_filled"_s})
        EXPECT_GT(QImage(QDir(dir).filePath(name + u".png"_s)).width(), 50) << qPrintable(name);
}
