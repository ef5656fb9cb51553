#include "search/SearchOpener.h"

#include "search/FormSearch.h"
#include "session/WindowSupport.h"

namespace kav {

void SearchOpener::ShowSearch() { ShowShared<FormSearch>(module_); }

}  // namespace kav
