#pragma once

// VarekDate: the Jalali date box. A line edit for typed entry ("yyyy/mm/dd", Latin or Persian
// digits, the slashes added while typing) and a button that opens a Jalali month calendar
// (Persian month names, weeks starting on Saturday). Unlike a plain date edit it can be empty:
// an empty box has the empty text, an invalid englishdate and 0 for year, month and day.

#include <QDate>
#include <QString>
#include <QWidget>

class QCalendarWidget;
class QFrame;
class QLineEdit;
class QToolButton;

namespace kav::controls {

class VarekDate : public QWidget {
    Q_OBJECT
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked)

public:
    explicit VarekDate(QWidget* parent = nullptr);
    ~VarekDate() override;

    // The date as zero-padded "yyyy/mm/dd", or the empty text.
    QString farsidate() const;
    // Sets the date from a Jalali text a program hands in; each field is read as a number (see
    // ParseStoredFarsiDate: unpadded, over-padded and blank-prefixed fields are fine, a day
    // past the month's end of older data is read as the last day). An unreadable or empty
    // text leaves the box empty. What the clerk types is taken only when the day exists:
    // anything else is refused, shown by a red frame and a tooltip, and the date stays.
    void setFarsidate(const QString& text);

    // The same day in the Gregorian calendar; an invalid QDate when empty.
    QDate englishdate() const;
    // An invalid date empties the box.
    void setEnglishdate(const QDate& date);

    // The Jalali parts of the shown date; 0 when empty.
    int farsiyear() const;
    int farsimonth() const;
    int farsiday() const;

    bool IsEmpty() const;
    void Clear();

    // The typed text last refused (a day that does not exist, an unreadable text) while the
    // refusal is shown; empty otherwise. Typing again or setting a date ends it.
    QString RefusedText() const { return refused_; }

    // Locked: shown normally (not greyed) but the date cannot be typed or picked.
    void setLocked(bool locked);
    bool isLocked() const { return locked_; }

    void SetFocus();

    // The typing part, for tests and for windows that need its key events.
    QLineEdit* lineEdit() const { return edit_; }
    // Opens the calendar (as the button does); nothing when locked or disabled.
    void showCalendar();
    QCalendarWidget* calendarWidget() const { return calendar_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void GotFocus();
    void LostFocus();
    // The user picked or typed a date, emptied the box, or stepped the day with the arrow
    // keys. Never emitted for setFarsidate, setEnglishdate or Clear.
    void DateChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void showDate();
    void markRefused(const QString& typed);
    void clearRefusal();
    void setDateByUser(const QDate& date);
    void onTextEdited(const QString& text);
    void onEditingFinished();
    void onCalendarPicked(const QDate& date);

    QLineEdit* edit_;
    QToolButton* button_;
    QFrame* popup_;
    QCalendarWidget* calendar_;
    QDate date_;
    QString lastTyped_;
    QString refused_;
    bool locked_ = false;
};

}  // namespace kav::controls
