#include "loan_editor/FormHRLoan.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/FlexGrid.h"
#include "controls/VarekCurrency.h"
#include "controls/VarekDate.h"
#include "loan_editor/FinalSaveChecks.h"
#include "loan_editor/FormHREmployee.h"
#include "loan_editor/LoanDates.h"
#include "loan_editor/LoanEditorSql.h"
#include "loan_editor/LoanEditorTexts.h"
#include "loan_editor/LoanKeys.h"
#include "loan_editor/LoanMembers.h"
#include "loan_editor/LoanModes.h"
#include "loan_editor/LoanStatusBar.h"
#include "loan_editor/LoanTerms.h"
#include "loan_editor/history/HistoryMenu.h"
#include "loan_editor/sheet/SheetMenu.h"
#include "session/Module.h"
#include "session/TextProcs.h"
#include "session/Ui.h"
#include "session/Vb.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = editor_texts;
using controls::FlexGrid;
using controls::VarekCurrency;
using controls::VarekDate;

FormHRLoan::FormHRLoan(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormHRLoan"_s);
    buildControls();
    connectHandlers();
    Form_Load();
    history::AttachToEditor(*this);  // the history and deleted loans in the Tools menu
    sheet::AttachToEditor(*this);    // the loan sheet, printed or saved as PDF
    loan_keys::AttachToEditor(*this);  // the command keys and the Tab stops
}

FormHRLoan::~FormHRLoan() {
    Timer1->stop();
    cmbLoanType->removeEventFilter(this);
    txtPayBackNumber->removeEventFilter(this);
}

void FormHRLoan::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(T::TitleEmpty);

    lblMessage = Named(new QLabel(this), u"lblMessage"_s);
    QFont statusFont = lblMessage->font();
    statusFont.setBold(true);
    lblMessage->setFont(statusFont);
    lblMessage->setMinimumHeight(24);

    QWidget* terms = buildTermsArea();
    QWidget* members = buildMembersArea();
    QLayout* commands = buildCommands();
    buildMenu();

    gtpTempDate = Named(new VarekDate(this), u"gtpTempDate"_s);
    gtpTempDate->hide();
    stbLoan = Named(new LoanStatusBar(this), u"stbLoan"_s);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    layout->addWidget(terms);
    layout->addWidget(members, 1);
    layout->addLayout(commands);
    layout->addWidget(gtpTempDate);
    layout->addWidget(stbLoan);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(250);
    resize(960, 640);
}

