#include "events/printer_events.h"

#include "oemui/log.h"

HRESULT OemPrinterEvent(PWSTR, INT, DWORD, LPARAM) { return S_OK; }

HRESULT OemDriverEvent(DWORD dwDriverEvent, DWORD, LPBYTE, LPARAM)
{
    if (dwDriverEvent == DRIVER_EVENT_INITIALIZE)
        Log("DriverEvent : DRIVER_EVENT_INITIALIZE");
    else if (dwDriverEvent == DRIVER_EVENT_DELETE)
        Log("DriverEvent : DRIVER_EVENT_DELETE");
    return S_OK;
}
