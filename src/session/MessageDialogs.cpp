#include "session/MessageDialogs.h"

#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "session/Session.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {

QLabel* iconLabel(QWidget* parent, QStyle::StandardPixmap which) {
    auto* icon = new QLabel(parent);
    icon->setPixmap(parent->style()->standardIcon(which).pixmap(40, 40));
    icon->setAlignment(Qt::AlignTop);
    return icon;
}

QLabel* textLabel(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    // The right edge, also in a right-to-left window (without AlignAbsolute it is mirrored).
    label->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    label->setFont(PersianFont(11));
    // A text of several lines is set out line by line: as wide as its longest line, within
    // what a screen holds.
    int widest = 0;
    if (text.contains(u'\n')) {
        const QFontMetrics metrics(label->font());
        for (const QString& line : text.split(u'\n'))
            widest = qMax(widest, metrics.horizontalAdvance(line));
    }
    label->setMinimumWidth(qBound(320, widest + 8, 760));
    return label;
}

}  // namespace

std::unique_ptr<QDialog> BuildMessageDialog(const QString& title, const QString& text,
                                            qint16 type) {
    auto dialog = std::make_unique<QDialog>();
    ApplyPersianStyle(dialog.get());
    dialog->setWindowTitle(title);
    dialog->setModal(true);
    auto* layout = new QVBoxLayout(dialog.get());
    auto* row = new QHBoxLayout;
    row->addWidget(iconLabel(dialog.get(), type == 1 ? QStyle::SP_MessageBoxQuestion
                                                     : QStyle::SP_MessageBoxInformation));
    row->addWidget(textLabel(dialog.get(), text), 1);
    layout->addLayout(row);
    auto* buttons = new QDialogButtonBox(dialog.get());
    if (type == 1) {
        auto* yes = buttons->addButton(u"بلي"_s, QDialogButtonBox::YesRole);
        auto* no = buttons->addButton(u"خير"_s, QDialogButtonBox::NoRole);
        QObject::connect(yes, &QPushButton::clicked, dialog.get(), &QDialog::accept);
        QObject::connect(no, &QPushButton::clicked, dialog.get(), &QDialog::reject);
        no->setDefault(true);
    } else {
        auto* ok = buttons->addButton(u"ادامه"_s, QDialogButtonBox::AcceptRole);
        QObject::connect(ok, &QPushButton::clicked, dialog.get(), &QDialog::accept);
        ok->setDefault(true);
    }
    buttons->setCenterButtons(true);
    layout->addWidget(buttons);
    return dialog;
}

void DialogMessageComponent::ClearShow() {
    auto dialog = BuildMessageDialog(title_, message_, type_);
    const int r = dialog->exec();
    result_ = (type_ == 1 && r == QDialog::Accepted) ? 1 : 0;
}

MessageFactory DialogMessageFactory() {
    return [] { return std::make_unique<DialogMessageComponent>(); };
}

frmMsg::frmMsg(QWidget* parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose, false);
    ApplyPersianStyle(this);
    auto* frame = new QGroupBox(this);
    auto* inner = new QHBoxLayout(frame);
    inner->addWidget(iconLabel(this, QStyle::SP_MessageBoxInformation));
    lblMessage = textLabel(frame, QString());
    lblMessage->setFont(QFont(u"Tahoma"_s, 10));
    inner->addWidget(lblMessage, 1);
    cmdContinue = new QPushButton(u"ادامه"_s, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(cmdContinue, 0, Qt::AlignHCenter);
    connect(cmdContinue, &QPushButton::clicked, this, &QDialog::accept);
}

frmYesNo::frmYesNo(Session& session, QWidget* parent) : QDialog(parent), session_(session) {
    ApplyPersianStyle(this);
    auto* frame = new QGroupBox(this);
    auto* inner = new QHBoxLayout(frame);
    inner->addWidget(iconLabel(this, QStyle::SP_MessageBoxQuestion));
    lblQuestion = textLabel(frame, QString());
    inner->addWidget(lblQuestion, 1);
    auto* buttonsFrame = new QGroupBox(this);
    auto* buttons = new QHBoxLayout(buttonsFrame);
    cmdYes = new QPushButton(u"بلي"_s, buttonsFrame);
    cmdNo = new QPushButton(u"خير"_s, buttonsFrame);
    buttons->addWidget(cmdYes);
    buttons->addWidget(cmdNo);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(buttonsFrame);
    connect(cmdYes, &QPushButton::clicked, this, [this] {
        session_.DialogAnswer = 6;
        accept();
    });
    connect(cmdNo, &QPushButton::clicked, this, [this] {
        session_.DialogAnswer = 7;
        reject();
    });
}

}  // namespace kav