// The loan's identity, type, dates, amounts and notes, in the frame Frame1.
QWidget* FormHRLoan::buildTermsArea() {
    auto label = [this](const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    txtID = Named(new QLineEdit(this), u"txtID"_s);
    txtID->setReadOnly(true);
    txtCode = Named(new QLineEdit(this), u"txtCode"_s);
    txtCode->setReadOnly(true);
    // Numbers start at the right edge, as in the amount boxes.
    for (QLineEdit* number : {txtID, txtCode})
        number->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    cmbLoanType = Named(new QComboBox(this), u"cmbLoanType"_s);
    cmbLoanType->setMinimumWidth(180);
    txtMaxLoanValue = Named(new VarekCurrency(this), u"txtMaxLoanValue"_s);
    txtMaxLoanValue->setLocked(true);
    datLoanPayDate = Named(new VarekDate(this), u"datLoanPayDate"_s);
    datBeginDate = Named(new VarekDate(this), u"datBeginDate"_s);
    datEndDate = Named(new VarekDate(this), u"datEndDate"_s);
    txtOriginalValue = Named(new VarekCurrency(this), u"txtOriginalValue"_s);
    txtLoanValue = Named(new VarekCurrency(this), u"txtLoanValue"_s);
    txtPayBackNumber = Named(new QLineEdit(this), u"txtPayBackNumber"_s);
    txtPayBackNumber->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    TxtPerMonth = Named(new VarekCurrency(this), u"TxtPerMonth"_s);
    txtRem = Named(new VarekCurrency(this), u"txtRem"_s);
    txtRem->setLocked(true);
    txtNotes = Named(new QLineEdit(this), u"txtNotes"_s);
    chkISValid = Named(new QCheckBox(T::CaptionIsValid, this), u"chkISValid"_s);

    UseRemainedValueInFirstMonth =
        Named(new QLabel(T::LabelRemainderOptions, this), u"UseRemainedValueInFirstMonth"_s);
    UseRemainedValueInFirstMonthF =
        Named(new QRadioButton(T::OptionFirstMonth, this), u"UseRemainedValueInFirstMonthF"_s);
    UseRemainedValueInFirstMonthL =
        Named(new QRadioButton(T::OptionLastMonth, this), u"UseRemainedValueInFirstMonthL"_s);
    UseRemainedValueInSeparatedLastMonth = Named(new QRadioButton(T::OptionSeparateMonth, this),
                                                 u"UseRemainedValueInSeparatedLastMonth"_s);
    remainderGroup_ = new QButtonGroup(this);
    remainderGroup_->addButton(UseRemainedValueInFirstMonthF);
    remainderGroup_->addButton(UseRemainedValueInFirstMonthL);
    remainderGroup_->addButton(UseRemainedValueInSeparatedLastMonth);

    Frame1 = Named(new QGroupBox(this), u"Frame1"_s);
    auto* fields = new QGridLayout(Frame1);
    fields->setHorizontalSpacing(8);
    int row = 0;
    auto place = [&](int r, int pair, QLabel* l, QWidget* w, int span = 1) {
        fields->addWidget(l, r, pair * 2);
        fields->addWidget(w, r, pair * 2 + 1, 1, span);
    };
    place(row, 0, label(T::LabelID, txtID), txtID);
    place(row, 1, label(T::LabelCode, txtCode), txtCode);
    place(row, 2, label(T::LabelLoanType, cmbLoanType), cmbLoanType);
    ++row;
    place(row, 0, label(T::LabelPayDate, datLoanPayDate), datLoanPayDate);
    place(row, 1, label(T::LabelBeginDate, datBeginDate), datBeginDate);
    place(row, 2, label(T::LabelEndDate, datEndDate), datEndDate);
    ++row;
    place(row, 0, label(T::LabelOriginalValue, txtOriginalValue), txtOriginalValue);
    place(row, 1, label(T::LabelRequestedValue, txtLoanValue), txtLoanValue);
    place(row, 2, label(T::LabelMaxLoanValue, txtMaxLoanValue), txtMaxLoanValue);
    ++row;
    place(row, 0, label(T::LabelPayBackNumber, txtPayBackNumber), txtPayBackNumber);
    place(row, 1, label(T::LabelPerMonth, TxtPerMonth), TxtPerMonth);
    place(row, 2, label(T::LabelRem, txtRem), txtRem);
    ++row;
    auto* options = new QHBoxLayout;
    options->addWidget(UseRemainedValueInFirstMonthF);
    options->addWidget(UseRemainedValueInFirstMonthL);
    options->addWidget(UseRemainedValueInSeparatedLastMonth);
    options->addStretch(1);
    options->addWidget(chkISValid);
    fields->addWidget(UseRemainedValueInFirstMonth, row, 0, 1, 2);
    fields->addLayout(options, row, 2, 1, 4);
    ++row;
    place(row, 0, label(T::LabelNotes, txtNotes), txtNotes, 5);
    for (int c : {1, 3, 5}) fields->setColumnStretch(c, 1);
    return Frame1;
}

namespace {
QPushButton* commandButton(QWidget* parent, const QString& caption, const QString& name) {
    auto* b = Named(new QPushButton(caption, parent), name);
    b->setAutoDefault(false);
    return b;
}
}  // namespace

// The member grid with the buttons that work on it.
QWidget* FormHRLoan::buildMembersArea() {
    FlexEmployee = Named(new FlexGrid(this), u"FlexEmployee"_s);
    FlexEmployee->setMinimumHeight(180);
    cmdBalance = commandButton(this, T::CaptionBalance, u"cmdBalance"_s);
    cmdAddEmp = commandButton(this, T::CaptionAddEmp, u"cmdAddEmp"_s);
    cmdDeleteEmp = commandButton(this, T::CaptionDeleteEmp, u"cmdDeleteEmp"_s);
    cmdAddOrdinanceEmployees =
        commandButton(this, T::CaptionAddOrdinanceEmployees, u"cmdAddOrdinanceEmployees"_s);

    auto* members = new QGroupBox(T::FrameMembers, this);
    auto* memberLayout = new QVBoxLayout(members);
    memberLayout->addWidget(FlexEmployee, 1);
    auto* memberButtons = new QHBoxLayout;
    for (QPushButton* b : {cmdAddEmp, cmdAddOrdinanceEmployees, cmdDeleteEmp, cmdBalance})
        memberButtons->addWidget(b);
    memberButtons->addStretch(1);
    memberLayout->addLayout(memberButtons);
    return members;
}

// The loan's commands along the bottom.
QLayout* FormHRLoan::buildCommands() {
    auto button = [this](const QString& caption, const QString& name) {
        return commandButton(this, caption, name);
    };
    cmdNew = button(T::CaptionNew, u"cmdNew"_s);
    cmdEdit = button(T::CaptionEdit, u"cmdEdit"_s);
    cmdDelete = button(T::CaptionDelete, u"cmdDelete"_s);
    cmdRegSave = button(T::CaptionRegSave, u"cmdRegSave"_s);
    cmdFinSave = button(T::CaptionFinSave, u"cmdFinSave"_s);
    cmdCancel = button(T::CaptionCancel, u"cmdCancel"_s);
    cmdExit = button(T::CaptionExit, u"cmdExit"_s);
    cmdSearch = button(T::CaptionSearch, u"cmdSearch"_s);
    cmdBacktoTemp = button(T::CaptionBackToTemp, u"cmdBacktoTemp"_s);
    cmdDefineAccount = button(T::CaptionDefineAccount, u"cmdDefineAccount"_s);
    PushButton1 = button(T::CaptionTools, u"PushButton1"_s);

    auto* commands = new QHBoxLayout;
    for (QPushButton* b : {cmdNew, cmdEdit, cmdDelete, cmdRegSave, cmdFinSave, cmdCancel,
                           cmdBacktoTemp, cmdSearch, cmdDefineAccount, PushButton1})
        commands->addWidget(b);
    commands->addStretch(1);
    commands->addWidget(cmdExit);
    return commands;
}

// The pop-up menu of PushButton1; each item forwards to its button.
void FormHRLoan::buildMenu() {
    mnuTool = Named(new QMenu(this), u"mnuTool"_s);
    auto item = [this](const QString& caption, const QString& name) {
        auto* a = mnuTool->addAction(caption);
        a->setObjectName(name);
        return a;
    };
    mnuNew = item(T::CaptionNew, u"mnuNew"_s);
    mnuEdit = item(T::CaptionEdit, u"mnuEdit"_s);
    mnuDelete = item(T::CaptionDelete, u"mnuDelete"_s);
    mnuTool->addSeparator();
    mnuRegSave = item(T::CaptionRegSave, u"mnuRegSave"_s);
    mnuFinSave = item(T::CaptionFinSave, u"mnuFinSave"_s);
    mnuCancel = item(T::CaptionCancel, u"mnuCancel"_s);
    mnuTool->addSeparator();
    mnusearch = item(T::CaptionSearch, u"mnusearch"_s);
    mnuExit = item(T::CaptionExit, u"mnuExit"_s);
    connect(item(u"کسور ماهانه وام"_s, u"mnuDeductions"_s), &QAction::triggered, this,
            [this] { Guard([this] { module_.port<DeductionsPort>().ShowDeductions(); }); });
}

void FormHRLoan::connectHandlers() {
    auto handler = [this](void (FormHRLoan::*f)()) { return Guarded(f); };
    connect(cmdNew, &QPushButton::clicked, this, handler(&FormHRLoan::cmdNew_Click));
    connect(cmdEdit, &QPushButton::clicked, this, handler(&FormHRLoan::cmdEdit_Click));
    connect(cmdCancel, &QPushButton::clicked, this, handler(&FormHRLoan::cmdCancel_Click));
    connect(cmdExit, &QPushButton::clicked, this, handler(&FormHRLoan::cmdExit_Click));
    connect(cmdSearch, &QPushButton::clicked, this, handler(&FormHRLoan::cmdSearch_Click));
    connect(cmdBalance, &QPushButton::clicked, this, handler(&FormHRLoan::cmdBalance_Click));
    connect(PushButton1, &QPushButton::clicked, this, handler(&FormHRLoan::PushButton1_Click));
    connect(Timer1, &QTimer::timeout, this, handler(&FormHRLoan::Timer1_Timer));
    // cmdDefineAccount does nothing when clicked.
    connect(cmdRegSave, &QPushButton::clicked, this, handler(&FormHRLoan::cmdRegSave_Click));
    connect(cmdFinSave, &QPushButton::clicked, this, handler(&FormHRLoan::cmdFinSave_Click));
    connect(cmdDelete, &QPushButton::clicked, this, handler(&FormHRLoan::cmdDelete_Click));
    connect(cmdBacktoTemp, &QPushButton::clicked, this, handler(&FormHRLoan::cmdBacktoTemp_Click));

    // The members.
    connect(cmdAddEmp, &QPushButton::clicked, this, handler(&FormHRLoan::cmdAddEmp_Click));
    connect(cmdAddOrdinanceEmployees, &QPushButton::clicked, this,
            handler(&FormHRLoan::cmdAddOrdinanceEmployees_Click));
    connect(cmdDeleteEmp, &QPushButton::clicked, this, handler(&FormHRLoan::cmdDeleteEmp_Click));
    connect(FlexEmployee, &FlexGrid::Click, this, handler(&FormHRLoan::FlexEmployee_Click));
    connect(FlexEmployee, &FlexGrid::RowColChange, this,
            handler(&FormHRLoan::FlexEmployee_RowColChange));

    // The terms and dates; every handler runs inside the handler boundary.
    connect(cmbLoanType, &QComboBox::activated, this, handler(&FormHRLoan::cmbLoanType_Click));
    cmbLoanType->installEventFilter(this);
    txtPayBackNumber->installEventFilter(this);
    connect(txtOriginalValue, &VarekCurrency::GotFocus, this,
            handler(&FormHRLoan::txtOriginalValue_GotFocus));
    connect(txtOriginalValue, &VarekCurrency::LostFocus, this,
            handler(&FormHRLoan::txtOriginalValue_LostFocus));
    connect(txtLoanValue, &VarekCurrency::GotFocus, this,
            handler(&FormHRLoan::txtLoanValue_GotFocus));
    connect(txtLoanValue, &VarekCurrency::LostFocus, this,
            handler(&FormHRLoan::txtLoanValue_LostFocus));
    connect(txtLoanValue, &VarekCurrency::KeyPress, this, [this](int& key) {
        if (!Guard([&] { txtLoanValue_KeyPress(key); })) key = 0;
    });
    connect(TxtPerMonth, &VarekCurrency::GotFocus, this,
            handler(&FormHRLoan::TxtPerMonth_GotFocus));
    connect(TxtPerMonth, &VarekCurrency::LostFocus, this,
            handler(&FormHRLoan::TxtPerMonth_LostFocus));
    connect(TxtPerMonth, &VarekCurrency::KeyPress, this, [this](int& key) {
        if (!Guard([&] { TxtPerMonth_KeyPress(key); })) key = 0;
    });
    connect(datLoanPayDate, &VarekDate::DateChanged, this,
            handler(&FormHRLoan::datLoanPayDate_Change));
    connect(datBeginDate, &VarekDate::GotFocus, this, handler(&FormHRLoan::datBeginDate_GotFocus));
    connect(datBeginDate, &VarekDate::DateChanged, this, handler(&FormHRLoan::datBeginDate_Change));
    connect(datBeginDate, &VarekDate::LostFocus, this,
            handler(&FormHRLoan::datBeginDate_LostFocus));
    connect(datEndDate, &VarekDate::GotFocus, this, handler(&FormHRLoan::datEndDate_GotFocus));
    connect(datEndDate, &VarekDate::DateChanged, this, handler(&FormHRLoan::datEndDate_Change));
    connect(datEndDate, &VarekDate::LostFocus, this, handler(&FormHRLoan::datEndDate_LostFocus));

    const std::pair<QAction*, QPushButton*> menu[] = {
        {mnuNew, cmdNew},         {mnuEdit, cmdEdit},       {mnuDelete, cmdDelete},
        {mnuRegSave, cmdRegSave}, {mnuFinSave, cmdFinSave}, {mnuCancel, cmdCancel},
        {mnuExit, cmdExit},       {mnusearch, cmdSearch}};
    for (const auto& [item, button] : menu) ForwardMenu(item, button);
}

// ---- Loading ----

void FormHRLoan::Form_Load() {
    defaultPayDate_ = module_.SystemWorkingDate();
    module_.session.LoanEditStarted = 0;
    FillLoanTypes();
    InitialFlexEmployee();
    cmdNew->setFocus();
}

void FormHRLoan::FillLoanTypes() {
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::LoanTypes());
    cmbLoanType->clear();
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
        cmbLoanType->addItem(rs.Fields(u"Name"_s).toString(), rs.Fields(u"ID"_s));
    rs.Close();
    cmbLoanType->setCurrentIndex(-1);
}

