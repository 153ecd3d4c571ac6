#include "oemui/intrface.h"

#include <cassert>
#include <cstring>
#include <new>
#include <strsafe.h>

#include "events/printer_events.h"
#include "pages/sheets.h"

HINSTANCE ModuleInstance = nullptr;
LONG ComponentCount = 0;
LONG ServerLockCount = 0;

const IID IID_IPrintOemUI = { 0xC6A7A9D0, 0x774C, 0x11D1, { 0x94, 0x7F, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };
const IID IID_IPrintOemDriverUI = { 0x92B05D50, 0x78BC, 0x11D1, { 0x94, 0x80, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };
const CLSID CLSID_OEMUI = { 0xABCE80D7, 0x9F46, 0x11D1, { 0x88, 0x2A, 0x00, 0xC0, 0x4F, 0xB9, 0x61, 0xEC } };

namespace {

bool SameId(REFIID a, REFIID b) { return memcmp(&a, &b, sizeof(GUID)) == 0; }

// The six methods the plug-in leaves to the driver core share this answer; it takes no notice
// of its arguments and sets no last error.
HRESULT NotImplemented() { return E_NOTIMPL; }

constexpr DWORD kSignature = 0x4D534654;             // "MSFT" read as a big-endian number
constexpr ULONG kProfileBytes = 32;
const WCHAR kProfileName[] = L"OEMPROFILE.icm";

}  // namespace

// ---------------------------------------------------------------------------------------------
// OemUiObject

OemUiObject::~OemUiObject()
{
    if (m_pOEMHelp != nullptr) {
        m_pOEMHelp->Release();
        m_pOEMHelp = nullptr;
    }
    assert(0 == m_cRef);
}

STDMETHODIMP OemUiObject::QueryInterface(REFIID riid, void** ppv)
{
    if (SameId(riid, IID_IUnknown) || SameId(riid, IID_IPrintOemUI)) {
        *ppv = static_cast<IPrintOemUI*>(this);
        static_cast<IUnknown*>(*ppv)->AddRef();
        return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) OemUiObject::AddRef() { return InterlockedIncrement(&m_cRef); }

STDMETHODIMP_(ULONG) OemUiObject::Release()
{
    const LONG count = InterlockedDecrement(&m_cRef);
    if (count == 0) delete this;
    return count;
}

STDMETHODIMP OemUiObject::GetInfo(DWORD dwMode, PVOID pBuffer, DWORD cbSize, PDWORD pcbNeeded)
{
    if (pcbNeeded == nullptr || dwMode < OEMGI_GETSIGNATURE || dwMode > OEMGI_GETPUBLISHERINFO ||
        dwMode == OEMGI_GETINTERFACEVERSION) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return E_FAIL;
    }
    *pcbNeeded = sizeof(DWORD);
    if (cbSize < sizeof(DWORD) || pBuffer == nullptr) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return E_FAIL;
    }
    switch (dwMode) {
    case OEMGI_GETSIGNATURE:
        *static_cast<DWORD*>(pBuffer) = kSignature;
        return S_OK;
    case OEMGI_GETVERSION:
        *static_cast<DWORD*>(pBuffer) = 1;
        return S_OK;
    default:   // OEMGI_GETPUBLISHERINFO
        *pcbNeeded = 0;
        SetLastError(ERROR_NOT_SUPPORTED);
        return E_FAIL;
    }
}

STDMETHODIMP OemUiObject::DevMode(DWORD, POEMDMPARAM) { return NotImplemented(); }

STDMETHODIMP OemUiObject::PublishDriverInterface(IUnknown* pIUnknown)
{
    if (m_pOEMHelp != nullptr) return S_OK;
    // Kept only to be released with the object; nothing calls it.
    const HRESULT hr = pIUnknown->QueryInterface(IID_IPrintOemDriverUI, reinterpret_cast<void**>(&m_pOEMHelp));
    if (FAILED(hr)) {
        m_pOEMHelp = nullptr;
        return E_FAIL;
    }
    return S_OK;
}

STDMETHODIMP OemUiObject::CommonUIProp(DWORD dwMode, POEMCUIPPARAM pOemCUIPParam)
{
    if ((dwMode != OEMCUIP_DOCPROP && dwMode != OEMCUIP_PRNPROP) || pOemCUIPParam == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return E_FAIL;
    }
    // Hide the driver core's own tree of options: only the plug-in's pages remain.
    for (DWORD i = 0; i < pOemCUIPParam->cDrvOptItems; ++i)
        pOemCUIPParam->pDrvOptItems[i].Flags |= OPTIF_HIDE;
    return S_OK;
}

STDMETHODIMP OemUiObject::DocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    return hrOEMDocumentPropertySheets(pPSUIInfo, lParam);
}

