#include "bench.h"

#include <algorithm>
#include <cstring>

#include "printer_setup.h"

namespace bench {

bool InstallTestPrinter(const std::wstring& name, const std::wstring& model, const std::wstring& media)
{
    return oemhost::InstallPrinter(name, model, media);
}

std::wstring NewTestPrinter(const std::wstring& stem, const std::wstring& model, const std::wstring& media)
{
    static int serial = 0;
    std::wstring name = L"QVR " + stem + L" " + std::to_wstring(GetCurrentProcessId()) + L"-" +
                        std::to_wstring(++serial);
    return InstallTestPrinter(name, model, media) ? name : std::wstring();
}

bool DeleteTestPrinter(const std::wstring& name)
{
    HANDLE h = nullptr;
    PRINTER_DEFAULTSW all = { nullptr, nullptr, PRINTER_ALL_ACCESS };
    if (!OpenPrinterW(const_cast<WCHAR*>(name.c_str()), &h, &all)) return false;
    const BOOL ok = DeletePrinter(h);
    ClosePrinter(h);
    return ok != FALSE;
}

std::vector<BYTE> ReadPrinterData(const std::wstring& printer, const std::wstring& value, DWORD* type,
                                  DWORD* status, const std::wstring& key)
{
    std::vector<BYTE> data;
    HANDLE h = nullptr;
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, nullptr)) {
        if (status) *status = GetLastError();
        return data;
    }
    DWORD needed = 0, t = 0;
    DWORD rc = GetPrinterDataExW(h, key.c_str(), value.c_str(), &t, nullptr, 0, &needed);
    if (rc == ERROR_MORE_DATA || rc == ERROR_SUCCESS) {
        data.resize(needed);
        rc = GetPrinterDataExW(h, key.c_str(), value.c_str(), &t, data.data(), needed, &needed);
        if (rc != ERROR_SUCCESS) data.clear();
    }
    ClosePrinter(h);
    if (type) *type = t;
    if (status) *status = rc;
    return data;
}

DWORD WritePrinterData(const std::wstring& printer, const std::wstring& key, const std::wstring& value,
                       DWORD type, const void* data, DWORD size)
{
    return oemhost::WritePrinterValue(printer, key, value, type, data, size);
}

HMODULE Plugin()
{
    static HMODULE module = LoadLibraryW(QVR_PLUGIN_DLL_NAME);
    return module;
}

IPrintOemUI* CreatePlugin()
{
    HMODULE module = Plugin();
    if (module == nullptr) return nullptr;
    using GetClassObjectFn = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    auto getClassObject = reinterpret_cast<GetClassObjectFn>(GetProcAddress(module, "DllGetClassObject"));
    if (getClassObject == nullptr) return nullptr;
    static const CLSID clsid = { 0xABCE80D7, 0x9F46, 0x11D1, { 0x88, 0x2A, 0x00, 0xC0, 0x4F, 0xB9, 0x61, 0xEC } };
    static const IID iidOemUi = { 0xC6A7A9D0, 0x774C, 0x11D1, { 0x94, 0x7F, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };
    IClassFactory* factory = nullptr;
    if (FAILED(getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)))) return nullptr;
    IPrintOemUI* object = nullptr;
    factory->CreateInstance(nullptr, iidOemUi, reinterpret_cast<void**>(&object));
    factory->Release();
    return object;
}

std::wstring WindowsDir()
{
    WCHAR dir[MAX_PATH];
    GetWindowsDirectoryW(dir, MAX_PATH);
    return dir;
}

std::wstring SystemDir()
{
    WCHAR dir[MAX_PATH];
    GetSystemDirectoryW(dir, MAX_PATH);
    return dir;
}

bool WriteTextFile(const std::wstring& path, const std::string& bytes)
{
    HANDLE f = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (f == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const BOOL ok = WriteFile(f, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(f);
    return ok && written == bytes.size();
}

std::string ReadTextFile(const std::wstring& path)
{
    std::string text;
    HANDLE f = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (f == INVALID_HANDLE_VALUE) return text;
    char buffer[65536];
    DWORD got = 0;
    while (ReadFile(f, buffer, sizeof buffer, &got, nullptr) && got > 0) text.append(buffer, got);
    CloseHandle(f);
    return text;
}

namespace {
const WCHAR kLogDir[] = L"C:\\temp\\QVRPOS";

std::vector<std::wstring> LogFiles()
{
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW fd;
    HANDLE find = FindFirstFileW((std::wstring(kLogDir) + L"\\QVRPOS_*_OEMUI.LOG").c_str(), &fd);
    if (find == INVALID_HANDLE_VALUE) return files;
    do files.push_back(std::wstring(kLogDir) + L"\\" + fd.cFileName);
    while (FindNextFileW(find, &fd));
    FindClose(find);
    std::sort(files.begin(), files.end());
    return files;
}
}  // namespace

void ClearLog()
{
    for (const auto& f : LogFiles()) DeleteFileW(f.c_str());
}

std::string ReadLog()
{
    std::string all;
    for (const auto& f : LogFiles()) all += ReadTextFile(f);
    return all;
}

bool LogContains(const std::string& text) { return ReadLog().find(text) != std::string::npos; }

}  // namespace bench
