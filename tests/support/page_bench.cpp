#include "page_bench.h"

#include <commctrl.h>
#include <prsht.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "bench.h"
#include "forms_store.h"
#include "host.h"
#include "import_patch.h"
#include "spooler_faults.h"

namespace page_bench {

namespace {

using DocumentPropertiesFn = LONG(WINAPI*)(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW, DWORD);

DocumentPropertiesFn RealDocumentProperties()
{
    static DocumentPropertiesFn real = reinterpret_cast<DocumentPropertiesFn>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"winspool.drv"), "DocumentPropertiesW")));
    return real;
}

std::atomic<int> mergeCalls{ 0 };

std::vector<BYTE> DevModeOf(HANDLE printer)
{
    DWORD needed = 0;
    GetPrinterW(printer, 2, nullptr, 0, &needed);
    if (needed == 0) return {};
    std::vector<BYTE> info(needed);
    if (!GetPrinterW(printer, 2, info.data(), needed, &needed)) return {};
    const DEVMODEW* dm = reinterpret_cast<PRINTER_INFO_2W*>(info.data())->pDevMode;
    if (dm == nullptr) return {};
    const BYTE* p = reinterpret_cast<const BYTE*>(dm);
    return std::vector<BYTE>(p, p + dm->dmSize + dm->dmDriverExtra);
}

LONG WINAPI WindowsLikeDocumentProperties(HWND window, HANDLE printer, LPWSTR name, PDEVMODEW out, PDEVMODEW in,
                                          DWORD mode)
{
    const std::vector<BYTE> stored = DevModeOf(printer);
    if (stored.empty()) return RealDocumentProperties()(window, printer, name, out, in, mode);
    if (mode == 0) return static_cast<LONG>(stored.size());
    if ((mode & DM_IN_BUFFER) && in != nullptr) {
        ++mergeCalls;
        if (out != nullptr && out != in) memmove(out, in, in->dmSize + in->dmDriverExtra);
        return IDOK;
    }
    if ((mode & DM_OUT_BUFFER) && out != nullptr) memcpy(out, stored.data(), stored.size());
    return IDOK;
}

bool SameProcess(HWND window)
{
    DWORD pid = 0;
    GetWindowThreadProcessId(window, &pid);
    return pid == GetCurrentProcessId();
}

std::wstring ClassOf(HWND window)
{
    WCHAR name[64] = L"";
    GetClassNameW(window, name, 64);
    return name;
}

std::wstring WindowText(HWND window)
{
    WCHAR text[1024] = L"";
    GetWindowTextW(window, text, 1024);
    return text;
}

std::atomic<int> crashes{ 0 };

LONG CALLBACK CountCrash(EXCEPTION_POINTERS* info)
{
    switch (info->ExceptionRecord->ExceptionCode) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_STACK_OVERFLOW:
    case 0xC0000374:   // heap corruption
    case 0xC0000409:   // stack buffer overrun
        ++crashes;
        break;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void InstallPageStandIns()
{
    ASSERT_NE(nullptr, bench::Plugin());
    forms::Install(bench::Plugin());
    spooler_faults::Install(bench::Plugin());
    ASSERT_TRUE(InstallDevModeDriver(bench::Plugin()));
}

bool InstallDevModeDriver(HMODULE module)
{
    return oemhost::PatchImport(module, "winspool.drv", "DocumentPropertiesW",
                              reinterpret_cast<void*>(WindowsLikeDocumentProperties)) != nullptr;
}

void UninstallDevModeDriver(HMODULE module)
{
    oemhost::PatchImport(module, "winspool.drv", "DocumentPropertiesW", reinterpret_cast<void*>(RealDocumentProperties()));
}

int MergeCalls() { return mergeCalls; }

std::vector<BYTE> StoredDevModeBytes(const std::wstring& printer)
{
    HANDLE h = nullptr;
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, nullptr)) return {};
    std::vector<BYTE> bytes = DevModeOf(h);
    ClosePrinter(h);
    return bytes;
}

