#include "adjustments/FormList.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <charconv>

#include "adjustments/AdjustmentSql.h"
#include "adjustments/AdjustmentTexts.h"
#include "adjustments/FormHRException.h"
#include "adjustments/RepaymentSchedule.h"
#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "controls/GridDocument.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "session/CommandKeys.h"
#include "session/Module.h"
#include "session/Printing.h"
#include "session/Ui.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = adjustment_texts;
using controls::FlexGrid;
using controls::VarekDate;
using controls::VarekSelector;

FormList::FormList(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormList"_s);
    buildControls();
    connect(cmdSearch, &QPushButton::clicked, this, Guarded(&FormList::cmdSearch_Click));
    connect(cmdNew, &QPushButton::clicked, this, Guarded(&FormList::cmdNew_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormList::cmdExit_Click));
    connect(cmdPrint, &QPushButton::clicked, this, Guarded(&FormList::cmdPrint_Click));
    connect(FlexEmployee, &FlexGrid::Click, this, Guarded(&FormList::FlexEmployee_Click));
    connect(FlexEmployee, &FlexGrid::DblClick, this, Guarded(&FormList::FlexEmployee_DblClick));
    using keys::Command;
    keys::Bind(*this,
               {{Command::Search, cmdSearch}, {Command::New, cmdNew}, {Command::Print, cmdPrint}});
    Form_Load();
}

void FormList::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(T::ListCaption);
    sltEmployee = Named(new VarekSelector(this), u"sltEmployee"_s);
    datBeginDate = Named(new VarekDate(this), u"datBeginDate"_s);
    datEndDate = Named(new VarekDate(this), u"datEndDate"_s);
    FlexEmployee = Named(new FlexGrid(this), u"FlexEmployee"_s);
    auto button = [this](const QString& caption, const QString& name) {
        auto* b = Named(new QPushButton(caption, this), name);
        b->setAutoDefault(false);
        return b;
    };
    cmdSearch = button(T::ListCaptionSearch, u"cmdSearch"_s);
    cmdNew = button(T::ListCaptionNew, u"cmdNew"_s);
    cmdExit = button(T::ListCaptionExit, u"cmdExit"_s);
    cmdPrint = button(T::CaptionPrint, u"cmdPrint"_s);
    cmdSearch->setDefault(true);

    auto* filters = new QGridLayout;
    filters->setHorizontalSpacing(8);
    filters->addWidget(new QLabel(T::LabelEmployee, this), 0, 0);
    filters->addWidget(sltEmployee, 0, 1, 1, 3);
    filters->addWidget(new QLabel(T::ListLabelFrom, this), 1, 0);
    filters->addWidget(datBeginDate, 1, 1);
    filters->addWidget(new QLabel(T::ListLabelTo, this), 1, 2);
    filters->addWidget(datEndDate, 1, 3);
    filters->setColumnStretch(1, 1);
    filters->setColumnStretch(3, 1);

    auto* commands = new QHBoxLayout;
    commands->addWidget(cmdSearch);
    commands->addWidget(cmdNew);
    commands->addWidget(cmdPrint);
    commands->addStretch(1);
    commands->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(filters);
    layout->addWidget(FlexEmployee, 1);
    layout->addLayout(commands);
    resize(860, 540);
}

void FormList::Form_Load() {
    sltEmployee->setConnection(&module_.DtEn().cnt());
    sltEmployee->setConnectionString(module_.session.SessionConnectionString);
    sltEmployee->setMajorView(u"vwEmployeeMajor"_s);
    sltEmployee->setMinorView(u"vwEmployeeMinor"_s);
    sltEmployee->Initialize();
    datBeginDate->Clear();
    datEndDate->Clear();
    InitialFlexEmployee();
}

void FormList::InitialFlexEmployee() {
    FlexEmployee->setCols(7);
    FlexEmployee->setRows(1);
    FlexEmployee->setFormatString(T::ListFormat);
    const int widths[] = {700, 3000, 1600, 1600, 1600, 1300, 1500};
    for (int c = 0; c < 7; ++c) FlexEmployee->setColWidth(c, widths[c]);
}