bool FormHRLoan::FillLoan(qint32 loanId) {
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::FillLoan(loanId));
    const bool found = rs.RecordCount() > 0;
    if (found) {
        rs.MoveFirst();
        txtID->setText(FieldText(rs.Fields(u"ID"_s)));
        const QVariant typeId = rs.Fields(u"TypeID"_s);
        for (int i = 0; i < cmbLoanType->count(); ++i)
            if (!typeId.isNull() && cmbLoanType->itemData(i).toLongLong() == typeId.toLongLong())
                cmbLoanType->setCurrentIndex(i);
        txtLoanValue->setText(FieldText(rs.Fields(u"LoanValue"_s)));
        txtOriginalValue->setText(FieldText(rs.Fields(u"OriginalLoanValue"_s)));
        txtCode->setText(FieldText(rs.Fields(u"CODE"_s)));
        datLoanPayDate->setFarsidate(FieldText(rs.Fields(u"FarsiPaymentDate"_s)));
        datBeginDate->setFarsidate(
            rs.IsNull(u"BeginDate"_s) ? QString() : FieldText(rs.Fields(u"FarsiBeginDate"_s)));
        datEndDate->setFarsidate(rs.IsNull(u"EndDate"_s) ? QString()
                                                         : FieldText(rs.Fields(u"FarsiEndDate"_s)));
        txtNotes->setText(FieldText(rs.Fields(u"notes"_s)));
        TxtPerMonth->setText(FieldText(rs.Fields(u"MonthlyValue"_s)));
        txtPayBackNumber->setText(FieldText(rs.Fields(u"PayBackNumber"_s)));
        txtRem->setText(loan::txtRemOnLoad(rs.Fields(u"LoanValue"_s), rs.Fields(u"MonthlyValue"_s),
                                           rs.Fields(u"PayBackNumber"_s)));
        setRemainderOption(rs.Fields(u"UseRemainedValueInFirstMonth"_s));
    }
    rs.Close();
    FillLoanDetail(loanId);
    return found;
}