bool StoreDevMode(const std::wstring& printer, const std::function<void(DEVMODEW&)>& edit)
{
    PRINTER_DEFAULTSW all = { nullptr, nullptr, PRINTER_ALL_ACCESS };
    HANDLE h = nullptr;
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, &all)) return false;
    WCHAR* name = const_cast<WCHAR*>(printer.c_str());
    std::vector<BYTE> dm = DevModeOf(h);
    if (dm.empty()) {
        const LONG size = RealDocumentProperties()(nullptr, h, name, nullptr, nullptr, 0);
        if (size > 0) {
            dm.assign(size, 0);
            if (RealDocumentProperties()(nullptr, h, name, reinterpret_cast<DEVMODEW*>(dm.data()), nullptr,
                                         DM_OUT_BUFFER) < 0)
                dm.clear();
        }
    }
    bool ok = false;
    DWORD needed = 0;
    GetPrinterW(h, 2, nullptr, 0, &needed);
    std::vector<BYTE> info(needed);
    if (!dm.empty() && needed > 0 && GetPrinterW(h, 2, info.data(), needed, &needed)) {
        edit(*reinterpret_cast<DEVMODEW*>(dm.data()));
        auto* pi = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
        pi->pDevMode = reinterpret_cast<DEVMODEW*>(dm.data());
        pi->pSecurityDescriptor = nullptr;
        ok = SetPrinterW(h, 2, info.data(), 0) != FALSE;
    }
    ClosePrinter(h);
    return ok;
}

HWND Item(HWND dlg, int id) { return GetDlgItem(dlg, id); }

std::wstring Text(HWND dlg, int id) { return WindowText(Item(dlg, id)); }

void FocusOn(HWND dlg, int id)
{
    SetFocus(Item(dlg, id));
    oemhost::PumpMessages();
}

void Type(HWND dlg, int id, const std::wstring& text)
{
    const HWND edit = Item(dlg, id);
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, 0, -1);
    if (text.empty()) SendMessageW(edit, WM_CHAR, VK_BACK, 0);
    for (WCHAR c : text) SendMessageW(edit, WM_CHAR, c, 0);
    oemhost::PumpMessages();
}

void Click(HWND dlg, int id)
{
    SendMessageW(Item(dlg, id), BM_CLICK, 0, 0);
    oemhost::PumpMessages();
}

bool IsChecked(HWND dlg, int id) { return SendMessageW(Item(dlg, id), BM_GETCHECK, 0, 0) == BST_CHECKED; }

bool IsEnabled(HWND dlg, int id) { return IsWindowEnabled(Item(dlg, id)) != FALSE; }

void Pick(HWND dlg, int id, int index)
{
    const HWND list = Item(dlg, id);
    SendMessageW(list, CB_SETCURSEL, index, 0);
    SendMessageW(dlg, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    oemhost::PumpMessages();
}

void DropAndPick(HWND dlg, int id, int index)
{
    const HWND list = Item(dlg, id);
    SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);   // the list itself reports CBN_DROPDOWN
    oemhost::PumpMessages();
    Pick(dlg, id, index);
    SendMessageW(list, CB_SHOWDROPDOWN, FALSE, 0);
    oemhost::PumpMessages();
}

int Selection(HWND dlg, int id) { return static_cast<int>(SendMessageW(Item(dlg, id), CB_GETCURSEL, 0, 0)); }

namespace {
// The texts of a combo box or list box, through that control's count, length and text messages.
std::vector<std::wstring> Items(HWND list, UINT countMsg, UINT lengthMsg, UINT textMsg)
{
    std::vector<std::wstring> items;
    const LRESULT n = SendMessageW(list, countMsg, 0, 0);
    for (LRESULT i = 0; i < n; ++i) {
        WCHAR text[512] = L"";
        if (SendMessageW(list, lengthMsg, i, 0) < 511) SendMessageW(list, textMsg, i, reinterpret_cast<LPARAM>(text));
        items.push_back(text);
    }
    return items;
}
}  // namespace

std::vector<std::wstring> ComboItems(HWND dlg, int id)
{
    return Items(Item(dlg, id), CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT);
}

std::vector<std::wstring> ListBoxItems(HWND dlg, int id)
{
    return Items(Item(dlg, id), LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT);
}

void Spin(HWND dlg, int barId, int code)
{
    const HWND bar = Item(dlg, barId);
    SendMessageW(dlg, WM_VSCROLL, MAKEWPARAM(code, 0), reinterpret_cast<LPARAM>(bar));
    SendMessageW(dlg, WM_VSCROLL, MAKEWPARAM(SB_ENDSCROLL, 0), reinterpret_cast<LPARAM>(bar));
    oemhost::PumpMessages();
}

constexpr int kApplyButton = 0x3021;

bool ApplyEnabled(HWND sheet)
{
    return IsWindowEnabled(GetDlgItem(sheet, kApplyButton)) != FALSE;
}

void PressApply(HWND sheet)
{
    SendMessageW(GetDlgItem(sheet, kApplyButton), BM_CLICK, 0, 0);
    oemhost::PumpMessages(20);
}

