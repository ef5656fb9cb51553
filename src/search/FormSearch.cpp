#include "search/FormSearch.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <limits>
#include <tuple>
#include <type_traits>

#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "controls/GridDocument.h"
#include "controls/VarekDate.h"
#include "controls/VarekSelector.h"
#include "search/SearchGrid.h"
#include "search/SearchSql.h"
#include "search/SearchTexts.h"
#include "session/CommandKeys.h"
#include "session/Csv.h"
#include "session/FileDialog.h"
#include "session/Module.h"
#include "session/Printing.h"
#include "session/TextProcs.h"
#include "session/Ui.h"
#include "session/WindowPorts.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace T = search_texts;
using controls::FlexGrid;
using controls::VarekDate;
using controls::VarekSelector;

namespace {}  // namespace

FormSearch::FormSearch(Module& module, QWidget* parent)
    : ModuleWindow(module, parent), module_(module) {
    setObjectName(u"FormSearch"_s);
    buildControls();
    connectHandlers();
    Form_Load();
}

FormSearch::~FormSearch() {
    for (QLineEdit* box : {txtLoanValueF, txtLoanValueTo, TxtPerMonthF, TxtPerMonthTo})
        box->removeEventFilter(this);
    cmbLoanType->removeEventFilter(this);
}

