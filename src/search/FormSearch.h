#pragma once

// The loan search window: the clerk fills any of the criteria, searches, and gets one grid
// row per member of each loan found; a double-click or Enter on a row opens that loan in the
// loan editor. The results can be sorted by a header click, saved as a CSV file and printed.

#include <QString>
#include <functional>

#include "session/WindowSupport.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kav {
class Module;
namespace controls {
class FlexGrid;
class VarekDate;
class VarekSelector;
}  // namespace controls
namespace search {
struct SearchCriteria;
}

class FormSearch : public ModuleWindow {
    Q_OBJECT
public:
    explicit FormSearch(Module& module, QWidget* parent = nullptr);
    ~FormSearch() override;

    // Public operations.
    void Clear();
    void InitializeComponents();
    // Sorts the results by a column (0-30): numbers for columns 1, 4, 6, 9, 10, 11, text
    // otherwise; each further sort of the same column reverses it.
    void DoSort(int column);
    // Runs the search with the criteria as they stand and fills the grid.
    void RefreshFlexSearchResult();

    // The criteria as the controls hold them.
    search::SearchCriteria Criteria() const;

    // Event handlers, public so that tests reach them as a click or a key would.
    void cmdSearch_Click();
    void cmdNewSearch_Click();
    void cmdExit_Click();
    void cmdExport_Click();
    void cmdPrint_Click();
    void Flexsearchresult_Click();
    void Flexsearchresult_DblClick();
    void Flexsearchresult_KeyPress(int& keyAscii);

    // Asks where to save the exported rows: the suggested path in, the chosen path out (empty

    // Controls, named as the users' documentation names them.
    QComboBox* cmbLoanType;
    QLineEdit* txtLoanValueF;
    QLineEdit* txtLoanValueTo;
    QLineEdit* TxtPerMonthF;
    QLineEdit* TxtPerMonthTo;
    controls::VarekDate* datPaymentDatef;
    controls::VarekDate* datPaymentDateTo;
    controls::VarekDate* datBeginDatef;
    controls::VarekDate* datBeginDateTo;
    controls::VarekDate* datEndDatef;
    controls::VarekDate* datEndDateTo;
    controls::VarekSelector* sltEmployee;
    controls::VarekSelector* sltSupporter;
    QLineEdit* txtNotes;
    QCheckBox* chkTempSave;
    QCheckBox* chkFinalSave;
    QPushButton* cmdSearch;
    QPushButton* cmdNewSearch;
    QPushButton* cmdExport;
    QPushButton* cmdPrint;
    QPushButton* cmdExit;
    controls::FlexGrid* Flexsearchresult;
    // The number of rows found, under the grid.
    QLabel* lblStatus;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void reject() override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void buildControls();
    void connectHandlers();
    // Opens the loan of the grid's current row in the editor.
    void openResult();
    // A from/to date pair (named for the status line) after either box changed.
    void linkDates(controls::VarekDate* from, controls::VarekDate* to, const QString& pairName);
    void updateExport();

    Module& module_;
};

}  // namespace kav
