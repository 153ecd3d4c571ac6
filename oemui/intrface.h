// The COM face of the plug-in: the class factory and the IPrintOemUI object.
#pragma once

#include "oemui/module.h"
#include "oemui/oemcontract.h"

extern LONG ComponentCount;          // read by DllCanUnloadNow, deliberately never changed
extern LONG ServerLockCount;

class OemUiObject : public IPrintOemUI {
public:
    OemUiObject() = default;
    virtual ~OemUiObject();

    // IUnknown
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // IPrintOemCommon
    STDMETHODIMP GetInfo(DWORD dwMode, PVOID pBuffer, DWORD cbSize, PDWORD pcbNeeded) override;
    STDMETHODIMP DevMode(DWORD dwMode, POEMDMPARAM pOemDMParam) override;

    // IPrintOemUI
    STDMETHODIMP PublishDriverInterface(IUnknown* pIUnknown) override;
    STDMETHODIMP CommonUIProp(DWORD dwMode, POEMCUIPPARAM pOemCUIPParam) override;
    STDMETHODIMP DocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) override;
    STDMETHODIMP DevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) override;
    STDMETHODIMP DevQueryPrintEx(POEMUIOBJ, PDEVQUERYPRINT_INFO, PDEVMODEW, PVOID) override;
    STDMETHODIMP DeviceCapabilities(POEMUIOBJ, HANDLE, PWSTR, WORD, PVOID, PDEVMODEW, PVOID, DWORD, DWORD*) override;
    STDMETHODIMP UpgradePrinter(DWORD, PBYTE) override;
    STDMETHODIMP PrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD dwFlags, LPARAM lParam) override;
    STDMETHODIMP DriverEvent(DWORD dwDriverEvent, DWORD dwLevel, LPBYTE pDriverInfo, LPARAM lParam) override;
    STDMETHODIMP QueryColorProfile(HANDLE hPrinter, POEMUIOBJ poemuiobj, PDEVMODEW pPublicDM, PVOID pOEMDM,
                                   ULONG ulQueryMode, VOID* pvProfileData, ULONG* pcbProfileData,
                                   FLONG* pflProfileData) override;
    STDMETHODIMP FontInstallerDlgProc(HWND, UINT, WPARAM, LPARAM) override;
    STDMETHODIMP UpdateExternalFonts(HANDLE, HANDLE, PWSTR) override;

private:
    LONG m_cRef = 1;
    IPrintOemDriverUI* m_pOEMHelp = nullptr;
};

class OemUiClassFactory : public IClassFactory {
public:
    OemUiClassFactory() = default;
    virtual ~OemUiClassFactory() = default;

    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) override;
    STDMETHODIMP LockServer(BOOL fLock) override;

private:
    LONG m_cRef = 1;
};

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv);
extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow();
