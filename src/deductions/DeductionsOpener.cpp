#include "deductions/DeductionsOpener.h"

#include "deductions/FormDeductions.h"
#include "session/WindowSupport.h"

namespace kav {

void DeductionsOpener::ShowDeductions() { ShowShared<FormDeductions>(module_); }

}  // namespace kav
