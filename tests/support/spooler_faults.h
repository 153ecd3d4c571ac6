// Spooler behaviour that Wine cannot produce on its own, put between a module and the real
// spooler through its import table: refused writes, failed opens, a queue reached through a
// print server, refused queue changes. Every call still reaches Wine's spooler unless a fault
// is planned for it; the stand-ins also count opened and closed printer handles.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <string>
#include <vector>

namespace spooler_faults {

// Routes `module`'s OpenPrinterW, ClosePrinter, GetPrinterW, SetPrinterW and SetPrinterDataExW
// through the stand-ins. May be called for several modules; all share the plan below.
bool Install(HMODULE module);
// Clears planned faults, counters and recorded writes.
void Reset();

// The next `times` SetPrinterDataExW calls answer `status` (also left as the last error).
void FailSetPrinterData(int times, DWORD status);
// After `skip` further successful opens, the next `times` OpenPrinterW calls fail with `error`.
void FailOpenPrinter(int skip, int times, DWORD error);
// GetPrinterW level 2 reports `server` as pServerName (empty: as the spooler says).
void ReportServerName(const std::wstring& server);
// SetPrinterW level 2 fails with `error` (0: passed on to the spooler).
void RefuseSetPrinter(DWORD error);

// What SetPrinterW level 2 was asked to write, refused or not.
struct QueueWrite {
    std::wstring printProcessor;
    DWORD attributes;
    std::wstring datatype;
};
std::vector<QueueWrite> QueueWrites();
// Printer handles opened and closed through the stand-ins since Reset.
int OpenedHandles();
int ClosedHandles();
// Value names of the SetPrinterDataExW calls seen, with their keys ("key|value").
std::vector<std::wstring> DataWrites();

}  // namespace spooler_faults