void FormHRLoan::setRemainderOption(const QVariant& value) {
    if (value.isNull()) {
        remainderGroup_->setExclusive(false);
        for (QAbstractButton* b : remainderGroup_->buttons()) b->setChecked(false);
        remainderGroup_->setExclusive(true);
        return;
    }
    switch (value.toInt()) {
        case 1:
            UseRemainedValueInFirstMonthF->setChecked(true);
            break;
        case 0:
            UseRemainedValueInFirstMonthL->setChecked(true);
            break;
        case 2:
            UseRemainedValueInSeparatedLastMonth->setChecked(true);
            break;
        default:
            break;
    }
}

void FormHRLoan::InitialFlexEmployee() {
    FlexEmployee->Clear();
    FlexEmployee->setCols(10);
    FlexEmployee->setRows(1);
    FlexEmployee->setFormatString(T::MemberGridFormat);
    static constexpr int widths[10] = {500, 0, 1000, 4000, 2000, 2000, 2000, 2000, 0, 0};
    for (int c = 0; c < 10; ++c) FlexEmployee->setColWidth(c, widths[c]);
    for (int c = 0; c <= 6; ++c) FlexEmployee->setColAlignment(c, 4);
}

void FormHRLoan::FillLoanDetail(qint32 loanId) {
    // Showing, reloading and removing all show exactly what the database holds.
    FlexEmployee->setRows(1);
    FlexEmployee->setRedraw(false);
    struct Redraw {
        FlexGrid* grid;
        ~Redraw() { grid->setRedraw(true); }
    } redraw{FlexEmployee};
    // Each row is read once and its cells go into the grid as the database gives them.
    RowReader rs(module_.DtEn().cnt(), loan_sql::MemberGrid(module_.DtEn().Dialect(), loanId));
    members::LoadedRows rows(rs);
    int filled = 0;
    try {
        while (rs.Next()) {
            const int r = filled + 1;
            if (r >= FlexEmployee->Rows())
                FlexEmployee->setRows(qMax(64, 2 * FlexEmployee->Rows()));
            const auto& cells = rows.Cells(rs, r);
            for (int c = 0; c < members::GridColumns; ++c)
                FlexEmployee->setTextMatrixUtf8(r, c, cells[size_t(c)]);
            filled = r;
        }
    } catch (...) {
        FlexEmployee->setRows(filled + 1);  // the rows read so far, as before the failure
        throw;
    }
    FlexEmployee->setRows(filled + 1);
}

