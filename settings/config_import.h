// The configuration file shipped with the driver ("QVRPOS_Config.QVR" in the system directory,
// section "QVRPOS"): factory preferences, document and page commands, barcode tables.
#pragma once

#include <windows.h>

#include "settings/command_text.h"
#include "settings/dialog_info.h"

// Sets lpdi->byteValue to the defaults, then to the file's "PREFERENCE[n]" values where present.
// Nothing else of the record is touched.
void InitDialogInfo(DIALOGINFO* lpdi);
// Copies the file's preferences (with the language and model overrides) and the four commands
// into the printer's data. FALSE when the file or the printer could not be opened.
BOOL SetBasicSettingPreferenceReg(const WCHAR* printerName);
// Copies the file's barcode tables into "BarcodeInfo" and "CodeData"; defaults for missing entries.
void SetBarcodePreferenceReg(const WCHAR* printerName);

// The pure pieces, kept apart so they can be checked on their own.
namespace configdetail {
// A decimal integer with leading blanks and a sign; stops at the first non-digit; no digits give 0.
// Only the low 8 bits are kept ("300" gives 44, "-1" gives 255), whatever the length of the text.
BYTE PreferenceByte(const WCHAR* text);
// The default "BarcodeInfo" and "CodeData" tables.
void DefaultBarcodeInfo(BYTE (&table)[kBarcodeInfoBytes]);
void DefaultCodeData(BYTE (&table)[kCodeDataBytes]);
}  // namespace configdetail
