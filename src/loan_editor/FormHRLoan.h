#pragma once

// The loan window: one loan viewed, created or edited. Its mode (LoanFormMode: 0 view,
// 1 edit, 2 new, 3 empty) decides the caption and which controls are enabled.

#include <QDate>
#include <QString>
#include <QVariant>
#include <optional>

#include "loan_editor/LoanMembers.h"
#include "loan_editor/LoanSave.h"
#include "loan_editor/LoanTerms.h"
#include "session/Vb.h"
#include "session/WindowPorts.h"
#include "session/WindowSupport.h"

class QAction;
class QButtonGroup;
class QLayout;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QTimer;

namespace kav {
class LoanStatusBar;
class Module;
namespace controls {
class FlexGrid;
class VarekCurrency;
class VarekDate;
}  // namespace controls

class FormHRLoan : public ModuleWindow, public LoanEditorPort {
    Q_OBJECT
public:
    explicit FormHRLoan(Module& module, QWidget* parent = nullptr);
    ~FormHRLoan() override;

    // Public operations, as the other windows and the host use them. Loan ids are 32-bit.
    bool ViewPRSLoansInfo(qint32 loanId) override;
    void ShowFormToEdit();
    void ShowFormToInsert();
    void Clear();
    QString getNextMonth(const QString& date) const;
    // Sorts the member rows by a column on a header click; `kind` is not used.
    void DoSort(int kind, int col);
    void DisableLockComponent();
    void FillLoanDetail(qint32 loanId);
    void InitialFlexEmployee();
    // False when the database holds no loan with that id (the member grid is emptied).
    bool FillLoan(qint32 loanId);

    // 1 while the window shows a stored loan (txtID holds an id), else 0.
    int StateValue() const override;
    void SetLoanIdText(const QString& text) override;
    QString LoanValueText() const override;
    QString DefaultPayDate() const { return defaultPayDate_; }

    // Event handlers, public so that tests and the menu reach them as a click would.
    void cmdNew_Click();
    void cmdEdit_Click();
    void cmdCancel_Click();
    void cmdExit_Click();
    void cmdSearch_Click();
    void cmdBalance_Click();
    // Saving (temporary or final), deleting and returning to temporary.
    void cmdRegSave_Click();
    void cmdFinSave_Click();
    void cmdDelete_Click();
    void cmdBacktoTemp_Click();
    // The members.
    void cmdAddEmp_Click();
    void cmdAddOrdinanceEmployees_Click();
    void cmdDeleteEmp_Click();
    void FlexEmployee_Click();
    void FlexEmployee_RowColChange();
    void PushButton1_Click();
    void Timer1_Timer();
    // The closing questions; false cancels the closing.
    bool Form_Unload();
    bool QueryUnload() override { return Form_Unload(); }

    // The loan terms: type and ceiling, amounts, count, monthly instalment, remainder.
    void cmbLoanType_Click();
    void cmbLoanType_KeyDown(int keyCode);
    void txtOriginalValue_GotFocus();
    void txtOriginalValue_LostFocus();
    void txtLoanValue_GotFocus();
    void txtLoanValue_KeyPress(int& keyAscii);
    void txtLoanValue_LostFocus();
    void txtPayBackNumber_GotFocus();
    void txtPayBackNumber_LostFocus();
    void TxtPerMonth_GotFocus();
    void TxtPerMonth_KeyPress(int& keyAscii);
    void TxtPerMonth_LostFocus();
    // The dates.
    void datLoanPayDate_Change();
    void datBeginDate_GotFocus();
    void datBeginDate_Change();
    void datBeginDate_LostFocus();
    void datEndDate_GotFocus();
    void datEndDate_Change();
    void datEndDate_LostFocus();

