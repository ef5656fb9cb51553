#pragma once

// The monthly deduction register's window ("کسور ماهانه وام"), opened from the loan window's
// Tools menu: a Jalali month (the working date's by default), an optional loan type and
// employee, Search; one row per member of every final loan whose schedule has that month, the
// totals per employee, per loan type and overall, the row count on the status line. A header
// click sorts by that column (again: the other way); a double-click (or Enter) on a row opens
// its loan in the loan window while that is in view or empty mode. The register is saved as
// CSV or PDF, or printed, as it is shown.

#include <QString>
#include <QStringList>
#include <functional>

#include "deductions/DeductionRegister.h"
#include "session/WindowSupport.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace kav {
class Module;
namespace controls {
class FlexGrid;
class VarekSelector;
}  // namespace controls

class FormDeductions : public ModuleWindow {
    Q_OBJECT
public:
    explicit FormDeductions(Module& module, QWidget* parent = nullptr);

    // Reads the register of the month and the filters as the controls hold them and shows it.
    // A month that is not one, or an employee box that names nobody, is said and nothing is
    // read; the register shown stays.
    void RefreshRegister();
    // Sorts the rows shown by a column (deductions::Column); the same column again reverses.
    void DoSort(int column);

    const deductions::Register& RegisterShown() const { return register_; }
    const deductions::Totals& TotalsShown() const { return totals_; }
    // The month and the filters of the register shown, as the PDF's pages head them.
    const QStringList& Facts() const { return facts_; }

    // Event handlers, public so that tests reach them as a click or a key would.
    void cmdSearch_Click();
    void cmdExportCsv_Click();
    void cmdExportPdf_Click();
    void cmdPrint_Click();
    void cmdExit_Click();
    void FlexDeductions_Click();
    void FlexDeductions_DblClick();

    QLineEdit* txtMonth;
    QComboBox* cmbLoanType;
    controls::VarekSelector* sltEmployee;
    QPushButton* cmdSearch;
    QPushButton* cmdExportCsv;
    QPushButton* cmdPrint;
    QPushButton* cmdExportPdf;
    QPushButton* cmdExit;
    // The one line said when the payslip table lacks the settings' columns.
    QLabel* lblNotice;
    QTabWidget* tabRegister;
    controls::FlexGrid* FlexDeductions;
    controls::FlexGrid* FlexEmployeeTotals;
    controls::FlexGrid* FlexLoanTypeTotals;
    QLabel* lblTotals;
    QLabel* lblStatus;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Form_Load();
    void buildControls();
    void connectHandlers();
    void fillRows();
    void fillTotals();
    void openLoan();
    void updateExports();
    QString savePath(const QString& suffix);

    Module& module_;
    deductions::Register register_;
    deductions::Totals totals_;
    QStringList facts_;
    int sortColumn_ = -1;
    bool sortDescending_ = false;
};

}  // namespace kav
