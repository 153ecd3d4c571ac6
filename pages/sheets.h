// Bodies of IPrintOemUI::DocumentPropertySheets and DevicePropertySheets: the record every page of
// a sheet shares, the page language, and the pages themselves.
#pragma once

#include "oemui/oemcontract.h"

// The user-interface language found when the last sheet was initialised, and that sheet's printer
// name. Written by whichever sheet initialised last; the Printer Settings page reads them.
extern LANGID CurrentUILanguage;
extern WCHAR CurrentPrinterName[520];

HRESULT hrOEMDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
HRESULT hrOEMDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
