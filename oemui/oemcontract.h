// The Unidrv OEM UI plug-in contract, declared from its published layouts (MinGW-w64 ships
// compstui.h and winddiui.h but not printoem.h / prcomoem.h).
#pragma once

#include <windows.h>
#include <winspool.h>
#include <compstui.h>
#include <winddiui.h>
#include <objbase.h>
#include <cstddef>

// Modes of IPrintOemCommon::GetInfo.
#define OEMGI_GETSIGNATURE        1
#define OEMGI_GETINTERFACEVERSION 2
#define OEMGI_GETVERSION          3
#define OEMGI_GETPUBLISHERINFO    4

// Modes of IPrintOemUI::CommonUIProp.
#define OEMCUIP_DOCPROP 1
#define OEMCUIP_PRNPROP 2

// IPrintOemUI::QueryColorProfile: what is asked for, and how the answer is given.
#define QCP_DEVICEPROFILE 0x0000
#define QCP_SOURCEPROFILE 0x0001
#define QCP_PROFILEMEMORY 0x00000001
#define QCP_PROFILEDISK   0x00000002

#ifndef PRINTER_ATTRIBUTE_RAW_ONLY
#define PRINTER_ATTRIBUTE_RAW_ONLY 0x00001000
#endif

// Parameter block of PRINTER_EVENT_ATTRIBUTES_CHANGED.
typedef struct _PRINTER_EVENT_ATTRIBUTES_INFO {
    DWORD cbSize;
    DWORD dwOldAttributes;
    DWORD dwNewAttributes;
} PRINTER_EVENT_ATTRIBUTES_INFO, *PPRINTER_EVENT_ATTRIBUTES_INFO;

typedef struct _OEMUIPROCS OEMUIPROCS, *POEMUIPROCS;   // opaque: the plug-in never calls back

typedef struct _OEMUIOBJ {
    DWORD       cbSize;
    POEMUIPROCS pOemUIProcs;
} OEMUIOBJ, *POEMUIOBJ;

typedef struct _OEMDMPARAM {
    DWORD     cbSize;
    PVOID     pdriverobj;
    HANDLE    hPrinter;
    HANDLE    hModule;
    PDEVMODEW pPublicDMIn;
    PDEVMODEW pPublicDMOut;
    PVOID     pOEMDMIn;
    PVOID     pOEMDMOut;
    DWORD     cbBufSize;
} OEMDMPARAM, *POEMDMPARAM;

typedef struct _OEMCUIPPARAM OEMCUIPPARAM, *POEMCUIPPARAM;
typedef LONG (APIENTRY *OEMCUIPCALLBACK)(PCPSUICBPARAM, POEMCUIPPARAM);

struct _OEMCUIPPARAM {
    DWORD           cbSize;
    POEMUIOBJ       poemuiobj;
    HANDLE          hPrinter;
    PWSTR           pPrinterName;
    HANDLE          hModule;
    HANDLE          hOEMHeap;
    PDEVMODEW       pPublicDM;
    PVOID           pOEMDM;
    DWORD           dwFlags;
    POPTITEM        pDrvOptItems;
    DWORD           cDrvOptItems;
    POPTITEM        pOEMOptItems;
    DWORD           cOEMOptItems;
    PVOID           pOEMUserData;
    OEMCUIPCALLBACK OEMCUIPCallback;
};

typedef struct _OEMUIPSPARAM {
    DWORD     cbSize;
    POEMUIOBJ poemuiobj;
    HANDLE    hPrinter;
    PWSTR     pPrinterName;
    HANDLE    hModule;
    HANDLE    hOEMHeap;
    PDEVMODEW pPublicDM;
    PVOID     pOEMDM;
    PVOID     pOEMUserData;
    DWORD     dwFlags;
    PVOID     pOemEntry;
} OEMUIPSPARAM, *POEMUIPSPARAM;

typedef struct _DEVQUERYPRINT_INFO *PDEVQUERYPRINT_INFO;

