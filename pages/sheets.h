// Bodies of IPrintOemUI::DocumentPropertySheets and DevicePropertySheets.
#pragma once

#include "oemui/oemcontract.h"

HRESULT hrOEMDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
HRESULT hrOEMDevicePropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam);
