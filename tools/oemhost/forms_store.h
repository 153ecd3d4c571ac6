// A forms store with Windows semantics for tests and the demo. Wine's spooler only pretends to keep forms
// (AddFormW answers TRUE and stores nothing, GetFormW/SetFormW fail), so tests that need user
// forms route a module's forms imports (AddFormW, SetFormW, DeleteFormW, GetFormW, EnumFormsW)
// here instead:
//   - the built-in forms are the spooler's own list (taken on first use) and cannot be changed
//     or deleted (ERROR_INVALID_PARAMETER);
//   - names are compared without regard to case; adding a name that exists fails with
//     ERROR_FILE_EXISTS; setting, getting or deleting a missing one fails with
//     ERROR_INVALID_FORM_NAME (1902);
//   - a size that is not positive, or an imageable area outside the size, fails with
//     ERROR_INVALID_FORM_SIZE (1903);
//   - level 1 only (ERROR_INVALID_LEVEL otherwise); a null printer handle is ERROR_INVALID_HANDLE;
//   - EnumFormsW and GetFormW answer ERROR_INSUFFICIENT_BUFFER with the size needed.
// One store per process, shared by every module routed to it.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <optional>
#include <string>
#include <vector>

namespace forms {

struct Form {
    std::wstring name;
    SIZEL size;
    RECTL area;
    DWORD flags;      // FORM_USER or FORM_BUILTIN
};

// Routes `module`'s forms imports to the store; false when the module imports none of them.
bool Install(HMODULE module);
// The same, and the user forms live on in HKEY_CURRENT_USER\<registryKey> (one binary value of
// size and imageable area per form), so that several processes of one Wine prefix share them as they
// would share the spooler's forms: the main job installs the printer in one process and opens its
// sheets in others.
bool InstallPersistent(HMODULE module, const std::wstring& registryKey);
// Removes every user form and clears the counters and planned faults.
void Reset();
// Built-in forms first, then user forms in the order they were added (as EnumFormsW lists them).
std::vector<Form> All();
std::vector<Form> UserForms();
std::optional<Form> Find(const std::wstring& name);
// Puts a user form in place as if it had been added earlier.
void Preload(const Form& form);

// Calls that reached the store since the last Reset, failed ones included.
struct Calls {
    int add = 0, set = 0, remove = 0, get = 0, enumerate = 0;
};
Calls Counts();
// The next `times` EnumFormsW calls that would fill a buffer fail with `error` (size queries
// still answer).
void FailEnum(int times, DWORD error);
// The next `times` SetFormW calls fail with `error` before looking at the store.
void FailSet(int times, DWORD error);

}  // namespace forms
