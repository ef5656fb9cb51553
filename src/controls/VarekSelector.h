#pragma once

// VarekSelector: the employee chooser. It lists the employees of its major view (optionally
// narrowed by Filter1) and lets the user find one by typing any part of the personnel code or
// of the name; the list narrows as he types and a pick from it chooses the employee. Its
// Value is the chosen record's ID, -1 when none.
//
// A value set from code that the major list does not hold (hidden by Filter1, say) is looked
// up by ID in the minor view, narrowed by Filter2; found there it is shown, otherwise the
// selector is empty. Changed is raised only when the user chooses, changes or empties the
// choice; setValue and Clear raise nothing.
//
// Typed text is never dropped: text that names nobody, or several employees, stays in the box,
// marked, and the selector names no employee (Value() -1) but is not empty either: State()
// says Unresolved, and a window asks SelectorsNameEmployees before it acts. Enter on text that
// names several employees opens the list with just them.

#include <QString>
#include <QVector>
#include <QWidget>
#include <memory>

#include <initializer_list>
#include <utility>

class QCompleter;
class QLineEdit;
class QStandardItemModel;
class QToolButton;

namespace kav {
class Connection;
class Module;
}  // namespace kav

namespace kav::controls {

// One employee as the selector lists it.
// What a selector names, as a window asks before it acts on it.
enum class SelectorState {
    Employee,    // exactly one employee: Value() is his ID
    Empty,       // nobody, and the box is empty
    Unresolved,  // typed text naming no employee or several; it stays in the box, marked
};

struct EmployeeEntry {
    qint32 id = -1;
    QString code;
    QString name;  // EmployeeName, or FirstName + " " + SureName when the view has none
};

class VarekSelector : public QWidget {
    Q_OBJECT
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked)

public:
    explicit VarekSelector(QWidget* parent = nullptr);
    ~VarekSelector() override;

    // The database: the OLE DB-style connection string (the selector then opens its own
    // connection on first use), or the session's connection, which is used when no string is
    // given or the string is that connection's own.
    void setConnectionString(const QString& connectionString);
    QString ConnectionString() const { return connectionString_; }
    void setConnection(kav::Connection* connection);

    void setMajorView(const QString& view) { majorView_ = view; }
    QString MajorView() const { return majorView_; }
    void setMinorView(const QString& view) { minorView_ = view; }
    QString MinorView() const { return minorView_; }
    // WHERE conditions for the major and the minor view, e.g.
    // " ID not in (Select x.ID from tblEmployee x Where x.WorkStatusID=3)".
    void setFilter1(const QString& condition) { filter1_ = condition; }
    QString Filter1() const { return filter1_; }
    void setFilter2(const QString& condition) { filter2_ = condition; }
    QString Filter2() const { return filter2_; }

    // Loads the list from the major view. A database error raises KavError (Database or
    // Connection); the list is then left as it was.
    void Initialize();
    // Fills the list directly instead of from a view (demonstrations, tests).
    void setEmployees(const QVector<EmployeeEntry>& employees);
    const QVector<EmployeeEntry>& employees() const { return entries_; }

    // The chosen ID, -1 when none. Before the list is loaded, a value set from code is kept
    // as given and checked when Initialize runs.
    qint32 Value() const;
    void setValue(qint32 id);
    bool IsEmpty() const { return Value() == -1; }
    void Clear();
    // One employee, none, or text that names no single employee (see above).
    SelectorState State() const;
    // The text left in the box while it is unresolved; empty otherwise.
    QString UnresolvedText() const;
    // What a window says of the box while it is unresolved: that the box, named by its
    // label's caption, names no employee, with the text.
    QString UnresolvedMessage(const QString& caption) const;

    // Locked: shown normally, but the choice cannot be changed.
    void setLocked(bool locked);
    bool isLocked() const { return locked_; }

    void SetFocus();

    // What the box shows for the choice: "code - name".
    QString Text() const;
    QLineEdit* lineEdit() const { return edit_; }
    QCompleter* completer() const { return completer_; }
    // Opens the whole list (as the button does).
    void showList();

    QSize sizeHint() const override;

signals:
    void Changed();
    void GotFocus();
    void LostFocus();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    kav::Connection* connection();
    QString viewQuery(const QString& view, const QString& condition) const;
    bool lookUpMinor(qint32 id);
    void rebuildModel();
    void show(const EmployeeEntry* entry);
    void chooseByUser(qint32 id);
    void onTextEdited(const QString& text);
    // Reads the typed text; true when it opened (openList) the list of the several employees
    // it names.
    bool onEditingFinished(bool openList);
    void setUnresolved(bool unresolved);
    const EmployeeEntry* find(qint32 id) const;

    QLineEdit* edit_;
    QToolButton* button_;
    QCompleter* completer_;
    QStandardItemModel* model_;

    QString connectionString_;
    kav::Connection* external_ = nullptr;
    std::unique_ptr<kav::Connection> own_;
    QString majorView_, minorView_, filter1_, filter2_;

    QVector<EmployeeEntry> entries_;
    EmployeeEntry extra_;  // a record from the minor view, shown for a value set from code
    bool loaded_ = false;
    qint32 value_ = -1;
    bool unresolved_ = false;
    bool locked_ = false;
};

// Before a window acts on its selectors (each given with the caption of its label): the first
// whose text names no single employee is reported through the module's message, titled
// "هشدار" and naming the caption and the text, and takes the focus. False then: the window
// does not act. True when every box names one employee or is empty.
bool SelectorsNameEmployees(
    kav::Module& module,
    std::initializer_list<std::pair<VarekSelector*, QString>> selectorsWithCaptions);

// The text the selector matches against: Arabic yeh and kaf as their Persian forms, Persian
// and Arabic-Indic digits as Latin, lower case.
QString SearchKey(const QString& text);

}  // namespace kav::controls
