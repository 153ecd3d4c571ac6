// Printer and driver events forwarded by the driver core from the spooler.
#pragma once

#include "oemui/oemcontract.h"

#ifndef PRINTER_EVENT_CONFIGURATION_CHANGE
#define PRINTER_EVENT_CONFIGURATION_CHANGE 0
#endif

// The driver's own print processor, which every queue of this driver is made to use.
extern const WCHAR kPosPrintProcessor[];

// S_OK for every event and outcome; failures are logged.
HRESULT OemPrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD dwFlags, LPARAM lParam);
HRESULT OemDriverEvent(DWORD dwDriverEvent, DWORD dwLevel, LPBYTE pDriverInfo, LPARAM lParam);

// The steps of printer initialisation.
void SetDriverBasicInfo(const WCHAR* printerName);
void SetRawDataPrintJob(const WCHAR* printerName, const PRINTER_EVENT_ATTRIBUTES_INFO* pEventInfo);
