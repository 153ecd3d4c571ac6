#include "settings/printer_data.h"

#include <cstdlib>

#include "oemui/log.h"

WCHAR PropertiesKeyPath[255];

namespace {

const WCHAR kBaseKey[] = L"PrinterDriverData\\Properties";
const WCHAR kClientCount[] = L"ClientCount";

// The key for one value: "ClientCount" always lives under the base key, whatever the connection.
void BuildKeyFor(HANDLE hPrinter, LPCWSTR pValueName)
{
    BuildPropertiesKey(hPrinter);
    if (pValueName != nullptr && lstrcmpW(pValueName, kClientCount) == 0) CopyCut(PropertiesKeyPath, kBaseKey);
}

// Copies the `n`th (1-based) `sep`-separated piece of `text` into `out`, with the standard
// tokenizer's rules; false when there is no such piece.
bool Piece(const WCHAR* text, WCHAR sep, int n, WCHAR (&out)[printerdata::kTextChars])
{
    const WCHAR* p = text;
    for (int i = 1;; ++i) {
        while (*p == sep) ++p;
        if (*p == L'\0') return false;
        const WCHAR* start = p;
        while (*p != L'\0' && *p != sep) ++p;
        if (i == n) {
            size_t len = static_cast<size_t>(p - start);
            if (len > printerdata::kTextChars - 1) len = printerdata::kTextChars - 1;
            for (size_t k = 0; k < len; ++k) out[k] = start[k];
            out[len] = L'\0';
            return true;
        }
    }
}

// Reads a driver-published text (at most 520 bytes) into `text`, which stays terminated whatever
// the stored value holds: an odd size, no terminator, another type.
DWORD ReadDriverText(HANDLE hPrinter, const WCHAR* key, const WCHAR* value,
                     WCHAR (&text)[printerdata::kTextChars + 1])
{
    ZeroMemory(text, sizeof text);
    DWORD type = 0, needed = 0;
    return GetPrinterDataExW(hPrinter, key, value, &type, reinterpret_cast<BYTE*>(text),
                             printerdata::kTextChars * sizeof(WCHAR), &needed);
}

typedef void (*TextRule)(const WCHAR*, WCHAR (&)[printerdata::kTextChars]);

struct LookupTexts {
    const char* start;
    const char* nullRecord;
    const char* end;
    const char* readFailed;
    const char* who;        // the procedure's name and the variable the text lands in, for the
    const char* variable;   // "<who> : before <variable> = ..." and "... after ..." lines
};

BOOL LookupThroughRecord(const DIALOGINFO* lpdi, WCHAR* buffer, DWORD* length, const WCHAR* key,
                         const WCHAR* value, TextRule rule, const LookupTexts& t)
{
    if (length != nullptr) *length = 0;
    Log("%s", t.start);
    if (lpdi == nullptr) {
        Log("%s", t.nullRecord);
        Log("%s", t.end);
        return FALSE;
    }
    if (buffer == nullptr) {
        Log("%s", t.end);
        return FALSE;
    }
    WCHAR text[printerdata::kTextChars + 1];
    const DWORD status = ReadDriverText(lpdi->hPrinter, key, value, text);
    if (status != ERROR_SUCCESS) {
        // A failed read returns at once: its failure line is the procedure's last.
        buffer[0] = L'\0';
        Log("%s", t.readFailed);
        return FALSE;
    }
    Log("%s : before %s = %S", t.who, t.variable, text);
    WCHAR result[printerdata::kTextChars];
    rule(text, result);
    StringCchCopyW(buffer, printerdata::kTextChars, result);
    if (length != nullptr) *length = static_cast<DWORD>(lstrlenW(buffer));
    Log("%s : after %s = %S", t.who, t.variable, buffer);
    Log("%s", t.end);
    return TRUE;
}

}  // namespace

void BuildPropertiesKey(HANDLE hPrinter)
{
    ZeroMemory(PropertiesKeyPath, sizeof PropertiesKeyPath);
    const PrinterInfo2 info(hPrinter);
    const bool client = info.get() != nullptr && info.get()->pServerName != nullptr;
    CopyCut(PropertiesKeyPath, kBaseKey);
    // No separator: the client side uses the sibling key "PropertiesClient", not a sub-key.
    if (client) AppendCut(PropertiesKeyPath, L"Client");
}

DWORD GetPrinterDataFromReg(HANDLE hPrinter, LPCWSTR pValueName, LPDWORD pType, LPBYTE pData, DWORD nSize,
                            LPDWORD pcbNeeded)
{
    BuildKeyFor(hPrinter, pValueName);
    DWORD needed = 0;
    const DWORD status = GetPrinterDataExW(hPrinter, PropertiesKeyPath, pValueName, pType, pData, nSize,
                                           pcbNeeded != nullptr ? pcbNeeded : &needed);
    if (status != ERROR_SUCCESS)
        Log("GetPrinterDataFromReg : GetPrinterDataEx failed with %d (%S)", static_cast<int>(status), pValueName);
    return status;
}

