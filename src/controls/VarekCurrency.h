#pragma once

// VarekCurrency: the amount box. It holds an amount as its plain value text ("1234567") and
// shows it grouped by threes with "/" ("1/234/567", see kav::GroupDigits). Reading either
// text as a number (kav::AmountValue removes the separators) gives the same whole amount.
//
// Typed keys first go to the KeyPress signal, which may change or cancel them; the box then
// edits its plain value and regroups it, keeping the caret after the same digit. Pasted or
// dropped text goes through KeyPress character by character in the same way, its group
// separators dropped; a character KeyPress refuses keeps the whole paste out.

#include <QString>
#include <QWidget>

class QLineEdit;

namespace kav::controls {

class VarekCurrency : public QWidget {
    Q_OBJECT
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked)

public:
    explicit VarekCurrency(QWidget* parent = nullptr);

    // The displayed text: the value grouped by threes (a value of at most four digits is
    // shown as it is). Setting it sets the amount; its separators are not part of the value.
    QString Text() const;
    void setText(const QString& text);

    // The plain value text, without separators. Setting it sets the amount.
    QString Value() const { return value_; }
    void setValue(const QString& value);

    // Locked: read-only but not greyed; KeyPress is still raised for typed keys, but nothing
    // lands in the box.
    void setLocked(bool locked);
    bool isLocked() const;

    // Selection in the displayed text.
    void SetSelStart(int start);
    void SetSelLength(int length);
    int SelStart() const;
    int SelLength() const;

    void SetFocus();

    QLineEdit* lineEdit() const { return edit_; }

    // How a plain value text is displayed: a number (optional sign, digits, optional
    // fraction) has its whole part grouped by kav::GroupDigits; any other text is shown as
    // it is.
    static QString DisplayText(const QString& value);
    // The characters a pasted amount may be grouped with, dropped when it comes in: "/", ",",
    // the Arabic thousands separator and blanks.
    static bool IsGroupSeparator(QChar c);

    QSize sizeHint() const override;

signals:
    void GotFocus();
    void LostFocus();
    // Raised for every character typed, before it is inserted: keyAscii is the character's
    // code (Persian digits arrive as "0".."9"), 8 for backspace, 13 for Enter, 27 for
    // Escape. A handler may set it to 0 to cancel the key or to another character to insert
    // that instead. The argument is a reference, so connect only with a direct connection
    // (the default within the GUI thread); a queued connection would not see the change.
    void KeyPress(int& keyAscii);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Replaces the plain range [from, to) by insert and puts the caret after plain position
    // caret.
    void editPlain(int from, int to, const QString& insert, int caret);
    void show(int plainCaret);
    void onTextEdited(const QString& text);
    int plainPos(int displayPos) const;

    QLineEdit* edit_;
    QString value_;
    bool keepSelection_ = false;
};

}  // namespace kav::controls
