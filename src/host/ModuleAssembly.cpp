#include "host/ModuleAssembly.h"

#include "adjustments/AdjustmentOpener.h"
#include "loan_editor/FormHRLoan.h"
#include "session/Module.h"
#include "session/WindowPorts.h"

namespace kav {

void ProvideWindows(Module& module) {
    module.ProvidePort<LoanEditorPort>(
        [](Module& m) -> LoanEditorPort& { return m.Window<FormHRLoan>(); });
    module.ProvidePort<AdjustmentPort>(
        [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
}

}  // namespace kav
