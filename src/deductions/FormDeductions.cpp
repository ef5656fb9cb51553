#include "deductions/FormDeductions.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <array>
#include <charconv>

#include "adjustments/RepaymentSchedule.h"
#include "adjustments/ScheduleExport.h"
#include "adjustments/ScheduleSource.h"
#include "controls/FlexGrid.h"
#include "controls/VarekSelector.h"
#include "deductions/DeductionsSql.h"
#include "deductions/DeductionsTexts.h"
#include "session/CommandKeys.h"
#include "session/Csv.h"
#include "session/FileDialog.h"
#include "session/Module.h"
#include "session/Printing.h"
#include "session/TableDocument.h"
#include "session/TextProcs.h"
#include "session/Ui.h"
#include "session/WindowPorts.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = deductions_texts;
using controls::FlexGrid;
using controls::VarekSelector;
using deductions::RegisterRow;
using deductions::Total;
using vb::Currency;

namespace {

// An amount cell, grouped by threes, straight into the grid.
void putAmount(FlexGrid& grid, int row, int col, const std::optional<Currency>& amount) {
    if (!amount) return;
    std::array<char, 40> buffer;
    grid.setTextMatrixUtf8(row, col, GroupedAmountUtf8(*amount, buffer));
}

void putNumber(FlexGrid& grid, int row, int col, qint64 n) {
    char text[24];
    grid.setTextMatrixUtf8(row, col,
                           QByteArrayView(text, std::to_chars(text, text + sizeof text, n).ptr));
}

}  // namespace

FormDeductions::FormDeductions(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormDeductions"_s);
    buildControls();
    connectHandlers();
    Form_Load();
}

void FormDeductions::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(T::Caption);

    txtMonth = Named(new QLineEdit(this), u"txtMonth"_s);
    txtMonth->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    txtMonth->setMaximumWidth(110);
    cmbLoanType = Named(new QComboBox(this), u"cmbLoanType"_s);
    cmbLoanType->setMinimumWidth(200);
    sltEmployee = Named(new VarekSelector(this), u"sltEmployee"_s);
    sltEmployee->setMinimumWidth(300);
    auto button = [this](const QString& caption, const QString& name) {
        auto* b = Named(new QPushButton(caption, this), name);
        b->setAutoDefault(false);
        b->setMinimumWidth(100);
        return b;
    };
    cmdSearch = button(T::CaptionSearch, u"cmdSearch"_s);
    cmdExportCsv = button(T::CaptionExportCsv, u"cmdExportCsv"_s);
    cmdExportPdf = button(T::CaptionExportPdf, u"cmdExportPdf"_s);
    cmdPrint = button(T::CaptionPrint, u"cmdPrint"_s);
    cmdExit = button(T::CaptionExit, u"cmdExit"_s);

    auto* criteria = new QHBoxLayout;
    const std::pair<QString, QWidget*> boxes[] = {{T::LabelMonth, txtMonth},
                                                  {T::LabelLoanType, cmbLoanType},
                                                  {T::LabelEmployee, sltEmployee}};
    for (const auto& [caption, box] : boxes) {
        auto* label = new QLabel(caption, this);
        label->setBuddy(box);
        criteria->addWidget(label);
        criteria->addWidget(box, box == sltEmployee ? 1 : 0);
        criteria->addSpacing(12);
    }
    criteria->addWidget(cmdSearch);

    lblNotice = Named(new QLabel(this), u"lblNotice"_s);
    lblNotice->setWordWrap(true);
    lblNotice->setStyleSheet(u"color: #a01818;"_s);
    lblNotice->hide();

    FlexDeductions = Named(new FlexGrid(this), u"FlexDeductions"_s);
    QStringList format;
    for (const QString& title : deductions::ColumnTitles()) format << u"^"_s + title;
    FlexDeductions->setFormatString(format.join(u'|'));
    const int widths[deductions::ColumnCount] = {1000, 2500, 900,  2100, 1400,
                                                 1300, 1400, 1500, 1600, 4200};
    for (int c = 0; c < deductions::ColumnCount; ++c) FlexDeductions->setColWidth(c, widths[c]);
    for (int c : {int(deductions::ColName), int(deductions::ColLoanType), int(deductions::ColNote)})
        FlexDeductions->setColAlignment(c, FlexGrid::flexAlignRightCenter);

    FlexEmployeeTotals = Named(new FlexGrid(this), u"FlexEmployeeTotals"_s);
    FlexEmployeeTotals->setFormatString(
        QStringList{u"^"_s + T::ColumnTitles[deductions::ColCode],
                    u"^"_s + T::ColumnTitles[deductions::ColName], u"^"_s + T::ColumnLoanCount,
                    u"^"_s + T::ColumnTitles[deductions::ColToDeduct],
                    u"^"_s + T::ColumnTitles[deductions::ColDeducted],
                    u"^"_s + T::ColumnTitles[deductions::ColBalance]}
            .join(u'|'));
    const int employeeWidths[] = {1100, 2700, 1000, 1700, 1700, 1800};
    for (int c = 0; c < 6; ++c) FlexEmployeeTotals->setColWidth(c, employeeWidths[c]);
    FlexEmployeeTotals->setColAlignment(1, FlexGrid::flexAlignRightCenter);

    FlexLoanTypeTotals = Named(new FlexGrid(this), u"FlexLoanTypeTotals"_s);
    FlexLoanTypeTotals->setFormatString(
        QStringList{u"^"_s + T::ColumnTitles[deductions::ColLoanType], u"^"_s + T::ColumnRowCount,
                    u"^"_s + T::ColumnTitles[deductions::ColToDeduct],
                    u"^"_s + T::ColumnTitles[deductions::ColDeducted],
                    u"^"_s + T::ColumnTitles[deductions::ColBalance]}
            .join(u'|'));
    const int typeWidths[] = {2700, 1100, 1800, 1800, 1900};
    for (int c = 0; c < 5; ++c) FlexLoanTypeTotals->setColWidth(c, typeWidths[c]);
    FlexLoanTypeTotals->setColAlignment(0, FlexGrid::flexAlignRightCenter);

    tabRegister = Named(new QTabWidget(this), u"tabRegister"_s);
    tabRegister->addTab(FlexDeductions, T::TabRows);
    tabRegister->addTab(FlexEmployeeTotals, T::TabEmployees);
    tabRegister->addTab(FlexLoanTypeTotals, T::TabLoanTypes);

    lblTotals = Named(new QLabel(this), u"lblTotals"_s);
    QFont bold = lblTotals->font();
    bold.setBold(true);
    lblTotals->setFont(bold);
    lblTotals->setWordWrap(true);
    lblStatus = Named(new QLabel(this), u"lblStatus"_s);

    auto* commands = new QHBoxLayout;
    commands->addWidget(cmdExportCsv);
    commands->addWidget(cmdExportPdf);
    commands->addWidget(cmdPrint);
    commands->addStretch(1);
    commands->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(criteria);
    layout->addWidget(lblNotice);
    layout->addWidget(tabRegister, 1);
    layout->addWidget(lblTotals);
    layout->addLayout(commands);
    layout->addWidget(lblStatus);
    resize(1280, 660);
}