// The layouts above are fixed by the driver core; a change of member or padding breaks it.
static_assert(sizeof(OEMUIOBJ) == 16, "OEMUIOBJ");
static_assert(offsetof(OEMCUIPPARAM, poemuiobj) == 8, "OEMCUIPPARAM.poemuiobj");
static_assert(offsetof(OEMCUIPPARAM, hOEMHeap) == 40, "OEMCUIPPARAM.hOEMHeap");
static_assert(offsetof(OEMCUIPPARAM, dwFlags) == 64, "OEMCUIPPARAM.dwFlags");
static_assert(offsetof(OEMCUIPPARAM, pDrvOptItems) == 72, "OEMCUIPPARAM.pDrvOptItems");
static_assert(offsetof(OEMCUIPPARAM, cDrvOptItems) == 80, "OEMCUIPPARAM.cDrvOptItems");
static_assert(offsetof(OEMCUIPPARAM, pOEMOptItems) == 88, "OEMCUIPPARAM.pOEMOptItems");
static_assert(offsetof(OEMCUIPPARAM, cOEMOptItems) == 96, "OEMCUIPPARAM.cOEMOptItems");
static_assert(offsetof(OEMCUIPPARAM, pOEMUserData) == 104, "OEMCUIPPARAM.pOEMUserData");
static_assert(offsetof(OEMCUIPPARAM, OEMCUIPCallback) == 112, "OEMCUIPPARAM.OEMCUIPCallback");
static_assert(sizeof(OEMCUIPPARAM) == 120, "OEMCUIPPARAM size");
static_assert(offsetof(OEMUIPSPARAM, pPrinterName) == 24, "OEMUIPSPARAM.pPrinterName");
static_assert(offsetof(OEMUIPSPARAM, hOEMHeap) == 40, "OEMUIPSPARAM.hOEMHeap");
static_assert(offsetof(OEMUIPSPARAM, pOEMUserData) == 64, "OEMUIPSPARAM.pOEMUserData");
static_assert(offsetof(OEMUIPSPARAM, dwFlags) == 72, "OEMUIPSPARAM.dwFlags");
static_assert(offsetof(OEMUIPSPARAM, pOemEntry) == 80, "OEMUIPSPARAM.pOemEntry");
static_assert(sizeof(OEMUIPSPARAM) == 88, "OEMUIPSPARAM size");
static_assert(offsetof(OEMDMPARAM, cbBufSize) == 64, "OEMDMPARAM.cbBufSize");
static_assert(sizeof(PRINTER_EVENT_ATTRIBUTES_INFO) == 12, "PRINTER_EVENT_ATTRIBUTES_INFO");
static_assert(offsetof(PROPSHEETUI_INFO, lParamInit) == 24, "PROPSHEETUI_INFO.lParamInit");
static_assert(offsetof(PROPSHEETUI_INFO, Result) == 40, "PROPSHEETUI_INFO.Result");

// {C6A7A9D0-774C-11D1-947F-00A0C90640B8}
extern "C" const IID IID_IPrintOemUI;
// {92B05D50-78BC-11D1-9480-00A0C90640B8}
extern "C" const IID IID_IPrintOemDriverUI;
// {ABCE80D7-9F46-11D1-882A-00C04FB961EC}: the class the driver core asks this plug-in for.
extern "C" const CLSID CLSID_OEMUI;

// Virtual slots in the published order: IUnknown (0-2), IPrintOemCommon (3-4), IPrintOemUI (5-16).
struct IPrintOemCommon : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetInfo(DWORD dwMode, PVOID pBuffer, DWORD cbSize, PDWORD pcbNeeded) = 0;
    virtual HRESULT STDMETHODCALLTYPE DevMode(DWORD dwMode, POEMDMPARAM pOemDMParam) = 0;
};

struct IPrintOemUI : public IPrintOemCommon {
    virtual HRESULT STDMETHODCALLTYPE PublishDriverInterface(IUnknown* pIUnknown) = 0;
    virtual HRESULT STDMETHODCALLTYPE CommonUIProp(DWORD dwMode, POEMCUIPPARAM pOemCUIPParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE DocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE DevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE DevQueryPrintEx(POEMUIOBJ poemuiobj, PDEVQUERYPRINT_INFO pDQPInfo,
                                                      PDEVMODEW pPublicDM, PVOID pOEMDM) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeviceCapabilities(POEMUIOBJ poemuiobj, HANDLE hPrinter, PWSTR pDeviceName,
                                                         WORD wCapability, PVOID pOutput, PDEVMODEW pPublicDM,
                                                         PVOID pOEMDM, DWORD dwOld, DWORD* dwResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpgradePrinter(DWORD dwLevel, PBYTE pDriverUpgradeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE PrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD dwFlags, LPARAM lParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE DriverEvent(DWORD dwDriverEvent, DWORD dwLevel, LPBYTE pDriverInfo, LPARAM lParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryColorProfile(HANDLE hPrinter, POEMUIOBJ poemuiobj, PDEVMODEW pPublicDM,
                                                        PVOID pOEMDM, ULONG ulQueryMode, VOID* pvProfileData,
                                                        ULONG* pcbProfileData, FLONG* pflProfileData) = 0;
    virtual HRESULT STDMETHODCALLTYPE FontInstallerDlgProc(HWND hWnd, UINT usMsg, WPARAM wParam, LPARAM lParam) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateExternalFonts(HANDLE hPrinter, HANDLE hHeap, PWSTR pwstrCartridges) = 0;
};

// The driver core's own interface; the plug-in only holds a reference to it.
struct IPrintOemDriverUI : public IUnknown {};
