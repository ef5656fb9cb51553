#include "controls/ControlGallery.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCalendarWidget>
#include <QCompleter>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPixmap>
#include <QVBoxLayout>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

Q_LOGGING_CATEGORY(lcGallery, "kav.controls.gallery")

void settle() {
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

int unwritten = 0;

void save(QWidget* widget, const QDir& dir, const QString& name) {
    settle();
    const QString file = dir.filePath(name);
    if (!widget->grab().save(file)) {
        qCWarning(lcGallery) << "could not write" << file;
        ++unwritten;
    }
}

// A small right-to-left panel: a caption on the right, the control on the left.
class Panel : public QWidget {
public:
    Panel(const QString& caption, QWidget* control, int width) {
        ApplyPersianStyle(this);
        auto* form = new QFormLayout(this);
        form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
        form->addRow(new QLabel(caption), control);
        control->setParent(this);
        resize(width, sizeHint().height());
        // Rendered, never put on a screen, even when a display is there.
        setAttribute(Qt::WA_DontShowOnScreen);
    }
};

QVector<EmployeeEntry> demoEmployees() {
    return {{1, u"1001"_s, u"علي رضايي"_s},
            {2, u"1002"_s, u"مريم احمدي"_s},
            {3, u"1017"_s, u"حسين كاظمي"_s},
            {4, u"2040"_s, u"زهرا محمدي"_s},
            {5, u"12345"_s, u"پژمان گلستاني"_s}};
}

void fillGrid(FlexGrid* grid) {
    grid->setRows(1);
    grid->setFormatString(
        u"رديف |^کارمند |^تاريخ شروع بازه|^تاريخ پايان بازه|^مقدار قسط |^شماره رايانه "_s);
    const int widths[] = {500, 1800, 1300, 1300, 1200, 1100};
    for (int c = 0; c < 6; ++c) grid->setColWidth(c, widths[c]);
    grid->setColAlignment(0, FlexGrid::flexAlignCenterCenter);
    const QStringList names = {u"علي رضايي"_s, u"مريم احمدي"_s, u"حسين كاظمي"_s, u"زهرا محمدي"_s,
                               u"پژمان گلستاني"_s};
    for (int i = 0; i < names.size(); ++i) {
        grid->AddItem();
        const int r = grid->Rows() - 1;
        grid->setTextMatrix(r, 0, QString::number(r));
        grid->setTextMatrix(r, 1, names[i]);
        grid->setTextMatrix(r, 2, u"1403/%1/01"_s.arg(i + 1, 2, 10, QChar(u'0')));
        grid->setTextMatrix(r, 3, u"1403/12/29"_s);
        grid->setTextMatrix(r, 4, QString::number(250000 * (i + 1)));
        grid->setTextMatrix(r, 5, QString::number(100 + i));
    }
    grid->setRow(2);
    grid->setCol(1);
    grid->setColSel(grid->Cols() - 1);
}

}  // namespace

int RenderControlGallery(const QString& path) {
    QDir dir(path);
    unwritten = 0;
    if (!dir.exists() && !QDir().mkpath(path)) {
        qCWarning(lcGallery) << "could not create" << path;
        return GalleryPictures;
    }

    {
        auto* date = new VarekDate;
        Panel panel(u"تاريخ پرداخت:"_s, date, 260);
        panel.show();
        save(&panel, dir, u"date_empty.png"_s);
        date->setFarsidate(u"1403/12/30"_s);
        save(&panel, dir, u"date_filled.png"_s);
        date->calendarWidget()->window()->setAttribute(Qt::WA_DontShowOnScreen);
        date->showCalendar();
        settle();
        if (QWidget* popup = date->calendarWidget()->window())
            save(popup, dir, u"date_calendar.png"_s);
        date->calendarWidget()->window()->hide();
        date->calendarWidget()->window()->setAttribute(Qt::WA_DontShowOnScreen, false);
    }
    {
        auto* amount = new VarekCurrency;
        Panel panel(u"مبلغ اوليه:"_s, amount, 300);
        panel.show();
        save(&panel, dir, u"currency_empty.png"_s);
        amount->setValue(u"12500000"_s);
        save(&panel, dir, u"currency_filled.png"_s);
    }
    {
        auto* selector = new VarekSelector;
        selector->setEmployees(demoEmployees());
        Panel panel(u"كارمند:"_s, selector, 360);
        panel.show();
        save(&panel, dir, u"selector_empty.png"_s);
        selector->setValue(5);
        save(&panel, dir, u"selector_filled.png"_s);
        selector->Clear();
        panel.activateWindow();
        selector->lineEdit()->setText(u"10"_s);
        selector->completer()->setCompletionPrefix(u"10"_s);
        selector->completer()->popup()->setAttribute(Qt::WA_DontShowOnScreen);
        selector->completer()->complete();
        settle();
        QWidget* popup = selector->completer()->popup();
        if (popup->isVisible()) save(popup, dir, u"selector_list.png"_s);
        popup->hide();
        popup->setAttribute(Qt::WA_DontShowOnScreen, false);
    }
    {
        auto* grid = new FlexGrid;
        Panel panel(u"نتيجه:"_s, grid, 640);
        panel.resize(640, 240);
        grid->setRows(1);
        grid->setFormatString(
            u"رديف |^کارمند |^تاريخ شروع بازه|^تاريخ پايان بازه|^مقدار قسط |^شماره رايانه "_s);
        panel.show();
        save(&panel, dir, u"flexgrid_empty.png"_s);
        fillGrid(grid);
        save(&panel, dir, u"flexgrid_filled.png"_s);
    }
    return unwritten;
}

}  // namespace kav::controls
