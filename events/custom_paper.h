// Custom paper import: the paper sizes listed in the model's "AddCustomPaper.txt" become forms
// of the print server, named with the driver's form identifier.
#pragma once

#include <windows.h>

// Adds (or replaces) one form per line of "<Windows directory>\<model>\AddCustomPaper.txt".
void SetCustomPaper(const WCHAR* printerName);
// Whether an existing form may be replaced by `formName`: yes whenever the forms could be
// listed, whether or not one of that name was among them; no only when listing failed.
BOOL SearchEnumPaperCompare(HANDLE hPrinter, const WCHAR* formName);

// The pure pieces of one paper line, kept apart so they can be checked on their own.
namespace paperdetail {
// Reads "name,width,height" as the scan format "%63[^,],%15[^,],%15s" does; returns how many
// fields were filled (3 when the line is usable).
int ScanPaperLine(const WCHAR* line, WCHAR (&name)[64], WCHAR (&width)[16], WCHAR (&height)[16]);
// Whole millimetres (leading blanks and a sign allowed, non-digits end the number, no digits
// give 0) in thousandths of a millimetre; false when that is negative or does not fit a LONG.
bool PaperSizeMicrons(const WCHAR* text, LONG* microns);
}  // namespace paperdetail