    // Controls, named as the users' documentation names them.
    QLineEdit* txtID;
    QLineEdit* txtCode;
    QComboBox* cmbLoanType;
    controls::VarekDate* datLoanPayDate;
    controls::VarekDate* datBeginDate;
    controls::VarekDate* datEndDate;
    controls::VarekDate* gtpTempDate;
    controls::VarekCurrency* txtLoanValue;
    controls::VarekCurrency* txtOriginalValue;
    controls::VarekCurrency* TxtPerMonth;
    controls::VarekCurrency* txtMaxLoanValue;
    controls::VarekCurrency* txtRem;
    QLineEdit* txtPayBackNumber;
    QLineEdit* txtNotes;
    QRadioButton* UseRemainedValueInFirstMonthF;
    QRadioButton* UseRemainedValueInFirstMonthL;
    QRadioButton* UseRemainedValueInSeparatedLastMonth;
    QLabel* UseRemainedValueInFirstMonth;
    QCheckBox* chkISValid;
    controls::FlexGrid* FlexEmployee;
    QLabel* lblMessage;
    // The window's own status bar: mode, what the last write did, notices.
    LoanStatusBar* stbLoan;
    QTimer* Timer1;
    QGroupBox* Frame1;

    QPushButton* cmdNew;
    QPushButton* cmdEdit;
    QPushButton* cmdDelete;
    QPushButton* cmdRegSave;
    QPushButton* cmdFinSave;
    QPushButton* cmdCancel;
    QPushButton* cmdExit;
    QPushButton* cmdSearch;
    QPushButton* cmdBacktoTemp;
    QPushButton* cmdBalance;
    QPushButton* cmdAddEmp;
    QPushButton* cmdDeleteEmp;
    QPushButton* cmdAddOrdinanceEmployees;
    QPushButton* cmdDefineAccount;
    QPushButton* PushButton1;

    QMenu* mnuTool;
    QAction* mnuNew;
    QAction* mnuEdit;
    QAction* mnuDelete;
    QAction* mnuRegSave;
    QAction* mnuFinSave;
    QAction* mnuCancel;
    QAction* mnuExit;
    QAction* mnusearch;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void FillLoanTypes();
    void buildControls();
    QWidget* buildTermsArea();
    QWidget* buildMembersArea();
    QLayout* buildCommands();
    void buildMenu();
    void connectHandlers();
    // The remainder option stored with a loan: Null none, 1 first, 0 last, 2 separate.
    void setRemainderOption(const QVariant& value);
    // The number in txtID, as the statements write it.
    qint32 loanId() const;
    // The id of the chosen loan type (its item data).
    qint64 loanTypeId() const;
    // Payslip rows of the loan in txtID.
    int paidInstalmentCount();

    // Saving: steps in order; nothing is written unless every check passes.
    void SaveLoan(bool isFinal);
    // The loan as the controls and the member grid hold it.
    loan_save::LoanRecord loanRecord(bool isFinal) const;
    // The overlap check of a save; false when the clerk answered no (the first conflicting
    // member is then selected).
    bool overlapAccepted(const loan_save::LoanRecord& loan);
    void selectMemberRow(int row);
    // Column 1 of the member rows.
    QStringList memberIds() const;
    // cmdDeleteEmp is on exactly while editing a loan that has a member row.
    void updateDeleteEmp();
    // The stored loan as the window shows it, for a write's re-check.
    stored_loan::Expected shownLoan() const;
    // Runs the statements once the stored loan is found as shown; otherwise shows what
    // changed (showStoredAfterChange) and returns false, nothing written.
    bool writeStored(stored_loan::Command command, const QStringList& statements);
    // Says what another clerk changed and shows the stored loan in view mode, or empties the
    // window when the loan is gone.
    void showStoredAfterChange(const stored_loan::LoanChangedError& e);

    // The fields the term and date rules read, as the controls hold them now.
    loan::TermsFields termsFields() const;
    loan::DateFields dateFields() const;
    void applyTerms(const loan::TermsUpdate& update);
    void showMessage(const std::optional<loan::Message>& message);
    void selectAll(controls::VarekCurrency* box);

    Module& module_;
    QString defaultPayDate_;
    // Values at focus entry; leaving a field unchanged recomputes nothing.
    vb::Currency payBackNumberAtFocus;
    vb::Currency perMonthAtFocus;
    QDate beginDateAtFocus;
    QDate endDateAtFocus;
    QButtonGroup* remainderGroup_;
    members::SortCodes sortCodes_;
};

}  // namespace kav
