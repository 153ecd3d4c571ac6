// The user-defined paper dialog and the forms lists it shares with the Layout page.
//
// Forms of this driver are recognised by their names: a display name directly followed by the
// driver's form identifier, which begins with "[" ("Receipt 80" + "[R80]" = "Receipt 80[R80]").
// Lists show the display name only; the full name is rebuilt by appending the identifier.
#pragma once

#include <windows.h>

#include "oemui/handles.h"
#include "settings/dialog_info.h"

// Longest full form name the pages build (display name + identifier, terminator included).
constexpr size_t kFormNameChars = 64;

// Dialog procedure of the modal "User Defined Paper Size" dialog; run with the record as lParam.
INT_PTR CALLBACK DlgUserDefinedPaper(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);

// Refills the dialog's forms list with the driver's user forms and selects the last one;
// returns the number of items.
int Utility_UpdateFormList(HWND hDlg, DIALOGINFO* lpdi);
// Shows the selected form's name, width and length; 1 on success, 0 on failure.
int Utility_SelChangeFormList(HWND hDlg, DIALOGINFO* lpdi);
// Fills the Layout page's paper-size list with every form whose name carries `formId`;
// returns the number of forms enumerated.
int UpdatePaperSizeList(HWND hDlg, DIALOGINFO* lpdi, const WCHAR* formId);
// 1 if a form named exactly `fullName` exists, else 0.
int Utility_EnumPrinterForms(DIALOGINFO* lpdi, const WCHAR* fullName);

// Position of the first item of the Layout page's paper-size list whose text is exactly `name`;
// 0 when there is none.
int FindPaperSizeIndex(HWND hDlg, const WCHAR* name);

// The buttons and the check box of the dialog.
void Utility_DeleteForm(HWND hDlg, DIALOGINFO* lpdi);
void Utility_SaveForm(HWND hDlg, DIALOGINFO* lpdi);
void Utility_ImageWidthMode(HWND hDlg, DIALOGINFO* lpdi);

// A size in thousandths of a millimetre as the dialog shows it: millimetres with one decimal,
// where a remainder below 0.1 mm is dropped and tenths round half up (80.95 mm shows "81.0").
void ThousandthsToMillimetres(LONG thousandths, WCHAR (&text)[32]);

// The forms of a printer, enumerated at level 1 (size query, allocation, call). Failure is
// logged as "EnumForms failed. (%d)"; the forms are then empty.
class PrinterForms {
public:
    explicit PrinterForms(HANDLE hPrinter);
    ~PrinterForms() = default;
    PrinterForms(const PrinterForms&) = delete;
    PrinterForms& operator=(const PrinterForms&) = delete;

    BOOL ok() const { return ok_; }
    DWORD count() const { return count_; }
    const FORM_INFO_1W& operator[](DWORD i) const { return forms_[i]; }
    // The first form whose name equals `name` exactly (case-sensitive), or null.
    const FORM_INFO_1W* Find(const WCHAR* name) const;

private:
    OwnedBytes buffer_;
    const FORM_INFO_1W* forms_ = nullptr;
    DWORD count_ = 0;
    BOOL ok_ = FALSE;
};

// Copies `name` cut at its first "[" into `out`.
template <size_t N>
void DisplayNameOf(const WCHAR* name, WCHAR (&out)[N])
{
    size_t i = 0;
    for (; i + 1 < N && name[i] != L'\0' && name[i] != L'['; ++i) out[i] = name[i];
    out[i] = L'\0';
}