void FormDeductions::connectHandlers() {
    connect(cmdSearch, &QPushButton::clicked, this, Guarded(&FormDeductions::cmdSearch_Click));
    connect(cmdExportCsv, &QPushButton::clicked, this,
            Guarded(&FormDeductions::cmdExportCsv_Click));
    connect(cmdExportPdf, &QPushButton::clicked, this,
            Guarded(&FormDeductions::cmdExportPdf_Click));
    connect(cmdPrint, &QPushButton::clicked, this, Guarded(&FormDeductions::cmdPrint_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormDeductions::cmdExit_Click));
    using keys::Command;
    keys::Bind(*this, {{Command::Search, cmdSearch},
                       {Command::Export, cmdExportCsv},
                       {Command::ExportPdf, cmdExportPdf},
                       {Command::Print, cmdPrint}});
    connect(FlexDeductions, &FlexGrid::Click, this, Guarded(&FormDeductions::FlexDeductions_Click));
    connect(FlexDeductions, &FlexGrid::DblClick, this,
            Guarded(&FormDeductions::FlexDeductions_DblClick));
    connect(FlexDeductions, &FlexGrid::KeyPress, this, [this](int& key) {
        if (key != 13) return;
        key = 0;  // Enter in the grid opens the row's loan, it never searches
        Guard([this] { openLoan(); });
    });
}

void FormDeductions::Form_Load() {
    sltEmployee->setConnection(&module_.DtEn().cnt());
    sltEmployee->setConnectionString(module_.session.SessionConnectionString);
    sltEmployee->setMajorView(u"vwEmployeeMajor"_s);
    sltEmployee->setMinorView(u"vwEmployeeMinor"_s);
    sltEmployee->Initialize();

    cmbLoanType->clear();
    cmbLoanType->addItem(T::AllLoanTypes);
    RowReader types(module_.DtEn().cnt(), deductions::deductions_sql::LoanTypesQuery());
    const int id = types.FieldIndex(u"ID"_s), name = types.FieldIndex(u"Name"_s);
    while (types.Next()) cmbLoanType->addItem(FieldText(types.Fields(name)), types.Fields(id));

    // The working date's month.
    const std::optional<int> month = schedule::MonthNumber(module_.SystemWorkingDate());
    txtMonth->setText(month ? schedule::MonthText(*month) : QString());
    FlexDeductions->setRows(1);
    FlexEmployeeTotals->setRows(1);
    FlexLoanTypeTotals->setRows(1);
    updateExports();
}

