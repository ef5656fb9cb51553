#include "controls/VarekSelector.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QToolButton>

#include "controls/FarsiDateText.h"
#include "session/DataEnvironment.h"
#include "session/Messages.h"
#include "session/Module.h"
#include "session/Ui.h"
#include "session/WindowSupport.h"

using namespace Qt::StringLiterals;

namespace kav::controls {

namespace {

constexpr int IdRole = Qt::UserRole + 1;
constexpr int KeyRole = Qt::UserRole + 2;

// Text that names no single employee, as the box's tooltip says and a window's message.
const QString kUnresolvedHint =
    u"اين متن يک کارمند را مشخص نمي\u200Cکند؛ يک کارمند را از فهرست انتخاب کنيد يا کادر را "
    u"خالي کنيد."_s;
const QString kUnresolvedMessage =
    u"کادر «%1» کارمندي را مشخص نمي\u200Cکند («%2»)؛ يک کارمند را از فهرست انتخاب کنيد يا کادر "
    u"را خالي کنيد."_s;

QString displayOf(const EmployeeEntry& e) {
    if (e.code.isEmpty()) return e.name;
    return e.code + u" - "_s + e.name;
}

EmployeeEntry entryOf(const Recordset& rs) {
    EmployeeEntry e;
    e.id = rs.Fields(u"ID"_s).toInt();
    e.code = rs.HasField(u"Code"_s) ? rs.Fields(u"Code"_s).toString().trimmed() : QString();
    if (rs.HasField(u"EmployeeName"_s) && !rs.IsNull(u"EmployeeName"_s)) {
        e.name = rs.Fields(u"EmployeeName"_s).toString().trimmed();
    } else {
        const QString first = rs.HasField(u"FirstName"_s)
                                  ? rs.Fields(u"FirstName"_s).toString().trimmed()
                                  : QString();
        const QString sure =
            rs.HasField(u"SureName"_s) ? rs.Fields(u"SureName"_s).toString().trimmed() : QString();
        e.name = (first + u' ' + sure).trimmed();
    }
    return e;
}

}  // namespace

QString SearchKey(const QString& text) {
    QString key = LatinDigits(text).toLower();
    for (QChar& c : key) {
        if (c == QChar(0x064A) || c == QChar(0x0649))
            c = QChar(0x06CC);  // yeh
        else if (c == QChar(0x0643))
            c = QChar(0x06A9);  // kaf
    }
    return key;
}

VarekSelector::VarekSelector(QWidget* parent) : QWidget(parent) {
    setLayoutDirection(Qt::RightToLeft);
    setFont(PersianFont());

    edit_ = new QLineEdit(this);
    edit_->setObjectName(u"edit"_s);
    edit_->setPlaceholderText(u"كد يا نام كارمند"_s);
    edit_->setClearButtonEnabled(false);
    edit_->installEventFilter(this);

    button_ = new QToolButton(this);
    button_->setObjectName(u"listButton"_s);
    button_->setArrowType(Qt::DownArrow);
    button_->setFocusPolicy(Qt::NoFocus);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    layout->addWidget(edit_, 1);
    layout->addWidget(button_);
    setFocusProxy(edit_);
    setFocusPolicy(Qt::StrongFocus);

    model_ = new QStandardItemModel(this);
    completer_ = new QCompleter(model_, this);
    completer_->setWidget(edit_);
    completer_->setCompletionMode(QCompleter::PopupCompletion);
    completer_->setFilterMode(Qt::MatchContains);
    completer_->setCaseSensitivity(Qt::CaseSensitive);  // the keys are lower-cased already
    completer_->setCompletionRole(KeyRole);
    completer_->setMaxVisibleItems(12);
    completer_->popup()->setLayoutDirection(Qt::RightToLeft);
    completer_->popup()->setFont(PersianFont());

    connect(button_, &QToolButton::clicked, this, &VarekSelector::showList);
    connect(edit_, &QLineEdit::textEdited, this, &VarekSelector::onTextEdited);
    connect(edit_, &QLineEdit::returnPressed, this, [this] {
        // With the list open on an item, that item is the choice: the list makes it.
        QAbstractItemView* list = completer_->popup();
        if (list->isVisible() && list->currentIndex().isValid()) return;
        const bool listWasOpen = list->isVisible();
        // The list closes after this Enter; text that names several opens it again then.
        if (onEditingFinished(true) && listWasOpen)
            QMetaObject::invokeMethod(
                this, [this] { if (unresolved_) completer_->complete(); }, Qt::QueuedConnection);
    });
    connect(completer_, qOverload<const QModelIndex&>(&QCompleter::activated), this,
            [this](const QModelIndex& index) { chooseByUser(index.data(IdRole).toInt()); });
}

VarekSelector::~VarekSelector() = default;

void VarekSelector::setConnectionString(const QString& connectionString) {
    if (connectionString != connectionString_) own_.reset();
    connectionString_ = connectionString;
}

void VarekSelector::setConnection(kav::Connection* connection) { external_ = connection; }

kav::Connection* VarekSelector::connection() {
    if (external_ &&
        (connectionString_.isEmpty() || connectionString_ == external_->ConnectionString()))
        return external_;
    if (!own_) {
        own_ = std::make_unique<kav::Connection>();
        own_->SetConnectionString(connectionString_);
    }
    return own_.get();
}

QString VarekSelector::viewQuery(const QString& view, const QString& condition) const {
    QString sql = u"Select * from "_s + view;
    if (!condition.trimmed().isEmpty()) sql += u" Where "_s + condition.trimmed();
    return sql;
}

void VarekSelector::Initialize() {
    Recordset rs(*connection());
    rs.Open(viewQuery(majorView_.isEmpty() ? u"vwEmployeeMajor"_s : majorView_, filter1_));
    QVector<EmployeeEntry> list;
    list.reserve(rs.RecordCount());
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) list.append(entryOf(rs));
    rs.Close();
    const qint32 wanted = value_;
    setEmployees(list);
    if (wanted != -1) setValue(wanted);
}

