#pragma once

// The control a host application of the suite embeds: it takes the user, the position,
// the connection string, an employee and a caption, and opens the loan window.
//
//   kav::kavHRLoan1 loans;
//   loans.setOLEConnectionstring(u"Provider=SQLOLEDB;Data Source=.;..."_s);
//   loans.setUserID(12);
//   try {
//       loans.ClearShow();  // returns when the loan window is closed
//   } catch (const kav::KavError& e) {
//       // The database could not be reached or refused a statement: e.message() says why,
//       // in Persian, ready to show.
//   }

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWidget>
#include <memory>

class QFrame;
class QGroupBox;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace kav {

class Module;
class PropertyBag;
namespace controls {
class FlexGrid;
}

class kavHRLoan1 : public QWidget {
    Q_OBJECT
    Q_PROPERTY(qint16 UserID READ UserID WRITE setUserID NOTIFY propertyChanged)
    Q_PROPERTY(qint16 PositionID READ PositionID WRITE setPositionID NOTIFY propertyChanged)
    Q_PROPERTY(QString OLEConnectionstring READ OLEConnectionstring WRITE setOLEConnectionstring
                   NOTIFY propertyChanged)
    Q_PROPERTY(qint16 EmployeeID READ EmployeeID WRITE setEmployeeID NOTIFY propertyChanged)
    Q_PROPERTY(
        qint32 PRSEmployeeID READ PRSEmployeeID WRITE setPRSEmployeeID NOTIFY propertyChanged)
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption NOTIFY propertyChanged)
    Q_PROPERTY(
        qint16 ModeWithChilds READ ModeWithChilds WRITE setModeWithChilds NOTIFY propertyChanged)

public:
    // A new instance takes the initial values. The module (session, data environment,
    // windows) may be handed in, so a host or a test can choose its message component.
    explicit kavHRLoan1(QWidget* parent = nullptr);
    explicit kavHRLoan1(std::shared_ptr<Module> module, QWidget* parent = nullptr);
    ~kavHRLoan1() override;

    qint16 UserID() const { return userID_; }
    void setUserID(qint16 value);
    qint16 PositionID() const { return positionID_; }
    void setPositionID(qint16 value);
    QString OLEConnectionstring() const { return connectionString_; }
    void setOLEConnectionstring(const QString& value);
    qint16 EmployeeID() const { return employeeID_; }
    void setEmployeeID(qint16 value);
    qint32 PRSEmployeeID() const { return prsEmployeeID_; }
    void setPRSEmployeeID(qint32 value);
    QString Caption() const { return caption_; }
    void setCaption(const QString& value);
    qint16 ModeWithChilds() const { return modeWithChilds_; }
    void setModeWithChilds(qint16 value);

    // Opens the loan window for work after the role check: empty, or new when
    // PRSEmployeeID is positive. Returns when the window is closed, or at once when the role
    // check refused the user (after showing the refusal; RoleWasRefused tells).
    // Errors inside the window are shown there; what ClearShow itself raises reaches the
    // host as kav::KavError (base/Errors.h), with a Persian message ready to show:
    //   Connection  the connection string names no database that opens (the initial "0",
    //               an unknown provider, a missing file, a server that does not answer), or a
    //               database that is not the loan module's (a file that is no database, a
    //               database without the loan tables), which is left untouched;
    //   Database    the database refused a statement (the role check, the loan types);
    //   Busy        another client held the database past the wait.
    QVariant ClearShow();
    // Opens one stored loan read-only, without a role check. Raises as ClearShow does (the
    // loan is read before the window opens), and Usage when the database holds no loan with
    // that id: no window opens then.
    QVariant View(qint32& loanId);
    // True when the last ClearShow stopped at the role check.
    bool RoleWasRefused() const { return roleRefused_; }
    // Kept for hosts that call it; does nothing.
    QVariant ViewTempDocs();

    // The container's property events.
    void InitProperties();
    // Reads the stored properties. A stored value the property cannot hold (not a number, or
    // outside the 16-bit range) leaves that property at its initial value; once every other
    // property has been read, KavError (TypeMismatch or Overflow) is raised naming the
    // property and the stored value. UnreadProperties then names the properties refused, so a
    // host can set them itself and go on.
    void ReadProperties(PropertyBag& bag);
    QStringList UnreadProperties() const { return unread_; }
    void WriteProperties(PropertyBag& bag) const;

    Module& module() { return *module_; }

    // The developer's test bench.
    QPushButton* Command1;
    QPushButton* Command2;
    QPushButton* cmdClearShow;
    QGroupBox* Frame1;
    QLineEdit* TxtID;
    QPushButton* CmdView;
    controls::FlexGrid* FlexTempDocs;
    QTreeWidget* treePosition;
    QProgressBar* Progress;

    void Command1_Click();
    void Command2_Click();
    void cmdClearShow_Click();
    void CmdView_Click();
    void FlexTempDocs_DblClick();
    void treePosition_Expand(QTreeWidgetItem* node);
    void treePosition_Collapse(QTreeWidgetItem* node);

    // The connection string of the developer's own SQL Server that Command2 uses: the local
    // server with integrated security, no account and no password in it.
    static QString DeveloperConnectionString();

signals:
    // Raised by every setter with the property's name.
    void propertyChanged(const QString& name);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void buildBench();
    void layoutBench();
    void copyPropertiesToSession();
    void openSessionDatabase();
    template <class F>
    QVariant passwordsMasked(F&& entry);
    void loadPosition(const QString& key);

    std::shared_ptr<Module> module_;
    qint16 userID_ = 0;
    qint16 positionID_ = 0;
    QString connectionString_;
    qint16 employeeID_ = 0;
    qint32 prsEmployeeID_ = 0;
    QString caption_;
    qint16 modeWithChilds_ = 0;
    bool roleRefused_ = false;
    QStringList unread_;
    QWidget* benchArea_ = nullptr;
};

}  // namespace kav
