#pragma once

// The module's own message dialogs: the modal right-to-left dialog behind the message
// component, and the two small local dialogs frmMsg and frmYesNo.

#include <QDialog>
#include <memory>

#include "session/Messages.h"

class QLabel;
class QPushButton;

namespace kav {

struct Session;

// The dialog the message component shows: one button for a message (type 0), yes and no
// for a question (type 1). Accepted means yes (or acknowledged), rejected means no.
std::unique_ptr<QDialog> BuildMessageDialog(const QString& title, const QString& text, qint16 type);

// The message component: a modal right-to-left Qt dialog in a Persian font.
class DialogMessageComponent : public MessageComponent {
public:
    void SetFormTitle(const QVariant& title) override { title_ = title.toString(); }
    void SetFormMessage(const QString& message) override { message_ = message; }
    void SetFormType(qint16 type) override { type_ = type; }
    void ClearShow() override;
    QVariant Resualt() const override { return result_; }

private:
    QString title_;
    QString message_;
    qint16 type_ = 0;
    QVariant result_ = 0;
};

MessageFactory DialogMessageFactory();

// A message with the single button "ادامه".
class frmMsg : public QDialog {
    Q_OBJECT
public:
    explicit frmMsg(QWidget* parent = nullptr);
    QLabel* lblMessage;
    QPushButton* cmdContinue;
};

// A question with the buttons "بلي" and "خير"; the answer goes to the session's
// DialogAnswer (6 yes, 7 no).
class frmYesNo : public QDialog {
    Q_OBJECT
public:
    explicit frmYesNo(Session& session, QWidget* parent = nullptr);
    QLabel* lblQuestion;
    QPushButton* cmdYes;
    QPushButton* cmdNo;

private:
    Session& session_;
};

}  // namespace kav
