#include "adjustments/FormHRException.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include "adjustments/AdjustmentSql.h"
#include "adjustments/AdjustmentTexts.h"
#include "adjustments/BalanceChartView.h"
#include "adjustments/FormList.h"
#include "adjustments/ScheduleExport.h"
#include "adjustments/ScheduleSource.h"
#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "session/CommandKeys.h"
#include "session/Csv.h"
#include "session/FileDialog.h"
#include "session/LoanHistory.h"
#include "session/Module.h"
#include "session/Printing.h"
#include "session/TextProcs.h"
#include "session/Ui.h"
#include "session/WindowPorts.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = adjustment_texts;
using controls::FlexGrid;
using controls::VarekDate;
using controls::VarekSelector;
using vb::Currency;

namespace {

QPushButton* commandButton(QWidget* parent, const QString& caption, const QString& name) {
    auto* b = Named(new QPushButton(caption, parent), name);
    b->setAutoDefault(false);
    return b;
}

// An amount field grouped for display; empty for Null.
QString amountField(const QVariant& v) {
    const std::optional<Currency> amount = schedule::AmountOf(v);
    return amount ? schedule::AmountText(*amount) : QString();
}

// The number an id box holds; KavError (type mismatch or overflow) when it holds none.
qint32 idOf(const QLineEdit* box) { return vb::CLng(LatinDigits(box->text().trimmed())); }

const QString kLockName = u"KAVHRLoan"_s;

// The schedule grid's columns: row number, then the schedule's own.
constexpr int kBalanceCols = 8;

}  // namespace

const modes::Table& FormHRException::ModeTable() {
    using enum modes::State;
    using modes::Kind;
    static const modes::Table table = {
        {{u"cmdNew"_s}, Kind::Enable, {On, Off, Off, On}},
        {{u"cmdEdit"_s, u"cmdDelete"_s}, Kind::Enable, {On, Off, Off, Off}},
        {{u"cmdSave"_s, u"cmdCancel"_s}, Kind::Enable, {Off, On, On, Off}},
        {{u"cmdExit"_s, u"cmdList"_s}, Kind::Enable, {On, On, On, On}},
        // Dates and the employee are locked (shown, not greyed) when not editable; the
        // instalment box is read-only only while a stored adjustment is shown.
        {{u"gdcBalancePF"_s, u"gdcBalancePT"_s, u"gmpEmployee"_s},
         Kind::Lock,
         {Locked, Open, Open, Locked}},
        {{u"TxtPerMonth"_s}, Kind::Lock, {Locked, Open, Open, Open}},
    };
    return table;
}

FormHRException::FormHRException(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormHRException"_s);
    buildControls();
    connectHandlers();
    Form_Load();
}

FormHRException::~FormHRException() { Timer1->stop(); }

// ---- Building ----

