#include "host/kavHRLoan1.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSqlDatabase>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <optional>

#include "base/Errors.h"
#include "controls/FlexGrid.h"
#include "data/ConnectionString.h"
#include "data/LoanDatabaseCheck.h"
#include "host/ModuleAssembly.h"
#include "host/PropertyBag.h"
#include "loan_editor/FormHRLoan.h"
#include "loan_editor/LoanEditorTexts.h"
#include "session/LockWaitNotice.h"
#include "session/Module.h"
#include "session/Ui.h"
#include "session/Vb.h"
#include "session/WindowSupport.h"

using namespace Qt::StringLiterals;

namespace kav {

namespace {
// The image index of a position-tree node.
constexpr int ImageRole = Qt::UserRole + 1;
}  // namespace

kavHRLoan1::kavHRLoan1(QWidget* parent) : kavHRLoan1(std::make_shared<Module>(), parent) {}

kavHRLoan1::kavHRLoan1(std::shared_ptr<Module> module, QWidget* parent)
    : QWidget(parent), module_(std::move(module)) {
    ProvideWindows(*module_);
    InitProperties();
    buildBench();
}

kavHRLoan1::~kavHRLoan1() = default;

// ---- Properties ----

void kavHRLoan1::setUserID(qint16 value) {
    userID_ = value;
    emit propertyChanged(u"UserID"_s);
}
void kavHRLoan1::setPositionID(qint16 value) {
    positionID_ = value;
    emit propertyChanged(u"PositionID"_s);
}
void kavHRLoan1::setOLEConnectionstring(const QString& value) {
    connectionString_ = value;
    emit propertyChanged(u"OLEConnectionstring"_s);
}
void kavHRLoan1::setEmployeeID(qint16 value) {
    employeeID_ = value;
    emit propertyChanged(u"EmployeeID"_s);
}
void kavHRLoan1::setPRSEmployeeID(qint32 value) {
    prsEmployeeID_ = value;
    emit propertyChanged(u"PRSEmployeeID"_s);
}
void kavHRLoan1::setCaption(const QString& value) {
    caption_ = value;
    emit propertyChanged(u"Caption"_s);
}
void kavHRLoan1::setModeWithChilds(qint16 value) {
    modeWithChilds_ = value;
    emit propertyChanged(u"ModeWithChilds"_s);
}

void kavHRLoan1::InitProperties() {
    userID_ = 0;
    positionID_ = 0;
    // The connection string starts as the text "0", not as an empty text.
    connectionString_ = u"0"_s;
    employeeID_ = 0;
    prsEmployeeID_ = 0;
    caption_.clear();
    modeWithChilds_ = 0;
}

// PRSEmployeeID is a per-call value: it is never read from or written to the bag.
void kavHRLoan1::ReadProperties(PropertyBag& bag) {
    unread_.clear();
    std::optional<KavError> refused;
    // A 16-bit property: a stored text or number, rounded as CInt rounds; anything else is
    // refused by name and the property keeps its initial value.
    auto int16 = [&](const QString& name, qint16& property) {
        const QVariant stored = bag.ReadProperty(name, 0);
        try {
            property = stored.typeId() == QMetaType::QString ? vb::CInt(stored.toString())
                                                             : vb::CInt(stored.toDouble());
        } catch (const KavError& e) {
            property = 0;
            unread_ << name;
            const QString why = e.kind() == KavError::Kind::Overflow
                                    ? u"خارج از محدوده عدد صحيح 16 بيتي (32768- تا 32767) است"_s
                                    : u"عدد نيست"_s;
            if (!refused)
                refused.emplace(e.kind(), u"مقدار ذخيره شده ويژگي %1 («%2») %3."_s.arg(
                                              name, stored.toString(), why));
        }
    };
    int16(u"UserID"_s, userID_);
    int16(u"PositionID"_s, positionID_);
    connectionString_ = bag.ReadProperty(u"OLEConnectionstring"_s, u"0"_s).toString();
    int16(u"EmployeeID"_s, employeeID_);
    caption_ = bag.ReadProperty(u"Caption"_s, QString()).toString();
    int16(u"ModeWithChilds"_s, modeWithChilds_);
    if (refused) throw *refused;
}

void kavHRLoan1::WriteProperties(PropertyBag& bag) const {
    bag.WriteProperty(u"UserID"_s, userID_, 0);
    bag.WriteProperty(u"PositionID"_s, positionID_, 0);
    bag.WriteProperty(u"OLEConnectionstring"_s, connectionString_, u"0"_s);
    bag.WriteProperty(u"EmployeeID"_s, employeeID_, 0);
    bag.WriteProperty(u"Caption"_s, caption_, QString());
    bag.WriteProperty(u"ModeWithChilds"_s, modeWithChilds_, 0);
}

// ---- Entry methods ----

void kavHRLoan1::copyPropertiesToSession() {
    Session& s = module_->session;
    s.SessionUserID = userID_;
    s.SessionPositionID = positionID_;
    s.SessionEmployeeID = employeeID_;
    s.SessionConnectionString = connectionString_;
    // The payslip table's column names, as the host application's settings give them.
    QSettings settings;
    s.PayslipColumns = data::PayslipColumns::FromSettings(settings);
}

// The database the session names is opened and must be the loan module's own before the
// module reads or writes anything in it.
void kavHRLoan1::openSessionDatabase() {
    module_->OpenSessionConnection();
    QSqlDatabase db = module_->DtEn().cnt().Database();
    data::CheckLoanDatabase(db, db.driverName() == u"QSQLITE" ? db.databaseName() : QString());
}

// What the entry methods raise reaches the host, which shows it: a password of the
// connection string that a driver echoed is not shown.
template <class F>
QVariant kavHRLoan1::passwordsMasked(F&& entry) {
    try {
        return entry();
    } catch (const KavError& e) {
        throw KavError(e.kind(), data::MaskPasswords(e.message(), connectionString_));
    }
}

QVariant kavHRLoan1::ClearShow() {
    return passwordsMasked([this]() -> QVariant {
        roleRefused_ = false;
        copyPropertiesToSession();
        LockWaitNotice notice(*module_);  // while the start waits for another client's lock
        openSessionDatabase();
        Session& s = module_->session;
        const QString title = caption_.trimmed().isEmpty() ? editor_texts::TitleEmpty : caption_;
        s.SessionTitle = title;
        s.SessionSearchTitle = title;
        s.LoanFormMode = prsEmployeeID_ <= 0 ? ModeEmpty : ModeNew;
        // The mode is applied before the role check; a refused user leaves the window loaded.
        module_->Window<FormHRLoan>().DisableLockComponent();
        if (!module_->HasPermission(PermissionOpenModule)) {
            roleRefused_ = true;
            notice.Dismiss();
            module_->ShowRoleRefusal();
            return {};
        }
        treePosition->setVisible(true);
        notice.Dismiss();
        ShowShared<FormHRLoan>(*module_);
        return {};
    });
}

QVariant kavHRLoan1::View(qint32& loanId) {
    return passwordsMasked([&]() -> QVariant {
        // No role check, the titles as an earlier ClearShow left them, PRSEmployeeID ignored,
        // and the loan loaded before the mode is applied.
        copyPropertiesToSession();
        LockWaitNotice notice(*module_);
        openSessionDatabase();
        FormHRLoan& editor = module_->Window<FormHRLoan>();
        // A loan that is not there opens no empty window in view mode.
        if (!editor.FillLoan(loanId))
            throw KavError(KavError::Kind::Usage,
                           u"وامي با شماره رايانه اي %1 در پايگاه داده نيست؛ پنجره وام باز نشد."_s
                               .arg(loanId));
        module_->session.LoanFormMode = ModeView;
        editor.DisableLockComponent();
        notice.Dismiss();
        ShowShared<FormHRLoan>(*module_);
        return {};
    });
}

QVariant kavHRLoan1::ViewTempDocs() { return {}; }

// ---- Test bench ----

QString kavHRLoan1::DeveloperConnectionString() {
    return u"Provider=SQLOLEDB.1;Integrated Security=SSPI;Password=;Persist Security Info=True;"
           "User ID=;Initial Catalog=KAVHR;Data Source=.;Use Procedure for Prepare=1;"
           "Auto Translate=False;Packet Size=4096;Workstation ID=KAVDEV"_s;
}

void kavHRLoan1::buildBench() {
    ApplyPersianStyle(this);
    Command1 = new QPushButton(u"ViewTempDocs"_s, this);
    Command2 = new QPushButton(u"OLE Connection Creator"_s, this);
    cmdClearShow = new QPushButton(u"ClearShow"_s, this);
    Frame1 = new QGroupBox(u"dteLoans"_s, this);
    TxtID = new QLineEdit(Frame1);
    TxtID->setObjectName(u"TxtID"_s);
    CmdView = new QPushButton(u"View"_s, Frame1);
    auto* viewRow = new QHBoxLayout(Frame1);
    viewRow->addWidget(TxtID);
    viewRow->addWidget(CmdView);

    auto* commands = new QGroupBox(this);
    auto* commandColumn = new QVBoxLayout(commands);
    commandColumn->addWidget(Command1);
    commandColumn->addWidget(Command2);
    commandColumn->addWidget(cmdClearShow);
    commandColumn->addStretch(1);

    auto* frames = new QVBoxLayout;
    frames->addWidget(commands);
    frames->addWidget(Frame1);
    frames->addStretch(1);

    // The tree, the grid and the progress bar are placed by hand in their area.
    benchArea_ = new QWidget(this);
    benchArea_->setMinimumSize(320, 240);
    treePosition = new QTreeWidget(benchArea_);
    treePosition->setHeaderHidden(true);
    FlexTempDocs = new controls::FlexGrid(benchArea_);
    Progress = new QProgressBar(benchArea_);
    Progress->setTextVisible(false);

    auto* layout = new QHBoxLayout(this);
    layout->addLayout(frames);
    layout->addWidget(benchArea_, 1);

    auto guarded = [this](void (kavHRLoan1::*f)()) {
        return [this, f] { RunHandler(*module_, [&] { (this->*f)(); }); };
    };
    connect(Command1, &QPushButton::clicked, this, guarded(&kavHRLoan1::Command1_Click));
    connect(Command2, &QPushButton::clicked, this, guarded(&kavHRLoan1::Command2_Click));
    connect(cmdClearShow, &QPushButton::clicked, this, guarded(&kavHRLoan1::cmdClearShow_Click));
    connect(CmdView, &QPushButton::clicked, this, guarded(&kavHRLoan1::CmdView_Click));
    connect(FlexTempDocs, &controls::FlexGrid::DblClick, this,
            guarded(&kavHRLoan1::FlexTempDocs_DblClick));
    connect(treePosition, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* n) { treePosition_Expand(n); });
    connect(treePosition, &QTreeWidget::itemCollapsed, this,
            [this](QTreeWidgetItem* n) { treePosition_Collapse(n); });
    resize(720, 420);
}

