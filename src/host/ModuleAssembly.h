#pragma once

namespace kav {

class Module;

// Says which window serves each port of the module (session/WindowPorts.h): the loan
// editor, the adjustment window, the search window. The host control calls it once for its
// module; tests that need only some windows provide their own.
void ProvideWindows(Module& module);

}  // namespace kav
