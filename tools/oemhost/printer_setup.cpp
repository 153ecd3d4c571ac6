#include "printer_setup.h"

#include <winspool.h>

namespace oemhost {

namespace {
const WCHAR kDriverName[] = L"ORLIVEX POS Test Driver";

bool EnsureDriver()
{
    WCHAR sysdir[MAX_PATH];
    GetSystemDirectoryW(sysdir, MAX_PATH);
    std::wstring wineps = std::wstring(sysdir) + L"\\wineps.drv";
    DRIVER_INFO_3W di = {};
    di.cVersion = 3;
    di.pName = const_cast<WCHAR*>(kDriverName);
    di.pDriverPath = const_cast<WCHAR*>(wineps.c_str());
    di.pDataFile = const_cast<WCHAR*>(wineps.c_str());
    di.pConfigFile = const_cast<WCHAR*>(wineps.c_str());
    return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&di), APD_COPY_NEW_FILES) ||
           GetLastError() == ERROR_PRINTER_DRIVER_ALREADY_INSTALLED;
}
}  // namespace

DWORD WritePrinterValue(const std::wstring& printer, const std::wstring& key, const std::wstring& value,
                        DWORD type, const void* data, DWORD size)
{
    HANDLE h = nullptr;
    PRINTER_DEFAULTSW all = { nullptr, nullptr, PRINTER_ALL_ACCESS };
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, &all)) return GetLastError();
    const DWORD rc = SetPrinterDataExW(h, key.c_str(), value.c_str(), type,
                                       static_cast<BYTE*>(const_cast<void*>(data)), size);
    ClosePrinter(h);
    return rc;
}

bool InstallPrinter(const std::wstring& name, const std::wstring& model, const std::wstring& media)
{
    CreateDirectoryW(L"C:\\temp", nullptr);
    if (!EnsureDriver()) return false;
    PRINTER_INFO_2W pi = {};
    pi.pPrinterName = const_cast<WCHAR*>(name.c_str());
    pi.pPortName = const_cast<WCHAR*>(L"FILE:");
    pi.pDriverName = const_cast<WCHAR*>(kDriverName);
    pi.pPrintProcessor = const_cast<WCHAR*>(L"winprint");
    pi.pDatatype = const_cast<WCHAR*>(L"RAW");   // without one Wine's OpenPrinterW later fails with 1801
    pi.Attributes = PRINTER_ATTRIBUTE_LOCAL;
    HANDLE h = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&pi));
    if (h == nullptr) return false;
    ClosePrinter(h);
    if (!model.empty()) {
        const DWORD rc = WritePrinterValue(name, L"PrinterDriverData", L"Model", REG_SZ, model.c_str(),
                                           static_cast<DWORD>((model.size() + 1) * sizeof(WCHAR)));
        if (rc != ERROR_SUCCESS) { SetLastError(rc); return false; }
    }
    if (!media.empty()) {
        std::wstring multi = media;
        multi.append(2, L'\0');
        const DWORD rc = WritePrinterValue(name, L"DsDriver", L"printMediaReady", REG_MULTI_SZ, multi.data(),
                                           static_cast<DWORD>(multi.size() * sizeof(WCHAR)));
        if (rc != ERROR_SUCCESS) { SetLastError(rc); return false; }
    }
    return true;
}

}  // namespace oemhost
