#include "events/printer_events.h"

#include "events/custom_paper.h"
#include "oemui/handles.h"
#include "oemui/log.h"
#include "qvr_version.h"
#include "settings/config_import.h"
#include "settings/printer_data.h"

const WCHAR kPosPrintProcessor[] = L"ORLIVEX POS PRINT PROCESSOR";

namespace {

void WriteVersionStamp(HANDLE hPrinter)
{
    static const struct {
        const WCHAR* name;
        DWORD value;
    } stamp[] = { { L"MajorVersion", QVR_VERSION_MAJOR }, { L"MinorVersion", QVR_VERSION_MINOR },
                   { L"BuildVersion", QVR_VERSION_BUILD }, { L"ExtraVersion", QVR_VERSION_EXTRA } };
    for (const auto& v : stamp)
        SetPrinterDataToReg(hPrinter, v.name, REG_DWORD, reinterpret_cast<const BYTE*>(&v.value), sizeof v.value,
                            nullptr);
}

}  // namespace

void SetDriverBasicInfo(const WCHAR* printerName)
{
    ScopedLog log("SetDriverBasicInfo : START", "SetDriverBasicInfo : END");
    ScopedPrinter printer;
    if (!OpenPrinterByName(printerName, printer)) {
        Log("SetDriverBasicInfo : OpenPrinter failed with %d", LastErrorCode());
        return;
    }
    PrinterInfo2 queue(printer.get());
    if (PRINTER_INFO_2W* info = queue.get()) {
        info->pPrintProcessor = const_cast<WCHAR*>(kPosPrintProcessor);
        // Exactly raw-only: a new queue of this driver starts with no other attribute (not even
        // shared). Only a later attribute change keeps the other bits.
        info->Attributes = PRINTER_ATTRIBUTE_RAW_ONLY;
        if (!SetPrinterW(printer.get(), 2, queue.bytes(), 0))
            Log("SetDriverBasicInfo : SetPrinter failed with %d", LastErrorCode());
    }
    WriteVersionStamp(printer.get());
}

void SetRawDataPrintJob(const WCHAR* printerName, const PRINTER_EVENT_ATTRIBUTES_INFO* pEventInfo)
{
    Log("SetRawDataPrintJob : pPrinterName : %S", printerName);
    ScopedPrinter printer;
    const BOOL opened = OpenPrinterByName(printerName, printer);
    if (!opened || pEventInfo == nullptr) {
        Log("SetRawDataPrintJob : OpenPrinter failed. (%d)", LastErrorCode());
        // An event without its parameter block has always left the handle it opened as it is; the
        // spooler always passes the block, so this only happens to a caller that breaks the contract.
        if (opened) printer.release();
        return;
    }
    // Only the new attributes decide; the old ones are there for the log.
    Log("SetRawDataPrintJob : pEventInfo->dwOldAttributes : 0x%lx", pEventInfo->dwOldAttributes);
    Log("SetRawDataPrintJob : pEventInfo->dwNewAttributes : 0x%lx", pEventInfo->dwNewAttributes);
    if (pEventInfo->dwNewAttributes & PRINTER_ATTRIBUTE_RAW_ONLY) {
        // Also where the write below comes back as an event of its own.
        Log("SetRawDataPrintJob :  pEventInfo->dwNewAttributes = 0x%lx", pEventInfo->dwNewAttributes);
        return;
    }
    PrinterInfo2 queue(printer.get());
    PRINTER_INFO_2W* info = queue.get();
    if (info == nullptr) return;
    info->Attributes |= PRINTER_ATTRIBUTE_RAW_ONLY;
    info->pPrintProcessor = const_cast<WCHAR*>(kPosPrintProcessor);
    if (SetPrinterW(printer.get(), 2, queue.bytes(), 0))
        Log("SetRawDataPrintJob : SetPrinter succeeded.");
    else
        Log("SetRawDataPrintJob : SetPrinter failed with %d", LastErrorCode());
}

HRESULT OemPrinterEvent(PWSTR pPrinterName, INT iDriverEvent, DWORD /*dwFlags*/, LPARAM lParam)
{
    switch (iDriverEvent) {
    case PRINTER_EVENT_CONFIGURATION_CHANGE:
        Log("PrinterEvent : PRINTER_EVENT_CONFIGURATION_CHANGE");
        break;
    case PRINTER_EVENT_INITIALIZE:
        Log("PrinterEvent : PRINTER_EVENT_INITIALIZE");
        // Each step goes on whatever the one before it managed.
        SetDriverBasicInfo(pPrinterName);
        SetBasicSettingPreferenceReg(pPrinterName);
        SetCustomPaper(pPrinterName);
        SetBarcodePreferenceReg(pPrinterName);
        break;
    case PRINTER_EVENT_ATTRIBUTES_CHANGED:
        Log("PrinterEvent : PRINTER_EVENT_ATTRIBUTES_CHANGED");
        SetRawDataPrintJob(pPrinterName, reinterpret_cast<const PRINTER_EVENT_ATTRIBUTES_INFO*>(lParam));
        break;
    default:
        Log("PrinterEvent : iDriverEvent = %x", iDriverEvent);
        break;
    }
    return S_OK;
}

HRESULT OemDriverEvent(DWORD dwDriverEvent, DWORD, LPBYTE, LPARAM)
{
    // Nothing is installed or removed here; the events are only recorded.
    if (dwDriverEvent == DRIVER_EVENT_INITIALIZE)
        Log("DriverEvent : DRIVER_EVENT_INITIALIZE");
    else if (dwDriverEvent == DRIVER_EVENT_DELETE)
        Log("DriverEvent : DRIVER_EVENT_DELETE");
    return S_OK;
}
