// The test bench: a test printer in the throwaway Wine prefix, the plug-in loaded as the driver
// core loads it, and the diagnostic log read back.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <string>
#include <vector>

#include "oemui/oemcontract.h"

namespace bench {

// Installs the wineps printer driver (once per prefix) and a printer named `name` on port FILE:,
// then writes the values the real driver and spooler publish: "PrinterDriverData"/"Model" and
// "DsDriver"/"printMediaReady" (a multi-string whose first string is `media`). An empty `model`
// or `media` leaves that value unwritten. Creates C:\temp for the log. Returns false on failure.
bool InstallTestPrinter(const std::wstring& name, const std::wstring& model = L"ORLIVEX QM-101",
                        const std::wstring& media = L"Roll 80 x 297 mm[R80]");
// A fresh printer for one test: a unique name derived from `stem`.
std::wstring NewTestPrinter(const std::wstring& stem, const std::wstring& model = L"ORLIVEX QM-101",
                            const std::wstring& media = L"Roll 80 x 297 mm[R80]");
bool DeleteTestPrinter(const std::wstring& name);

// Printer data read back through the spooler (key defaults to the plug-in's properties key).
std::vector<BYTE> ReadPrinterData(const std::wstring& printer, const std::wstring& value,
                                  DWORD* type = nullptr, DWORD* status = nullptr,
                                  const std::wstring& key = L"PrinterDriverData\\Properties");
DWORD WritePrinterData(const std::wstring& printer, const std::wstring& key, const std::wstring& value,
                       DWORD type, const void* data, DWORD size);

// The plug-in DLL beside the test program, loaded once and kept loaded.
HMODULE Plugin();
// DllGetClassObject + CreateInstance(IID_IPrintOemUI), as the driver core does.
IPrintOemUI* CreatePlugin();

// Windows directory, system directory, C: path helpers.
std::wstring WindowsDir();
std::wstring SystemDir();
bool WriteTextFile(const std::wstring& path, const std::string& bytes);
std::string ReadTextFile(const std::wstring& path);

// The log: every line written to C:\temp\QVRPOS since the last ClearLog (all minute files).
void ClearLog();
std::string ReadLog();
bool LogContains(const std::string& text);

}  // namespace bench