// ---- Members ----

QStringList FormHRLoan::memberIds() const {
    QStringList ids;
    for (int r = 1; r < FlexEmployee->Rows(); ++r)
        ids << FlexEmployee->TextMatrix(r, members::EmployeeIdColumn);
    return ids;
}

void FormHRLoan::cmdAddEmp_Click() {
    members::Guarantors g;
    const qint32 employee = FormHREmployee::getNewEmployee(
        module_, members::ExistingText(memberIds()), g.ids[0], g.ids[1], g.ids[2]);
    if (employee == -1) return;
    const data::SqlDialect& dialect = module_.DtEn().Dialect();
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::EmployeeRow(dialect, employee));
    if (rs.RecordCount() == 0) return;  // an employee not found adds nothing
    // Every query runs before the grid changes, so a failing one leaves the grid as it was.
    for (std::size_t i = 0; i < g.ids.size(); ++i) {
        if (g.ids[i] == -1) continue;
        Recordset guarantor = module_.DtEn().NewRecordset();
        guarantor.Open(loan_sql::EmployeeRow(dialect, g.ids[i]));
        if (guarantor.RecordCount() > 0)
            g.names[i] = FieldText(guarantor.Fields(u"EmployeeName"_s));
    }
    FlexEmployee->AddItem();
    const int r = FlexEmployee->Rows() - 1;
    const QStringList cells = members::PickedRow(rs, g, r);
    for (int c = 0; c < cells.size(); ++c) FlexEmployee->setTextMatrix(r, c, cells[c]);
}