HWND WaitForWindow(const std::function<bool(HWND)>& match, DWORD ms)
{
    struct Search {
        const std::function<bool(HWND)>* match;
        HWND found;
    } search = { &match, nullptr };
    const DWORD until = GetTickCount() + ms;
    do {
        EnumWindows(
            [](HWND w, LPARAM p) -> BOOL {
                auto* s = reinterpret_cast<Search*>(p);
                if (SameProcess(w) && IsWindowVisible(w) && (*s->match)(w)) {
                    s->found = w;
                    return FALSE;
                }
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&search));
        if (search.found != nullptr) return search.found;
        Sleep(20);
    } while (static_cast<LONG>(until - GetTickCount()) > 0);
    return nullptr;
}

HWND WaitForDialog(const std::wstring& caption, DWORD ms)
{
    return WaitForWindow([&](HWND w) { return ClassOf(w) == L"#32770" && WindowText(w) == caption; }, ms);
}

MessageBoxSeen WaitForMessageBox(const std::wstring& caption, DWORD ms)
{
    MessageBoxSeen seen;
    seen.window = WaitForDialog(caption, ms);
    if (seen.window == nullptr) return seen;
    seen.caption = caption;
    for (HWND child = GetWindow(seen.window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (ClassOf(child) == L"Static") seen.text += WindowText(child);
    }
    return seen;
}

void PressLater(HWND window, int id)
{
    PostMessageW(GetDlgItem(window, id), BM_CLICK, 0, 0);
}

void RunModal(const std::function<void()>& trigger, const std::function<void()>& script)
{
    const DWORD uiThread = GetCurrentThreadId();
    std::atomic<bool> done{ false };
    std::thread driver([&] {
        AttachThreadInput(GetCurrentThreadId(), uiThread, TRUE);
        script();
        AttachThreadInput(GetCurrentThreadId(), uiThread, FALSE);
        done = true;
    });
    trigger();
    // The script may still be finishing after the modal loop ended; keep the UI thread answering.
    while (!done) oemhost::PumpMessages(20);
    driver.join();
}

CrashWatch::CrashWatch() : handler_(AddVectoredExceptionHandler(1, CountCrash)) {}
CrashWatch::~CrashWatch() { RemoveVectoredExceptionHandler(handler_); }
int CrashWatch::Crashes() { return crashes; }

}  // namespace page_bench

// ---- a page in a real sheet ----------------------------------------------------------------

namespace page_bench {
namespace {

int changedMessages = 0;

// Counts the PSM_CHANGED messages pages send to their sheet, then lets the sheet handle them.
LRESULT CALLBACK CountChanged(HWND window, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR)
{
    if (msg == PSM_CHANGED) ++changedMessages;
    return DefSubclassProc(window, msg, wParam, lParam);
}

}  // namespace

void SheetTest::SetUp()
{
    forms::Reset();
    spooler_faults::Reset();
    UsePrinter(L"ORLIVEX QM-101");
    host = std::make_unique<oemhost::DriverCoreHost>();
    ASSERT_TRUE(host->Load(L"UIQVRPOS.dll")) << host->Error().c_str();
    bench::ClearLog();
    crashesBefore_ = CrashWatch::Crashes();
}

void SheetTest::TearDown()
{
    if (host) host->CloseSheet();
    EXPECT_EQ(crashesBefore_, CrashWatch::Crashes()) << "an exception was raised inside the plug-in";
}

void SheetTest::UsePrinter(const std::wstring& model, const std::wstring& media)
{
    printer = bench::NewTestPrinter(L"Page", model, media);
    ASSERT_FALSE(printer.empty());
}

void SheetTest::Store(const std::wstring& value, DWORD type, const std::vector<BYTE>& bytes, const std::wstring& key)
{
    ASSERT_EQ(0u, bench::WritePrinterData(printer, key, value, type, bytes.data(), static_cast<DWORD>(bytes.size())))
        << "storing " << std::string(value.begin(), value.end());
}

std::vector<BYTE> SheetTest::Stored(const std::wstring& value, DWORD* type)
{
    return bench::ReadPrinterData(printer, value, type);
}

HWND SheetTest::Open(oemhost::SheetKind kind, int index)
{
    sheet = host->OpenSheet(kind, printer);
    if (sheet == nullptr) return nullptr;
    SetWindowSubclass(sheet, CountChanged, 1, 0);
    changedMessages = 0;
    host->SelectPage(index);
    page = host->Page(index);
    return page;
}

int SheetTest::ChangedCount() const { return changedMessages; }
void SheetTest::ResetChanged() { changedMessages = 0; }

}  // namespace page_bench
