// oemhost: the driver-core stand-in as a program.
//
//   oemhost install  PRINTER [MODEL [MEDIA]]   add the queue, then raise the install events
//   oemhost document PRINTER [options]         Printing Preferences
//   oemhost device   PRINTER [options]         Printer Properties
//   oemhost event    PRINTER NUMBER            PrinterEvent with that event number
//   oemhost prepare-fonts                      CJK font substitutes for this Wine prefix
//
// Sheet options: --screenshots DIR (a PNG of every page, then the sheet is cancelled),
// --name PREFIX (file name prefix of the screenshots), --language-index N (store N as the page
// language choice before opening), --ok (press OK instead of cancelling after the tour).
// Without --screenshots the sheet stays open until the user closes it.
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "fonts.h"
#include "forms_store.h"
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
                     L"       oemhost event PRINTER NUMBER\n"
                     L"       oemhost prepare-fonts\n");
    return 2;
}

// A modal dialog opened from a page runs its own window loop; this timer, dispatched by that loop,
// photographs the dialog and closes it.
struct ModalCapture {
    HWND sheet = nullptr;
    std::wstring file;
    bool saved = false;
};
ModalCapture g_capture;

BOOL CALLBACK FindModal(HWND window, LPARAM found)
{
    WCHAR cls[16];
    if (window != g_capture.sheet && IsWindowVisible(window) && GetClassNameW(window, cls, 16) &&
        wcscmp(cls, L"#32770") == 0) {
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    return TRUE;
}

void CALLBACK CaptureModal(HWND, UINT, UINT_PTR id, DWORD)
{
    HWND modal = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindModal, reinterpret_cast<LPARAM>(&modal));
    if (modal == nullptr) return;   // not up yet: the next tick looks again
    KillTimer(nullptr, id);
    SetWindowPos(modal, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    RedrawWindow(modal, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    oemhost::PumpMessages(150);
    g_capture.saved = oemhost::SaveWindowPng(modal, g_capture.file);
    PostMessageW(modal, WM_COMMAND, IDCANCEL, 0);
}

// Clicks `button` on `page` and photographs the modal dialog it opens.
bool CaptureDialogOfButton(HWND sheet, HWND page, int button, const std::wstring& file)
{
    g_capture = { sheet, file, false };
    SetTimer(nullptr, 0, 100, CaptureModal);
    SendMessageW(GetDlgItem(page, button), BM_CLICK, 0, 0);
    return g_capture.saved;
}

// A dialog template shown on its own, for dialogs no page opens yet.
bool CaptureTemplate(HWND owner, HMODULE plugin, WORD templateId, const std::wstring& file)
{
    HWND dialog = CreateDialogParamW(plugin, MAKEINTRESOURCEW(templateId), owner,
                                     [](HWND, UINT msg, WPARAM, LPARAM) -> INT_PTR { return msg == WM_INITDIALOG; }, 0);
    if (dialog == nullptr) return false;
    SetWindowPos(dialog, HWND_TOPMOST, 40, 40, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    oemhost::PumpMessages(150);
    const bool saved = oemhost::SaveWindowPng(dialog, file);
    DestroyWindow(dialog);
    return saved;
}

bool LoadHost(oemhost::DriverCoreHost& host)
{
    if (host.Load(PluginPath())) {
        // Wine's spooler only pretends to keep paper forms; the stand-in keeps them for the plug-in
        // instead, in the prefix's registry, so the forms an install adds show in later sheets.
        forms::InstallPersistent(GetModuleHandleW(L"UIQVRPOS.dll"), L"Software\\ORLIVEX\\oemhost\\Forms");
        return true;
    }
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
    if (kind == oemhost::SheetKind::Document && host.PageCount() == 6) {
        // The modal dialogs of the document sheet: the paper dialog from the Layout page, and the
        // barcode and dithering dialogs as their templates.
        const auto file = [&](const wchar_t* what) {
            return screenshots + L"\\" + name + L"-dialog-" + what + L".png";
        };
        host.SelectPage(0);
        if (CaptureDialogOfButton(sheet, host.Page(0), 1039, file(L"153"))) ++saved;
        HMODULE plugin = GetModuleHandleW(L"UIQVRPOS.dll");
        for (WORD id : { 125, 174, 212 })
            if (CaptureTemplate(sheet, plugin, id, file(std::to_wstring(id).c_str()))) ++saved;
        wprintf(L"oemhost: %d screenshot(s) of %ls\n", saved, name.c_str());
    }
    if (pressOk) host.PressOk(); else host.PressCancel();
    host.CloseSheet(pressOk ? 1 : 0);
    return saved > 0 ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc == 2 && std::wstring(argv[1]) == L"prepare-fonts") {
        const bool ready = oemhost::CjkFacesRender() || oemhost::SubstituteCjkFaces();
        wprintf(L"oemhost: CJK fonts %ls\n", ready ? L"ready" : L"not available (install a CJK font package)");
        return ready ? 0 : 1;
    }
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
