// Printer data: every persistent setting of the plug-in lives under the printer's registry key
// and is read and written through the spooler here.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <cwchar>
#include <initializer_list>

#include "oemui/handles.h"
#include "settings/dialog_info.h"

// "PrinterDriverData\Properties", or "...\PropertiesClient" for a print-server connection.
// One buffer for the process, rebuilt by every read and write.
extern WCHAR PropertiesKeyPath[255];

// Rebuilds PropertiesKeyPath for `hPrinter`.
void BuildPropertiesKey(HANDLE hPrinter);

// GetPrinterDataExW under the properties key; a Win32 status (0 = success). `pType` may be null.
DWORD GetPrinterDataFromReg(HANDLE hPrinter, LPCWSTR pValueName, LPDWORD pType, LPBYTE pData, DWORD nSize,
                            LPDWORD pcbNeeded);
// SetPrinterDataExW under the properties key; a Win32 status. When the write fails and `lpdi` is
// given, the printer is reopened by the record's name with full access and the write tried again.
DWORD SetPrinterDataToReg(HANDLE hPrinter, LPCWSTR pValueName, DWORD type, const BYTE* pData, DWORD cbData,
                          const DIALOGINFO* lpdi);

// The driver-published texts, read through the record's printer handle into a buffer of 260 wide
// characters (the compiler refuses any other); `*length` receives the result's length in
// characters (0 on failure).
using DriverText = WCHAR[260];
// "ORLIVEX QM-101" gives "QM-101".
BOOL GetModelName(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length);
// "Roll 80 x 297 mm[R80]" gives "[R80]".
BOOL GetFormID(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length);
// "Roll 80 x 297 mm[R80]" gives "Roll 80 x 297 mm".
BOOL GetFormDefaultWidthHeight(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length);

// Whether the model word `model` is one of `list`: exact, case-sensitive equality. No model never is.
bool ModelIn(const WCHAR* model, std::initializer_list<const WCHAR*> list);
template <size_t N>
bool ModelIn(const WCHAR* model, const WCHAR* const (&list)[N])
{
    for (const WCHAR* entry : list)
        if (model != nullptr && wcscmp(model, entry) == 0) return true;
    return false;
}

// A user form of the given size (thousandths of a millimetre) whose imageable area is all of it.
inline FORM_INFO_1W UserForm(WCHAR* name, LONG width, LONG length)
{
    FORM_INFO_1W form = {};
    form.Flags = FORM_USER;
    form.pName = name;
    form.Size.cx = width;
    form.Size.cy = length;
    form.ImageableArea.right = width;
    form.ImageableArea.bottom = length;
    return form;
}

// Opens a printer by name with full access, as OpenPrinterFullAccess does, except that a null or
// empty name fails (ERROR_INVALID_PRINTER_NAME) instead of opening the print server itself.
BOOL OpenPrinterByName(const WCHAR* printerName, ScopedPrinter& printer);

// The same lookups through a printer handle, for callers without a record (event handling).
// Each logs "<who> : before wszModelName = ..." (or wszFormId) once the value was read; false when
// it could not be.
namespace printerdata {
constexpr size_t kTextChars = 260;                 // 520 bytes: the most that is read
bool ReadModelName(HANDLE hPrinter, WCHAR (&modelName)[kTextChars], const char* who);
bool ReadFormId(HANDLE hPrinter, WCHAR (&formId)[kTextChars], const char* who);

// The pure text rules (standard tokenizer semantics: leading separators skipped, runs count as one).
void ModelFromModelText(const WCHAR* text, WCHAR (&out)[kTextChars]);     // second blank-separated word
void FormIdFromMedia(const WCHAR* text, WCHAR (&out)[kTextChars]);        // "[" + second "[" piece
void DefaultFormFromMedia(const WCHAR* text, WCHAR (&out)[kTextChars]);   // first "[" piece
}  // namespace printerdata