void VarekSelector::setEmployees(const QVector<EmployeeEntry>& employees) {
    entries_ = employees;
    loaded_ = true;
    extra_ = EmployeeEntry();
    rebuildModel();
    const EmployeeEntry* e = find(value_);
    if (!e) value_ = -1;
    setUnresolved(false);
    show(e);
}

void VarekSelector::rebuildModel() {
    model_->clear();
    QList<QStandardItem*> items;
    items.reserve(entries_.size());
    for (const EmployeeEntry& e : entries_) {
        auto* item = new QStandardItem(displayOf(e));
        item->setData(e.id, IdRole);
        item->setData(SearchKey(displayOf(e)), KeyRole);
        item->setEditable(false);
        items.append(item);
    }
    if (!items.isEmpty()) model_->appendColumn(items);
}

const EmployeeEntry* VarekSelector::find(qint32 id) const {
    if (id == -1) return nullptr;
    for (const EmployeeEntry& e : entries_)
        if (e.id == id) return &e;
    if (extra_.id == id) return &extra_;
    return nullptr;
}

bool VarekSelector::lookUpMinor(qint32 id) {
    if (minorView_.isEmpty() || (connectionString_.isEmpty() && !external_)) return false;
    QString condition = u"ID="_s + QString::number(id);
    if (!filter2_.trimmed().isEmpty()) condition += u" and ("_s + filter2_.trimmed() + u')';
    Recordset rs(*connection());
    rs.Open(viewQuery(minorView_, condition));
    const bool found = !rs.EOF_();
    if (found) extra_ = entryOf(rs);
    rs.Close();
    return found;
}

qint32 VarekSelector::Value() const { return value_; }

void VarekSelector::setValue(qint32 id) {
    value_ = id;
    setUnresolved(false);
    if (!loaded_) return;  // checked when the list loads
    const EmployeeEntry* e = find(id);
    if (!e && id != -1 && lookUpMinor(id)) e = &extra_;
    if (!e) value_ = -1;
    show(e);
}

void VarekSelector::Clear() {
    value_ = -1;
    setUnresolved(false);
    show(nullptr);
}

SelectorState VarekSelector::State() const {
    if (unresolved_) return SelectorState::Unresolved;
    return value_ == -1 ? SelectorState::Empty : SelectorState::Employee;
}

QString VarekSelector::UnresolvedText() const {
    return unresolved_ ? edit_->text().trimmed() : QString();
}

QString VarekSelector::UnresolvedMessage(const QString& caption) const {
    QString name = caption.trimmed();
    while (name.endsWith(u':')) name.chop(1);
    while (name.startsWith(u':')) name.remove(0, 1);
    return kUnresolvedMessage.arg(name.trimmed(), UnresolvedText());
}

// Unresolved text is marked by the box's colour and explained by its tooltip.
void VarekSelector::setUnresolved(bool unresolved) {
    if (unresolved == unresolved_) return;
    unresolved_ = unresolved;
    if (unresolved) {
        QPalette marked = edit_->palette();
        marked.setColor(QPalette::Base, QColor(255, 226, 226));
        edit_->setPalette(marked);
        edit_->setToolTip(kUnresolvedHint);
    } else {
        edit_->setPalette(QPalette());
        edit_->setToolTip(QString());
    }
}

