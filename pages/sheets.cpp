#include "pages/sheets.h"

#include <prsht.h>

#include "oemui/handles.h"
#include "oemui/module.h"
#include "oemui/language.h"
#include "oemui/log.h"
#include "pages/pages.h"
#include "resources/resource.h"
#include "settings/config_import.h"
#include "settings/printer_data.h"

LANGID CurrentUILanguage = 0;
WCHAR CurrentPrinterName[520] = {};

namespace {

struct PageEntry {
    WORD templateId;
    DLGPROC proc;
};

const PageEntry kDocumentPages[] = {
    { IDD_LAYOUT, DlgLayoutProc },
    { IDD_DOCSETTINGS, DlgDocSettingsProc },
    { IDD_NVIMAGE, DlgNVImageProc },
    { IDD_BARCODE, DlgBarcodeSettingsProc },
    { IDD_DITHER, DlgDitherProc },
    { IDD_UTILITY, DlgUtilityProc },
};

const PageEntry kDevicePages[] = {
    { IDD_PRINTER_SETTINGS, DlgPrinterSettingProc },
    { IDD_ABOUT, DlgAboutProc },
};

WCHAR kSheetTitle[] = L"OEM UI Page";

// Every reason starts with the same check of the block the driver core hands in.
bool ValidSheetInfo(const PROPSHEETUI_INFO* info)
{
    if (info == nullptr || info->Version != PROPSHEETUI_INFO_VERSION) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

HRESULT Finish(PPROPSHEETUI_INFO info, LONG_PTR result)
{
    info->Result = static_cast<ULONG_PTR>(result);
    return result != 0 ? S_OK : E_FAIL;
}

// Loads the preferences from "MISC"; when none are stored (or they cannot be read), seeds them from
// the configuration file and the user-interface language and stores them at once, so the next
// opening finds them.
void LoadPreferences(DIALOGINFO* lpdi, const char* who)
{
    lpdi->cbPreferences = kPreferenceCount;
    lpdi->preferencesStatus = GetPrinterDataFromReg(lpdi->hPrinter, L"MISC", nullptr, lpdi->byteValue,
                                                    kPreferenceCount, &lpdi->cbPreferences);
    if (lpdi->preferencesStatus == ERROR_SUCCESS) return;
    Log("%s : GetPrinterDataFromReg failed with %d", who, LastErrorCode());
    InitDialogInfo(lpdi);
    lpdi->byteValue[pref::Language] = LanguageIndexFromSystem();
    SetPrinterDataToReg(lpdi->hPrinter, L"MISC", REG_BINARY, lpdi->byteValue, kPreferenceCount, lpdi);
}

// Describes each page to the driver core; stops at the first page the sheet refuses.
template <size_t N>
LONG_PTR AddPages(PPROPSHEETUI_INFO info, DIALOGINFO* lpdi, const PageEntry (&pages)[N])
{
    LONG_PTR result = 0;
    for (const PageEntry& entry : pages) {
        PROPSHEETPAGEW page = {};
        page.dwSize = sizeof page;
        page.dwFlags = 0;
        page.hInstance = ModuleInstance;
        page.pszTemplate = MAKEINTRESOURCEW(entry.templateId);
        page.pfnDlgProc = entry.proc;
        page.lParam = reinterpret_cast<LPARAM>(lpdi);
        result = info->pfnComPropSheet(info->hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW,
                                       reinterpret_cast<LPARAM>(&page), 0);
        if (result == 0) break;
    }
    return result;
}

// The reasons after the initial one are the same for both sheets, except what DESTROY frees.
HRESULT CommonReason(PPROPSHEETUI_INFO info, LPARAM lParam)
{
    switch (info->Reason) {
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        reinterpret_cast<PPROPSHEETUI_INFO_HEADER>(lParam)->pTitle = kSheetTitle;
        return Finish(info, 1);
    case PROPSHEETUI_REASON_SET_RESULT:
        return Finish(info, reinterpret_cast<PSETRESULT_INFO>(lParam)->Result);
    default:   // GET_ICON (no icon) and reasons this plug-in does not know
        return Finish(info, 0);
    }
}

void FreeRecord(PPROPSHEETUI_INFO info)
{
    auto* lpdi = reinterpret_cast<DIALOGINFO*>(info->UserData);
    if (lpdi != nullptr) {
        const HANDLE heap = lpdi->hHeap;
        if (lpdi->codeData != nullptr) HeapFree(heap, 0, lpdi->codeData);
        if (lpdi->barcodeInfo != nullptr) HeapFree(heap, 0, lpdi->barcodeInfo);
        HeapFree(heap, 0, lpdi);
    }
    info->UserData = 0;
}

void TakeSheetParameters(DIALOGINFO* lpdi, const OEMUIPSPARAM* param)
{
    CopyCut(lpdi->printerName, param->pPrinterName ? param->pPrinterName : L"");
    lpdi->hPrinter = param->hPrinter;
    lpdi->hHeap = param->hOEMHeap;
}

HRESULT InitDocumentSheet(PPROPSHEETUI_INFO info)
{
    Log("hrOEMDocumentPropertySheets : PROPSHEETUI_REASON_INIT START");
    const auto* param = reinterpret_cast<const OEMUIPSPARAM*>(info->lParamInit);
    const HANDLE heap = param->hOEMHeap;

    auto* lpdi = static_cast<DIALOGINFO*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, sizeof(DIALOGINFO)));
    info->UserData = reinterpret_cast<ULONG_PTR>(lpdi);
    if (lpdi == nullptr) return E_FAIL;
    lpdi->hHeap = heap;
    lpdi->codeData = static_cast<BYTE*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, kCodeDataBytes));
    if (lpdi->codeData == nullptr) {
        FreeRecord(info);
        return E_FAIL;
    }
    lpdi->barcodeInfo = static_cast<BYTE*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, kBarcodeInfoBytes));
    if (lpdi->barcodeInfo == nullptr) {
        FreeRecord(info);
        return E_FAIL;
    }

    CurrentUILanguage = GetCurrentUILanguage();
    CopyCut(CurrentPrinterName, param->pPrinterName ? param->pPrinterName : L"");
    TakeSheetParameters(lpdi, param);
    LoadPreferences(lpdi, "hrOEMDocumentPropertySheets");
    SelectSheetLanguage(lpdi);
    const LONG_PTR result = AddPages(info, lpdi, kDocumentPages);
    Log("hrOEMDocumentPropertySheets : PROPSHEETUI_REASON_INIT END");
    return Finish(info, result);
}