STDMETHODIMP OemUiObject::DevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    return hrOEMDevicePropertySheets(pPSUIInfo, lParam);
}

STDMETHODIMP OemUiObject::DevQueryPrintEx(POEMUIOBJ, PDEVQUERYPRINT_INFO, PDEVMODEW, PVOID) { return NotImplemented(); }
STDMETHODIMP OemUiObject::DeviceCapabilities(POEMUIOBJ, HANDLE, PWSTR, WORD, PVOID, PDEVMODEW, PVOID, DWORD, DWORD*)
{
    return NotImplemented();
}
STDMETHODIMP OemUiObject::UpgradePrinter(DWORD, PBYTE) { return NotImplemented(); }

STDMETHODIMP OemUiObject::PrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD dwFlags, LPARAM lParam)
{
    return OemPrinterEvent(pPrinterName, iDriverEvent, dwFlags, lParam);
}

STDMETHODIMP OemUiObject::DriverEvent(DWORD dwDriverEvent, DWORD dwLevel, LPBYTE pDriverInfo, LPARAM lParam)
{
    return OemDriverEvent(dwDriverEvent, dwLevel, pDriverInfo, lParam);
}

STDMETHODIMP OemUiObject::QueryColorProfile(HANDLE, POEMUIOBJ, PDEVMODEW, PVOID, ULONG ulQueryMode,
                                            VOID* pvProfileData, ULONG* pcbProfileData, FLONG* pflProfileData)
{
    if (ulQueryMode != 0) return E_FAIL;
    if (pvProfileData != nullptr && *pcbProfileData >= kProfileBytes) {
        const HRESULT hr = StringCbCopyW(static_cast<WCHAR*>(pvProfileData), *pcbProfileData, kProfileName);
        *pcbProfileData = kProfileBytes;
        *pflProfileData = QCP_PROFILEDISK;
        if (FAILED(hr)) SetLastError(hr);
        return hr;
    }
    *pcbProfileData = kProfileBytes;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return E_FAIL;
}

STDMETHODIMP OemUiObject::FontInstallerDlgProc(HWND, UINT, WPARAM, LPARAM) { return NotImplemented(); }
STDMETHODIMP OemUiObject::UpdateExternalFonts(HANDLE, HANDLE, PWSTR) { return NotImplemented(); }

// ---------------------------------------------------------------------------------------------
// OemUiClassFactory

STDMETHODIMP OemUiClassFactory::QueryInterface(REFIID riid, void** ppv)
{
    if (SameId(riid, IID_IUnknown) || SameId(riid, IID_IClassFactory)) {
        *ppv = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) OemUiClassFactory::AddRef() { return InterlockedIncrement(&m_cRef); }

STDMETHODIMP_(ULONG) OemUiClassFactory::Release()
{
    const LONG count = InterlockedDecrement(&m_cRef);
    if (count == 0) delete this;
    return count;
}

STDMETHODIMP OemUiClassFactory::CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv)
{
    if (pUnkOuter != nullptr) return CLASS_E_NOAGGREGATION;
    OemUiObject* object = new OemUiObject;
    const HRESULT hr = object->QueryInterface(riid, ppv);
    object->Release();
    return hr;
}

STDMETHODIMP OemUiClassFactory::LockServer(BOOL fLock)
{
    if (fLock)
        InterlockedIncrement(&ServerLockCount);
    else
        InterlockedDecrement(&ServerLockCount);
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// Exports

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv)
{
    if (!SameId(rclsid, CLSID_OEMUI)) return CLASS_E_CLASSNOTAVAILABLE;
    OemUiClassFactory* factory = new OemUiClassFactory;
    const HRESULT hr = factory->QueryInterface(riid, ppv);
    factory->Release();
    return hr;
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow()
{
    // Live objects are not counted on purpose: only server locks keep the library loaded.
    if (ComponentCount != 0) return S_FALSE;
    return ServerLockCount != 0 ? S_FALSE : S_OK;
}
