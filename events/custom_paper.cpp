#include "events/custom_paper.h"

#include <winspool.h>

#include <cstdio>
#include <cwchar>
#include <cwctype>

#include "oemui/handles.h"
#include "oemui/log.h"
#include "settings/printer_data.h"

namespace {

struct StdioFileTraits {
    using Handle = FILE*;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle f) { fclose(f); }
};
using ScopedStdioFile = Scoped<StdioFileTraits>;

// The blanks of the runtime's own scanner and number conversion, which the paper lines follow.
bool IsBlank(WCHAR c) { return c != L'\0' && iswspace(c) != 0; }

void AddOrReplaceForm(HANDLE hPrinter, WCHAR* formName, FORM_INFO_1W& form)
{
    if (AddFormW(hPrinter, 1, reinterpret_cast<BYTE*>(&form))) {
        Log("SetCustomPaper :AddForm Success ");
        return;
    }
    Log("SetCustomPaper :AddForm returned FALSE, (%d)", LastErrorCode());
    if (!SearchEnumPaperCompare(hPrinter, formName)) return;

    Log("SetCustomPaper : Repalce Paper Form.");
    if (SetFormW(hPrinter, formName, 1, reinterpret_cast<BYTE*>(&form))) return;
    Log("SetCustomPaper :SetForm returned FALSE, (%d)", LastErrorCode());
    if (!DeleteFormW(hPrinter, formName)) Log("SetCustomPaper :DeleteForm returned FALSE, (%d)", LastErrorCode());
    if (!AddFormW(hPrinter, 1, reinterpret_cast<BYTE*>(&form)))
        Log("SetCustomPaper :AddForm returned FALSE, (%d)", LastErrorCode());
}

void ImportPaperLine(HANDLE hPrinter, const WCHAR* line, const WCHAR* formId)
{
    WCHAR paperName[64], widthText[16], heightText[16];
    if (paperdetail::ScanPaperLine(line, paperName, widthText, heightText) != 3) {
        Log("SetCustomPaper :swscanf Fail (%d)", LastErrorCode());
        return;
    }
    Log("SetCustomPaper : paper_name :%S", paperName);
    // 64 characters in all: a long paper name leaves less room for the identifier, or none.
    WCHAR formName[64];
    CopyCut(formName, paperName);
    AppendCut(formName, formId);
    Log("SetCustomPaper : paper_name + formid:%S", formName);
    Log("SetCustomPaper : paper_width_str :%S", widthText);
    Log("SetCustomPaper : paper_height_str :%S", heightText);
    LONG width = 0, height = 0;
    if (!paperdetail::PaperSizeMicrons(widthText, &width) || !paperdetail::PaperSizeMicrons(heightText, &height)) {
        Log("SetCustomPaper : paper size out of range, line skipped");
        return;
    }
    Log("SetCustomPaper : paper_width :%ld", width);
    Log("SetCustomPaper : paper_height :%ld", height);

    FORM_INFO_1W form = UserForm(formName, width, height);
    AddOrReplaceForm(hPrinter, formName, form);
}

}  // namespace

namespace paperdetail {

int ScanPaperLine(const WCHAR* line, WCHAR (&name)[64], WCHAR (&width)[16], WCHAR (&height)[16])
{
    name[0] = width[0] = height[0] = L'\0';
    const WCHAR* p = line;
    // A scan set needs at least one character and stops at its width or at a comma.
    auto scanToComma = [&p](WCHAR* out, size_t limit) {
        size_t n = 0;
        while (n < limit && *p != L'\0' && *p != L',') out[n++] = *p++;
        out[n] = L'\0';
        return n > 0;
    };
    if (!scanToComma(name, 63)) return 0;
    if (*p++ != L',') return 1;
    if (!scanToComma(width, 15)) return 1;
    if (*p++ != L',') return 2;
    while (IsBlank(*p)) ++p;
    size_t n = 0;
    while (n < 15 && *p != L'\0' && !IsBlank(*p)) height[n++] = *p++;
    height[n] = L'\0';
    return n > 0 ? 3 : 2;
}

bool PaperSizeMicrons(const WCHAR* text, LONG* microns)
{
    const WCHAR* p = text;
    while (IsBlank(*p)) ++p;
    bool negative = false;
    if (*p == L'+' || *p == L'-') negative = *p++ == L'-';
    // Stops counting once the value is far beyond any form, so nothing can overflow.
    const long long kLimit = 0x7FFFFFFFLL;
    long long mm = 0;
    for (; *p >= L'0' && *p <= L'9'; ++p)
        if (mm <= kLimit) mm = mm * 10 + (*p - L'0');
    if (negative && mm != 0) return false;
    const long long value = mm * 1000;
    if (value > kLimit) return false;
    *microns = static_cast<LONG>(value);
    return true;
}

}  // namespace paperdetail

