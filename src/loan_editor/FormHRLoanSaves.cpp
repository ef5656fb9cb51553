// The loan window's writes: the temporary and the final save, Delete and Back to temporary,
// each re-checked against the loan as stored when the window showed it.

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/FinalSaveChecks.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanMembers.h"
#include "loan_editor/LoanModes.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/history/HistoryMenu.h"
#include "session/Module.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = editor_texts;

// ---- Saving, deleting, back to temporary ----

void FormHRLoan::cmdRegSave_Click() { SaveLoan(false); }

void FormHRLoan::cmdFinSave_Click() { SaveLoan(true); }

loan_save::LoanRecord FormHRLoan::loanRecord(bool isFinal) const {
    loan_save::LoanRecord loan;
    loan.isFinal = isFinal;
    loan.typeId = loanTypeId();
    loan.payDate = datLoanPayDate->englishdate();
    loan.farsiPayDate = datLoanPayDate->farsidate();
    loan.beginDate = datBeginDate->englishdate();
    loan.farsiBeginDate = datBeginDate->farsidate();
    loan.endDate = datEndDate->englishdate();
    loan.farsiEndDate = datEndDate->farsidate();
    loan.loanValue = txtLoanValue->Value();
    loan.originalValue = txtOriginalValue->Value();
    loan.monthlyValue = TxtPerMonth->Value();
    loan.payBackNumber = txtPayBackNumber->text();
    loan.remainderOption = UseRemainedValueInFirstMonthF->isChecked()          ? 1
                           : UseRemainedValueInFirstMonthL->isChecked()        ? 0
                           : UseRemainedValueInSeparatedLastMonth->isChecked() ? 2
                                                                               : 0;
    loan.notes = txtNotes->text();
    for (int r = 1; r < FlexEmployee->Rows(); ++r) {
        loan_save::MemberRow m;
        m.employeeId = FlexEmployee->TextMatrix(r, members::EmployeeIdColumn);
        for (int g = 0; g < 3; ++g)
            m.guarantors[std::size_t(g)] =
                FlexEmployee->TextMatrix(r, members::FirstGuarantorIdColumn + g);
        loan.members << m;
    }
    return loan;
}

void FormHRLoan::selectMemberRow(int row) {
    FlexEmployee->setRow(row);
    FlexEmployee->setCol(members::EmployeeIdColumn);
    FlexEmployee->setRowSel(row);
    FlexEmployee->setColSel(FlexEmployee->Cols() - 1);
    FlexEmployee->setTopRow(row);
}

bool FormHRLoan::overlapAccepted(const loan_save::LoanRecord& loan) {
    const qint32 excluded = module_.session.LoanFormMode == ModeNew ? -1 : loanId();
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_save::OverlapQuery(module_.DtEn().Dialect(), loan, excluded));
    const int conflicting = rs.RecordCount();
    if (conflicting == 0) return true;
    // Only a "no" stops the save; no answer at all lets it go on.
    if (module_.AskQuestion(WarningTitle(), T::OverlapQuestionStart + QString::number(conflicting) +
                                                T::OverlapQuestionEnd) != AnswerNo)
        return true;
    rs.MoveFirst();
    const qint64 first = rs.Fields(u"EmployeeID"_s).toLongLong();
    for (int r = 1; r < FlexEmployee->Rows(); ++r) {
        if (qint64(vb::Val(FlexEmployee->TextMatrix(r, members::EmployeeIdColumn))) == first) {
            selectMemberRow(r);
            break;
        }
    }
    module_.ShowMessage(T::InfoTitle, T::DuplicateMemberMarked);
    return false;
}

