// Shared by every page and dialog test: a person's hands on the controls, the stored
// device mode, a driver whose DocumentPropertiesW behaves as on Windows, and a crash watch.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include "host.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace page_bench {

// ---- the device mode ----------------------------------------------------------------------

// Wine's DocumentPropertiesW answers a per-process copy of the device mode that later
// SetPrinterW calls do not update, so a process that writes several times would read stale
// values back. This stand-in answers as a Windows driver does: the queue's stored default device
// mode for DM_OUT_BUFFER, the caller's own (accepted as valid) for DM_IN_BUFFER | DM_OUT_BUFFER.
// Routes `module`'s DocumentPropertiesW to it; `Uninstall` puts Wine's back.
bool InstallDevModeDriver(HMODULE module);
void UninstallDevModeDriver(HMODULE module);
// Everything the page tests put between the plug-in and Wine's spooler: the forms store, the
// spooler fault stand-ins and the device-mode driver above. Once per test program.
void InstallPageStandIns();
// DM_IN_BUFFER | DM_OUT_BUFFER calls seen by the stand-in.
int MergeCalls();

// The default device mode stored with the queue (GetPrinterW level 2), empty if none.
std::vector<BYTE> StoredDevModeBytes(const std::wstring& printer);
inline const DEVMODEW* AsDevMode(const std::vector<BYTE>& bytes)
{
    return bytes.size() >= sizeof(DEVMODEW) ? reinterpret_cast<const DEVMODEW*>(bytes.data()) : nullptr;
}
// Stores the driver's device mode, changed by `edit`, as the queue's default (SetPrinterW level 2).
bool StoreDevMode(const std::wstring& printer, const std::function<void(DEVMODEW&)>& edit);

// ---- a person at the dialog ----------------------------------------------------------------

HWND Item(HWND dlg, int id);
std::wstring Text(HWND dlg, int id);
// Focus into the edit, select everything, type `text` key by key.
void Type(HWND dlg, int id, const std::wstring& text);
// Moves the focus to control `id` (the previous control gets its kill-focus).
void FocusOn(HWND dlg, int id);
void Click(HWND dlg, int id);
bool IsChecked(HWND dlg, int id);
bool IsEnabled(HWND dlg, int id);
// Picks item `index` of a drop-down list as the list itself reports it (selection change).
void Pick(HWND dlg, int id, int index);
// Opens a drop-down list, picks `index`, closes it again.
void DropAndPick(HWND dlg, int id, int index);
int Selection(HWND dlg, int id);
std::vector<std::wstring> ComboItems(HWND dlg, int id);
std::vector<std::wstring> ListBoxItems(HWND dlg, int id);
// One click on an arrow of a scroll bar used as a spin: the code, then SB_ENDSCROLL.
void Spin(HWND dlg, int barId, int code);
// The property sheet's Apply button: whether it is enabled, and pressing it as a person does
// (the sheet applies every page and greys the button again).
bool ApplyEnabled(HWND sheet);
void PressApply(HWND sheet);

// ---- windows other threads own ------------------------------------------------------------

// Waits up to `ms` for a top-level window of this process that satisfies `match`.
HWND WaitForWindow(const std::function<bool(HWND)>& match, DWORD ms = 5000);
// A dialog window whose caption is `caption`.
HWND WaitForDialog(const std::wstring& caption, DWORD ms = 5000);
// A message box (any dialog with a static text) other than `except`.
struct MessageBoxSeen {
    HWND window = nullptr;
    std::wstring caption;
    std::wstring text;
};
MessageBoxSeen WaitForMessageBox(const std::wstring& caption, DWORD ms = 5000);
// Presses a button of a window another thread owns, without waiting for what it starts.
void PressLater(HWND window, int id);

// Runs `trigger` on this (the UI) thread, where it may block in a modal loop, while `script`
// runs on a second thread attached to this thread's input, so it can type and move the focus.
void RunModal(const std::function<void()>& trigger, const std::function<void()>& script);

// ---- crash watch --------------------------------------------------------------------------

// Wine swallows exceptions raised inside window procedures; this counts them instead.
class CrashWatch {
public:
    CrashWatch();
    ~CrashWatch();
    static int Crashes();

private:
    void* handler_;
};

// ---- a page in a real sheet ---------------------------------------------------------------

class Sheet;

// The fixture every page and dialog test derives from: the stand-ins installed once, a fresh test
// printer of `model` per test, the plug-in loaded by the driver-core stand-in, the log cleared,
// and a crash watch that fails the test when anything was raised inside the plug-in.
class SheetTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { InstallPageStandIns(); }
    void SetUp() override;
    void TearDown() override;

    // Makes the test's printer; call from SetUp or first thing in a test (SetUp makes a QM-101).
    void UsePrinter(const std::wstring& model, const std::wstring& media = L"Roll 80 x 297 mm[R80]");

    // Printer data under the plug-in's properties key (the value as stored, or empty).
    void Store(const std::wstring& value, DWORD type, const std::vector<BYTE>& bytes,
               const std::wstring& key = L"PrinterDriverData\\Properties");
    void StoreMisc(const std::vector<BYTE>& misc) { Store(L"MISC", REG_BINARY, misc); }
    std::vector<BYTE> Stored(const std::wstring& value, DWORD* type = nullptr);
    std::vector<BYTE> Misc() { return Stored(L"MISC"); }

    // Opens the document or device sheet and selects page `index` (created on selection).
    HWND Open(oemhost::SheetKind kind, int index);
    // PSM_CHANGED messages the sheet received from pages since it opened (or since reset).
    int ChangedCount() const;
    void ResetChanged();

    std::wstring printer;
    std::unique_ptr<oemhost::DriverCoreHost> host;
    HWND sheet = nullptr;
    HWND page = nullptr;

private:
    CrashWatch watch_;
    int crashesBefore_ = 0;
};

}  // namespace page_bench