void FormHRLoan::cmdAddOrdinanceEmployees_Click() {
    const data::SqlDialect& dialect = module_.DtEn().Dialect();
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::OrdinanceEmployees(dialect, members::IdList(memberIds()),
                                         datBeginDate->englishdate(), datEndDate->englishdate()));
    FlexEmployee->setRedraw(false);
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        FlexEmployee->AddItem();
        const int r = FlexEmployee->Rows() - 1;
        const QStringList cells = members::OrdinanceRow(rs, r);
        for (int c = 0; c < cells.size(); ++c) FlexEmployee->setTextMatrix(r, c, cells[c]);
    }
    FlexEmployee->setRedraw(true);
}

void FormHRLoan::cmdDeleteEmp_Click() {
    const int row = FlexEmployee->Row();
    if (row < 1 || row >= FlexEmployee->Rows()) return;
    const qint32 loan = loanId();
    const qint32 employee =
        vb::CLng(vb::Val(LatinDigits(FlexEmployee->TextMatrix(row, members::EmployeeIdColumn))));
    // Removed at once, without asking; the reload shows what the database now holds (rows
    // added but not yet saved disappear with it).
    if (!writeStored(stored_loan::Command::RemoveMember,
                     {loan_sql::DeleteMember(module_.DtEn().Dialect(), loan, employee)}))
        return;
    stbLoan->MemberRemoved(loan, txtCode->text(), FlexEmployee->TextMatrix(row, 3));
    FillLoanDetail(loan);
}

void FormHRLoan::updateDeleteEmp() {
    cmdDeleteEmp->setEnabled(module_.session.LoanFormMode == ModeEdit && FlexEmployee->Rows() > 1);
}

void FormHRLoan::FlexEmployee_Click() {
    updateDeleteEmp();
    if (FlexEmployee->MouseRow() == 0 && FlexEmployee->MouseCol() >= 0 && FlexEmployee->Rows() > 1)
        DoSort(1, FlexEmployee->MouseCol());
}

void FormHRLoan::FlexEmployee_RowColChange() { updateDeleteEmp(); }

