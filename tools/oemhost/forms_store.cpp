#include "forms_store.h"

#include <mutex>

#include "import_patch.h"

namespace forms {

namespace {

std::mutex lock;
bool builtinsLoaded = false;
std::vector<Form> builtins;
std::vector<Form> users;
Calls calls;
int enumFailures = 0;
DWORD enumError = 0;
int setFailures = 0;
DWORD setError = 0;
std::wstring persistKey;   // empty: the forms live in this process only

struct StoredSize {
    SIZEL size;
    RECTL area;
};

// Rewrites the user forms under persistKey; called with the lock held after every change.
void SaveLocked()
{
    if (persistKey.empty()) return;
    RegDeleteTreeW(HKEY_CURRENT_USER, persistKey.c_str());
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, persistKey.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return;
    for (const Form& f : users) {
        const StoredSize stored = { f.size, f.area };
        RegSetValueExW(key, f.name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(&stored), sizeof stored);
    }
    RegCloseKey(key);
}

void LoadPersistedLocked()
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, persistKey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    for (DWORD i = 0;; ++i) {
        WCHAR name[256];
        DWORD nameChars = 256, type = 0, bytes = sizeof(StoredSize);
        StoredSize stored = {};
        if (RegEnumValueW(key, i, name, &nameChars, nullptr, &type, reinterpret_cast<BYTE*>(&stored), &bytes) !=
            ERROR_SUCCESS)
            break;
        if (type == REG_BINARY && bytes == sizeof stored) users.push_back({ name, stored.size, stored.area, FORM_USER });
    }
    RegCloseKey(key);
}

using EnumFormsFn = BOOL(WINAPI*)(HANDLE, DWORD, LPBYTE, DWORD, LPDWORD, LPDWORD);

bool SameName(const std::wstring& a, const WCHAR* b) { return lstrcmpiW(a.c_str(), b) == 0; }

// The spooler's own list, read once through the real function (Wine lists its built-ins there).
void LoadBuiltins(HANDLE printer)
{
    if (builtinsLoaded) return;
    builtinsLoaded = true;
    HMODULE spool = GetModuleHandleW(L"winspool.drv");
    auto realEnum = spool ? reinterpret_cast<EnumFormsFn>(reinterpret_cast<void*>(GetProcAddress(spool, "EnumFormsW")))
                          : nullptr;
    DWORD needed = 0, returned = 0;
    if (realEnum != nullptr) {
        realEnum(printer, 1, nullptr, 0, &needed, &returned);
        std::vector<BYTE> buffer(needed + 1);
        if (needed != 0 && realEnum(printer, 1, buffer.data(), needed, &needed, &returned)) {
            auto* info = reinterpret_cast<FORM_INFO_1W*>(buffer.data());
            for (DWORD i = 0; i < returned; ++i)
                builtins.push_back({ info[i].pName ? info[i].pName : L"", info[i].Size, info[i].ImageableArea,
                                     FORM_BUILTIN });
        }
    }
    if (builtins.empty()) {
        builtins.push_back({ L"Letter", { 215900, 279400 }, { 0, 0, 215900, 279400 }, FORM_BUILTIN });
        builtins.push_back({ L"A4", { 210000, 297000 }, { 0, 0, 210000, 297000 }, FORM_BUILTIN });
    }
}

Form* FindLocked(const WCHAR* name, bool* builtin)
{
    for (auto& f : builtins)
        if (SameName(f.name, name)) { *builtin = true; return &f; }
    for (auto& f : users)
        if (SameName(f.name, name)) { *builtin = false; return &f; }
    return nullptr;
}

bool ValidSize(const FORM_INFO_1W& f)
{
    return f.Size.cx > 0 && f.Size.cy > 0 && f.ImageableArea.left >= 0 && f.ImageableArea.top >= 0 &&
           f.ImageableArea.left < f.ImageableArea.right && f.ImageableArea.top < f.ImageableArea.bottom &&
           f.ImageableArea.right <= f.Size.cx && f.ImageableArea.bottom <= f.Size.cy;
}

BOOL Fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

DWORD PackedSize(const Form& f) { return sizeof(FORM_INFO_1W) + static_cast<DWORD>((f.name.size() + 1) * sizeof(WCHAR)); }

// Writes forms as FORM_INFO_1W records followed by their names, as the spooler does.
void Pack(const std::vector<const Form*>& list, BYTE* buffer, DWORD cbBuf)
{
    auto* info = reinterpret_cast<FORM_INFO_1W*>(buffer);
    BYTE* end = buffer + cbBuf;
    for (size_t i = 0; i < list.size(); ++i) {
        const Form& f = *list[i];
        const size_t bytes = (f.name.size() + 1) * sizeof(WCHAR);
        end -= bytes;
        memcpy(end, f.name.c_str(), bytes);
        info[i].Flags = f.flags;
        info[i].pName = reinterpret_cast<WCHAR*>(end);
        info[i].Size = f.size;
        info[i].ImageableArea = f.area;
    }
}

BOOL WINAPI StoreAddFormW(HANDLE printer, DWORD level, LPBYTE form)
{
    std::lock_guard<std::mutex> guard(lock);
    ++calls.add;
    if (printer == nullptr) return Fail(ERROR_INVALID_HANDLE);
    if (level != 1) return Fail(ERROR_INVALID_LEVEL);
    if (form == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    LoadBuiltins(printer);
    const auto* f = reinterpret_cast<const FORM_INFO_1W*>(form);
    if (f->pName == nullptr || f->pName[0] == L'\0') return Fail(ERROR_INVALID_FORM_NAME);
    if (!ValidSize(*f)) return Fail(ERROR_INVALID_FORM_SIZE);
    bool builtin = false;
    if (FindLocked(f->pName, &builtin) != nullptr) return Fail(ERROR_FILE_EXISTS);
    users.push_back({ f->pName, f->Size, f->ImageableArea, FORM_USER });
    SaveLocked();
    return TRUE;
}

BOOL WINAPI StoreSetFormW(HANDLE printer, LPWSTR name, DWORD level, LPBYTE form)
{
    std::lock_guard<std::mutex> guard(lock);
    ++calls.set;
    if (setFailures > 0) {
        --setFailures;
        return Fail(setError);
    }
    if (printer == nullptr) return Fail(ERROR_INVALID_HANDLE);
    if (level != 1) return Fail(ERROR_INVALID_LEVEL);
    if (form == nullptr || name == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    LoadBuiltins(printer);
    bool builtin = false;
    Form* existing = FindLocked(name, &builtin);
    if (existing == nullptr) return Fail(ERROR_INVALID_FORM_NAME);
    if (builtin) return Fail(ERROR_INVALID_PARAMETER);
    const auto* f = reinterpret_cast<const FORM_INFO_1W*>(form);
    if (!ValidSize(*f)) return Fail(ERROR_INVALID_FORM_SIZE);
    existing->size = f->Size;
    existing->area = f->ImageableArea;
    SaveLocked();
    return TRUE;
}

BOOL WINAPI StoreDeleteFormW(HANDLE printer, LPWSTR name)
{
    std::lock_guard<std::mutex> guard(lock);
    ++calls.remove;
    if (printer == nullptr) return Fail(ERROR_INVALID_HANDLE);
    if (name == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    LoadBuiltins(printer);
    bool builtin = false;
    Form* existing = FindLocked(name, &builtin);
    if (existing == nullptr) return Fail(ERROR_INVALID_FORM_NAME);
    if (builtin) return Fail(ERROR_INVALID_PARAMETER);
    users.erase(users.begin() + (existing - users.data()));
    SaveLocked();
    return TRUE;
}

BOOL WINAPI StoreGetFormW(HANDLE printer, LPWSTR name, DWORD level, LPBYTE form, DWORD cbBuf, LPDWORD needed)
{
    std::lock_guard<std::mutex> guard(lock);
    ++calls.get;
    if (printer == nullptr) return Fail(ERROR_INVALID_HANDLE);
    if (level != 1) return Fail(ERROR_INVALID_LEVEL);
    if (name == nullptr || needed == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    LoadBuiltins(printer);
    bool builtin = false;
    const Form* existing = FindLocked(name, &builtin);
    if (existing == nullptr) return Fail(ERROR_INVALID_FORM_NAME);
    *needed = PackedSize(*existing);
    if (form == nullptr || cbBuf < *needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
    Pack({ existing }, form, cbBuf);
    return TRUE;
}

BOOL WINAPI StoreEnumFormsW(HANDLE printer, DWORD level, LPBYTE form, DWORD cbBuf, LPDWORD needed, LPDWORD returned)
{
    std::lock_guard<std::mutex> guard(lock);
    ++calls.enumerate;
    if (printer == nullptr) return Fail(ERROR_INVALID_HANDLE);
    if (level != 1) return Fail(ERROR_INVALID_LEVEL);
    if (needed == nullptr || returned == nullptr) return Fail(RPC_X_NULL_REF_POINTER);
    LoadBuiltins(printer);
    *returned = 0;
    std::vector<const Form*> list;
    DWORD total = 0;
    for (const auto& f : builtins) { list.push_back(&f); total += PackedSize(f); }
    for (const auto& f : users) { list.push_back(&f); total += PackedSize(f); }
    *needed = total;
    if (form == nullptr || cbBuf < total) return Fail(ERROR_INSUFFICIENT_BUFFER);
    if (enumFailures > 0) {
        --enumFailures;
        return Fail(enumError);
    }
    Pack(list, form, cbBuf);
    *returned = static_cast<DWORD>(list.size());
    return TRUE;
}

}  // namespace

bool Install(HMODULE module)
{
    const char* spool = "winspool.drv";
    bool any = false;
    any |= oemhost::PatchImport(module, spool, "AddFormW", reinterpret_cast<void*>(StoreAddFormW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "SetFormW", reinterpret_cast<void*>(StoreSetFormW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "DeleteFormW", reinterpret_cast<void*>(StoreDeleteFormW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "GetFormW", reinterpret_cast<void*>(StoreGetFormW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "EnumFormsW", reinterpret_cast<void*>(StoreEnumFormsW)) != nullptr;
    return any;
}

bool InstallPersistent(HMODULE module, const std::wstring& registryKey)
{
    {
        std::lock_guard<std::mutex> guard(lock);
        persistKey = registryKey;
        users.clear();
        LoadPersistedLocked();
    }
    return Install(module);
}

void Reset()
{
    std::lock_guard<std::mutex> guard(lock);
    users.clear();
    SaveLocked();
    calls = Calls();
    enumFailures = setFailures = 0;
}

std::vector<Form> All()
{
    std::lock_guard<std::mutex> guard(lock);
    std::vector<Form> all = builtins;
    all.insert(all.end(), users.begin(), users.end());
    return all;
}

std::vector<Form> UserForms()
{
    std::lock_guard<std::mutex> guard(lock);
    return users;
}

std::optional<Form> Find(const std::wstring& name)
{
    std::lock_guard<std::mutex> guard(lock);
    bool builtin = false;
    const Form* f = FindLocked(name.c_str(), &builtin);
    if (f == nullptr) return std::nullopt;
    return *f;
}

void Preload(const Form& form)
{
    std::lock_guard<std::mutex> guard(lock);
    Form f = form;
    f.flags = FORM_USER;
    users.push_back(f);
}

Calls Counts()
{
    std::lock_guard<std::mutex> guard(lock);
    return calls;
}

void FailEnum(int times, DWORD error)
{
    std::lock_guard<std::mutex> guard(lock);
    enumFailures = times;
    enumError = error;
}

void FailSet(int times, DWORD error)
{
    std::lock_guard<std::mutex> guard(lock);
    setFailures = times;
    setError = error;
}

}  // namespace forms
