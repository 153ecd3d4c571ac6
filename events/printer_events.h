// Printer and driver events forwarded by the driver core from the spooler.
#pragma once

#include "oemui/oemcontract.h"

HRESULT OemPrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD dwFlags, LPARAM lParam);
HRESULT OemDriverEvent(DWORD dwDriverEvent, DWORD dwLevel, LPBYTE pDriverInfo, LPARAM lParam);