void FormHRLoan::DoSort(int /*kind*/, int col) {
    const int rows = FlexEmployee->Rows();
    const bool codes = col == members::CodeColumn;
    if (codes)
        for (int r = 1; r < rows; ++r)
            FlexEmployee->setTextMatrix(r, col, FlexEmployee->TextMatrix(r, col).remove(u'/'));
    const int code = sortCodes_.Next(col);
    FlexEmployee->setCol(col);
    FlexEmployee->Sort(code);
    if (codes)
        for (int r = 1; r < rows; ++r)
            if (const QString cell = FlexEmployee->TextMatrix(r, col); !cell.isEmpty())
                FlexEmployee->setTextMatrix(r, col, GroupDigits(cell));
    for (int r = 1; r < rows; ++r) FlexEmployee->setTextMatrix(r, 0, QString::number(r));
}

// ---- Modes ----

bool FormHRLoan::ViewPRSLoansInfo(qint32 loanId) {
    module_.session.CurrentLoanID = loanId;
    txtID->setText(QString::number(loanId));
    FillLoan(loanId);
    module_.session.LoanFormMode = ModeView;
    DisableLockComponent();
    if (txtCode->text().isEmpty()) {
        cmdEdit->setEnabled(true);
        mnuEdit->setEnabled(true);
    }
    return true;
}

void FormHRLoan::ShowFormToEdit() {
    module_.session.LoanFormMode = ModeEdit;
    DisableLockComponent();
}

void FormHRLoan::ShowFormToInsert() {
    Clear();
    FillLoanTypes();
    module_.session.LoanFormMode = ModeNew;
    DisableLockComponent();
}

QString FormHRLoan::getNextMonth(const QString& date) const {
    return loan::getNextMonth(date, defaultPayDate_);
}

void FormHRLoan::Clear() {
    txtCode->clear();
    txtNotes->clear();
    txtPayBackNumber->clear();
    for (VarekCurrency* box :
         {TxtPerMonth, txtLoanValue, txtOriginalValue, txtMaxLoanValue, txtRem})
        box->setText(QString());
    cmbLoanType->setCurrentIndex(-1);
    datLoanPayDate->Clear();
    datBeginDate->Clear();
    datEndDate->Clear();
    FlexEmployee->setRows(1);
    UseRemainedValueInFirstMonthF->setChecked(false);
    UseRemainedValueInFirstMonthL->setChecked(false);
    UseRemainedValueInSeparatedLastMonth->setChecked(true);
    chkISValid->setChecked(false);
    // A new loan's first instalment defaults to the last day of the payment date's month.
    datBeginDate->setFarsidate(getNextMonth(defaultPayDate_));
    if (!datBeginDate->IsEmpty())
        datBeginDate->setEnglishdate(datBeginDate->englishdate().addDays(-1));
    datLoanPayDate->setFarsidate(defaultPayDate_);
}

void FormHRLoan::DisableLockComponent() {
    const qint32 mode = module_.session.LoanFormMode;
    if (mode < 0 || mode > 3) return;
    setWindowTitle(loan_modes::EditorTitle(mode) + module_.CaptionNote());
    stbLoan->ShowMode(mode);
    modes::Apply(*this, loan_modes::EditorTable(), mode, txtCode->text());
}

int FormHRLoan::StateValue() const { return txtID->text().isEmpty() ? 0 : 1; }

void FormHRLoan::SetLoanIdText(const QString& text) { txtID->setText(text); }

QString FormHRLoan::LoanValueText() const { return txtLoanValue->Text(); }

// ---- Commands ----

qint32 FormHRLoan::loanId() const { return vb::CLng(vb::Val(LatinDigits(txtID->text()))); }

qint64 FormHRLoan::loanTypeId() const { return cmbLoanType->currentData().toLongLong(); }

int FormHRLoan::paidInstalmentCount() {
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(loan_sql::PaidInstalments(loanId()));
    const int count = rs.RecordCount();
    rs.Close();
    return count;
}

void FormHRLoan::cmdNew_Click() {
    if (!module_.HasPermission(PermissionNewOrDeleteLoan)) {
        module_.ShowRoleRefusal();
        return;
    }
    ShowFormToInsert();
    lblMessage->setText(module_.session.SessionTitle + T::StatusNewSuffix);
    datLoanPayDate->SetFocus();
}

