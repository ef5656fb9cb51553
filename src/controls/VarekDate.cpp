#include "controls/VarekDate.h"

#include <QCalendarWidget>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QScreen>
#include <QStyle>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

#include "controls/FarsiDateText.h"
#include "session/Ui.h"
#include "session/WindowSupport.h"

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

// What a full typed date looks like: four digits, two, two.
const QRegularExpression& completeDate() {
    static const QRegularExpression re(u"^\\d{4}/\\d{2}/\\d{2}$"_s);
    return re;
}

}  // namespace

VarekDate::VarekDate(QWidget* parent) : QWidget(parent) {
    setLayoutDirection(Qt::RightToLeft);
    setFont(PersianFont());

    edit_ = new QLineEdit(this);
    edit_->setObjectName(u"edit"_s);
    edit_->setMaxLength(10);
    // Digits (Latin, Persian, Arabic-Indic) and slashes only; a date reads left to right
    // inside the right-to-left box.
    edit_->setValidator(new QRegularExpressionValidator(
        QRegularExpression(u"^[0-9\u06F0-\u06F9\u0660-\u0669/]*$"_s), edit_));
    edit_->setAlignment(Qt::AlignCenter);
    edit_->installEventFilter(this);

    button_ = new QToolButton(this);
    button_->setObjectName(u"calendarButton"_s);
    button_->setArrowType(Qt::DownArrow);
    button_->setFocusPolicy(Qt::NoFocus);
    button_->setToolTip(u"تقويم"_s);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    layout->addWidget(edit_, 1);
    layout->addWidget(button_);

    setFocusProxy(edit_);
    setFocusPolicy(Qt::StrongFocus);

    popup_ = new QFrame(this, Qt::Popup);
    popup_->setFrameShape(QFrame::StyledPanel);
    popup_->setLayoutDirection(Qt::RightToLeft);
    calendar_ = new QCalendarWidget(popup_);
    calendar_->setObjectName(u"calendar"_s);
    calendar_->setCalendar(JalaliCalendar());
    calendar_->setLocale(QLocale(QLocale::Persian, QLocale::Iran));
    calendar_->setFirstDayOfWeek(Qt::Saturday);
    calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    // One letter per weekday keeps the month narrow; Friday is the weekend, not Saturday and
    // Sunday as the default format has it.
    calendar_->setHorizontalHeaderFormat(QCalendarWidget::SingleLetterDayNames);
    QTextCharFormat weekday;
    weekday.setForeground(palette().color(QPalette::Text));
    QTextCharFormat weekend;
    weekend.setForeground(QColor(Qt::red));
    for (int d = Qt::Monday; d <= Qt::Sunday; ++d)
        calendar_->setWeekdayTextFormat(Qt::DayOfWeek(d), d == Qt::Friday ? weekend : weekday);
    calendar_->setGridVisible(true);
    calendar_->setFont(PersianFont());
    // Its own minimum size hint is far wider than a month of one-letter day names needs.
    calendar_->setMinimumSize(300, 210);
    if (auto* days = calendar_->findChild<QTableView*>()) {
        days->horizontalHeader()->setMinimumSectionSize(24);
        days->verticalHeader()->setMinimumSectionSize(18);
    }
    auto* popupLayout = new QVBoxLayout(popup_);
    popupLayout->setContentsMargins(1, 1, 1, 1);
    popupLayout->addWidget(calendar_);

    connect(button_, &QToolButton::clicked, this, &VarekDate::showCalendar);
    connect(edit_, &QLineEdit::textEdited, this, &VarekDate::onTextEdited);
    connect(edit_, &QLineEdit::editingFinished, this, &VarekDate::onEditingFinished);
    connect(calendar_, &QCalendarWidget::clicked, this, &VarekDate::onCalendarPicked);
    connect(calendar_, &QCalendarWidget::activated, this, &VarekDate::onCalendarPicked);
}

VarekDate::~VarekDate() = default;

QString VarekDate::farsidate() const { return FarsiDateText(date_); }

void VarekDate::setFarsidate(const QString& text) {
    date_ = ParseStoredFarsiDate(text);
    clearRefusal();
    showDate();
}

QDate VarekDate::englishdate() const { return date_; }

void VarekDate::setEnglishdate(const QDate& date) {
    date_ = date.isValid() ? date : QDate();
    clearRefusal();
    showDate();
}

int VarekDate::farsiyear() const {
    return date_.isValid() ? JalaliCalendar().partsFromDate(date_).year : 0;
}

int VarekDate::farsimonth() const {
    return date_.isValid() ? JalaliCalendar().partsFromDate(date_).month : 0;
}

int VarekDate::farsiday() const {
    return date_.isValid() ? JalaliCalendar().partsFromDate(date_).day : 0;
}

bool VarekDate::IsEmpty() const { return !date_.isValid(); }

void VarekDate::Clear() {
    date_ = QDate();
    clearRefusal();
    showDate();
}

void VarekDate::setLocked(bool locked) {
    locked_ = locked;
    edit_->setReadOnly(locked);
    if (locked) popup_->hide();
}

void VarekDate::SetFocus() { edit_->setFocus(Qt::OtherFocusReason); }

QSize VarekDate::sizeHint() const {
    const QFontMetrics fm(edit_->font());
    const int w = fm.horizontalAdvance(u"0000/00/00"_s) + 24 + button_->sizeHint().width();
    return {w, qMax(edit_->sizeHint().height(), button_->sizeHint().height())};
}

QSize VarekDate::minimumSizeHint() const { return sizeHint(); }