// ---- The register ----

void FormDeductions::cmdSearch_Click() { RefreshRegister(); }

void FormDeductions::RefreshRegister() {
    const std::optional<int> month = deductions::ParseMonth(txtMonth->text());
    if (!month) {
        module_.ShowMessage(T::WarningTitle, deductions::NotAMonthText(txtMonth->text()));
        txtMonth->setFocus();
        return;
    }
    // An employee box whose text names nobody is no filter to drop.
    if (!controls::SelectorsNameEmployees(module_, {{sltEmployee, T::LabelEmployee}})) return;
    deductions::Filter filter;
    if (cmbLoanType->currentIndex() > 0) filter.loanTypeId = cmbLoanType->currentData().toInt();
    if (sltEmployee->Value() != -1) filter.employeeId = sltEmployee->Value();
    {
        BusyPointer busy;
        register_ = deductions::ReadRegister(module_.DtEn().cnt(), module_.session.PayslipColumns,
                                             *month, filter);
    }
    totals_ = deductions::ComputeTotals(register_.rows);
    const QString monthText = schedule::MonthText(*month);
    txtMonth->setText(monthText);
    facts_ = {T::FactMonth.arg(monthText),
              T::FactLoanType.arg(filter.loanTypeId ? cmbLoanType->currentText() : T::FactAll),
              T::FactEmployee.arg(filter.employeeId ? sltEmployee->Text() : T::FactAll)};
    sortColumn_ = -1;
    sortDescending_ = false;

    if (register_.payslipsKnown) {
        lblNotice->hide();
    } else {
        lblNotice->setText(schedule::PayslipColumnsMissingText(module_.session.PayslipColumns));
        lblNotice->show();
    }
    fillRows();
    fillTotals();
    const deductions::Total& all = totals_.overall;
    lblTotals->setText(T::OverallLine.arg(monthText).arg(all.rows).arg(
        schedule::AmountText(all.toDeduct),
        register_.payslipsKnown ? schedule::AmountText(all.deducted) : u"-"_s,
        schedule::AmountText(all.balance)));
    lblStatus->setText(
        register_.rows.isEmpty()
            ? T::StatusNone.arg(monthText)
            : T::StatusRows.arg(register_.rows.size()).arg(totals_.employees.size()));
    updateExports();
}

void FormDeductions::fillRows() {
    FlexGrid& grid = *FlexDeductions;
    const bool redraw = grid.Redraw();
    grid.setRedraw(false);
    grid.setRows(1);
    grid.setRows(int(register_.rows.size()) + 1);
    int r = 0;
    for (const RegisterRow& row : register_.rows) {
        ++r;
        grid.setTextMatrix(r, deductions::ColCode, row.employeeCode);
        grid.setTextMatrix(r, deductions::ColName, row.employeeName);
        grid.setTextMatrix(r, deductions::ColLoanCode, row.loanCode);
        grid.setTextMatrix(r, deductions::ColLoanType, row.loanType);
        putAmount(grid, r, deductions::ColInstalment, row.instalment);
        putAmount(grid, r, deductions::ColAdjustment, row.month.adjustment);
        putAmount(grid, r, deductions::ColToDeduct, row.ToDeduct());
        putAmount(grid, r, deductions::ColDeducted, row.month.deducted);
        putAmount(grid, r, deductions::ColBalance, row.month.balance);
        const QString note = deductions::RowNote(row);
        if (!note.isEmpty()) grid.setTextMatrix(r, deductions::ColNote, note);
    }
    grid.setRedraw(redraw);
}

void FormDeductions::fillTotals() {
    const bool known = register_.payslipsKnown;
    FlexGrid& employees = *FlexEmployeeTotals;
    employees.setRedraw(false);
    employees.setRows(1);
    employees.setRows(int(totals_.employees.size()) + 1);
    int r = 0;
    for (const Total& t : totals_.employees) {
        ++r;
        employees.setTextMatrix(r, 0, t.code);
        employees.setTextMatrix(r, 1, t.name);
        putNumber(employees, r, 2, t.rows);
        putAmount(employees, r, 3, t.toDeduct);
        if (known) putAmount(employees, r, 4, t.deducted);
        putAmount(employees, r, 5, t.balance);
    }
    employees.setRedraw(true);

    FlexGrid& types = *FlexLoanTypeTotals;
    types.setRedraw(false);
    types.setRows(1);
    types.setRows(int(totals_.loanTypes.size()) + 1);
    r = 0;
    for (const Total& t : totals_.loanTypes) {
        ++r;
        types.setTextMatrix(r, 0, t.name);
        putNumber(types, r, 1, t.rows);
        putAmount(types, r, 2, t.toDeduct);
        if (known) putAmount(types, r, 3, t.deducted);
        putAmount(types, r, 4, t.balance);
    }
    types.setRedraw(true);
}