void FormHRLoan::SaveLoan(bool isFinal) {
    lblMessage->clear();
    if (isFinal && FlexEmployee->Rows() <= 1) {
        module_.ShowMessage(ErrorTitle(), T::NoMemberError);
        return;
    }
    // The instalment and remainder agree with the amount and the count before anything is
    // written.
    TxtPerMonth_LostFocus();
    const loan_save::LoanRecord loan = loanRecord(isFinal);
    if (const QString problem = loan_save::CountProblem(loan.payBackNumber); !problem.isEmpty()) {
        module_.ShowMessage(ErrorTitle(), problem);
        return;
    }
    if (isFinal && !final_checks::Confirmed(module_, loan, txtRem->Value())) return;
    if (!loan.members.isEmpty() && !overlapAccepted(loan)) return;

    qint32 id = -1;
    try {
        BusyPointer busy;
        // A failure rolls everything back and leaves the window in its mode with its contents;
        // the loan's id is shown only once it is stored.
        id = loan_save::WriteLoan(module_.DtEn().cnt(), loan,
                                  module_.session.LoanFormMode == ModeNew
                                      ? std::nullopt
                                      : std::optional<stored_loan::Expected>(shownLoan()),
                                  history::ActorOf(module_.session));
    } catch (const stored_loan::LoanChangedError& e) {
        return showStoredAfterChange(e);
    }
    txtID->setText(QString::number(id));
    // The loan is stored; what follows only shows it, and a failure there is not the save's.
    try {
        cmdNew->setFocus();
        FillLoan(id);
    } catch (...) {
    }
    module_.session.LoanFormMode = ModeView;
    try {
        DisableLockComponent();
    } catch (...) {
    }
    module_.session.LoanEditStarted = 0;
    stbLoan->Saved(isFinal, id, txtCode->text());
}

void FormHRLoan::cmdDelete_Click() {
    if (!module_.HasPermission(PermissionNewOrDeleteLoan)) {
        module_.ShowRoleRefusal();
        return;
    }
    const QString& title = module_.session.SessionTitle;
    lblMessage->setText(T::StatusDeletePrefix + title);
    if (module_.AskQuestion(T::DeleteTitlePrefix + title, T::AreYouSure) != AnswerYes) return;
    const int paid = paidInstalmentCount();
    if (paid > 0) {
        module_.ShowMessage(T::TroubleTitle,
                            T::PaidRefusalStart + QString::number(paid) + T::PaidRefusalDeleteEnd);
        return;
    }
    lblMessage->setText(u" "_s);
    if (!txtID->text().isEmpty()) {
        if (!writeStored(stored_loan::Command::Delete,
                         loan_save::DeleteLoan(module_.DtEn().Dialect(), loanId())))
            return;
        stbLoan->Deleted(loanId(), txtCode->text());
        // The loan is gone: the window no longer shows a stored loan.
        txtID->clear();
        module_.session.LoanFormMode = ModeEmpty;
        DisableLockComponent();
    }
    Clear();
    module_.session.LoanFormMode = ModeEmpty;
    DisableLockComponent();
    cmdExit->setFocus();
}

void FormHRLoan::cmdBacktoTemp_Click() {
    if (module_.AskQuestion(T::QuestionTitle, T::BackToTempQuestion) != AnswerYes) return;
    const int paid = paidInstalmentCount();
    if (paid > 0) {
        module_.ShowMessage(T::TroubleTitle,
                            T::PaidRefusalStart + QString::number(paid) + T::PaidRefusalBackEnd);
        return;
    }
    if (!writeStored(stored_loan::Command::BackToTemporary, {loan_save::BackToTemporary(loanId())}))
        return;
    stbLoan->ReturnedToTemporary(loanId(), txtCode->text());
    txtCode->clear();
    DisableLockComponent();
}

stored_loan::Expected FormHRLoan::shownLoan() const {
    return {loanId(), !txtCode->text().trimmed().isEmpty(), true};
}

bool FormHRLoan::writeStored(stored_loan::Command command, const QStringList& statements) {
    try {
        loan_save::RunCheckedWrites(module_.DtEn().cnt(), shownLoan(), command, statements,
                                    history::ActorOf(module_.session));
        return true;
    } catch (const stored_loan::LoanChangedError& e) {
        showStoredAfterChange(e);
        return false;
    }
}

void FormHRLoan::showStoredAfterChange(const stored_loan::LoanChangedError& e) {
    module_.ShowMessage(WarningTitle(), e.message());
    module_.session.LoanEditStarted = 0;
    if (e.finding().change != stored_loan::Change::Gone) {
        ViewPRSLoansInfo(loanId());
        return;
    }
    txtID->clear();
    Clear();
    module_.session.LoanFormMode = ModeEmpty;
    DisableLockComponent();
}

}  // namespace kav
