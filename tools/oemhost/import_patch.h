// Redirects a module's imported functions in this process: the test's way of putting its own
// stand-ins between the plug-in and the spooler without any seam in the product.
#pragma once

#include <windows.h>

namespace oemhost {

// Points `module`'s import-table entry for `function` (imported from `dll`, compared without
// regard to case) at `replacement`. Returns the address it held before, or null when the module
// does not import that function.
void* PatchImport(HMODULE module, const char* dll, const char* function, void* replacement);

}  // namespace oemhost
