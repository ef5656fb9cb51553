#pragma once

// The adjustment window ("تعديل وام"): for one member of one loan, a period during which the
// monthly instalment is a different amount; below it the loan's terms and the member's
// repayment schedule month by month, which the clerk can save as CSV or PDF. The window's
// mode is the module-wide LoanFormMode it shares with the loan editor (0 a stored adjustment
// shown, 1 being edited, 2 a new one, 3 nothing shown).

#include <QString>
#include <functional>
#include <optional>

#include "adjustments/RepaymentSchedule.h"
#include "session/WindowSupport.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;

namespace kav {
class Recordset;
namespace controls {
class FlexGrid;
class VarekDate;
class VarekSelector;
}  // namespace controls
namespace schedule {
class BalanceChartView;
}
struct PagedDocument;

class FormHRException : public ModuleWindow {
    Q_OBJECT
public:
    explicit FormHRException(Module& module, QWidget* parent = nullptr);
    ~FormHRException() override;

    // Public operations.
    void Clear();
    // Shows the loan's terms; false when the loan is not found.
    bool ViewPRSLoansInfo(qint32 loanId);
    // The loan in txtPaidID with the member's schedule.
    void ViewPRSBalance(qint32 employeeId);
    void ShowFormToInsert();
    void ShowFormToEdit(qint32 id);
    // The member's schedule for the loan last shown by ViewPRSLoansInfo.
    void FillPRSBalance(qint32 employeeId);
    void DisableLockComponent();
    static const modes::Table& ModeTable();

    // Event handlers, public so that tests reach them as a click would.
    void cmdNew_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void cmdSave_Click();
    void cmdCancel_Click();
    void cmdList_Click();
    void cmdExit_Click();
    void Timer1_Timer();
    void gmpEmployee_Changed();
    void cmdExportCsv_Click();
    void cmdExportPdf_Click();
    void cmdPrint_Click();

    // The text of the loan editor's txtID when it opened this window: the save compares the
    // instalment with the editor's amount only while txtPaidID still names that loan.
    QString editorLoanText;

    // The schedule on display (empty rows with the reason when there is none), and what its
    // exports say above it: the loan, the member, the terms, the dates, the balance.
    const schedule::Schedule& Schedule() const { return schedule_; }
    QStringList ScheduleFacts() const;
    // The schedule's pages with its chart, as printed and saved as PDF.
    PagedDocument ScheduleDocument() const;

    // Controls, named as the users' documentation names them.
    controls::VarekSelector* gmpEmployee;
    controls::VarekDate* gdcBalancePF;
    controls::VarekDate* gdcBalancePT;
    QLineEdit* TxtPerMonth;
    QLineEdit* txtID;
    QLineEdit* txtPaidID;
    QLabel* lblMessage;
    QTimer* Timer1;
    QPushButton* cmdNew;
    QPushButton* cmdEdit;
    QPushButton* cmdDelete;
    QPushButton* cmdSave;
    QPushButton* cmdCancel;
    QPushButton* cmdList;
    QPushButton* cmdExit;
    // The loan's terms, the member's schedule and its exports.
    QGroupBox* fraLoanInfo;
    QGroupBox* fraBalance;
    controls::FlexGrid* FlexBalance;
    QLabel* lblBalanceProblem;
    QPushButton* cmdExportCsv;
    QPushButton* cmdExportPdf;
    QPushButton* cmdPrint;
    // The balance month by month, as planned and as deducted, under the grid.
    schedule::BalanceChartView* chrBalance;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Form_Load();
    void buildControls();
    void connectHandlers();
    QWidget* buildLoanInfo();
    QWidget* buildBalance();
    void setInfo(const QString& name, const QString& text);
    void warn(const QString& text);
    // The save's checks (steps 3 to 5); false when one refused.
    bool saveChecksPass();
    // The monthly debit typed: nullopt for an empty box; false (after a warning) when the
    // text is not an amount.
    bool readMonthlyDebit(std::optional<vb::Currency>& debit);
    // The loan amount the instalment may not exceed.
    vb::Currency loanAmount(const Recordset& memberRow);
    void fillFromStored(const Recordset& rs);
    void reloadStored();
    void refreshBalance();
    void showBalanceProblem(const QString& text);
    void scrollBalance();
    QString exportBaseName() const;

    Module& module_;
    schedule::Schedule schedule_;
    int balanceTopRow_ = 0;  // the schedule's first month without a payslip
    // The loan whose terms are shown and the text of txtPaidID it was read for.
    std::optional<schedule::LoanTerms> terms_;
    QString termsLoanText_;
    QString loanCaption_;
    QString memberCaption_;
};

}  // namespace kav