HRESULT InitDeviceSheet(PPROPSHEETUI_INFO info)
{
    Log("hrOEMDevicePropertySheets : PROPSHEETUI_REASON_INIT START");
    const auto* param = reinterpret_cast<const OEMUIPSPARAM*>(info->lParamInit);
    // The device sheet takes the printer name before anything can fail.
    CopyCut(CurrentPrinterName, param->pPrinterName ? param->pPrinterName : L"");

    auto* lpdi = static_cast<DIALOGINFO*>(HeapAlloc(param->hOEMHeap, HEAP_ZERO_MEMORY, sizeof(DIALOGINFO)));
    info->UserData = reinterpret_cast<ULONG_PTR>(lpdi);
    if (lpdi == nullptr) return E_FAIL;

    CurrentUILanguage = GetCurrentUILanguage();
    TakeSheetParameters(lpdi, param);
    LoadPreferences(lpdi, "hrOEMDevicePropertySheets");
    SelectSheetLanguage(lpdi);
    const LONG_PTR result = AddPages(info, lpdi, kDevicePages);
    Log("hrOEMDevicePropertySheets : PROPSHEETUI_REASON_INIT END");
    return Finish(info, result);
}

}  // namespace

HRESULT hrOEMDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    if (!ValidSheetInfo(pPSUIInfo)) return E_FAIL;
    switch (pPSUIInfo->Reason) {
    case PROPSHEETUI_REASON_INIT:
        return InitDocumentSheet(pPSUIInfo);
    case PROPSHEETUI_REASON_DESTROY:
        FreeRecord(pPSUIInfo);
        return Finish(pPSUIInfo, 1);
    default:
        return CommonReason(pPSUIInfo, lParam);
    }
}

HRESULT hrOEMDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam)
{
    if (!ValidSheetInfo(pPSUIInfo)) return E_FAIL;
    switch (pPSUIInfo->Reason) {
    case PROPSHEETUI_REASON_INIT:
        return InitDeviceSheet(pPSUIInfo);
    case PROPSHEETUI_REASON_DESTROY:
        FreeRecord(pPSUIInfo);   // the device sheet has no side blocks: both pointers are null
        return Finish(pPSUIInfo, 1);
    default:
        return CommonReason(pPSUIInfo, lParam);
    }
}