void FormDeductions::DoSort(int column) {
    if (column < 0 || column >= deductions::ColumnCount || register_.rows.size() < 2) return;
    sortDescending_ = column == sortColumn_ ? !sortDescending_ : false;
    sortColumn_ = column;
    {
        BusyPointer busy;
        deductions::SortRows(register_.rows, column, sortDescending_);
        fillRows();
    }
}

void FormDeductions::FlexDeductions_Click() {
    const FlexGrid& grid = *FlexDeductions;
    if (grid.MouseRow() == 0 && grid.MouseCol() >= 0) DoSort(grid.MouseCol());
}

void FormDeductions::FlexDeductions_DblClick() {
    // A double-click on the header sorts (its first click did); it opens nothing.
    if (FlexDeductions->MouseRow() == 0) return;
    openLoan();
}

void FormDeductions::openLoan() {
    const FlexGrid& grid = *FlexDeductions;
    if (grid.Rows() < 2 || grid.Row() < 1 || grid.Row() > register_.rows.size()) return;
    const RegisterRow& row = register_.rows[grid.Row() - 1];
    // As the loan window's search button: only while it shows a loan or nothing.
    const qint32 mode = module_.session.LoanFormMode;
    if (mode != ModeView && mode != ModeEmpty) {
        lblStatus->setText(T::StatusEditorBusy.arg(row.loanCode));
        return;
    }
    const qint32 id = row.loanId;
    LoanEditorPort& editor = module_.port<LoanEditorPort>();
    hide();  // ends the editor's wait on this window; the window stays loaded
    editor.SetLoanIdText(QString::number(id));
    editor.ViewPRSLoansInfo(id);
}

// ---- Saving ----

void FormDeductions::updateExports() {
    const bool rows = !register_.rows.isEmpty();
    cmdExportCsv->setEnabled(rows);
    cmdExportPdf->setEnabled(rows);
    cmdPrint->setEnabled(rows);
}

QString FormDeductions::savePath(const QString& suffix) {
    // The register's month, then today's Jalali date.
    const QString month = schedule::MonthText(register_.month).replace(u'/', u'-');
    return AskSaveFile(module_, this, T::ExportDialogTitle,
                       ProposedFileName({T::FileName.arg(month)}), suffix);
}

void FormDeductions::cmdExportCsv_Click() {
    if (register_.rows.isEmpty()) return;
    const QString path = savePath(u"csv"_s);
    if (path.isEmpty()) return;
    SaveCsv(path, deductions::CsvRows(register_, totals_), {deductions::ColCode});
    // The path reads left to right inside the right-to-left line.
    lblStatus->setText(T::StatusSaved.arg(register_.rows.size())
                           .arg(QChar(0x2066) + QDir::toNativeSeparators(path) + QChar(0x2069)));
}

void FormDeductions::cmdExportPdf_Click() {
    if (register_.rows.isEmpty()) return;
    const QString path = savePath(u"pdf"_s);
    if (path.isEmpty()) return;
    {
        BusyPointer busy;
        SaveDocumentPdf(module_, path,
                        TablePages(deductions::Document(register_, totals_, facts_)));
    }
    lblStatus->setText(T::StatusSaved.arg(register_.rows.size())
                           .arg(QChar(0x2066) + QDir::toNativeSeparators(path) + QChar(0x2069)));
}

void FormDeductions::cmdPrint_Click() {
    if (register_.rows.isEmpty()) return;
    PrintDocument(module_, this, TablePages(deductions::Document(register_, totals_, facts_)));
}

void FormDeductions::cmdExit_Click() { close(); }

void FormDeductions::keyPressEvent(QKeyEvent* event) {
    if (PressFocusedButton(*event)) return;  // Enter on Exit exits, it does not search
    if (KeyCodeOf(*event) == 13) {
        // Enter in the criteria searches.
        Guard([this] { cmdSearch_Click(); });
        event->accept();
        return;
    }
    ModuleWindow::keyPressEvent(event);
}

}  // namespace kav