DWORD SetPrinterDataToReg(HANDLE hPrinter, LPCWSTR pValueName, DWORD type, const BYTE* pData, DWORD cbData,
                          const DIALOGINFO* lpdi)
{
    BuildKeyFor(hPrinter, pValueName);
    const DWORD first = SetPrinterDataExW(hPrinter, PropertiesKeyPath, pValueName, type,
                                          const_cast<BYTE*>(pData), cbData);
    if (first == ERROR_SUCCESS) return ERROR_SUCCESS;
    Log("SetPrinterDataToReg : SetPrinterDataEx failed-1 with (%d)", LastErrorCode());
    if (lpdi == nullptr) return first;

    // A sheet's handle may carry read access only; reopened by name with full access, an
    // administrator's change still reaches the registry.
    ScopedPrinter again;
    if (!OpenPrinterByName(lpdi->printerName, again)) {
        Log("SetPrinterDataToReg : OpenPrinter failed-2 with (%d)", LastErrorCode());
        return first;
    }
    // Same key as the first attempt, only through the new handle.
    const DWORD second = SetPrinterDataExW(again.get(), PropertiesKeyPath, pValueName, type,
                                           const_cast<BYTE*>(pData), cbData);
    if (second != ERROR_SUCCESS)
        Log("SetPrinterDataToReg : SetPrinterDataEx failed-2 with (%d)", LastErrorCode());
    else
        Log("SetPrinterDataToReg : SetPrinterDataEx succeeded");
    return second;
}

BOOL OpenPrinterByName(const WCHAR* printerName, ScopedPrinter& printer)
{
    if (printerName == nullptr || printerName[0] == L'\0') {
        printer.reset();
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return FALSE;
    }
    return OpenPrinterFullAccess(printerName, printer);
}

bool ModelIn(const WCHAR* model, std::initializer_list<const WCHAR*> list)
{
    if (model == nullptr) return false;
    for (const WCHAR* entry : list)
        if (wcscmp(model, entry) == 0) return true;
    return false;
}

BOOL GetModelName(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length)
{
    static const LookupTexts texts = {
        "GetModelName : START", "GetModelName : LPDI is null.", "GetModelName : END",
        "GetModelName : GetPrinterDataEx failed.", "GetModelName", "wszModelName" };
    return LookupThroughRecord(lpdi, buffer, length, L"PrinterDriverData", L"Model",
                               printerdata::ModelFromModelText, texts);
}

BOOL GetFormID(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length)
{
    static const LookupTexts texts = {
        "GetFormID : START", "GetFormID : LPDI is null.", "GetFormID : END", "GetFormID : GetPrinterDataEx failed.",
        "GetFormID", "wszFormId" };
    return LookupThroughRecord(lpdi, buffer, length, L"DsDriver", L"printMediaReady", printerdata::FormIdFromMedia,
                               texts);
}

BOOL GetFormDefaultWidthHeight(const DIALOGINFO* lpdi, DriverText& buffer, DWORD* length)
{
    static const LookupTexts texts = {
        "GetFormDefaultWidthHeight : START", "GetFormDefaultWidthHeight : LPDI is null.",
        "GetFormDefaultWidthHeight : END", "GetFormDefaultWidthHeight : GetPrinterDataEx failed.",
        "GetFormDefaultWidthHeight", "wszForm" };
    return LookupThroughRecord(lpdi, buffer, length, L"DsDriver", L"printMediaReady",
                               printerdata::DefaultFormFromMedia, texts);
}

namespace printerdata {

void ModelFromModelText(const WCHAR* text, WCHAR (&out)[kTextChars])
{
    // A model text without a second word gives "(null)", which matches no model list.
    if (!Piece(text, L' ', 2, out)) CopyCut(out, L"(null)");
}

void FormIdFromMedia(const WCHAR* text, WCHAR (&out)[kTextChars])
{
    WCHAR piece[kTextChars];
    if (!Piece(text, L'[', 2, piece)) CopyCut(piece, L"(null)");
    CopyCut(out, L"[");
    AppendCut(out, piece);
}

void DefaultFormFromMedia(const WCHAR* text, WCHAR (&out)[kTextChars])
{
    if (!Piece(text, L'[', 1, out)) CopyCut(out, L"(null)");
}

namespace {
// One driver-published text, logged as read and then cut by `rule`; `out` is empty when unreadable.
bool ReadDriverValue(HANDLE hPrinter, const WCHAR* key, const WCHAR* value, TextRule rule,
                     WCHAR (&out)[kTextChars], const char* who, const char* variable)
{
    WCHAR text[kTextChars + 1];
    out[0] = L'\0';
    if (ReadDriverText(hPrinter, key, value, text) != ERROR_SUCCESS) return false;
    Log("%s : before %s = %S", who, variable, text);
    rule(text, out);
    return true;
}
}  // namespace

bool ReadModelName(HANDLE hPrinter, WCHAR (&modelName)[kTextChars], const char* who)
{
    return ReadDriverValue(hPrinter, L"PrinterDriverData", L"Model", ModelFromModelText, modelName, who, "wszModelName");
}

bool ReadFormId(HANDLE hPrinter, WCHAR (&formId)[kTextChars], const char* who)
{
    return ReadDriverValue(hPrinter, L"DsDriver", L"printMediaReady", FormIdFromMedia, formId, who, "wszFormId");
}

}  // namespace printerdata
