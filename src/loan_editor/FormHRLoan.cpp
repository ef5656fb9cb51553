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
