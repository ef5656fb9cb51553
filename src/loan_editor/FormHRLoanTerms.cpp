// The loan window's terms and dates: what each box does when it gains or loses the focus or
// changes, worked out by the terms' and dates' rules and shown here.

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanDates.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanTerms.h"
#include "session/Module.h"

using namespace Qt::StringLiterals;

namespace kav {

using controls::VarekCurrency;

// ---- Loan terms ----

loan::TermsFields FormHRLoan::termsFields() const {
    loan::TermsFields f;
    f.originalValueValue = txtOriginalValue->Value();
    f.loanValueText = txtLoanValue->Text();
    f.loanValueValue = txtLoanValue->Value();
    f.payBackNumber = txtPayBackNumber->text();
    f.perMonthText = TxtPerMonth->Text();
    f.perMonthValue = TxtPerMonth->Value();
    f.beginDate = datBeginDate->farsidate();
    return f;
}

loan::DateFields FormHRLoan::dateFields() const {
    loan::DateFields f;
    f.loanPayDate = datLoanPayDate->farsidate();
    f.beginDate = datBeginDate->farsidate();
    f.endDate = datEndDate->farsidate();
    f.payBackNumber = txtPayBackNumber->text();
    f.loanValueText = txtLoanValue->Text();
    f.perMonthText = TxtPerMonth->Text();
    return f;
}

void FormHRLoan::showMessage(const std::optional<loan::Message>& message) {
    if (message) module_.ShowMessage(message->title, message->text);
}

void FormHRLoan::applyTerms(const loan::TermsUpdate& update) {
    showMessage(update.warning);
    if (update.loanValue) txtLoanValue->setText(*update.loanValue);
    if (update.payBackNumber) txtPayBackNumber->setText(*update.payBackNumber);
    if (update.perMonth) TxtPerMonth->setText(*update.perMonth);
    if (update.rem) txtRem->setText(*update.rem);
    if (update.endDate) datEndDate->setFarsidate(*update.endDate);
    if (update.remainderOptionsEnabled) {
        UseRemainedValueInFirstMonthF->setEnabled(*update.remainderOptionsEnabled);
        UseRemainedValueInFirstMonthL->setEnabled(*update.remainderOptionsEnabled);
        UseRemainedValueInFirstMonth->setEnabled(*update.remainderOptionsEnabled);
    }
    if (update.error) std::rethrow_exception(update.error);
}

void FormHRLoan::selectAll(VarekCurrency* box) {
    box->SetSelStart(0);
    box->SetSelLength(int(box->Text().size()));
}

void FormHRLoan::cmbLoanType_Click() {
    if (cmbLoanType->currentIndex() < 0) {
        cmbLoanType->setToolTip(QString());
        return;
    }
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::LoanTypeMaxValue(loanTypeId()));
    txtMaxLoanValue->setText(rs.RecordCount() > 0 ? loan::CeilingText(rs.Fields(u"MaxValue"_s))
                                                  : QString());
    rs.Close();
    cmbLoanType->setToolTip(cmbLoanType->currentText());
}

void FormHRLoan::cmbLoanType_KeyDown(int keyCode) {
    if (keyCode != 46) return;  // Delete
    cmbLoanType->setCurrentIndex(-1);
    txtMaxLoanValue->setText(QString());
}

void FormHRLoan::txtOriginalValue_GotFocus() { selectAll(txtOriginalValue); }

void FormHRLoan::txtOriginalValue_LostFocus() {
    loan::RequireAmountsInRange(termsFields());
    if (const auto copy = loan::OriginalValueLeft(termsFields())) txtLoanValue->setText(*copy);
}

void FormHRLoan::txtLoanValue_GotFocus() { selectAll(txtLoanValue); }

void FormHRLoan::txtLoanValue_KeyPress(int& keyAscii) {
    const loan::LoanValueKey k = loan::LoanValueKeyPress(
        module_.session.LoanFormMode, cmbLoanType->currentIndex() >= 0, keyAscii);
    keyAscii = k.keyAscii;
    showMessage(k.warning);
    if (k.clearAmountAndFocusType) {
        txtLoanValue->setText(QString());
        txtMaxLoanValue->setText(QString());
        cmbLoanType->setFocus();
    }
}

