#include "controls/VarekCurrency.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>

#include "controls/FarsiDateText.h"
#include "session/TextProcs.h"
#include "session/Ui.h"
#include "session/WindowSupport.h"

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

QString withoutSeparators(const QString& text) {
    QString plain = LatinDigits(text);
    plain.remove(u'/');
    return plain;
}

}  // namespace

VarekCurrency::VarekCurrency(QWidget* parent) : QWidget(parent) {
    setLayoutDirection(Qt::RightToLeft);
    setFont(PersianFont());
    edit_ = new QLineEdit(this);
    edit_->setObjectName(u"edit"_s);
    // Amounts start at the right edge, as the Persian captions beside them do.
    edit_->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    edit_->installEventFilter(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit_);
    setFocusProxy(edit_);
    setFocusPolicy(Qt::StrongFocus);
    connect(edit_, &QLineEdit::textEdited, this, &VarekCurrency::onTextEdited);
}

QString VarekCurrency::DisplayText(const QString& value) {
    static const QRegularExpression number(u"^([-+]?)(\\d+)(\\.\\d*)?$"_s);
    const QRegularExpressionMatch m = number.match(value);
    if (!m.hasMatch()) return value;
    return m.captured(1) + GroupDigits(m.captured(2)) + m.captured(3);
}

QString VarekCurrency::Text() const { return edit_->text(); }

void VarekCurrency::setText(const QString& text) {
    value_ = withoutSeparators(text);
    show(int(value_.size()));
}

void VarekCurrency::setValue(const QString& value) {
    value_ = withoutSeparators(value);
    show(int(value_.size()));
}

void VarekCurrency::setLocked(bool locked) { edit_->setReadOnly(locked); }
bool VarekCurrency::isLocked() const { return edit_->isReadOnly(); }

void VarekCurrency::SetSelStart(int start) {
    edit_->setCursorPosition(qBound(0, start, int(edit_->text().size())));
}

void VarekCurrency::SetSelLength(int length) {
    const int start = SelStart();
    const int len = qBound(0, length, int(edit_->text().size()) - start);
    if (len == 0)
        edit_->setCursorPosition(start);
    else
        edit_->setSelection(start, len);
}

int VarekCurrency::SelStart() const {
    return edit_->hasSelectedText() ? edit_->selectionStart() : edit_->cursorPosition();
}

int VarekCurrency::SelLength() const {
    return edit_->hasSelectedText() ? int(edit_->selectionLength()) : 0;
}

void VarekCurrency::SetFocus() { edit_->setFocus(Qt::OtherFocusReason); }

QSize VarekCurrency::sizeHint() const {
    const QFontMetrics fm(edit_->font());
    return {fm.horizontalAdvance(u"000/000/000/000"_s) + 16, edit_->sizeHint().height()};
}

int VarekCurrency::plainPos(int displayPos) const {
    const QString shown = edit_->text();
    int count = 0;
    for (int i = 0; i < displayPos && i < shown.size(); ++i)
        if (shown[i] != u'/') ++count;
    return count;
}

void VarekCurrency::show(int plainCaret) {
    const QString shown = DisplayText(value_);
    if (edit_->text() != shown) edit_->setText(shown);
    // The caret goes after the same number of value characters as before.
    int pos = 0, count = 0;
    while (pos < shown.size() && count < plainCaret) {
        if (shown[pos] != u'/') ++count;
        ++pos;
    }
    edit_->setCursorPosition(pos);
}

void VarekCurrency::editPlain(int from, int to, const QString& insert, int caret) {
    from = qBound(0, from, int(value_.size()));
    to = qBound(from, to, int(value_.size()));
    value_.replace(from, to - from, insert);
    show(caret);
}

void VarekCurrency::onTextEdited(const QString& text) {
    // Pasting, cutting, dropping, undoing: the line edit changed its text by itself. The
    // change is found against what the box showed: the characters that were replaced go,
    // and the characters that came in go through KeyPress one by one, as if typed. Group
    // separators and blanks in them are dropped and Persian digits read as digits; when
    // KeyPress refuses one character, nothing of the change lands.
    const QString before = DisplayText(value_);
    qsizetype prefix = 0;
    while (prefix < before.size() && prefix < text.size() && before[prefix] == text[prefix])
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < before.size() - prefix && suffix < text.size() - prefix &&
           before[before.size() - 1 - suffix] == text[text.size() - 1 - suffix])
        ++suffix;
    auto plainIn = [&](qsizetype displayPos) {
        return int(displayPos - before.left(displayPos).count(u'/'));
    };
    const int from = plainIn(prefix);
    const int to = plainIn(before.size() - suffix);
    const QString incoming = text.mid(prefix, text.size() - suffix - prefix);

    QString accepted;
    for (const QChar c : LatinDigits(incoming)) {
        if (IsGroupSeparator(c)) continue;
        int code = c == QChar(0x066B) ? int(u'.') : int(c.unicode());  // Arabic decimal point
        emit KeyPress(code);
        if (code <= 0 || code == 8 || code == 13 || code == 27 || code > 0xFFFF) {
            show(plainIn(prefix));  // refused: the box keeps its amount
            return;
        }
        accepted += QChar(char16_t(code));
    }
    editPlain(from, to, accepted, from + int(accepted.size()));
}

bool VarekCurrency::IsGroupSeparator(QChar c) {
    // "/" as the module groups, "," and the Arabic thousands separator as pasted amounts
    // may be grouped, and blanks.
    return c == u'/' || c == u',' || c == QChar(0x066C) || c.isSpace();
}

bool VarekCurrency::eventFilter(QObject* watched, QEvent* event) {
    if (watched != edit_) return QWidget::eventFilter(watched, event);
    switch (event->type()) {
        case QEvent::FocusIn: {
            const auto* focus = static_cast<QFocusEvent*>(event);
            const Qt::FocusReason reason = focus->reason();
            if (IsFieldFocusChange(*focus)) emit GotFocus();
            // A handler that selects the text on GotFocus keeps the selection when the focus
            // came with a click: the click itself does not move the caret.
            keepSelection_ = reason == Qt::MouseFocusReason && edit_->hasSelectedText();
            break;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            if (keepSelection_) {
                if (event->type() == QEvent::MouseButtonRelease) keepSelection_ = false;
                return true;
            }
            break;
        case QEvent::FocusOut:
            if (IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) emit LostFocus();
            break;
        case QEvent::KeyPress: {
            auto* key = static_cast<QKeyEvent*>(event);
            const int from = plainPos(SelStart());
            const int to = plainPos(SelStart() + SelLength());
            if (key->key() == Qt::Key_Delete) {
                // Not a typed character: no KeyPress, but it deletes within the value.
                if (!isLocked() && key->modifiers() == Qt::NoModifier) {
                    editPlain(from, from == to ? from + 1 : to, {}, from);
                    return true;
                }
                return false;
            }
            int code = KeyAsciiOf(*key);
            if (code == 0) return false;  // navigation, shortcuts: the line edit's business
            emit KeyPress(code);
            if (code == 13 || code == 27) return false;  // Enter and Escape go on to the window
            if (code == 0 || isLocked()) return true;
            if (code == 8) {
                if (from != to)
                    editPlain(from, to, {}, from);
                else if (from > 0)
                    editPlain(from - 1, from, {}, from - 1);
            } else if (code > 0 && code <= 0xFFFF) {
                editPlain(from, to, QString(QChar(char16_t(code))), from + 1);
            }
            return true;
        }
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace kav::controls
