#include "adjustments/AdjustmentOpener.h"

#include <QLineEdit>

#include "adjustments/FormHRException.h"
#include "controls/VarekSelector.h"
#include "session/Module.h"

namespace kav {

void AdjustmentOpener::ShowBalance(const QString& loanIdText, qint32 employeeId) {
    // Each opening loads the window afresh (empty mode, nothing shown), as closing it
    // unloads it.
    if (module_.HasWindow<FormHRException>()) module_.UnloadWindow<FormHRException>();
    FormHRException& window = module_.Window<FormHRException>();
    window.txtPaidID->setText(loanIdText);
    window.editorLoanText = loanIdText;
    if (employeeId != -1) window.gmpEmployee->setValue(employeeId);
    window.ViewPRSBalance(window.gmpEmployee->Value());
    ShowShared<FormHRException>(module_);
}

}  // namespace kav
