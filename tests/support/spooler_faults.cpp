#include "spooler_faults.h"

#include <mutex>

#include "import_patch.h"

namespace spooler_faults {

namespace {

std::recursive_mutex lock;
int setDataFailures = 0;
DWORD setDataStatus = 0;
int openSkip = 0, openFailures = 0;
DWORD openError = 0;
std::wstring serverName;
DWORD setPrinterError = 0;
std::vector<QueueWrite> queueWrites;
std::vector<std::wstring> dataWrites;
int opened = 0, closed = 0;

// The spooler's own entry points, taken from winspool.drv itself: the stand-ins may be installed
// in the test program's import table too, where a plain call would come straight back here.
template <typename Fn>
Fn Real(const char* name)
{
    return reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"winspool.drv"), name)));
}
#define REAL(fn) (Real<decltype(&fn)>(#fn))

BOOL WINAPI FaultOpenPrinterW(LPWSTR name, LPHANDLE handle, LPPRINTER_DEFAULTSW defaults)
{
    {
        std::lock_guard<std::recursive_mutex> guard(lock);
        if (openFailures > 0 && openSkip == 0) {
            --openFailures;
            if (handle) *handle = nullptr;
            SetLastError(openError);
            return FALSE;
        }
    }
    const BOOL ok = REAL(OpenPrinterW)(name, handle, defaults);
    std::lock_guard<std::recursive_mutex> guard(lock);
    if (ok) {
        ++opened;
        if (openSkip > 0) --openSkip;
    }
    return ok;
}

BOOL WINAPI FaultClosePrinter(HANDLE handle)
{
    {
        std::lock_guard<std::recursive_mutex> guard(lock);
        ++closed;
    }
    return REAL(ClosePrinter)(handle);
}

BOOL WINAPI FaultGetPrinterW(HANDLE handle, DWORD level, LPBYTE buffer, DWORD cbBuf, LPDWORD needed)
{
    std::wstring server;
    {
        std::lock_guard<std::recursive_mutex> guard(lock);
        server = serverName;
    }
    if (level != 2 || server.empty()) return REAL(GetPrinterW)(handle, level, buffer, cbBuf, needed);
    // Room for the server name after what the spooler itself needs.
    const DWORD extra = static_cast<DWORD>((server.size() + 1) * sizeof(WCHAR));
    DWORD real = 0;
    REAL(GetPrinterW)(handle, 2, nullptr, 0, &real);
    if (real == 0) return REAL(GetPrinterW)(handle, level, buffer, cbBuf, needed);
    if (needed) *needed = real + extra;
    if (buffer == nullptr || cbBuf < real + extra) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    DWORD got = 0;
    if (!REAL(GetPrinterW)(handle, 2, buffer, real, &got)) return FALSE;
    auto* name = reinterpret_cast<WCHAR*>(buffer + real);
    memcpy(name, server.c_str(), extra);
    reinterpret_cast<PRINTER_INFO_2W*>(buffer)->pServerName = name;
    return TRUE;
}

BOOL WINAPI FaultSetPrinterW(HANDLE handle, DWORD level, LPBYTE buffer, DWORD command)
{
    DWORD error = 0;
    {
        std::lock_guard<std::recursive_mutex> guard(lock);
        if (level == 2 && buffer != nullptr) {
            const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer);
            queueWrites.push_back({ info->pPrintProcessor ? info->pPrintProcessor : L"", info->Attributes,
                                    info->pDatatype ? info->pDatatype : L"" });
        }
        error = setPrinterError;
    }
    if (error != 0) {
        SetLastError(error);
        return FALSE;
    }
    return REAL(SetPrinterW)(handle, level, buffer, command);
}

DWORD WINAPI FaultSetPrinterDataExW(HANDLE handle, LPCWSTR key, LPCWSTR value, DWORD type, LPBYTE data, DWORD size)
{
    {
        std::lock_guard<std::recursive_mutex> guard(lock);
        dataWrites.push_back(std::wstring(key ? key : L"") + L"|" + (value ? value : L""));
        if (setDataFailures > 0) {
            --setDataFailures;
            SetLastError(setDataStatus);
            return setDataStatus;
        }
    }
    return REAL(SetPrinterDataExW)(handle, key, value, type, data, size);
}

}  // namespace

bool Install(HMODULE module)
{
    const char* spool = "winspool.drv";
    bool any = false;
    any |= oemhost::PatchImport(module, spool, "OpenPrinterW", reinterpret_cast<void*>(FaultOpenPrinterW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "ClosePrinter", reinterpret_cast<void*>(FaultClosePrinter)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "GetPrinterW", reinterpret_cast<void*>(FaultGetPrinterW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "SetPrinterW", reinterpret_cast<void*>(FaultSetPrinterW)) != nullptr;
    any |= oemhost::PatchImport(module, spool, "SetPrinterDataExW", reinterpret_cast<void*>(FaultSetPrinterDataExW)) !=
           nullptr;
    return any;
}

void Reset()
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    setDataFailures = 0;
    openSkip = openFailures = 0;
    serverName.clear();
    setPrinterError = 0;
    queueWrites.clear();
    dataWrites.clear();
    opened = closed = 0;
}

void FailSetPrinterData(int times, DWORD status)
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    setDataFailures = times;
    setDataStatus = status;
}

void FailOpenPrinter(int skip, int times, DWORD error)
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    openSkip = skip;
    openFailures = times;
    openError = error;
}

void ReportServerName(const std::wstring& server)
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    serverName = server;
}

void RefuseSetPrinter(DWORD error)
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    setPrinterError = error;
}

std::vector<QueueWrite> QueueWrites()
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    return queueWrites;
}

int OpenedHandles()
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    return opened;
}

int ClosedHandles()
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    return closed;
}

std::vector<std::wstring> DataWrites()
{
    std::lock_guard<std::recursive_mutex> guard(lock);
    return dataWrites;
}

}  // namespace spooler_faults
