#pragma once

// The adjustment list: the recorded adjustments, filtered by employee and by a period range,
// sortable by any column; a double-click opens one in the adjustment window, unless the list
// was opened only for looking (LoanEditStarted 1). The list is printed as it is shown.

#include <array>

#include "session/WindowSupport.h"

class QPushButton;

namespace kav {
namespace controls {
class FlexGrid;
class VarekDate;
class VarekSelector;
}  // namespace controls

class FormList : public ModuleWindow {
    Q_OBJECT
public:
    explicit FormList(Module& module, QWidget* parent = nullptr);

    // The grid: 7 columns, the header row only.
    void InitialFlexEmployee();
    // Runs the query of the filters and appends its rows.
    void FillFlex();
    // Sorts by a column, alternating ascending and descending; the directions are kept for
    // columns 0 to 30 and a column beyond them is an error (KavError, Usage).
    void DoSort(int column);
    // The direction the column was last sorted in: 1 ascending, 2 descending, 0 never.
    int SortDirection(int column) const;

    // Event handlers.
    void cmdSearch_Click();
    void cmdNew_Click();
    void cmdExit_Click();
    void cmdPrint_Click();
    void FlexEmployee_Click();
    void FlexEmployee_DblClick();

    controls::VarekSelector* sltEmployee;
    controls::VarekDate* datBeginDate;
    controls::VarekDate* datEndDate;
    controls::FlexGrid* FlexEmployee;
    QPushButton* cmdSearch;
    QPushButton* cmdNew;
    QPushButton* cmdExit;
    QPushButton* cmdPrint;

    static constexpr int SortSlots = 31;

private:
    void Form_Load();
    void buildControls();

    Module& module_;
    std::array<int, SortSlots> sortDirections_{};
};

}  // namespace kav