void FormHRException::buildControls() {
    ApplyPersianStyle(this);
    setWindowTitle(T::Caption);

    lblMessage = Named(new QLabel(this), u"lblMessage"_s);
    QFont statusFont = lblMessage->font();
    statusFont.setBold(true);
    lblMessage->setFont(statusFont);
    lblMessage->setMinimumHeight(24);

    gmpEmployee = Named(new VarekSelector(this), u"gmpEmployee"_s);
    gdcBalancePF = Named(new VarekDate(this), u"gdcBalancePF"_s);
    gdcBalancePT = Named(new VarekDate(this), u"gdcBalancePT"_s);
    TxtPerMonth = Named(new QLineEdit(this), u"TxtPerMonth"_s);
    TxtPerMonth->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    TxtPerMonth->setMaxLength(30);
    txtID = Named(new QLineEdit(this), u"txtID"_s);
    txtID->hide();
    txtPaidID = Named(new QLineEdit(this), u"txtPaidID"_s);
    txtPaidID->hide();

    auto label = [this](const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    auto* entry = new QGroupBox(this);
    entry->setObjectName(u"fraAdjustment"_s);
    auto* fields = new QGridLayout(entry);
    fields->setHorizontalSpacing(8);
    fields->addWidget(label(T::LabelEmployee, gmpEmployee), 0, 0);
    fields->addWidget(gmpEmployee, 0, 1, 1, 5);
    fields->addWidget(label(T::LabelFrom, gdcBalancePF), 1, 0);
    fields->addWidget(gdcBalancePF, 1, 1);
    fields->addWidget(label(T::LabelTo, gdcBalancePT), 1, 2);
    fields->addWidget(gdcBalancePT, 1, 3);
    fields->addWidget(label(T::LabelPerMonth, TxtPerMonth), 1, 4);
    fields->addWidget(TxtPerMonth, 1, 5);
    for (int c : {1, 3, 5}) fields->setColumnStretch(c, 1);

    cmdNew = commandButton(this, T::CaptionNew, u"cmdNew"_s);
    cmdEdit = commandButton(this, T::CaptionEdit, u"cmdEdit"_s);
    cmdDelete = commandButton(this, T::CaptionDelete, u"cmdDelete"_s);
    cmdSave = commandButton(this, T::CaptionSave, u"cmdSave"_s);
    cmdCancel = commandButton(this, T::CaptionCancel, u"cmdCancel"_s);
    cmdList = commandButton(this, T::CaptionList, u"cmdList"_s);
    cmdExit = commandButton(this, T::CaptionExit, u"cmdExit"_s);
    auto* commands = new QHBoxLayout;
    for (QPushButton* b : {cmdNew, cmdEdit, cmdDelete, cmdSave, cmdCancel, cmdList})
        commands->addWidget(b);
    commands->addStretch(1);
    commands->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    // The adjustment and the loan's terms side by side, so the schedule keeps the height.
    auto* top = new QHBoxLayout;
    top->addWidget(entry, 1);
    top->addWidget(buildLoanInfo(), 1);
    layout->addLayout(top);
    layout->addWidget(buildBalance(), 1);
    layout->addLayout(commands);
    layout->addWidget(txtID);
    layout->addWidget(txtPaidID);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(250);
    resize(1180, 680);
}

// The loan's terms, each a caption and a value label named lbl<what>.
QWidget* FormHRException::buildLoanInfo() {
    fraLoanInfo = Named(new QGroupBox(T::FrameLoanInfo, this), u"fraLoanInfo"_s);
    auto* grid = new QGridLayout(fraLoanInfo);
    grid->setHorizontalSpacing(8);
    const std::pair<QString, QString> items[] = {
        {T::LabelLoanCode, u"lblLoanCode"_s},
        {T::LabelLoanType, u"lblLoanType"_s},
        {T::LabelLoanValue, u"lblLoanValue"_s},
        {T::LabelMonthlyValue, u"lblMonthlyValue"_s},
        {T::LabelPayBackNumber, u"lblPayBackNumber"_s},
        {T::LabelRemainder, u"lblRemainder"_s},
        {T::LabelBeginDate, u"lblBeginDate"_s},
        {T::LabelEndDate, u"lblEndDate"_s},
    };
    int i = 0;
    for (const auto& [caption, name] : items) {
        auto* value = Named(new QLabel(fraLoanInfo), name);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        // Beside its caption, numbers as well as words.
        value->setAlignment(Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter);
        QFont f = value->font();
        f.setBold(true);
        value->setFont(f);
        const int row = i / 4, col = (i % 4) * 2;
        grid->addWidget(new QLabel(caption, fraLoanInfo), row, col);
        grid->addWidget(value, row, col + 1);
        ++i;
    }
    for (int c : {1, 3, 5, 7}) grid->setColumnStretch(c, 1);
    return fraLoanInfo;
}

// The member's schedule: what was deducted, what is owed, the grid and its exports.
QWidget* FormHRException::buildBalance() {
    fraBalance = Named(new QGroupBox(T::FrameBalance, this), u"fraBalance"_s);
    auto* layout = new QVBoxLayout(fraBalance);

    auto* summary = new QHBoxLayout;
    const std::pair<QString, QString> items[] = {{T::LabelPaidSoFar, u"lblPaidSoFar"_s},
                                                 {T::LabelDebt, u"lblDebt"_s},
                                                 {T::LabelLastMonth, u"lblLastMonth"_s}};
    for (const auto& [caption, name] : items) {
        auto* value = Named(new QLabel(fraBalance), name);
        QFont f = value->font();
        f.setBold(true);
        value->setFont(f);
        summary->addWidget(new QLabel(caption, fraBalance));
        summary->addWidget(value);
        summary->addSpacing(24);
    }
    summary->addStretch(1);
    layout->addLayout(summary);

    lblBalanceProblem = Named(new QLabel(fraBalance), u"lblBalanceProblem"_s);
    lblBalanceProblem->setWordWrap(true);
    lblBalanceProblem->setStyleSheet(u"color: #a01818;"_s);
    lblBalanceProblem->hide();
    layout->addWidget(lblBalanceProblem);

    FlexBalance = Named(new FlexGrid(fraBalance), u"FlexBalance"_s);
    QStringList format{u"^"_s + T::RowColumn};
    for (const QString& title : schedule::ColumnTitles()) format << u"^"_s + title;
    FlexBalance->setFormatString(format.join(u'|'));
    const int widths[kBalanceCols] = {600, 1100, 1700, 1700, 1700, 1700, 1800, 2400};
    for (int c = 0; c < kBalanceCols; ++c) FlexBalance->setColWidth(c, widths[c]);
    FlexBalance->setMinimumHeight(130);
    chrBalance = Named(new schedule::BalanceChartView(fraBalance), u"chrBalance"_s);
    auto* split = Named(new QSplitter(Qt::Vertical, fraBalance), u"splBalance"_s);
    split->addWidget(FlexBalance);
    split->addWidget(chrBalance);
    split->setChildrenCollapsible(false);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    layout->addWidget(split, 1);

    cmdExportCsv = commandButton(fraBalance, T::CaptionExportCsv, u"cmdExportCsv"_s);
    cmdExportPdf = commandButton(fraBalance, T::CaptionExportPdf, u"cmdExportPdf"_s);
    cmdPrint = commandButton(fraBalance, T::CaptionPrint, u"cmdPrint"_s);
    auto* exports = new QHBoxLayout;
    exports->addWidget(cmdExportCsv);
    exports->addWidget(cmdExportPdf);
    exports->addWidget(cmdPrint);
    exports->addStretch(1);
    layout->addLayout(exports);
    return fraBalance;
}

void FormHRException::connectHandlers() {
    auto handler = [this](void (FormHRException::*f)()) { return Guarded(f); };
    connect(cmdNew, &QPushButton::clicked, this, handler(&FormHRException::cmdNew_Click));
    connect(cmdEdit, &QPushButton::clicked, this, handler(&FormHRException::cmdEdit_Click));
    connect(cmdDelete, &QPushButton::clicked, this, handler(&FormHRException::cmdDelete_Click));
    connect(cmdSave, &QPushButton::clicked, this, handler(&FormHRException::cmdSave_Click));
    connect(cmdCancel, &QPushButton::clicked, this, handler(&FormHRException::cmdCancel_Click));
    connect(cmdList, &QPushButton::clicked, this, handler(&FormHRException::cmdList_Click));
    connect(cmdExit, &QPushButton::clicked, this, handler(&FormHRException::cmdExit_Click));
    connect(Timer1, &QTimer::timeout, this, handler(&FormHRException::Timer1_Timer));
    connect(gmpEmployee, &VarekSelector::Changed, this,
            handler(&FormHRException::gmpEmployee_Changed));
    connect(cmdExportCsv, &QPushButton::clicked, this,
            handler(&FormHRException::cmdExportCsv_Click));
    connect(cmdExportPdf, &QPushButton::clicked, this,
            handler(&FormHRException::cmdExportPdf_Click));
    connect(cmdPrint, &QPushButton::clicked, this, handler(&FormHRException::cmdPrint_Click));
    using keys::Command;
    keys::Bind(*this, {{Command::New, cmdNew},
                       {Command::Edit, cmdEdit},
                       {Command::Delete, cmdDelete},
                       {Command::Save, cmdSave},
                       {Command::Search, cmdList},
                       {Command::Export, cmdExportCsv},
                       {Command::ExportPdf, cmdExportPdf},
                       {Command::Print, cmdPrint}});
}

void FormHRException::Form_Load() {
    Session& s = module_.session;
    gmpEmployee->setConnection(&module_.DtEn().cnt());
    gmpEmployee->setConnectionString(s.SessionConnectionString);
    gmpEmployee->setMajorView(u"vwEmployeeMajor"_s);
    gmpEmployee->setMinorView(u"vwEmployeeMinor"_s);
    gmpEmployee->Initialize();
    s.LoanFormMode = ModeEmpty;
    DisableLockComponent();
    Clear();
    showBalanceProblem(T::NoLoan);
}

void FormHRException::showEvent(QShowEvent* event) {
    ModuleWindow::showEvent(event);
    if (QScreen* screen = this->screen()) {
        const QRect area = screen->availableGeometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
    Timer1->start();
    // The grid knows its height only once shown.
    QTimer::singleShot(0, this, [this] { scrollBalance(); });
}

void FormHRException::scrollBalance() {
    if (FlexBalance->Rows() > 1 && balanceTopRow_ >= 1 && balanceTopRow_ < FlexBalance->Rows())
        FlexBalance->setTopRow(qMax(1, balanceTopRow_ - 3));
}

void FormHRException::hideEvent(QHideEvent* event) {
    Timer1->stop();
    ModuleWindow::hideEvent(event);
}

// ---- Public operations ----

void FormHRException::Clear() {
    gdcBalancePF->Clear();
    gdcBalancePT->Clear();
    TxtPerMonth->clear();
}

void FormHRException::DisableLockComponent() {
    modes::Apply(*this, ModeTable(), module_.session.LoanFormMode);
}

void FormHRException::ShowFormToInsert() {
    module_.session.LoanFormMode = ModeEmpty;
    DisableLockComponent();
    Clear();
    module_.session.LoanFormMode = ModeNew;
    DisableLockComponent();
}

void FormHRException::ShowFormToEdit(qint32 id) {
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(adjustment_sql::AdjustmentById(id));
    if (!rs.EOF_()) {
        txtID->setText(FieldText(rs.Fields(u"ID"_s)));
        // The adjustment's own loan, so that saving it again never moves it to another loan.
        txtPaidID->setText(FieldText(rs.Fields(u"LoanID"_s)));
        fillFromStored(rs);
    }
    rs.Close();
    module_.session.LoanFormMode = ModeView;
    DisableLockComponent();
    ViewPRSBalance(gmpEmployee->Value());
}

bool FormHRException::ViewPRSLoansInfo(qint32 loanId) {
    terms_.reset();
    termsLoanText_.clear();
    loanCaption_.clear();
    for (const char* name : {"lblLoanCode", "lblLoanType", "lblLoanValue", "lblMonthlyValue",
                             "lblPayBackNumber", "lblRemainder", "lblBeginDate", "lblEndDate"})
        setInfo(QString::fromLatin1(name), QString());
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(adjustment_sql::LoanHeader(loanId));
    if (rs.EOF_()) return false;

    const QString code = FieldText(rs.Fields(u"CODE"_s));
    const QString type = FieldText(rs.Fields(u"LoanTypeDesc"_s));
    setInfo(u"lblLoanCode"_s, code.isEmpty() ? T::TemporaryLoan : code);
    setInfo(u"lblLoanType"_s, type);
    setInfo(u"lblLoanValue"_s, amountField(rs.Fields(u"LoanValue"_s)));
    setInfo(u"lblMonthlyValue"_s, amountField(rs.Fields(u"MonthlyValue"_s)));
    setInfo(u"lblPayBackNumber"_s, FieldText(rs.Fields(u"PayBackNumber"_s)));
    const QVariant option = rs.Fields(u"UseRemainedValueInFirstMonth"_s);
    QString optionText;
    if (!option.isNull()) {
        const int o = option.toInt();
        optionText =
            o == 1 ? T::RemainderFirst : (o == 2 ? T::RemainderSeparate : T::RemainderLast);
    }
    setInfo(u"lblRemainder"_s, optionText);
    const QString begin = FieldText(rs.Fields(u"FarsiBeginDate"_s));
    const QString end = FieldText(rs.Fields(u"FarsiEndDate"_s));
    setInfo(u"lblBeginDate"_s, begin);
    setInfo(u"lblEndDate"_s, end);

    schedule::LoanTerms t;
    t.loanValue = schedule::AmountOf(rs.Fields(u"LoanValue"_s)).value_or(Currency());
    t.monthlyValue = schedule::AmountOf(rs.Fields(u"MonthlyValue"_s));
    const QVariant count = rs.Fields(u"PayBackNumber"_s);
    if (!count.isNull()) t.payBackNumber = count.toInt();
    t.remainderOption = option.isNull() ? 0 : option.toInt();
    t.farsiBeginDate = begin;
    t.farsiEndDate = end;
    terms_ = t;
    termsLoanText_ = QString::number(loanId);
    loanCaption_ =
        (code.isEmpty() ? T::TemporaryLoan : code) + (type.isEmpty() ? QString() : u" - "_s + type);
    return true;
}

void FormHRException::ViewPRSBalance(qint32 employeeId) {
    const QString loanText = LatinDigits(txtPaidID->text().trimmed());
    bool ok = false;
    const qint32 loanId = loanText.toInt(&ok);
    if (!ok || !ViewPRSLoansInfo(loanId)) {
        if (ok) {
            terms_.reset();
            showBalanceProblem(T::LoanNotFound.arg(loanText));
        } else {
            showBalanceProblem(T::NoLoan);
        }
        return;
    }
    FillPRSBalance(employeeId);
}

void FormHRException::FillPRSBalance(qint32 employeeId) {
    schedule_ = schedule::Schedule();
    chrBalance->setChart(std::nullopt);
    balanceTopRow_ = 0;
    memberCaption_.clear();
    FlexBalance->setRows(1);
    for (const char* name : {"lblPaidSoFar", "lblDebt", "lblLastMonth"})
        setInfo(QString::fromLatin1(name), QString());
    if (!terms_) return showBalanceProblem(T::NoLoan);
    if (employeeId == -1) return showBalanceProblem(T::NoMember);
    const qint32 loanId = termsLoanText_.toInt();

    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(adjustment_sql::MemberLoanRows(loanId, employeeId));
    if (rs.EOF_()) return showBalanceProblem(T::NotAMember);
    const QString code = FieldText(rs.Fields(u"EmployeeCode"_s));
    const QString name =
        rs.HasField(u"EmployeeName"_s) ? FieldText(rs.Fields(u"EmployeeName"_s)) : QString();
    memberCaption_ = code.isEmpty() ? name : code + u" - "_s + name;
    rs.Close();

    const schedule::MemberInputs in = schedule::ReadMemberInputs(
        module_.DtEn().cnt(), module_.session.PayslipColumns, loanId, employeeId);
    schedule_ = schedule::Compute(*terms_, in.adjustments, in.payslips);
    chrBalance->setChart(
        schedule::ChartOf(*terms_, schedule_, schedule::Compute(*terms_, in.adjustments, {})));
    // Without the payslip columns the schedule is the plan alone, and says so.
    showBalanceProblem(QStringList{
        schedule_.problem,
        in.payslipsKnown ? QString()
                         : schedule::PayslipColumnsMissingText(module_.session.PayslipColumns)}
                           .join(u' ')
                           .trimmed());
    if (schedule_.rows.isEmpty()) {
        if (schedule_.problem.isEmpty()) {
            setInfo(u"lblPaidSoFar"_s, schedule::AmountText(Currency()));
            setInfo(u"lblDebt"_s, schedule::AmountText(schedule_.balance));
        }
        return;
    }

    FlexBalance->setRedraw(false);
    const int n = int(schedule_.rows.size());
    FlexBalance->setRows(n + 2);
    // The cells the CSV and the PDF show too, after the row number.
    const auto put = [this](int row, const QStringList& cells) {
        for (int c = 0; c < cells.size(); ++c) FlexBalance->setTextMatrix(row, c + 1, cells[c]);
    };
    for (int i = 0; i < n; ++i) {
        FlexBalance->setTextMatrix(i + 1, 0, QString::number(i + 1));
        put(i + 1, schedule::RowCells(schedule_.rows[i], true));
    }
    put(n + 1, schedule::TotalCells(schedule_, true));
    FlexBalance->setRedraw(true);
    // The month after the last payslip is where the clerk's interest lies: it becomes the
    // current row and the grid opens a little above it.
    int next = n;
    while (next > 0 && !schedule_.rows[next - 1].deducted) --next;
    balanceTopRow_ = qMin(next + 1, n);
    FlexBalance->setRow(balanceTopRow_);
    scrollBalance();

    setInfo(u"lblPaidSoFar"_s, schedule::AmountText(schedule_.totalDeducted));
    setInfo(u"lblDebt"_s, schedule::AmountText(terms_->loanValue - schedule_.totalDeducted));
    if (schedule_.problem.isEmpty()) setInfo(u"lblLastMonth"_s, schedule_.rows.last().month);
}

// ---- Commands ----

void FormHRException::cmdNew_Click() {
    lblMessage->setText(module_.session.SessionTitle + T::StatusNewSuffix);
    ShowFormToInsert();
}

void FormHRException::cmdEdit_Click() {
    QString amount = LatinDigits(TxtPerMonth->text().trimmed());
    amount.remove(u'/');
    TxtPerMonth->setText(!amount.isEmpty() && vb::IsNumeric(amount) ? GroupDigits(amount)
                                                                    : QString());
    module_.session.LoanFormMode = ModeEdit;
    DisableLockComponent();
    lblMessage->setText(T::StatusEditPrefix + module_.session.SessionTitle);
    module_.session.LoanEditStarted = 1;
}

void FormHRException::cmdDelete_Click() {
    Session& s = module_.session;
    lblMessage->setText(T::StatusDeletePrefix + s.SessionTitle);
    if (module_.AskQuestion(T::DeleteTitlePrefix + s.SessionTitle, T::AreYouSure) != 6) return;
    if (!txtID->text().trimmed().isEmpty()) {
        Connection& cnt = module_.DtEn().cnt();
        const qint32 id = idOf(txtID);
        history::Recorder record(cnt, history::Command::AdjustmentDelete, history::ActorOf(s));
        WriteTransaction tx(cnt, kLockName);
        record.Before(-1, id);
        cnt.Execute(adjustment_sql::DeleteAdjustment(cnt.Dialect(), id, gmpEmployee->Value()));
        record.After(-1, id);
        tx.Commit();
        // The record is gone: nothing may reload or delete it again.
        txtID->clear();
        s.LoanFormMode = ModeEmpty;
        DisableLockComponent();
    }
    Clear();
    s.LoanFormMode = ModeEmpty;
    DisableLockComponent();
    cmdExit->setFocus();
    refreshBalance();
}

void FormHRException::cmdSave_Click() {
    if (!controls::SelectorsNameEmployees(module_, {{gmpEmployee, T::LabelEmployee}})) return;
    Session& s = module_.session;
    BusyPointer busy;
    lblMessage->clear();  // 1
    QWidget* focus = nullptr;
    if (module_.port<LoanEditorPort>().StateValue() == 1) {  // 2
        if (!saveChecksPass()) return;                       // 3-5
        std::optional<Currency> debit;                       // 6
        if (!readMonthlyDebit(debit)) return;
        const bool noBegin = gdcBalancePF->IsEmpty(), noEnd = gdcBalancePT->IsEmpty();
        const QDate empty(1900, 1, 1);
        const QDate beginDate = noBegin ? empty : gdcBalancePF->englishdate();
        const QString farsiBegin = noBegin ? u""_s : gdcBalancePF->farsidate();
        const QDate endDate = noEnd ? empty : gdcBalancePT->englishdate();
        const QString farsiEnd = noEnd ? u""_s : gdcBalancePT->farsidate();
        const double monthlyDebit = debit ? debit->toDouble() : -1.0;
        const qint32 loanId = idOf(txtPaidID);
        const qint32 employeeId = gmpEmployee->Value();

        DataEnvironment& dtEn = module_.DtEn();
        const bool edit = s.LoanFormMode == ModeEdit;
        history::Recorder record(
            dtEn.cnt(), edit ? history::Command::AdjustmentEdit : history::Command::AdjustmentNew,
            history::ActorOf(s));
        WriteTransaction tx(dtEn.cnt(), kLockName);
        if (edit) {  // 7
            const qint32 id = idOf(txtID);
            record.Before(loanId, id);
            dtEn.spHRLoanExceptionUpdate(id, loanId, employeeId, beginDate, farsiBegin, endDate,
                                         farsiEnd, monthlyDebit);
            record.After(loanId, id);
            tx.Commit();
            focus = cmdExit;
        } else {  // 8
            record.Before(loanId);
            const int id = dtEn.spHRLoanExceptionNew(loanId, employeeId, monthlyDebit, beginDate,
                                                     farsiBegin, endDate, farsiEnd);
            record.After(loanId, id);
            tx.Commit();
            txtID->setText(QString::number(id));
            focus = cmdNew;
        }
    }
    s.LoanFormMode = ModeView;  // 9
    DisableLockComponent();
    s.LoanEditStarted = 0;
    if (focus) focus->setFocus();
    refreshBalance();
}

bool FormHRException::saveChecksPass() {
    if (gdcBalancePF->IsEmpty() || gdcBalancePT->IsEmpty()) return true;  // kept as it was
    const QString from = gdcBalancePF->farsidate(), to = gdcBalancePT->farsidate();
    if (from > to) {
        warn(T::WarnReversedPeriod);
        return false;
    }
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(adjustment_sql::MemberLoanRows(idOf(txtPaidID), gmpEmployee->Value()));
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        if (!(from >= FieldText(rs.Fields(u"FarsiBeginDate"_s)) &&
              to <= FieldText(rs.Fields(u"FarsiEndDate"_s)))) {
            warn(T::WarnPeriodOutsideLoan);
            return false;
        }
        std::optional<Currency> debit;
        if (!readMonthlyDebit(debit)) return false;
        const Currency amount = loanAmount(rs);
        if (debit.value_or(Currency::fromRaw(-Currency::Scale)) > amount) {
            warn(T::WarnInstalmentAboveAmount);
            TxtPerMonth->clear();
            TxtPerMonth->setFocus();
            return false;
        }
    }
    return true;
}

bool FormHRException::readMonthlyDebit(std::optional<Currency>& debit) {
    const QString typed = TxtPerMonth->text().trimmed();
    debit.reset();
    if (typed.isEmpty()) return true;
    QString plain = LatinDigits(typed);
    plain.remove(u'/');
    plain.remove(u',');
    plain.remove(QChar(0x066C));  // the Arabic thousands separator
    const bool digitsOnly =
        !plain.isEmpty() &&
        std::all_of(plain.begin(), plain.end(), [](QChar c) { return c.isDigit() || c == u'.'; });
    if (!digitsOnly || plain.count(u'.') > 1 || !vb::IsNumeric(plain)) {
        warn(T::WarnDebitNotAmount.arg(typed));
        TxtPerMonth->setFocus();
        return false;
    }
    try {
        debit = vb::CCur(plain);
    } catch (const KavError& e) {
        if (e.kind() != KavError::Kind::Overflow) throw;
        warn(AmountBeyondRangeText(typed, T::BoxPerMonth));
        TxtPerMonth->setFocus();
        return false;
    }
    return true;
}

Currency FormHRException::loanAmount(const Recordset& memberRow) {
    // The editor's amount box while the window shows the editor's loan; the loan's stored
    // amount for an adjustment of another loan opened from the list.
    if (LatinDigits(txtPaidID->text().trimmed()) == LatinDigits(editorLoanText.trimmed()))
        return vb::CCur(AmountValue(module_.port<LoanEditorPort>().LoanValueText()));
    return schedule::AmountOf(memberRow.Fields(u"LoanValue"_s)).value_or(Currency());
}

void FormHRException::cmdCancel_Click() {
    Session& s = module_.session;
    if (module_.AskQuestion(T::CancelTitlePrefix + s.SessionTitle, T::AreYouSure) != 6) return;
    BusyPointer busy;
    lblMessage->clear();
    if (!txtID->text().trimmed().isEmpty()) {
        reloadStored();
        s.LoanFormMode = ModeView;
    } else {
        Clear();
        s.LoanFormMode = ModeEmpty;
    }
    DisableLockComponent();
    s.LoanEditStarted = 0;
    cmdNew->setFocus();
    refreshBalance();
}

void FormHRException::cmdList_Click() {
    Session& s = module_.session;
    if (s.LoanFormMode == ModeNew) {
        s.LoanEditStarted = 1;
    } else if (s.LoanFormMode == ModeEdit) {
        // An adjustment being edited stays so: the list opens nothing over it.
        s.LoanEditStarted = 1;
    } else {
        bool hasCurrentRow = false;
        if (module_.HasWindow<FormList>()) {
            const FlexGrid* grid = module_.Window<FormList>().FlexEmployee;
            hasCurrentRow = grid->Rows() >= 2 && grid->Row() >= 1;
        }
        s.LoanEditStarted = hasCurrentRow ? 2 : 0;
    }
    ShowShared<FormList>(module_);
}

void FormHRException::cmdExit_Click() { close(); }

void FormHRException::Timer1_Timer() {
    if (module_.session.LoanFormMode != ModeNew) return;
    cmdSave->setEnabled(gmpEmployee->Value() != -1 && !gdcBalancePF->IsEmpty() &&
                        !gdcBalancePT->IsEmpty() && !TxtPerMonth->text().trimmed().isEmpty());
}

void FormHRException::gmpEmployee_Changed() {
    FillPRSBalance(gmpEmployee->Value());
    // Text that names no employee is said so, not taken for an empty box.
    if (gmpEmployee->State() == controls::SelectorState::Unresolved)
        showBalanceProblem(gmpEmployee->UnresolvedMessage(T::LabelEmployee));
}

// ---- The schedule's exports ----

QString FormHRException::exportBaseName() const {
    // The loan by its number (a temporary one by its id) and the member by his code.
    const auto* code = findChild<QLabel*>(u"lblLoanCode"_s);
    const QString number = code && !code->text().trimmed().isEmpty()
                               ? T::FileLoanNumber.arg(code->text().trimmed())
                               : T::FileTemporaryLoan.arg(termsLoanText_);
    return ProposedFileName(
        {T::FileSchedule, number, memberCaption_.section(u" - "_s, 0, 0).trimmed()});
}

QStringList FormHRException::ScheduleFacts() const {
    const auto info = [this](const char* name) {
        const auto* l = findChild<QLabel*>(QString::fromLatin1(name));
        return l ? l->text() : QString();
    };
    return {
        T::FactLoan + loanCaption_, T::FactMember + memberCaption_,
        T::FactTerms.arg(info("lblLoanValue"), info("lblMonthlyValue"), info("lblPayBackNumber")),
        T::FactDates.arg(info("lblBeginDate"), info("lblEndDate")),
        T::FactBalance.arg(info("lblPaidSoFar"), info("lblDebt"))};
}

void FormHRException::cmdExportCsv_Click() {
    if (schedule_.rows.isEmpty()) return module_.ShowMessage(WarningTitle(), T::NothingToExport);
    const QString path = AskSaveFile(module_, this, T::ExportCaption, exportBaseName(), u"csv"_s);
    if (path.isEmpty()) return;
    SaveCsv(path, schedule::CsvRows(schedule_));
}

void FormHRException::cmdExportPdf_Click() {
    if (schedule_.rows.isEmpty()) return module_.ShowMessage(WarningTitle(), T::NothingToExport);
    const QString path = AskSaveFile(module_, this, T::ExportCaption, exportBaseName(), u"pdf"_s);
    if (path.isEmpty()) return;
    BusyPointer busy;
    SaveDocumentPdf(module_, path, ScheduleDocument());
}

PagedDocument FormHRException::ScheduleDocument() const {
    return schedule::Document(T::ExportTitle, ScheduleFacts(), schedule_, chrBalance->chart());
}

void FormHRException::cmdPrint_Click() {
    if (schedule_.rows.isEmpty()) return module_.ShowMessage(WarningTitle(), T::NothingToExport);
    PrintDocument(module_, this, ScheduleDocument());
}

// ---- Helpers ----

void FormHRException::setInfo(const QString& name, const QString& text) {
    if (auto* l = findChild<QLabel*>(name)) l->setText(text);
}

void FormHRException::warn(const QString& text) { module_.ShowMessage(WarningTitle(), text); }

void FormHRException::fillFromStored(const Recordset& rs) {
    gmpEmployee->setValue(rs.Fields(u"EmployeeID"_s).toInt());
    gdcBalancePF->setFarsidate(FieldText(rs.Fields(u"FarsiBeginDate"_s)));
    gdcBalancePT->setFarsidate(FieldText(rs.Fields(u"FarsiEndDate"_s)));
    // An empty monthly debit is stored as -1 and shown empty again.
    const std::optional<Currency> debit = schedule::AmountOf(rs.Fields(u"MonthlyDebit"_s));
    TxtPerMonth->setText(
        !debit || *debit == Currency::fromRaw(-Currency::Scale) ? QString() : debit->toString());
}

void FormHRException::reloadStored() {
    Recordset rs = module_.DtEn().NewRecordset();
    rs.Open(adjustment_sql::StoredAdjustment(idOf(txtID)));
    if (!rs.EOF_()) fillFromStored(rs);
    rs.Close();
}

void FormHRException::refreshBalance() {
    if (terms_ && termsLoanText_ == LatinDigits(txtPaidID->text().trimmed()))
        FillPRSBalance(gmpEmployee->Value());
    else
        ViewPRSBalance(gmpEmployee->Value());
}

void FormHRException::showBalanceProblem(const QString& text) {
    lblBalanceProblem->setText(text);
    lblBalanceProblem->setVisible(!text.isEmpty());
    const bool rows = !schedule_.rows.isEmpty();
    cmdExportCsv->setEnabled(rows);
    cmdExportPdf->setEnabled(rows);
    cmdPrint->setEnabled(rows);
}

}  // namespace kav
