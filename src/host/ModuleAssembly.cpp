#include "host/ModuleAssembly.h"

#include "adjustments/AdjustmentOpener.h"
#include "deductions/DeductionsOpener.h"
#include "loan_editor/FormHRLoan.h"
#include "search/SearchOpener.h"
#include "session/Module.h"
#include "session/WindowPorts.h"

namespace kav {

void ProvideWindows(Module& module) {
    module.ProvidePort<LoanEditorPort>(
        [](Module& m) -> LoanEditorPort& { return m.Window<FormHRLoan>(); });
    module.ProvidePort<AdjustmentPort>(
        [](Module& m) -> AdjustmentPort& { return m.Window<AdjustmentOpener>(); });
    module.ProvidePort<SearchPort>([](Module& m) -> SearchPort& { return m.Window<SearchOpener>(); });
    module.ProvidePort<DeductionsPort>(
        [](Module& m) -> DeductionsPort& { return m.Window<DeductionsOpener>(); });
}

}  // namespace kav
