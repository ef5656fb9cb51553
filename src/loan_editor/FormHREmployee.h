#pragma once

// The employee picker: one employee for the loan and up to three guarantors. Employees with
// work status 3 cannot be chosen as the borrower; guarantors are not filtered, and nothing
// stops a guarantor being the borrower himself or appearing twice.

#include <QString>
#include <array>

#include "session/WindowSupport.h"

class QPushButton;

namespace kav {
class Module;
namespace controls {
class VarekSelector;
}

class FormHREmployee : public ModuleWindow {
    Q_OBJECT
public:
    explicit FormHREmployee(Module& module, QWidget* parent = nullptr);

    // Shows the picker modally and returns the chosen employee's ID, or -1 when the clerk
    // leaves without choosing; the guarantors' IDs come back in the out-values (-1 for none,
    // all -1 on leaving). `existing` lists the employees already on the loan as "(" + ID + ")"
    // pieces run together, e.g. (12)(40); choosing one of them is refused. The picker is
    // unloaded afterwards, so each call starts afresh.
    static qint32 getNewEmployee(Module& module, const QString& existing, qint32& guarantor1,
                                 qint32& guarantor2, qint32& guarantor3);

    // The members already on the loan, as getNewEmployee was given them.
    const QString& Existing() const { return existing_; }

    // Event handlers, public so that tests reach them as the clerk would.
    void sltEmployeeID_Change();
    void cmdOK_Click();
    void cmdExit_Click();

    controls::VarekSelector* sltEmployeeID;
    controls::VarekSelector* sltSupportEmployeeID1;
    controls::VarekSelector* sltSupportEmployeeID2;
    controls::VarekSelector* sltSupportEmployeeID3;
    QPushButton* cmdOK;
    QPushButton* cmdExit;

private:
    void Form_Load();
    bool isOnTheLoan(qint32 employeeId) const;

    Module& module_;
    QString existing_;
    // What the picker hands back: kept by OK, all -1 until then and after Exit.
    qint32 employee_ = -1;
    std::array<qint32, 3> guarantors_{-1, -1, -1};
};

}  // namespace kav
