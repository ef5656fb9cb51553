#include "loan_editor/LoanStatusBar.h"

#include <QLabel>

using namespace Qt::StringLiterals;

namespace kav {

QString LoanName(qint32 loanId, const QString& code) {
    const QString id = QString::number(loanId);
    if (code.trimmed().isEmpty()) return u"وام با شماره رايانه اي %1"_s.arg(id);
    return u"وام شماره %1 (شماره رايانه اي %2)"_s.arg(code.trimmed(), id);
}

LoanStatusBar::LoanStatusBar(QWidget* parent) : QStatusBar(parent) {
    setSizeGripEnabled(false);
    message_ = new QLabel(this);
    message_->setObjectName(u"stbMessage"_s);
    mode_ = new QLabel(this);
    mode_->setObjectName(u"stbMode"_s);
    QFont bold = mode_->font();
    bold.setBold(true);
    mode_->setFont(bold);
    // Both are plain widgets: no status tip of another control ever hides them.
    addWidget(message_, 1);
    addPermanentWidget(mode_);
}

void LoanStatusBar::ShowMode(qint32 mode) {
    static const QString modes[] = {u"حالت: مشاهده"_s, u"حالت: ويرايش"_s, u"حالت: جديد"_s,
                                    u"حالت: بدون وام"_s};
    mode_->setText(mode >= 0 && mode <= 3 ? modes[mode] : QString());
}

void LoanStatusBar::Saved(bool isFinal, qint32 loanId, const QString& code) {
    ShowNotice((isFinal ? u"%1 به صورت قطعي ثبت شد."_s : u"%1 به صورت موقت ثبت شد."_s)
                   .arg(LoanName(loanId, isFinal ? code : QString())));
}

void LoanStatusBar::Deleted(qint32 loanId, const QString& code) {
    ShowNotice(u"%1 حذف شد."_s.arg(LoanName(loanId, code)));
}

void LoanStatusBar::ReturnedToTemporary(qint32 loanId, const QString& formerCode) {
    ShowNotice(u"%1 به حالت موقت برگشت."_s.arg(LoanName(loanId, formerCode)));
}

void LoanStatusBar::MemberRemoved(qint32 loanId, const QString& code, const QString& member) {
    ShowNotice(u"کارمند «%1» از %2 حذف شد."_s.arg(member.simplified(), LoanName(loanId, code)));
}

void LoanStatusBar::ShowNotice(const QString& text) { message_->setText(text); }

QString LoanStatusBar::ModeText() const { return mode_->text(); }

QString LoanStatusBar::MessageText() const { return message_->text(); }

}  // namespace kav