void FormList::FillFlex() {
    const QString sql = adjustment_sql::ListQuery(
        sltEmployee->Value(), datBeginDate->IsEmpty() ? QString() : datBeginDate->farsidate(),
        datEndDate->IsEmpty() ? QString() : datEndDate->farsidate());
    Recordset& rs = module_.DtEn().rs();
    if (rs.IsOpen()) rs.Close();
    // Each row is read once, its columns found once, and its cells go into the grid as the
    // database gives them; the grid grows in large steps and is cut to the rows found.
    RowReader rows(module_.DtEn().cnt(), sql);
    int columns[6];
    const QString names[6] = {u"EmployeeName"_s, u"FarsiBeginDate"_s,
                              u"FarsiEndDate"_s, u"MonthlyDebit"_s,
                              u"ID"_s,           u"LoanID"_s};
    for (int c = 0; c < 6; ++c) columns[c] = rows.FieldIndex(names[c]);
    FlexGrid& grid = *FlexEmployee;
    const bool redraw = grid.Redraw();
    grid.setRedraw(false);
    const int first = grid.Rows();
    int row = first;
    try {
        while (rows.Next()) {
            if (row >= grid.Rows()) grid.setRows(row + qMax(1024, row - first));
            char number[16];
            grid.setTextMatrixUtf8(
                row, 0,
                QByteArrayView(number, std::to_chars(number, number + sizeof number, row).ptr));
            for (int c = 0; c < 6; ++c) grid.setTextMatrixUtf8(row, c + 1, rows.Text(columns[c]));
            ++row;
        }
    } catch (...) {
        grid.setRows(row);
        grid.setRedraw(redraw);
        throw;
    }
    grid.setRows(row);
    grid.setRedraw(true);
}

int FormList::SortDirection(int column) const {
    return column >= 0 && column < SortSlots ? sortDirections_[std::size_t(column)] : 0;
}

void FormList::DoSort(int column) {
    if (column < 0 || column >= SortSlots)
        throw KavError(KavError::Kind::Usage, T::SortColumnMissing.arg(column));
    int& direction = sortDirections_[std::size_t(column)];
    direction = direction == 1 ? 2 : 1;
    FlexGrid& g = *FlexEmployee;
    g.setRedraw(false);
    g.setCol(column);
    g.setColSel(g.Cols() - 1);
    g.Sort(direction == 1 ? FlexGrid::flexSortGenericAscending
                          : FlexGrid::flexSortGenericDescending);
    for (int r = 1; r < g.Rows(); ++r) g.setTextMatrix(r, 0, QString::number(r));
    g.setCol(1);
    g.setColSel(g.Cols() - 1);
    g.setRedraw(true);
}

void FormList::cmdSearch_Click() {
    if (!controls::SelectorsNameEmployees(module_, {{sltEmployee, T::LabelEmployee}})) return;
    FlexEmployee->setRows(1);
    FillFlex();
}

void FormList::cmdNew_Click() {
    sltEmployee->Clear();
    datEndDate->Clear();
    datBeginDate->Clear();
    FlexEmployee->setRows(1);
}

void FormList::cmdExit_Click() { close(); }

void FormList::cmdPrint_Click() {
    if (FlexEmployee->Rows() < 2) return;
    // The filters the rows were found with head every page.
    QStringList filters;
    for (const auto& [label, text] : {std::pair{T::LabelEmployee, sltEmployee->Text()},
                                      std::pair{T::ListLabelFrom, datBeginDate->farsidate()},
                                      std::pair{T::ListLabelTo, datEndDate->farsidate()}})
        if (!text.trimmed().isEmpty()) filters << label + u' ' + text.trimmed();
    if (!filters.isEmpty()) filters = QStringList{filters.join(u"   "_s)};
    PrintDocument(module_, this,
                  TablePages(controls::GridDocument(*FlexEmployee, T::ListCaption, filters)));
}

void FormList::FlexEmployee_Click() {
    if (FlexEmployee->MouseRow() == 0 && FlexEmployee->Rows() >= 2 && FlexEmployee->MouseCol() >= 0)
        DoSort(FlexEmployee->MouseCol());
}

void FormList::FlexEmployee_DblClick() {
    if (FlexEmployee->Rows() <= 1 || FlexEmployee->Row() < 1) return;
    if (FlexEmployee->MouseRow() == 0) return;         // a double-click on the header sorts only
    if (module_.session.LoanEditStarted == 1) return;  // opened only for looking
    const qint32 id = vb::CLng(FlexEmployee->TextMatrix(FlexEmployee->Row(), 5));
    module_.Window<FormHRException>().ShowFormToEdit(id);
    // The list steps aside with its filters and rows; the adjustment window shows the record.
    done(QDialog::Accepted);
}

}  // namespace kav
