// Writing the standard printing choices of the pages into the printer's default device mode.
// Copies, orientation, colour, paper source and form are kept in "MISC" for the rendering side,
// but applications and the spooler read them from the DEVMODEW stored with the queue; these
// functions keep the two in step.
#pragma once

#include <windows.h>
#include <winspool.h>

#include "settings/dialog_info.h"

// Paper sources the rendering side knows as the receipt and ticket bins.
constexpr short kReceiptBin = DMBIN_USER + 9;    // 265
constexpr short kTicketBin = DMBIN_USER + 10;    // 266

// Each returns non-zero on success. A value equal to the one already stored writes nothing and
// counts as success.
BOOL SetCopyCount(DIALOGINFO* lpdi, int nCount);             // dmCopies = low 8 bits of nCount
BOOL SetOrientation(DIALOGINFO* lpdi, int nOrientation);     // 1 landscape, anything else portrait
BOOL SetColorType(DIALOGINFO* lpdi, int nType);              // 2 colour, anything else monochrome
BOOL SetPaperType(DIALOGINFO* lpdi, int nType);              // 0 receipt bin, 1 ticket bin, else form source

// The form shown at `index` of the Layout page's paper-size list (the record comes from the
// page's DWLP_USER). When no form of that name exists any more, the driver's default form is
// looked up in the list and its position left in byteValue[12]; the device mode is not touched.
BOOL SetPaperSize(HWND hDlg, int index);

// SetPrinterW level 2. When it fails and a record is given, the printer is reopened by the
// record's name to prove it is reachable, and the write is tried once more on `hPrinter`.
BOOL SetPrinterInfo2(HANDLE hPrinter, PRINTER_INFO_2W* pInfo, const DIALOGINFO* lpdi);
