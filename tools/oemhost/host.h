// A stand-in for the printer-driver core: loads the plug-in exactly as the Unidrv configuration
// module does and turns the pages it adds into a real property sheet.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>
#include <vector>

#include "oemui/oemcontract.h"

namespace oemhost {

enum class SheetKind { Document, Device };

struct DriverOption {
    std::wstring name;
    OPTITEM item;
};

class DriverCoreHost {
public:
    DriverCoreHost();
    ~DriverCoreHost();
    DriverCoreHost(const DriverCoreHost&) = delete;
    DriverCoreHost& operator=(const DriverCoreHost&) = delete;

    // LoadLibrary + DllGetClassObject + CreateInstance + PublishDriverInterface.
    bool Load(const std::wstring& pluginPath);
    IPrintOemUI* Plugin() const { return plugin_; }
    const std::wstring& Error() const { return error_; }

    // CommonUIProp with a few option items of the driver's own, as the driver core builds its tree;
    // returns the HRESULT and leaves the items for inspection.
    HRESULT CommonUIProp(SheetKind kind, const std::wstring& printer);
    const std::vector<OPTITEM>& DriverItems() const { return driverItems_; }

    // PROPSHEETUI_REASON_INIT and GET_INFO_HEADER, then a modeless PropertySheetW with the pages the
    // plug-in added. Returns the sheet window (null when the plug-in added no page: an empty sheet
    // is still shown). `initHr` receives the plug-in's answer to the initial call.
    HWND OpenSheet(SheetKind kind, const std::wstring& printer, HWND owner = nullptr);
    // The two halves of OpenSheet: the plug-in's initial and header calls, then the window.
    HRESULT InitSheet(SheetKind kind, const std::wstring& printer, HWND owner = nullptr);
    HWND ShowSheet(HWND owner = nullptr);
    // The pages as the plug-in described them (copies of its PROPSHEETPAGEW blocks).
    const std::vector<PROPSHEETPAGEW>& PageDescriptions() const { return pageDescriptions_; }
    // The OEM heap handed to the plug-in in OEMUIPSPARAM.
    HANDLE OemHeap() const { return heap_; }
    // Calls the sheet method with an arbitrary reason, as the driver core would.
    HRESULT CallReason(WORD reason, LPARAM lParam);
    HRESULT InitResult() const { return initHr_; }
    LONG_PTR InitResultValue() const { return initResult_; }
    size_t PagesAdded() const { return pages_.size(); }
    const std::vector<HPROPSHEETPAGE>& Pages() const { return pages_; }
    const std::wstring& SheetTitle() const { return title_; }
    const PROPSHEETUI_INFO& Info() const { return info_; }
    // How many CPSFUNC_ADD_PROPSHEETPAGEW calls to accept before refusing (default: all).
    void RefuseAfter(int acceptedPages) { refuseAfter_ = acceptedPages; }

    HWND Sheet() const { return sheet_; }
    HWND Page(int index) const;                 // page window, created on first selection
    bool SelectPage(int index);
    int PageCount() const;
    bool Apply();                               // PSM_APPLY: every created page gets PSN_APPLY
    void PressOk();
    void PressCancel();
    // Runs the window loop until the sheet is closed (interactive use).
    void RunUntilClosed();
    // Tears the sheet down: SET_RESULT with the sheet's result, then DESTROY.
    void CloseSheet(LONG_PTR result = 1);

    // Printer and driver events, as the spooler forwards them through the driver core.
    HRESULT PrinterEvent(const std::wstring& printer, INT event, DWORD flags, LPARAM lParam);
    HRESULT DriverEvent(DWORD event, DWORD level, LPBYTE info, LPARAM lParam);

private:
    static LONG_PTR CALLBACK ComPropSheet(HANDLE hComPropSheet, UINT function, LPARAM lParam1, LPARAM lParam2);

    HMODULE module_ = nullptr;
    IPrintOemUI* plugin_ = nullptr;
    IUnknown* driverUi_ = nullptr;
    std::wstring error_;
    std::vector<OPTITEM> driverItems_;
    std::vector<std::wstring> driverItemNames_;

    HANDLE printer_ = nullptr;
    std::wstring printerName_;
    HANDLE heap_ = nullptr;
    std::vector<BYTE> devmode_;
    OEMUIPSPARAM psParam_ = {};
    PROPSHEETUI_INFO info_ = {};
    SheetKind kind_ = SheetKind::Document;
    HRESULT initHr_ = E_FAIL;
    LONG_PTR initResult_ = 0;
    int refuseAfter_ = -1;
    std::vector<HPROPSHEETPAGE> pages_;
    std::vector<PROPSHEETPAGEW> pageDescriptions_;
    std::wstring title_;
    HWND sheet_ = nullptr;
    bool sheetOpen_ = false;
};

// Pumps pending window messages (and waits up to `ms` for more).
void PumpMessages(DWORD ms = 0);

// Saves what the screen shows of `window` as a PNG file (24-bit RGB).
bool SaveWindowPng(HWND window, const std::wstring& path);

}  // namespace oemhost
