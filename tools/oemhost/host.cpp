#include "host.h"

#include <cstring>

namespace oemhost {

namespace {

const CLSID kPluginClass = { 0xABCE80D7, 0x9F46, 0x11D1, { 0x88, 0x2A, 0x00, 0xC0, 0x4F, 0xB9, 0x61, 0xEC } };
const IID kIidOemUi = { 0xC6A7A9D0, 0x774C, 0x11D1, { 0x94, 0x7F, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };
const IID kIidDriverUi = { 0x92B05D50, 0x78BC, 0x11D1, { 0x94, 0x80, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };

// The driver core's helper interface handed to PublishDriverInterface. The plug-in only keeps a
// reference; the helper methods answer E_NOTIMPL in case anything ever calls them.
class DriverUiHelper : public IUnknown {
public:
    virtual ~DriverUiHelper() = default;
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override
    {
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, kIidDriverUi)) {
            *ppv = this;
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return InterlockedIncrement(&refs_); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG n = InterlockedDecrement(&refs_);
        if (n == 0) delete this;
        return n;
    }
    virtual HRESULT STDMETHODCALLTYPE DrvGetDriverSetting(PVOID, PCSTR, PVOID, DWORD, PDWORD, PDWORD) { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE DrvUpgradeRegistrySetting(HANDLE, PCSTR, PCSTR) { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE DrvUpdateUISetting(PVOID, PVOID, DWORD, DWORD) { return E_NOTIMPL; }

private:
    LONG refs_ = 1;
};

OEMUIOBJ g_oemUiObject = { sizeof(OEMUIOBJ), nullptr };

// A plain page of the driver core's own, shown when the plug-in adds none.
HPROPSHEETPAGE CreateCorePage()
{
    // Static: the sheet reads the template when it creates the page, not when it is described.
    static struct {
        DLGTEMPLATE t;
        WORD menu, cls, title;
        WORD pointSize;
        WCHAR font[13];
    } tmpl = {};
    tmpl.t.style = DS_SETFONT | WS_CHILD | WS_CAPTION;
    tmpl.t.cx = 252;
    tmpl.t.cy = 218;
    tmpl.pointSize = 8;
    memcpy(tmpl.font, L"MS Shell Dlg", sizeof(L"MS Shell Dlg"));
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof page;
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.pResource = &tmpl.t;
    page.pszTitle = L"General";
    page.pfnDlgProc = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
    return CreatePropertySheetPageW(&page);   // copies the template
}

}  // namespace

void PumpMessages(DWORD ms)
{
    const DWORD until = GetTickCount() + ms;
    for (;;) {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        const DWORD now = GetTickCount();
        if (static_cast<LONG>(until - now) <= 0) break;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, until - now, QS_ALLINPUT);
    }
}

DriverCoreHost::DriverCoreHost()
{
    INITCOMMONCONTROLSEX icc = { sizeof icc, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES };
    InitCommonControlsEx(&icc);
}

DriverCoreHost::~DriverCoreHost()
{
    if (sheetOpen_) CloseSheet(0);
    if (plugin_) plugin_->Release();
    if (driverUi_) driverUi_->Release();
    // The library stays loaded: a sheet's windows may still be tearing down.
}

bool DriverCoreHost::Load(const std::wstring& pluginPath)
{
    module_ = LoadLibraryW(pluginPath.c_str());
    if (module_ == nullptr) {
        error_ = L"cannot load " + pluginPath;
        return false;
    }
    using GetClassObjectFn = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    auto getClassObject = reinterpret_cast<GetClassObjectFn>(reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    if (getClassObject == nullptr) {
        error_ = L"no DllGetClassObject";
        return false;
    }
    IClassFactory* factory = nullptr;
    if (FAILED(getClassObject(kPluginClass, IID_IClassFactory, reinterpret_cast<void**>(&factory)))) {
        error_ = L"DllGetClassObject failed";
        return false;
    }
    const HRESULT hr = factory->CreateInstance(nullptr, kIidOemUi, reinterpret_cast<void**>(&plugin_));
    factory->Release();
    if (FAILED(hr)) {
        error_ = L"CreateInstance failed";
        return false;
    }
    driverUi_ = new DriverUiHelper;
    if (FAILED(plugin_->PublishDriverInterface(driverUi_))) {
        error_ = L"PublishDriverInterface failed";
        return false;
    }
    return true;
}

HRESULT DriverCoreHost::CommonUIProp(SheetKind kind, const std::wstring& printer)
{
    driverItemNames_ = { L"Paper Size", L"Copy Count", L"Print Quality" };
    driverItems_.assign(driverItemNames_.size(), OPTITEM{});
    for (size_t i = 0; i < driverItems_.size(); ++i) {
        driverItems_[i].cbSize = sizeof(OPTITEM);
        driverItems_[i].pName = const_cast<WCHAR*>(driverItemNames_[i].c_str());
        driverItems_[i].Level = 1;
    }
    OEMCUIPPARAM param = {};
    param.cbSize = sizeof param;
    param.poemuiobj = &g_oemUiObject;
    param.pPrinterName = const_cast<WCHAR*>(printer.c_str());
    param.hModule = module_;
    param.pDrvOptItems = driverItems_.data();
    param.cDrvOptItems = static_cast<DWORD>(driverItems_.size());
    return plugin_->CommonUIProp(kind == SheetKind::Document ? OEMCUIP_DOCPROP : OEMCUIP_PRNPROP, &param);
}

LONG_PTR CALLBACK DriverCoreHost::ComPropSheet(HANDLE hComPropSheet, UINT function, LPARAM lParam1, LPARAM)
{
    auto* self = static_cast<DriverCoreHost*>(hComPropSheet);
    if (function != CPSFUNC_ADD_PROPSHEETPAGEW || lParam1 == 0) return 0;
    const auto* description = reinterpret_cast<const PROPSHEETPAGEW*>(lParam1);
    self->pageDescriptions_.push_back(*description);
    if (self->refuseAfter_ >= 0 && static_cast<int>(self->pages_.size()) >= self->refuseAfter_) return 0;
    HPROPSHEETPAGE page = CreatePropertySheetPageW(description);
    if (page == nullptr) return 0;
    self->pages_.push_back(page);
    return reinterpret_cast<LONG_PTR>(page);
}

HRESULT DriverCoreHost::CallReason(WORD reason, LPARAM lParam)
{
    info_.Reason = reason;
    return kind_ == SheetKind::Document ? plugin_->DocumentPropertySheets(&info_, lParam)
                                        : plugin_->DevicePropertySheets(&info_, lParam);
}

HRESULT DriverCoreHost::InitSheet(SheetKind kind, const std::wstring& printer, HWND owner)
{
    kind_ = kind;
    printerName_ = printer;
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &printer_, nullptr)) {
        error_ = L"OpenPrinter failed for " + printer;
        return HRESULT_FROM_WIN32(GetLastError());
    }
    heap_ = HeapCreate(0, 0, 0);
    const LONG dmSize = DocumentPropertiesW(nullptr, printer_, const_cast<WCHAR*>(printer.c_str()), nullptr, nullptr, 0);
    if (dmSize > 0) {
        devmode_.assign(static_cast<size_t>(dmSize), 0);
        DocumentPropertiesW(nullptr, printer_, const_cast<WCHAR*>(printer.c_str()),
                            reinterpret_cast<DEVMODEW*>(devmode_.data()), nullptr, DM_OUT_BUFFER);
    }

    psParam_ = {};
    psParam_.cbSize = sizeof psParam_;
    psParam_.poemuiobj = &g_oemUiObject;
    psParam_.hPrinter = printer_;
    psParam_.pPrinterName = const_cast<WCHAR*>(printerName_.c_str());
    psParam_.hModule = module_;
    psParam_.hOEMHeap = heap_;
    psParam_.pPublicDM = devmode_.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(devmode_.data());

    info_ = {};
    info_.cbSize = sizeof info_;
    info_.Version = PROPSHEETUI_INFO_VERSION;
    info_.hComPropSheet = this;
    info_.pfnComPropSheet = &DriverCoreHost::ComPropSheet;
    info_.lParamInit = reinterpret_cast<LPARAM>(&psParam_);
    pages_.clear();
    pageDescriptions_.clear();

    initHr_ = CallReason(PROPSHEETUI_REASON_INIT, info_.lParamInit);
    initResult_ = static_cast<LONG_PTR>(info_.Result);
    sheetOpen_ = true;

    PROPSHEETUI_INFO_HEADER header = {};
    header.cbSize = sizeof header;
    header.hWndParent = owner;
    header.hInst = GetModuleHandleW(nullptr);
    CallReason(PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header));
    title_ = header.pTitle ? header.pTitle : L"";
    return initHr_;
}

HWND DriverCoreHost::ShowSheet(HWND owner)
{
    std::vector<HPROPSHEETPAGE> pages = pages_;
    if (pages.empty()) pages.push_back(CreateCorePage());
    const std::wstring caption = printerName_ + (kind_ == SheetKind::Document ? L" Printing Preferences" : L" Properties");
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof sheet;
    sheet.dwFlags = PSH_MODELESS;
    sheet.hwndParent = owner;
    sheet.pszCaption = caption.c_str();
    sheet.nPages = static_cast<UINT>(pages.size());
    sheet.phpage = pages.data();
    sheet_ = reinterpret_cast<HWND>(PropertySheetW(&sheet));
    if (sheet_ == nullptr || sheet_ == reinterpret_cast<HWND>(-1)) {
        sheet_ = nullptr;
        error_ = L"PropertySheet failed";
        return nullptr;
    }
    ShowWindow(sheet_, SW_SHOW);
    PumpMessages(50);
    return sheet_;
}

HWND DriverCoreHost::OpenSheet(SheetKind kind, const std::wstring& printer, HWND owner)
{
    InitSheet(kind, printer, owner);
    if (!sheetOpen_) return nullptr;
    return ShowSheet(owner);
}

HWND DriverCoreHost::Page(int index) const { return sheet_ ? PropSheet_IndexToHwnd(sheet_, index) : nullptr; }

bool DriverCoreHost::SelectPage(int index)
{
    if (!sheet_) return false;
    const BOOL ok = PropSheet_SetCurSel(sheet_, nullptr, index);
    PumpMessages(20);
    return ok != FALSE;
}

int DriverCoreHost::PageCount() const
{
    if (!sheet_) return 0;
    return TabCtrl_GetItemCount(PropSheet_GetTabControl(sheet_));
}

bool DriverCoreHost::Apply()
{
    if (!sheet_) return false;
    const BOOL ok = PropSheet_Apply(sheet_);
    PumpMessages(20);
    return ok != FALSE;
}

void DriverCoreHost::PressOk()
{
    if (!sheet_) return;
    PropSheet_PressButton(sheet_, PSBTN_OK);
    PumpMessages(50);
}

void DriverCoreHost::PressCancel()
{
    if (!sheet_) return;
    PropSheet_PressButton(sheet_, PSBTN_CANCEL);
    PumpMessages(50);
}

void DriverCoreHost::RunUntilClosed()
{
    MSG msg;
    while (sheet_ && PropSheet_GetCurrentPageHwnd(sheet_) != nullptr && GetMessageW(&msg, nullptr, 0, 0) > 0) {
        if (!PropSheet_IsDialogMessage(sheet_, &msg)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }
}

void DriverCoreHost::CloseSheet(LONG_PTR result)
{
    if (!sheetOpen_) return;
    if (sheet_) {
        DestroyWindow(sheet_);
        sheet_ = nullptr;
        PumpMessages(10);
    }
    SETRESULT_INFO setResult = {};
    setResult.cbSize = sizeof setResult;
    setResult.Result = result;
    CallReason(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&setResult));
    CallReason(PROPSHEETUI_REASON_DESTROY, 0);
    sheetOpen_ = false;
    if (printer_) {
        ClosePrinter(printer_);
        printer_ = nullptr;
    }
    if (heap_) {
        HeapDestroy(heap_);
        heap_ = nullptr;
    }
}

HRESULT DriverCoreHost::PrinterEvent(const std::wstring& printer, INT event, DWORD flags, LPARAM lParam)
{
    return plugin_->PrinterEvent(const_cast<WCHAR*>(printer.c_str()), event, flags, lParam);
}

HRESULT DriverCoreHost::DriverEvent(DWORD event, DWORD level, LPBYTE info, LPARAM lParam)
{
    return plugin_->DriverEvent(event, level, info, lParam);
}

}  // namespace oemhost