void FormHRLoan::cmdEdit_Click() {
    if (!module_.HasPermission(PermissionEditLoan)) {
        module_.ShowRoleRefusal();
        return;
    }
    const int paid = paidInstalmentCount();
    if (paid > 0) {
        // Editing is refused with the wording of the delete refusal.
        module_.ShowMessage(T::TroubleTitle,
                            T::PaidRefusalStart + QString::number(paid) + T::PaidRefusalDeleteEnd);
        return;
    }
    ShowFormToEdit();
    lblMessage->setText(T::StatusEditPrefix + module_.session.SessionTitle);
    module_.session.LoanEditStarted = 1;
}

void FormHRLoan::cmdCancel_Click() {
    if (module_.AskQuestion(T::CancelTitlePrefix + module_.session.SessionTitle, T::AreYouSure) !=
        AnswerYes)
        return;
    lblMessage->clear();
    {
        BusyPointer busy;
        if (!txtID->text().isEmpty()) {
            ViewPRSLoansInfo(loanId());
            module_.session.LoanFormMode = ModeView;
            DisableLockComponent();
        } else {
            Clear();
            module_.session.LoanFormMode = ModeEmpty;
            DisableLockComponent();
        }
        module_.session.LoanEditStarted = 0;
    }
    cmdNew->setFocus();
}

void FormHRLoan::cmdExit_Click() { close(); }

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
        id = loan_save::WriteLoan(
            module_.DtEn().cnt(), loan,
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

void FormHRLoan::cmdSearch_Click() { module_.port<SearchPort>().ShowSearch(); }

void FormHRLoan::cmdBalance_Click() {
    // The adjustment window shares LoanFormMode and LoanEditStarted; the editor takes its own
    // values back when the window closes, however it closes, so an adjustment edit ends there.
    const qint32 mode = module_.session.LoanFormMode;
    const qint16 editStarted = module_.session.LoanEditStarted;
    qint32 employee = -1;
    if (FlexEmployee->Rows() > 1 && FlexEmployee->Row() >= 1)
        employee = vb::CLng(vb::Val(FlexEmployee->TextMatrix(FlexEmployee->Row(), 1)));
    struct RestoreMode {
        FormHRLoan& window;
        qint32 mode;
        qint16 editStarted;
        ~RestoreMode() {
            window.module().session.LoanFormMode = mode;
            window.module().session.LoanEditStarted = editStarted;
            try {
                window.DisableLockComponent();
            } catch (...) {
            }
        }
    } restore{*this, mode, editStarted};
    module_.port<AdjustmentPort>().ShowBalance(txtID->text(), employee);
}

void FormHRLoan::PushButton1_Click() {
    mnuTool->popup(PushButton1->mapToGlobal(QPoint(0, PushButton1->height())));
}

void FormHRLoan::Timer1_Timer() {
    const qint32 mode = module_.session.LoanFormMode;
    if (mode == ModeEdit || mode == ModeNew) {
        const bool complete = !txtLoanValue->Text().isEmpty() && cmbLoanType->currentIndex() >= 0 &&
                              !datEndDate->IsEmpty();
        cmdRegSave->setEnabled(complete);
        cmdFinSave->setEnabled(complete);
    }
    if (mode != ModeEdit) {
        cmdAddEmp->setEnabled(false);
        cmdDeleteEmp->setEnabled(false);
        cmdAddOrdinanceEmployees->setEnabled(false);
    } else {
        cmdAddEmp->setEnabled(true);
        cmdAddOrdinanceEmployees->setEnabled(true);
        if (FlexEmployee->Rows() <= 1) cmdDeleteEmp->setEnabled(false);
    }
}

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

// ---- Closing ----

bool FormHRLoan::Form_Unload() {
    const qint32 mode = module_.session.LoanFormMode;
    QString question;
    if (mode == ModeView && txtCode->text().isEmpty())
        question = T::UnloadTemporaryQuestion;
    else if (mode == ModeEdit || mode == ModeNew)
        question = T::UnloadEditQuestion;
    if (question.isEmpty()) return true;
    // Only a "no" keeps the window open; no answer at all lets it close.
    return module_.AskQuestion(WarningTitle(), question) != AnswerNo;
}

void FormHRLoan::showEvent(QShowEvent* event) {
    ModuleWindow::showEvent(event);
    if (QScreen* s = screen()) {
        const QRect area = s->availableGeometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
    Timer1->start();
}

void FormHRLoan::hideEvent(QHideEvent* event) {
    Timer1->stop();
    ModuleWindow::hideEvent(event);
}

}  // namespace kav