void FormSearch::buildControls() {
    ApplyPersianStyle(this);

    auto label = [this](const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    auto amountBox = [this](const QString& name) {
        auto* box = Named(new QLineEdit(this), name);
        box->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
        box->setMinimumWidth(130);
        return box;
    };
    auto dateBox = [this](const QString& name) { return Named(new VarekDate(this), name); };

    cmbLoanType = Named(new QComboBox(this), u"cmbLoanType"_s);
    txtLoanValueF = amountBox(u"txtLoanValueF"_s);
    txtLoanValueTo = amountBox(u"txtLoanValueTo"_s);
    TxtPerMonthF = amountBox(u"TxtPerMonthF"_s);
    TxtPerMonthTo = amountBox(u"TxtPerMonthTo"_s);
    datPaymentDatef = dateBox(u"datPaymentDatef"_s);
    datPaymentDateTo = dateBox(u"datPaymentDateTo"_s);
    datBeginDatef = dateBox(u"datBeginDatef"_s);
    datBeginDateTo = dateBox(u"datBeginDateTo"_s);
    datEndDatef = dateBox(u"datEndDatef"_s);
    datEndDateTo = dateBox(u"datEndDateTo"_s);
    sltEmployee = Named(new VarekSelector(this), u"sltEmployee"_s);
    sltSupporter = Named(new VarekSelector(this), u"sltSupporter"_s);
    txtNotes = Named(new QLineEdit(this), u"txtNotes"_s);
    chkTempSave = Named(new QCheckBox(T::CaptionTempSave, this), u"chkTempSave"_s);
    chkFinalSave = Named(new QCheckBox(T::CaptionFinalSave, this), u"chkFinalSave"_s);

    // The criteria: amounts and dates as from/to pairs on the right, the people, the notes
    // and the status on the left. The block stays centred as the window grows.
    auto* criteria = Named(new QGroupBox(this), u"Frame1"_s);
    auto* grid = new QGridLayout(criteria);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(6);
    auto pair = [&](int row, int at, const QString& caption, QWidget* from, QWidget* to) {
        grid->addWidget(label(caption, from), row, at);
        grid->addWidget(from, row, at + 1);
        grid->addWidget(label(T::LabelTo, to), row, at + 2);
        grid->addWidget(to, row, at + 3);
    };
    auto single = [&](int row, int at, const QString& caption, QWidget* box) {
        grid->addWidget(label(caption, box), row, at);
        grid->addWidget(box, row, at + 1, 1, 3);
    };
    single(0, 0, T::LabelLoanType, cmbLoanType);
    pair(1, 0, T::LabelLoanValue, txtLoanValueF, txtLoanValueTo);
    pair(2, 0, T::LabelPerMonth, TxtPerMonthF, TxtPerMonthTo);
    pair(3, 0, T::LabelPaymentDate, datPaymentDatef, datPaymentDateTo);
    pair(4, 0, T::LabelBeginDate, datBeginDatef, datBeginDateTo);
    pair(5, 0, T::LabelEndDate, datEndDatef, datEndDateTo);
    grid->setColumnMinimumWidth(4, 24);
    single(0, 5, T::LabelEmployee, sltEmployee);
    single(1, 5, T::LabelSupporter, sltSupporter);
    single(2, 5, T::LabelNotes, txtNotes);
    auto* status = new QHBoxLayout;
    status->addWidget(chkTempSave);
    status->addWidget(chkFinalSave);
    status->addStretch(1);
    grid->addLayout(status, 3, 6, 1, 3);
    for (int c : {1, 3}) grid->setColumnStretch(c, 1);
    grid->setColumnStretch(6, 2);
    sltEmployee->setMinimumWidth(300);

    auto button = [this](const QString& caption, const QString& name) {
        auto* b = Named(new QPushButton(caption, this), name);
        b->setAutoDefault(false);
        b->setMinimumWidth(110);
        return b;
    };
    cmdSearch = button(T::CaptionSearch, u"cmdSearch"_s);
    cmdNewSearch = button(T::CaptionNewSearch, u"cmdNewSearch"_s);
    cmdExport = button(T::CaptionExport, u"cmdExport"_s);
    cmdExit = button(T::CaptionExit, u"cmdExit"_s);
    auto* commands = new QHBoxLayout;
    for (QPushButton* b : {cmdSearch, cmdNewSearch, cmdExport}) commands->addWidget(b);
    commands->addWidget(cmdPrint = button(T::CaptionPrint, u"cmdPrint"_s));
    commands->addStretch(1);
    commands->addWidget(cmdExit);

    Flexsearchresult = Named(new FlexGrid(this), u"Flexsearchresult"_s);
    Flexsearchresult->setMinimumHeight(200);
    lblStatus = Named(new QLabel(this), u"lblStatus"_s);

    auto* centred = new QHBoxLayout;
    centred->addStretch(1);
    centred->addWidget(criteria);
    centred->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(centred);
    layout->addLayout(commands);
    layout->addWidget(Flexsearchresult, 1);
    layout->addWidget(lblStatus);
    resize(1200, 660);
}

void FormSearch::connectHandlers() {
    connect(cmdSearch, &QPushButton::clicked, this, Guarded(&FormSearch::cmdSearch_Click));
    connect(cmdNewSearch, &QPushButton::clicked, this, Guarded(&FormSearch::cmdNewSearch_Click));
    connect(cmdExport, &QPushButton::clicked, this, Guarded(&FormSearch::cmdExport_Click));
    connect(cmdPrint, &QPushButton::clicked, this, Guarded(&FormSearch::cmdPrint_Click));
    connect(cmdExit, &QPushButton::clicked, this, Guarded(&FormSearch::cmdExit_Click));
    using keys::Command;
    keys::Bind(*this, {{Command::Search, cmdSearch},
                       {Command::New, cmdNewSearch},
                       {Command::Export, cmdExport},
                       {Command::Print, cmdPrint}});
    connect(Flexsearchresult, &FlexGrid::Click, this, Guarded(&FormSearch::Flexsearchresult_Click));
    connect(Flexsearchresult, &FlexGrid::DblClick, this,
            Guarded(&FormSearch::Flexsearchresult_DblClick));
    connect(Flexsearchresult, &FlexGrid::KeyPress, this, [this](int& key) {
        if (!Guard([&] { Flexsearchresult_KeyPress(key); })) key = 0;
    });
    const std::tuple<VarekDate*, VarekDate*, QString> pairs[] = {
        {datPaymentDatef, datPaymentDateTo, T::PairPaymentDate},
        {datBeginDatef, datBeginDateTo, T::PairBeginDate},
        {datEndDatef, datEndDateTo, T::PairEndDate}};
    for (const auto& [from, to, name] : pairs) {
        for (VarekDate* box : {from, to})
            connect(box, &VarekDate::DateChanged, this, [this, from = from, to = to, name = name] {
                Guard([&] { linkDates(from, to, name); });
            });
    }
    for (QLineEdit* box : {txtLoanValueF, txtLoanValueTo, TxtPerMonthF, TxtPerMonthTo})
        box->installEventFilter(this);
    cmbLoanType->installEventFilter(this);
}

// ---- Loading ----

void FormSearch::Form_Load() {
    for (VarekSelector* s : {sltEmployee, sltSupporter}) {
        s->setConnection(&module_.DtEn().cnt());
        s->setConnectionString(module_.session.SessionConnectionString);
        s->setMajorView(u"vwEmployeeMajor"_s);
        s->setMinorView(u"vwEmployeeMinor"_s);
        s->Initialize();
    }
    InitializeComponents();
    Clear();
    // Both kinds of loans are searched until the clerk says otherwise.
    chkTempSave->setChecked(true);
    chkFinalSave->setChecked(true);
}

void FormSearch::InitializeComponents() {
    setWindowTitle(T::CaptionPrefix + module_.session.SessionSearchTitle);
    cmdSearch->setEnabled(true);
    cmdExit->setEnabled(true);
    search::InitializeGrid(*Flexsearchresult);
    updateExport();

    Recordset& rs = module_.DtEn().rs();
    rs.Open(search::LoanTypesQuery());
    cmbLoanType->clear();
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
        cmbLoanType->addItem(rs.Fields(u"Name"_s).toString(), rs.Fields(u"ID"_s));
    rs.Close();
}

void FormSearch::Clear() {
    cmbLoanType->setCurrentIndex(-1);
    for (VarekDate* d : {datPaymentDatef, datPaymentDateTo, datBeginDatef, datBeginDateTo,
                         datEndDatef, datEndDateTo})
        d->Clear();
    sltEmployee->Clear();
    sltSupporter->Clear();
    for (QLineEdit* box : {txtLoanValueF, txtLoanValueTo, TxtPerMonthF, TxtPerMonthTo, txtNotes})
        box->setText(QString());
}

void FormSearch::showEvent(QShowEvent* event) {
    ModuleWindow::showEvent(event);
    // The host may have changed the module's title since the window was made.
    setWindowTitle(T::CaptionPrefix + module_.session.SessionSearchTitle);
}

// ---- Searching ----

search::SearchCriteria FormSearch::Criteria() const {
    search::SearchCriteria c;
    c.tempSave = chkTempSave->isChecked();
    c.finalSave = chkFinalSave->isChecked();
    c.notes = txtNotes->text();
    c.loanValueFrom = txtLoanValueF->text();
    c.loanValueTo = txtLoanValueTo->text();
    if (cmbLoanType->currentIndex() >= 0) c.loanTypeId = cmbLoanType->currentData().toLongLong();
    c.employeeId = sltEmployee->Value();
    c.supporterId = sltSupporter->Value();
    c.paymentDateFrom = datPaymentDatef->farsidate();
    c.paymentDateTo = datPaymentDateTo->farsidate();
    c.beginDateFrom = datBeginDatef->farsidate();
    c.beginDateTo = datBeginDateTo->farsidate();
    c.endDateFrom = datEndDatef->farsidate();
    c.endDateTo = datEndDateTo->farsidate();
    c.perMonthFrom = TxtPerMonthF->text();
    c.perMonthTo = TxtPerMonthTo->text();
    return c;
}

void FormSearch::cmdSearch_Click() { RefreshFlexSearchResult(); }

void FormSearch::RefreshFlexSearchResult() {
    // A selector's text that names no single employee is no criterion to drop.
    if (!controls::SelectorsNameEmployees(
            module_, {{sltEmployee, T::LabelEmployee}, {sltSupporter, T::LabelSupporter}}))
        return;
    Connection& cnt = module_.DtEn().cnt();
    // A bound that is not a number stops here: nothing runs and the grid stays as it was.
    const QString sql = search::SearchQuery(cnt.Dialect(), Criteria());
    int found = 0;
    {
        BusyPointer busy;
        Recordset& rs = module_.DtEn().rs();
        if (rs.IsOpen()) rs.Close();
        lblStatus->clear();
        try {
            found = search::FillSearchGrid(cnt, sql, *Flexsearchresult);
        } catch (...) {
            updateExport();
            throw;
        }
    }
    lblStatus->setText(found > 0 ? T::StatusFound.arg(found) : T::NotFound);
    updateExport();
    if (found == 0) module_.ShowMessage(T::InfoTitle, T::NotFound);
    if (module_.session.LoanEditStarted != 2) Flexsearchresult->SetFocus();
    Flexsearchresult->setCol(1);
    Flexsearchresult->setColSel(Flexsearchresult->Cols() - 1);
}

void FormSearch::cmdNewSearch_Click() {
    Clear();
    cmdSearch->setEnabled(true);
    for (QWidget* w : std::initializer_list<QWidget*>{
             sltEmployee, sltSupporter, cmbLoanType, datPaymentDatef, datPaymentDateTo,
             datBeginDatef, datBeginDateTo, datEndDatef, datEndDateTo})
        w->setEnabled(true);
}

void FormSearch::cmdExit_Click() { close(); }

void FormSearch::linkDates(VarekDate* from, VarekDate* to, const QString& pairName) {
    // Equal dates clear the to-date too; the status line says why it went.
    const QString fromDate = from->farsidate(), toDate = to->farsidate();
    if (!search::ClearsToDate(fromDate, toDate)) return;
    to->Clear();
    lblStatus->setText(T::StatusToDateCleared.arg(pairName, toDate, fromDate));
}

// ---- The results ----

void FormSearch::DoSort(int column) {
    // The orders live with the module, so a search window opened again sorts on from them.
    auto& orders = module_.session.SearchSortOrder;
    static_assert(std::tuple_size_v<std::decay_t<decltype(orders)>> == search::SortSlots);
    const int last = column >= 0 && column < search::SortSlots ? orders[std::size_t(column)] : 0;
    const int code = search::NextSortCode(column, last);
    FlexGrid& grid = *Flexsearchresult;
    if (search::IsNumericSortColumn(column)) {
        for (int r = 1; r < grid.Rows(); ++r) {
            const QString text = grid.TextMatrix(r, column);
            if (text.contains(u'/')) grid.setTextMatrix(r, column, QString(text).remove(u'/'));
        }
    }
    grid.setCol(column);
    grid.Sort(code);
    orders[std::size_t(column)] = qint16(code);
}

void FormSearch::Flexsearchresult_Click() {
    FlexGrid& grid = *Flexsearchresult;
    if (grid.MouseRow() == 0 && grid.MouseCol() >= 0 && grid.MouseCol() < grid.Cols() &&
        grid.Rows() >= 2)
        DoSort(grid.MouseCol());
}

void FormSearch::Flexsearchresult_DblClick() {
    // A double-click on the header sorts (its first click did); it opens nothing.
    if (Flexsearchresult->MouseRow() == 0) return;
    openResult();
}

void FormSearch::Flexsearchresult_KeyPress(int& keyAscii) {
    if (keyAscii != 13) return;
    keyAscii = 0;  // Enter in the grid opens, it never starts a search
    openResult();
}

void FormSearch::openResult() {
    if (module_.session.LoanEditStarted == 1) return;
    FlexGrid& grid = *Flexsearchresult;
    if (grid.Rows() < 2 || grid.Row() < 1) return;
    const QString idText = grid.TextMatrix(grid.Row(), search::ColId);
    bool ok = false;
    const qlonglong id = LatinDigits(idText).trimmed().toLongLong(&ok);
    if (!ok || id < std::numeric_limits<qint32>::min() || id > std::numeric_limits<qint32>::max())
        throw KavError(KavError::Kind::TypeMismatch, T::BadLoanId.arg(idText));
    LoanEditorPort& editor = module_.port<LoanEditorPort>();
    hide();  // ends the editor's wait on this window; the window stays loaded
    editor.SetLoanIdText(QString::number(id));
    editor.ViewPRSLoansInfo(qint32(id));
    // Columns 1 to 10 of the row stay selected; a double-click's own handling in the grid
    // (which moves the current cell to the clicked one) comes first.
    QMetaObject::invokeMethod(
        this,
        [this] {
            Flexsearchresult->setCol(1);
            Flexsearchresult->setColSel(10);
        },
        Qt::QueuedConnection);
}

void FormSearch::updateExport() {
    cmdExport->setEnabled(Flexsearchresult->Rows() > 1);
    cmdPrint->setEnabled(Flexsearchresult->Rows() > 1);
}

void FormSearch::cmdPrint_Click() {
    if (Flexsearchresult->Rows() < 2) return;
    PrintDocument(
        module_, this,
        TablePages(controls::GridDocument(*Flexsearchresult, windowTitle(),
                                          {T::StatusFound.arg(Flexsearchresult->Rows() - 1)})));
}

void FormSearch::cmdExport_Click() {
    if (Flexsearchresult->Rows() < 2) return;
    const QString path = AskSaveFile(module_, this, T::ExportDialogTitle,
                                     ProposedFileName({T::ExportFileName}), u"csv"_s);
    if (path.isEmpty()) return;
    SaveCsv(path, search::CsvRows(*Flexsearchresult));
    // The path reads left to right inside the right-to-left line.
    const QString shownPath = QChar(0x2066) + QDir::toNativeSeparators(path) + QChar(0x2069);
    lblStatus->setText(T::StatusSaved.arg(Flexsearchresult->Rows() - 1).arg(shownPath));
}

// ---- Keys ----

bool FormSearch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return ModuleWindow::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == cmbLoanType) {
        if (KeyCodeOf(*key) == 46) {  // Delete: no type
            cmbLoanType->setCurrentIndex(-1);
            return true;
        }
        return false;
    }
    // The amount boxes take digits, the point and backspace; Enter and Escape go on to the
    // window, keys that type nothing (arrows, shortcuts) to the box.
    const int ascii = KeyAsciiOf(*key);
    if (ascii == 0 || ascii == 8 || ascii == 13 || ascii == 27 || ascii == u'.' ||
        (ascii >= u'0' && ascii <= u'9'))
        return false;
    return true;
}

void FormSearch::keyPressEvent(QKeyEvent* event) {
    if (PressFocusedButton(*event)) return;  // Enter on Exit exits, it does not search
    if (KeyCodeOf(*event) == 13) {
        // Enter in the criteria searches, as the search button does.
        if (cmdSearch->isEnabled()) Guard([this] { cmdSearch_Click(); });
        event->accept();
        return;
    }
    ModuleWindow::keyPressEvent(event);  // Escape: reject()
}

void FormSearch::reject() {
    // Escape acts as the exit button, and only while that is enabled.
    if (cmdExit->isEnabled()) Guard([this] { cmdExit_Click(); });
}

}  // namespace kav