void VarekSelector::setLocked(bool locked) {
    locked_ = locked;
    edit_->setReadOnly(locked);
    if (locked) completer_->popup()->hide();
}

void VarekSelector::SetFocus() { edit_->setFocus(Qt::OtherFocusReason); }

QString VarekSelector::Text() const { return edit_->text(); }

QSize VarekSelector::sizeHint() const {
    const QFontMetrics fm(edit_->font());
    return {fm.horizontalAdvance(u"000000 - نام و نام خانوادگي كارمند"_s) + 24 +
                button_->sizeHint().width(),
            edit_->sizeHint().height()};
}

void VarekSelector::show(const EmployeeEntry* entry) {
    const QString text = entry ? displayOf(*entry) : QString();
    if (edit_->text() != text) edit_->setText(text);
    edit_->setCursorPosition(0);
}

void VarekSelector::chooseByUser(qint32 id) {
    if (locked_ || !isEnabled()) return;
    const EmployeeEntry* e = find(id);
    if (!e) id = -1;
    const bool changed = id != value_;
    value_ = id;
    setUnresolved(false);
    show(e);
    completer_->popup()->hide();
    if (changed) emit Changed();
}

void VarekSelector::showList() {
    if (locked_ || !isEnabled()) return;
    edit_->setFocus(Qt::OtherFocusReason);
    completer_->setCompletionPrefix(QString());
    completer_->complete();
}

void VarekSelector::onTextEdited(const QString& text) {
    if (locked_) return;
    completer_->setCompletionPrefix(SearchKey(text.trimmed()));
    if (text.trimmed().isEmpty())
        completer_->popup()->hide();
    else
        completer_->complete();
}

bool VarekSelector::onEditingFinished(bool openList) {
    if (locked_) return false;
    const QString typed = edit_->text().trimmed();
    const EmployeeEntry* current = find(value_);
    if (current && typed == displayOf(*current)) return false;
    if (typed.isEmpty()) {
        chooseByUser(-1);
        return false;
    }
    // A typed personnel code chooses its employee; otherwise the text must match exactly one
    // employee of the list.
    const QString key = SearchKey(typed);
    const EmployeeEntry* match = nullptr;
    int matches = 0;
    for (const EmployeeEntry& e : entries_) {
        if (SearchKey(e.code) == key) {
            match = &e;
            matches = 1;
            break;
        }
        if (SearchKey(displayOf(e)).contains(key)) {
            match = &e;
            ++matches;
        }
    }
    if (matches == 1) {
        chooseByUser(match->id);
        return false;
    }
    // Nobody or several: the text stays, marked, and names no employee; Enter on several
    // opens the list with just them.
    const bool changed = value_ != -1;
    value_ = -1;
    setUnresolved(true);
    if (changed) emit Changed();
    if (!openList || matches == 0 || !isEnabled()) return false;
    completer_->setCompletionPrefix(key);
    completer_->complete();
    return true;
}

bool VarekSelector::eventFilter(QObject* watched, QEvent* event) {
    if (watched == edit_) {
        if (event->type() == QEvent::FocusIn &&
            IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) {
            emit GotFocus();
        } else if (event->type() == QEvent::FocusOut &&
                   IsFieldFocusChange(*static_cast<QFocusEvent*>(event))) {
            onEditingFinished(false);
            emit LostFocus();
        } else if (event->type() == QEvent::KeyPress) {
            auto* key = static_cast<QKeyEvent*>(event);
            // Enter that opens the list of the employees the text names goes no further: the
            // window must not act on the box before the clerk has chosen.
            if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
                !completer_->popup()->isVisible() && onEditingFinished(true))
                return true;
            if (key->key() == Qt::Key_F4 ||
                (key->key() == Qt::Key_Down && !completer_->popup()->isVisible())) {
                showList();
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

bool SelectorsNameEmployees(
    Module& module,
    std::initializer_list<std::pair<VarekSelector*, QString>> selectorsWithCaptions) {
    for (const auto& [selector, caption] : selectorsWithCaptions) {
        if (selector->State() != SelectorState::Unresolved) continue;
        module.ShowMessage(WarningTitle(), selector->UnresolvedMessage(caption));
        selector->SetFocus();
        return false;
    }
    return true;
}

}  // namespace kav::controls