BOOL SearchEnumPaperCompare(HANDLE hPrinter, const WCHAR* formName)
{
    Log("SearchEnumPaperCompare :Search Enum Paper Form");
    DWORD needed = 0, returned = 0;
    EnumFormsW(hPrinter, 1, nullptr, 0, &needed, &returned);
    ScopedLocal block(LocalAlloc(LPTR, needed != 0 ? needed : sizeof(FORM_INFO_1W)));
    if (!block.valid() || !EnumFormsW(hPrinter, 1, static_cast<BYTE*>(block.get()), needed, &needed, &returned)) {
        Log("SearchEnumPaperCompare : EnumForms failed. (%d)", LastErrorCode());
        return FALSE;
    }
    const auto* forms = static_cast<const FORM_INFO_1W*>(block.get());
    for (DWORD i = 0; i < returned; ++i) {
        if (forms[i].pName != nullptr && wcscmp(forms[i].pName, formName) == 0) {   // exact, case-sensitive
            Log("SearchEnumPaperCompare : Found Paper Form .");
            break;
        }
    }
    // Replacing is worth a try whenever the forms could be listed, found or not: the failed add
    // may have been refused for a name that only differs in case.
    return TRUE;
}

void SetCustomPaper(const WCHAR* printerName)
{
    Log("SetCustomPaper : START");
    ScopedPrinter printer;
    if (!OpenPrinterByName(printerName, printer)) {
        Log("SetCustomPaper : OpenPrinter failed with %d", LastErrorCode());
        return;
    }

    WCHAR modelName[printerdata::kTextChars];
    printerdata::ReadModelName(printer.get(), modelName, "SetCustomPaper");
    Log("SetCustomPaper : after wszModelName = %S", modelName);
    WCHAR formId[printerdata::kTextChars];
    printerdata::ReadFormId(printer.get(), formId, "SetCustomPaper");
    Log("SetCustomPaper : after wszFormId = %S", formId);

    WCHAR path[255] = {};
    WCHAR windowsDir[260] = {};
    GetWindowsDirectoryW(windowsDir, ARRAYSIZE(windowsDir));
    CopyCut(path, windowsDir);
    AppendCut(path, L"\\");
    AppendCut(path, modelName);
    AppendCut(path, L"\\");
    AppendCut(path, L"AddCustomPaper.txt");
    Log("SetCustomPaper : paper_info_file path = %S", path);

    ScopedStdioFile file(_wfopen(path, L"r"));
    if (!file.valid()) {
        Log("SetCustomPaper :File Open Fail (%d)", LastErrorCode());
        return;
    }
    // Lines of at most 255 characters: a longer one is read in pieces, each taken as a line.
    char piece[256];
    bool first = true;
    while (fgets(piece, sizeof piece, file.get()) != nullptr) {
        if (first) {
            first = false;
            Log("SetCustomPaper :FirstLine Skip");
            continue;
        }
        WCHAR line[256] = {};
        MultiByteToWideChar(CP_ACP, 0, piece, -1, line, ARRAYSIZE(line));
        line[ARRAYSIZE(line) - 1] = L'\0';
        ImportPaperLine(printer.get(), line, formId);
    }
}
