// Puts a printer into a Wine prefix the way an installation would: the wineps driver under a
// driver name of its own, a queue on FILE:, and the values the real driver and spooler publish.
#pragma once

#include <windows.h>

#include <string>

namespace oemhost {

// Writes "PrinterDriverData"/"Model" (REG_SZ) and "DsDriver"/"printMediaReady" (a multi-string whose
// first string is `media`); an empty `model` or `media` leaves that value out. Creates C:\temp for
// the plug-in's log. Returns false, with GetLastError, when the spooler refuses a step.
bool InstallPrinter(const std::wstring& name, const std::wstring& model, const std::wstring& media);

DWORD WritePrinterValue(const std::wstring& printer, const std::wstring& key, const std::wstring& value,
                        DWORD type, const void* data, DWORD size);

}  // namespace oemhost