void VarekDate::showDate() {
    const QString text = FarsiDateText(date_);
    lastTyped_ = text;
    if (edit_->text() != text) edit_->setText(text);
}

void VarekDate::markRefused(const QString& typed) {
    refused_ = typed;
    // A red frame and a tooltip that says what was refused; the date itself is unchanged.
    edit_->setStyleSheet(u"QLineEdit { border: 2px solid #d00000; }"_s);
    edit_->setToolTip(
        u"تاريخ «%1» وجود ندارد؛ تاريخ درست را به صورت سال/ماه/روز وارد کنيد."_s.arg(typed));
}

void VarekDate::clearRefusal() {
    if (refused_.isEmpty()) return;
    refused_.clear();
    edit_->setStyleSheet(QString());
    edit_->setToolTip(QString());
}

void VarekDate::setDateByUser(const QDate& date) {
    clearRefusal();
    const bool changed = date != date_;
    date_ = date;
    showDate();
    if (changed) emit DateChanged();
}

void VarekDate::onTextEdited(const QString& typed) {
    QString text = LatinDigits(typed);
    int cursor = edit_->cursorPosition();
    // A slash typed after one that came by itself is not a second one.
    if (const qsizetype twice = text.indexOf(u"//"_s); twice >= 0) {
        text.remove(twice, 1);
        if (cursor > twice) --cursor;
    }
    // Typing forward, the slashes after the year and the month come by themselves.
    static const QRegularExpression yearOrMonth(u"^\\d{4}(/\\d{2})?$"_s);
    if (text.size() > lastTyped_.size() && cursor == text.size() &&
        yearOrMonth.match(text).hasMatch()) {
        text += u'/';
        cursor = int(text.size());
    }
    if (text != typed) {
        edit_->setText(text);
        edit_->setCursorPosition(cursor);
    }
    lastTyped_ = text;
    clearRefusal();
    // A complete, real date takes effect at once; a complete date that does not exist is
    // marked at once; anything shorter waits for the end of the edit (Enter or leaving).
    if (completeDate().match(text).hasMatch()) {
        const QDate d = ParseFarsiDate(text);
        if (!d.isValid()) {
            markRefused(text);
        } else if (d != date_) {
            date_ = d;
            emit DateChanged();
        }
    }
}

void VarekDate::onEditingFinished() {
    if (locked_) return;
    const QString text = edit_->text().trimmed();
    const QDate d = text.isEmpty() ? QDate() : ParseFarsiDate(text);
    if (d.isValid() || text.isEmpty()) {
        // The box's own date again (the edit ends twice when the box is left) changes nothing
        // and keeps a refusal shown.
        if (d != date_) setDateByUser(d);
        showDate();
        return;
    }
    // A date that does not exist (or cannot be read) is refused where the clerk sees it: the
    // box shows its date again, framed in red, and says what it refused. Nothing is clamped.
    markRefused(LatinDigits(text));
    showDate();
}

void VarekDate::onCalendarPicked(const QDate& date) {
    popup_->hide();
    if (locked_ || !isEnabled()) return;
    setDateByUser(date);
    edit_->setFocus(Qt::PopupFocusReason);
}

void VarekDate::showCalendar() {
    if (locked_ || !isEnabled()) return;
    // The button takes no focus: the box gets it first, so the window hears GotFocus before
    // the picked date and LostFocus when the user leaves.
    if (!edit_->hasFocus()) edit_->setFocus(Qt::MouseFocusReason);
    onEditingFinished();  // whatever was typed counts before the calendar opens
    calendar_->setSelectedDate(date_.isValid() ? date_ : QDate::currentDate());
    popup_->resize(popup_->minimumSizeHint());
    QPoint pos = mapToGlobal(QPoint(0, height()));
    // Right to left: the popup's right edge lines up with the box's right edge.
    pos.rx() += width() - popup_->width();
    if (const QScreen* screen = this->screen()) {
        const QRect avail = screen->availableGeometry();
        pos.rx() =
            qBound(avail.left(), pos.x(), qMax(avail.left(), avail.right() - popup_->width()));
        if (pos.y() + popup_->height() > avail.bottom())
            pos.ry() = mapToGlobal(QPoint(0, 0)).y() - popup_->height();
    }
    popup_->move(pos);
    popup_->show();
    calendar_->setFocus(Qt::PopupFocusReason);
}

bool VarekDate::eventFilter(QObject* watched, QEvent* event) {
    if (watched == edit_) {
        switch (event->type()) {
            case QEvent::FocusIn:
                if (IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) emit GotFocus();
                break;
            case QEvent::FocusOut:
                if (IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) {
                    // What was typed takes effect before the window hears of the leaving.
                    onEditingFinished();
                    emit LostFocus();
                }
                break;
            case QEvent::KeyPress: {
                auto* key = static_cast<QKeyEvent*>(event);
                if (key->key() == Qt::Key_F4 ||
                    (key->key() == Qt::Key_Down && (key->modifiers() & Qt::AltModifier))) {
                    showCalendar();
                    return true;
                }
                if ((key->key() == Qt::Key_Up || key->key() == Qt::Key_Down) && !locked_ &&
                    date_.isValid()) {
                    setDateByUser(date_.addDays(key->key() == Qt::Key_Up ? 1 : -1));
                    return true;
                }
                break;
            }
            default:
                break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void VarekDate::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange && !isEnabled()) popup_->hide();
    QWidget::changeEvent(event);
}

}  // namespace kav::controls
