// oemhost: the driver-core stand-in as a program.
//
//   oemhost install  PRINTER [MODEL [MEDIA]]   add the queue, then raise the install events
//   oemhost document PRINTER [options]         Printing Preferences
//   oemhost device   PRINTER [options]         Printer Properties
//   oemhost event    PRINTER NUMBER            PrinterEvent with that event number
//
// Sheet options: --screenshots DIR (a PNG of every page, then the sheet is cancelled),
// --name PREFIX (file name prefix of the screenshots), --language-index N (store N as the page
// language choice before opening), --ok (press OK instead of cancelling after the tour).
// Without --screenshots the sheet stays open until the user closes it.
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "host.h"
#include "printer_setup.h"

namespace {

std::wstring PluginPath()
{
    WCHAR exe[MAX_PATH];
    GetModuleFileNameW(nullptr, exe, MAX_PATH);
    std::wstring path = exe;
    path.resize(path.find_last_of(L'\\') + 1);
    return path + L"UIQVRPOS.dll";
}

int Usage()
{
    fwprintf(stderr, L"usage: oemhost install PRINTER [MODEL [MEDIA]]\n"
                     L"       oemhost document|device PRINTER [--screenshots DIR] [--name PREFIX] "
                     L"[--language-index N] [--ok]\n"
                     L"       oemhost event PRINTER NUMBER\n");
    return 2;
}

bool LoadHost(oemhost::DriverCoreHost& host)
{
    if (host.Load(PluginPath())) return true;
    fwprintf(stderr, L"oemhost: %ls\n", host.Error().c_str());
    return false;
}

// Stores the page-language choice (preference byte 28) in "MISC"; a printer that has no "MISC"
// yet gets it from the plug-in first, by opening and closing a sheet once.
bool SetLanguageIndex(oemhost::DriverCoreHost& host, const std::wstring& printer, BYTE index)
{
    const WCHAR key[] = L"PrinterDriverData\\Properties";
    for (int attempt = 0; attempt < 2; ++attempt) {
        HANDLE h = nullptr;
        PRINTER_DEFAULTSW all = { nullptr, nullptr, PRINTER_ALL_ACCESS };
        if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, &all)) return false;
        BYTE misc[99] = {};
        DWORD type = 0, needed = 0;
        const DWORD rc = GetPrinterDataExW(h, key, L"MISC", &type, misc, sizeof misc, &needed);
        if (rc == ERROR_SUCCESS) {
            misc[28] = index;
            const DWORD wrc = SetPrinterDataExW(h, key, L"MISC", REG_BINARY, misc, sizeof misc);
            ClosePrinter(h);
            return wrc == ERROR_SUCCESS;
        }
        ClosePrinter(h);
        if (host.OpenSheet(oemhost::SheetKind::Device, printer)) host.CloseSheet(0);
    }
    return false;
}

int RunSheet(oemhost::SheetKind kind, const std::wstring& printer, const std::vector<std::wstring>& options)
{
    std::wstring screenshots, name = L"sheet";
    bool pressOk = false;
    int languageIndex = -1;
    for (size_t i = 0; i < options.size(); ++i) {
        if (options[i] == L"--screenshots" && i + 1 < options.size()) screenshots = options[++i];
        else if (options[i] == L"--name" && i + 1 < options.size()) name = options[++i];
        else if (options[i] == L"--language-index" && i + 1 < options.size()) languageIndex = _wtoi(options[++i].c_str());
        else if (options[i] == L"--ok") pressOk = true;
        else return Usage();
    }
    oemhost::DriverCoreHost host;
    if (!LoadHost(host)) return 1;
    if (languageIndex >= 0 && !SetLanguageIndex(host, printer, static_cast<BYTE>(languageIndex))) {
        fwprintf(stderr, L"oemhost: cannot store the language index for %ls\n", printer.c_str());
        return 1;
    }
    const HRESULT uiHr = host.CommonUIProp(kind, printer);
    HWND sheet = host.OpenSheet(kind, printer);
    const wchar_t* kindName = kind == oemhost::SheetKind::Document ? L"document" : L"device";
    wprintf(L"oemhost: %ls sheet for %ls: CommonUIProp 0x%08lx, init 0x%08lx, %zu page(s) added, title \"%ls\"\n",
            kindName, printer.c_str(), static_cast<unsigned long>(uiHr), static_cast<unsigned long>(host.InitResult()),
            host.PagesAdded(), host.SheetTitle().c_str());
    if (sheet == nullptr) {
        fwprintf(stderr, L"oemhost: %ls\n", host.Error().c_str());
        host.CloseSheet(0);
        return 1;
    }
    if (screenshots.empty()) {
        host.RunUntilClosed();
        host.CloseSheet(1);
        return 0;
    }
    CreateDirectoryW(screenshots.c_str(), nullptr);
    SetWindowPos(sheet, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    int saved = 0;
    for (int i = 0; i < host.PageCount(); ++i) {
        host.SelectPage(i);
        RedrawWindow(sheet, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        oemhost::PumpMessages(150);
        WCHAR file[MAX_PATH];
        swprintf(file, MAX_PATH, L"%ls\\%ls-%ls-%d.png", screenshots.c_str(), name.c_str(), kindName, i + 1);
        if (oemhost::SaveWindowPng(sheet, file)) {
            ++saved;
            wprintf(L"oemhost: saved %ls\n", file);
        }
    }
    if (pressOk) host.PressOk(); else host.PressCancel();
    host.CloseSheet(pressOk ? 1 : 0);
    return saved > 0 ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc < 3) return Usage();
    const std::wstring command = argv[1], printer = argv[2];
    std::vector<std::wstring> rest(argv + 3, argv + argc);

    if (command == L"install") {
        const std::wstring model = rest.size() > 0 ? rest[0] : L"ORLIVEX QM-101";
        const std::wstring media = rest.size() > 1 ? rest[1] : L"Roll 80 x 297 mm[R80]";
        if (!oemhost::InstallPrinter(printer, model, media)) {
            fwprintf(stderr, L"oemhost: cannot install %ls (%lu)\n", printer.c_str(), GetLastError());
            return 1;
        }
        oemhost::DriverCoreHost host;
        if (!LoadHost(host)) return 1;
        // What the spooler raises when a driver and then a queue are installed.
        host.DriverEvent(DRIVER_EVENT_INITIALIZE, 3, nullptr, 0);
        const HRESULT hr = host.PrinterEvent(printer, PRINTER_EVENT_INITIALIZE, PRINTER_EVENT_FLAG_NO_UI, 0);
        wprintf(L"oemhost: installed %ls (%ls), PRINTER_EVENT_INITIALIZE 0x%08lx\n", printer.c_str(), model.c_str(),
                static_cast<unsigned long>(hr));
        return 0;
    }
    if (command == L"document") return RunSheet(oemhost::SheetKind::Document, printer, rest);
    if (command == L"device") return RunSheet(oemhost::SheetKind::Device, printer, rest);
    if (command == L"event" && rest.size() == 1) {
        oemhost::DriverCoreHost host;
        if (!LoadHost(host)) return 1;
        const HRESULT hr = host.PrinterEvent(printer, _wtoi(rest[0].c_str()), 0, 0);
        wprintf(L"oemhost: PrinterEvent %ls -> 0x%08lx\n", rest[0].c_str(), static_cast<unsigned long>(hr));
        return 0;
    }
    return Usage();
}
