#include "pages/sheets.h"

namespace {

// Every reason starts with the same check of the block the driver core hands in.
bool ValidSheetInfo(const PROPSHEETUI_INFO* info)
{
    if (info == nullptr || info->Version != PROPSHEETUI_INFO_VERSION) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

}  // namespace

HRESULT hrOEMDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM)
{
    if (!ValidSheetInfo(pPSUIInfo)) return E_FAIL;
    return E_FAIL;
}

HRESULT hrOEMDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM)
{
    if (!ValidSheetInfo(pPSUIInfo)) return E_FAIL;
    return E_FAIL;
}
