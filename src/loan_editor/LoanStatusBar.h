#pragma once

// The loan window's own status bar: the mode the window is in, what the last write did with
// the loan (by its number), and one-line notices. lblMessage keeps its own texts; what the
// module tells the clerk beyond them goes here.

#include <QStatusBar>
#include <QString>

class QLabel;

namespace kav {

// A loan by its number, and by its ID while it has none: "وام شماره 10 (شماره رايانه اي 12)".
QString LoanName(qint32 loanId, const QString& code);

class LoanStatusBar : public QStatusBar {
    Q_OBJECT
public:
    explicit LoanStatusBar(QWidget* parent = nullptr);

    // The window's mode (0 view, 1 edit, 2 new, 3 empty); any other value shows nothing.
    void ShowMode(qint32 mode);

    // What a write did. `code` is the loan's number as the window shows it, empty while the
    // loan is temporary; the loan's id names it then.
    void Saved(bool isFinal, qint32 loanId, const QString& code);
    void Deleted(qint32 loanId, const QString& code);
    // `formerCode`: the number the loan had before it went back.
    void ReturnedToTemporary(qint32 loanId, const QString& formerCode);
    // `member`: the member's name as the grid shows it.
    void MemberRemoved(qint32 loanId, const QString& code, const QString& member);

    // One line; it replaces whatever the bar said last besides the mode.
    void ShowNotice(const QString& text);

    QString ModeText() const;
    QString MessageText() const;

private:
    QLabel* mode_;
    QLabel* message_;
};

}  // namespace kav