void kavHRLoan1::layoutBench() {
    const int w = benchArea_->width();
    const int h = benchArea_->height();
    // 50 twips off the width, as the bench has always been laid out.
    const int narrower = std::max(0, w - 50 / 15);
    const int ph = Progress->sizeHint().height();
    treePosition->setGeometry(0, 0, narrower, h / 2);
    // The grid ends where the progress bar along the bottom edge begins.
    FlexTempDocs->setGeometry(0, h / 2, narrower, std::max(0, h - h / 2 - ph));
    Progress->setGeometry(0, h - ph, w, ph);
}

void kavHRLoan1::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutBench();
}

void kavHRLoan1::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    layoutBench();
}

void kavHRLoan1::Command1_Click() { ViewTempDocs(); }

void kavHRLoan1::Command2_Click() {
    const QString connection = connectionString_;
    const qint16 user = userID_, position = positionID_, employee = employeeID_;
    setOLEConnectionstring(DeveloperConnectionString());
    setUserID(1);
    setPositionID(0);
    setEmployeeID(9);
    try {
        ClearShow();
    } catch (const KavError& e) {
        // A connection that failed to open is not kept: the properties go back to what they
        // were, so it is never written to the bag.
        if (e.kind() == KavError::Kind::Connection) {
            setOLEConnectionstring(connection);
            setUserID(user);
            setPositionID(position);
            setEmployeeID(employee);
        }
        throw;
    }
}

void kavHRLoan1::cmdClearShow_Click() { ClearShow(); }

void kavHRLoan1::CmdView_Click() {
    qint32 id = vb::CLng(TxtID->text());
    View(id);
}

void kavHRLoan1::FlexTempDocs_DblClick() {
    if (FlexTempDocs->Row() < 1 || FlexTempDocs->Rows() < 2) return;
    const QString cell = FlexTempDocs->TextMatrix(FlexTempDocs->Row(), 0);
    if (cell.isEmpty()) return;
    qint32 id = vb::CLng(cell);
    View(id);
}

void kavHRLoan1::treePosition_Expand(QTreeWidgetItem* node) {
    const QVariant image = node->data(0, ImageRole);
    node->setData(0, ImageRole, image.isNull() ? 7 : image.toInt() + 1);
    loadPosition(node->data(0, Qt::UserRole).toString());
}

void kavHRLoan1::treePosition_Collapse(QTreeWidgetItem* node) {
    node->setData(0, ImageRole, node->data(0, ImageRole).toInt() - 1);
    loadPosition(node->data(0, Qt::UserRole).toString());
}

void kavHRLoan1::loadPosition(const QString&) {
    // The bench's position tree loads nothing of its own.
}

}  // namespace kav