void FormHRLoan::txtLoanValue_LostFocus() {
    loan::RequireAmountsInRange(termsFields());
    QVariant maxValue;
    if (cmbLoanType->currentIndex() >= 0) {
        Recordset rs = module_.DtEn().NewRecordset();
        rs.Open(loan_sql::LoanTypeRow(loanTypeId()));
        if (rs.RecordCount() > 0) maxValue = rs.Fields(u"MaxValue"_s);
        rs.Close();
    }
    applyTerms(loan::LoanValueLeft(termsFields(), maxValue));
}

void FormHRLoan::txtPayBackNumber_GotFocus() {
    payBackNumberAtFocus = loan::PayBackNumberGotFocus(txtPayBackNumber->text());
}

void FormHRLoan::txtPayBackNumber_LostFocus() {
    applyTerms(loan::PayBackNumberLeft(termsFields(), payBackNumberAtFocus));
}

void FormHRLoan::TxtPerMonth_GotFocus() {
    selectAll(TxtPerMonth);
    perMonthAtFocus = loan::PerMonthGotFocus(TxtPerMonth->Value());
}

void FormHRLoan::TxtPerMonth_KeyPress(int& keyAscii) {
    keyAscii = loan::PerMonthKeyPress(keyAscii);
}

void FormHRLoan::TxtPerMonth_LostFocus() {
    loan::RequireAmountsInRange(termsFields());
    applyTerms(loan::PerMonthLeft(termsFields(), perMonthAtFocus));
}

// ---- Dates ----

void FormHRLoan::datLoanPayDate_Change() {
    const loan::PayDateChange c = loan::LoanPayDateChanged(dateFields());
    if (c.clearBeginDate) datBeginDate->Clear();
    if (c.focusLoanType) cmbLoanType->setFocus();
    if (c.clearEndDate) datEndDate->Clear();
}

void FormHRLoan::datBeginDate_GotFocus() { beginDateAtFocus = datBeginDate->englishdate(); }

void FormHRLoan::datBeginDate_Change() {
    const loan::BeginDateChange c = loan::BeginDateChanged(dateFields());
    showMessage(c.warning);
    if (c.clearBeginDate) datBeginDate->Clear();
    if (c.focusBeginDate) datBeginDate->SetFocus();
    if (c.clearEndDate) datEndDate->Clear();
    if (c.endDate) datEndDate->setFarsidate(*c.endDate);
}

void FormHRLoan::datBeginDate_LostFocus() {
    if (const auto end =
            loan::BeginDateLeft(datBeginDate->englishdate(), beginDateAtFocus, dateFields()))
        datEndDate->setFarsidate(*end);
}

void FormHRLoan::datEndDate_GotFocus() { endDateAtFocus = datEndDate->englishdate(); }

void FormHRLoan::datEndDate_Change() {
    const loan::EndDateChange c = loan::EndDateChanged(dateFields());
    if (c.clearEndDate) datEndDate->Clear();
    if (c.endDate) datEndDate->setFarsidate(*c.endDate);
}

void FormHRLoan::datEndDate_LostFocus() {
    const loan::EndDateLeave c =
        loan::EndDateLeft(datEndDate->englishdate(), endDateAtFocus, dateFields());
    if (c.runPayBackNumberLeft) txtPayBackNumber_LostFocus();
    if (c.endDate) datEndDate->setFarsidate(*c.endDate);
}

bool FormHRLoan::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtPayBackNumber &&
        (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) &&
        IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) {
        if (event->type() == QEvent::FocusIn)
            Guard([&] { txtPayBackNumber_GotFocus(); });
        else
            Guard([&] { txtPayBackNumber_LostFocus(); });
    } else if (watched == cmbLoanType && event->type() == QEvent::KeyPress) {
        const int code = KeyCodeOf(*static_cast<QKeyEvent*>(event));
        if (code == 46) {
            Guard([&] { cmbLoanType_KeyDown(code); });
            return true;
        }
    }
    return ModuleWindow::eventFilter(watched, event);
}

}  // namespace kav
