#include "pages/user_paper.h"

#include <windowsx.h>
#include <commctrl.h>
#include <prsht.h>
#include <cstdlib>
#include <cwchar>
#include <new>

#include "oemui/handles.h"
#include "oemui/log.h"
#include "pages/pages.h"
#include "resources/resource.h"
#include "settings/printer_data.h"

namespace {

using namespace page;

// Limits of the size fields, in millimetres.
constexpr double kMinSize = 25.4;
constexpr double kMaxWidth = 210.0;
constexpr double kMaxLength = 3276.0;
// Without "Based on Image Width" the width field is the paper width; the printable image, which
// is what the form stores, is 90 % of it.
constexpr double kImageShare = 0.9;

// The driver's form identifier, "[...]"; empty when the driver publishes none.
void CurrentFormId(DIALOGINFO* lpdi, WCHAR (&formId)[260])
{
    formId[0] = L'\0';
    DWORD length = 0;
    GetFormID(lpdi, formId, &length);
}

// A millimetre field read the way the ANSI run-time reads a number: leading blanks, digits, an
// optional fraction; anything else ends it, and no number at all reads as 0.
double ReadMillimetres(HWND hDlg, int id)
{
    char narrow[520];
    GetEditTextAnsi(hDlg, id, narrow);
    return atof(narrow);
}

void WriteMillimetres(HWND hDlg, int id, double value)
{
    WCHAR text[32];
    StringCbPrintfW(text, sizeof text, L"%.1f", value);
    SetDlgItemTextW(hDlg, id, text);
}

double ClampSize(int editId, double value)
{
    const double upper = editId == IDE_PAPER_WIDTH ? kMaxWidth : kMaxLength;
    if (value < kMinSize) return kMinSize;
    if (value > upper) return upper;
    return value;
}

bool ImageWidthChecked(HWND hDlg)
{
    return IsDlgButtonChecked(hDlg, IDX_PAPER_IMAGE_WIDTH) == BST_CHECKED;
}

// The display name of the selected item of the forms list; false when nothing is selected.
bool SelectedDisplayName(HWND hDlg, WCHAR (&name)[kFormNameChars])
{
    name[0] = L'\0';
    const HWND list = GetDlgItem(hDlg, IDL_PAPER_FORMS);
    const LRESULT sel = SendMessageW(list, LB_GETCURSEL, 0, 0);
    if (sel == LB_ERR) return false;
    const LRESULT length = SendMessageW(list, LB_GETTEXTLEN, static_cast<WPARAM>(sel), 0);
    if (length == LB_ERR || length >= static_cast<LRESULT>(kFormNameChars)) return false;
    return SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(sel), reinterpret_cast<LPARAM>(name)) != LB_ERR;
}

// One form read with GetFormW at level 1 (size query, allocation, call); null on failure.
class PrinterForm {
public:
    PrinterForm(HANDLE hPrinter, WCHAR* fullName)
    {
        DWORD needed = 0;
        GetFormW(hPrinter, fullName, 1, nullptr, 0, &needed);
        if (needed == 0) return;
        buffer_ = AllocateBytes(needed);
        if (buffer_ != nullptr && GetFormW(hPrinter, fullName, 1, buffer_.get(), needed, &needed))
            form_ = reinterpret_cast<FORM_INFO_1W*>(buffer_.get());
    }
    PrinterForm(const PrinterForm&) = delete;
    PrinterForm& operator=(const PrinterForm&) = delete;
    const FORM_INFO_1W* get() const { return form_; }

private:
    OwnedBytes buffer_;
    const FORM_INFO_1W* form_ = nullptr;
};

// ---- the dialog's messages -------------------------------------------------------------

void UserPaper_OnInitDialog(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("DlgUserDefinedPaper : WM_INITDIALOG START", "DlgUserDefinedPaper : WM_INITDIALOG END");
    WCHAR formId[260];
    CurrentFormId(lpdi, formId);
    // A form name holds at most 31 characters, the identifier included.
    const int nameLimit = 31 - lstrlenW(formId);
    SendDlgItemMessageW(hDlg, IDE_PAPER_NAME, EM_LIMITTEXT, nameLimit > 0 ? nameLimit : 1, 0);
    // Four characters: "210.0" can be shown but not typed whole. Kept so.
    SendDlgItemMessageW(hDlg, IDE_PAPER_WIDTH, EM_LIMITTEXT, 4, 0);
    SendDlgItemMessageW(hDlg, IDE_PAPER_LENGTH, EM_LIMITTEXT, 6, 0);
    Utility_UpdateFormList(hDlg, lpdi);
}

// A size field left by the focus gets its value brought into range and shown with one decimal.
void UserPaper_CorrectSize(HWND hDlg, int editId)
{
    WriteMillimetres(hDlg, editId, ClampSize(editId, ReadMillimetres(hDlg, editId)));
}

void UserPaper_OnCommand(HWND hDlg, DIALOGINFO* lpdi, int id, int code)
{
    const HWND owner = GetParent(hDlg);
    switch (code) {
    case 1:   // LBN_SELCHANGE
        SendMessageW(owner, PSM_CHANGED, reinterpret_cast<WPARAM>(owner), 0);
        if (id == IDL_PAPER_FORMS) {
            Utility_SelChangeFormList(hDlg, lpdi);
            return;
        }
        break;
    case EN_KILLFOCUS:
        if (id == IDE_PAPER_WIDTH || id == IDE_PAPER_LENGTH) UserPaper_CorrectSize(hDlg, id);
        break;
    case EN_CHANGE:
        SendMessageW(owner, PSM_CHANGED, reinterpret_cast<WPARAM>(owner), 0);
        break;
    }
    switch (id) {
    case IDB_PAPER_DELETE: Utility_DeleteForm(hDlg, lpdi); break;
    case IDB_PAPER_SAVE: Utility_SaveForm(hDlg, lpdi); break;
    case IDX_PAPER_IMAGE_WIDTH: Utility_ImageWidthMode(hDlg, lpdi); break;
    case IDB_PAPER_CLOSE:
    case IDOK:
    case IDCANCEL: EndDialog(hDlg, 1); break;
    }
}

// The spin arrows step by a tenth of a millimetre; the scroll bar's own position is not used.
void UserPaper_OnVScroll(HWND hDlg, HWND scrollBar, int code)
{
    const int barId = GetDlgCtrlID(scrollBar);
    int editId = 0;
    if (barId == IDSB_PAPER_WIDTH) editId = IDE_PAPER_WIDTH;
    else if (barId == IDSB_PAPER_LENGTH) editId = IDE_PAPER_LENGTH;
    else return;
    double value = ReadMillimetres(hDlg, editId);
    if (code == SB_LINEUP) value += 0.1;
    else if (code == SB_LINEDOWN) value -= 0.1;
    WriteMillimetres(hDlg, editId, ClampSize(editId, value));
}

}  // namespace

// ---- the forms of a printer ---------------------------------------------------------------

PrinterForms::PrinterForms(HANDLE hPrinter)
{
    DWORD needed = 0, returned = 0;
    EnumFormsW(hPrinter, 1, nullptr, 0, &needed, &returned);
    buffer_ = AllocateBytes(needed);
    if (buffer_ != nullptr && EnumFormsW(hPrinter, 1, buffer_.get(), needed, &needed, &returned)) {
        ok_ = TRUE;
        forms_ = reinterpret_cast<const FORM_INFO_1W*>(buffer_.get());
        count_ = returned;
    } else {
        Log("EnumForms failed. (%d)", LastErrorCode());
    }
}

const FORM_INFO_1W* PrinterForms::Find(const WCHAR* name) const
{
    for (DWORD i = 0; i < count_; ++i)
        if (forms_[i].pName != nullptr && wcscmp(forms_[i].pName, name) == 0) return &forms_[i];
    return nullptr;
}

void ThousandthsToMillimetres(LONG thousandths, WCHAR (&text)[32])
{
    const LONG whole = thousandths / 1000;
    const LONG remainder = thousandths - whole * 1000;
    double value = whole;
    if (remainder >= 100) {
        const LONG tenths = (remainder + 50) / 100;   // half up: .95 and above make a whole millimetre
        value = whole + tenths * 0.1;
    }
    StringCbPrintfW(text, sizeof text, L"%.1f", value);
}

int FindPaperSizeIndex(HWND hDlg, const WCHAR* name)
{
    const HWND list = GetDlgItem(hDlg, IDC_LAYOUT_PAPER_SIZE);
    const LRESULT count = SendMessageW(list, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0);
        if (length == CB_ERR || length >= 260) continue;
        WCHAR item[260] = L"";
        SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(item));
        if (wcscmp(item, name) == 0) return static_cast<int>(i);
    }
    return 0;
}

int UpdatePaperSizeList(HWND hDlg, DIALOGINFO* lpdi, const WCHAR* formId)
{
    ScopedLog log("UpdatePaperSizeList : START", "UpdatePaperSizeList : END");
    PrinterForms forms(lpdi->hPrinter);
    const HWND list = GetDlgItem(hDlg, IDC_LAYOUT_PAPER_SIZE);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    // Inserted at explicit positions: the list keeps enumeration order even with the sorted style.
    WPARAM position = 0;
    for (DWORD i = 0; i < forms.count(); ++i) {
        if (forms[i].pName == nullptr || wcsstr(forms[i].pName, formId) == nullptr) continue;
        WCHAR display[kFormNameChars];
        DisplayNameOf(forms[i].pName, display);
        SendMessageW(list, CB_INSERTSTRING, position++, reinterpret_cast<LPARAM>(display));
    }
    return static_cast<int>(forms.count());
}

int Utility_EnumPrinterForms(DIALOGINFO* lpdi, const WCHAR* fullName)
{
    Log("Utility_EnumPrinterForms START");
    PrinterForms forms(lpdi->hPrinter);
    if (forms.Find(fullName) != nullptr) {
        Log("Utility_EnumPrinterForms : FORM_FOUND.");
        Log("Utility_EnumPrinterForms END");
        return 1;
    }
    Log("Utility_EnumPrinterForms : FORM_NOT_FOUND.");
    Log("Utility_EnumPrinterForms END");
    return 0;
}

int Utility_UpdateFormList(HWND hDlg, DIALOGINFO* lpdi)
{
    PrinterForms forms(lpdi->hPrinter);
    const HWND list = GetDlgItem(hDlg, IDL_PAPER_FORMS);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    WCHAR formId[260];
    CurrentFormId(lpdi, formId);
    CopyCut(lpdi->formId, formId);

    // Only the user's own forms of this driver: built-in and printer forms are never offered.
    WPARAM position = 0;
    for (DWORD i = 0; i < forms.count(); ++i) {
        if (forms[i].pName == nullptr || forms[i].Flags != FORM_USER) continue;
        if (wcsstr(forms[i].pName, formId) == nullptr) continue;
        WCHAR display[kFormNameChars];
        DisplayNameOf(forms[i].pName, display);
        SendMessageW(list, LB_INSERTSTRING, position++, reinterpret_cast<LPARAM>(display));
    }
    const int count = static_cast<int>(position);
    if (count > 0) {
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(count - 1), 0);
        Utility_SelChangeFormList(hDlg, lpdi);
        return count;
    }

    // Nothing saved yet: offer the default name, the driver's default width and the longest length.
    WCHAR defaultName[32];
    HiddenText(hDlg, IDT_HIDDEN_PAPER_DEFAULT_NAME, defaultName);
    if (defaultName[0] != L'\0') SetDlgItemTextW(hDlg, IDE_PAPER_NAME, defaultName);
    WCHAR defaultForm[260] = L"";
    DWORD length = 0;
    GetFormDefaultWidthHeight(lpdi, defaultForm, &length);
    // The first token of the default form's name ("80 x 297 mm" gives "80").
    const WCHAR* p = defaultForm;
    while (*p == L' ' || *p == L'x') ++p;
    WCHAR width[260];
    size_t n = 0;
    while (p[n] != L'\0' && p[n] != L' ' && p[n] != L'x' && n + 3 < 260) {
        width[n] = p[n];
        ++n;
    }
    width[n] = L'\0';
    AppendCut(width, L".0");
    SetDlgItemTextW(hDlg, IDE_PAPER_WIDTH, width);
    SetDlgItemTextW(hDlg, IDE_PAPER_LENGTH, L"3276.0");
    return 0;
}

int Utility_SelChangeFormList(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("Utility_SelChangeFormList START", "Utility_SelChangeFormList END");
    WCHAR fullName[kFormNameChars];
    if (!SelectedDisplayName(hDlg, fullName)) {
        Log("LB_GETTEXT : LB_ERR");
        return 0;
    }
    AppendCut(fullName, lpdi->formId);
    PrinterForm form(lpdi->hPrinter, fullName);
    if (form.get() == nullptr) {
        Log("GetForm returned FALSE, (%d)", LastErrorCode());
        return 0;
    }
    WCHAR display[kFormNameChars];
    DisplayNameOf(form.get()->pName, display);
    SetDlgItemTextW(hDlg, IDE_PAPER_NAME, display);

    LONG width = form.get()->Size.cx;
    if (!ImageWidthChecked(hDlg)) width = static_cast<LONG>(width / kImageShare);
    WCHAR text[32];
    ThousandthsToMillimetres(width, text);
    SetDlgItemTextW(hDlg, IDE_PAPER_WIDTH, text);
    ThousandthsToMillimetres(form.get()->Size.cy, text);
    SetDlgItemTextW(hDlg, IDE_PAPER_LENGTH, text);
    return 1;
}

void Utility_DeleteForm(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("Utility_DeleteForm START", "Utility_DeleteForm END");
    WCHAR fullName[kFormNameChars];
    if (!SelectedDisplayName(hDlg, fullName)) {
        Log("LB_GETTEXT : LB_ERR");
        return;
    }
    AppendCut(fullName, lpdi->formId);
    PrinterForm form(lpdi->hPrinter, fullName);
    if (form.get() == nullptr) {
        Log("GetForm returned FALSE, (%d)", LastErrorCode());
        return;
    }
    // No confirmation; and only the user's own forms, never a built-in or printer form.
    if (form.get()->Flags != FORM_USER) return;
    if (!DeleteFormW(lpdi->hPrinter, fullName)) Log("DeleteForm returned FALSE, (%d)", LastErrorCode());
    Utility_UpdateFormList(hDlg, lpdi);
}

void Utility_SaveForm(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("Utility_SaveForm START", "Utility_SaveForm END");
    WCHAR name[32], defaultName[32];
    name[0] = L'\0';
    GetDlgItemTextW(hDlg, IDE_PAPER_NAME, name, 32);
    HiddenText(hDlg, IDT_HIDDEN_PAPER_DEFAULT_NAME, defaultName);
    WCHAR formId[260];
    CurrentFormId(lpdi, formId);

    // The default name stands for "not named yet"; and the spooler keeps at most 31 characters.
    if (wcscmp(name, defaultName) == 0 || name[0] == L'\0' || lstrlenW(name) + lstrlenW(formId) >= 32) {
        WCHAR text[256], caption[256];
        HiddenText(hDlg, IDT_HIDDEN_PAPER_REFUSED, text);
        HiddenText(hDlg, IDT_HIDDEN_PAPER_ERROR, caption);
        MessageBoxW(hDlg, text, caption, MB_ICONHAND);
        return;
    }

    WCHAR fullName[kFormNameChars];
    CopyCut(fullName, name);
    AppendCut(fullName, formId);
    LONG width = static_cast<LONG>(ReadMillimetres(hDlg, IDE_PAPER_WIDTH) * 1000);
    if (!ImageWidthChecked(hDlg)) width = static_cast<LONG>(width * kImageShare);
    const LONG length = static_cast<LONG>(ReadMillimetres(hDlg, IDE_PAPER_LENGTH) * 1000);

    FORM_INFO_1W form = UserForm(fullName, width, length);

    bool updated = false;
    if (!AddFormW(lpdi->hPrinter, 1, reinterpret_cast<BYTE*>(&form))) {
        Log("AddForm returned FALSE, (%d)", LastErrorCode());
        if (Utility_EnumPrinterForms(lpdi, fullName)) {
            WCHAR text[256], caption[256];
            HiddenText(hDlg, IDT_HIDDEN_PAPER_UPDATE, text);
            HiddenText(hDlg, IDT_HIDDEN_PAPER_QUESTION, caption);
            if (MessageBoxW(hDlg, text, caption, MB_YESNO | MB_ICONQUESTION) != IDYES) return;
            updated = true;
            if (!SetFormW(lpdi->hPrinter, fullName, 1, reinterpret_cast<BYTE*>(&form))) {
                Log("SetForm returned FALSE, (%d)", LastErrorCode());
                // Some spoolers refuse to change a form in place: replace it instead.
                if (!DeleteFormW(lpdi->hPrinter, fullName))
                    Log("DeleteForm returned FALSE, (%d)", LastErrorCode());
                else if (!AddFormW(lpdi->hPrinter, 1, reinterpret_cast<BYTE*>(&form)))
                    Log("AddForm returned FALSE, (%d)", LastErrorCode());
            }
        }
    }

    if (updated && SendDlgItemMessageW(hDlg, IDL_PAPER_FORMS, LB_GETCURSEL, 0, 0) != LB_ERR)
        Utility_SelChangeFormList(hDlg, lpdi);
    else
        Utility_UpdateFormList(hDlg, lpdi);
}

void Utility_ImageWidthMode(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("Utility_ImageWidthMode START", "Utility_ImageWidthMode END");
    // Refilling re-shows the selected form's width under the new meaning of the field.
    Utility_UpdateFormList(hDlg, lpdi);
    WCHAR shown[256], hidden[256];
    HiddenText(hDlg, IDT_PAPER_WIDTH_LABEL, shown);
    HiddenText(hDlg, IDT_HIDDEN_PAPER_IMAGE_WIDTH, hidden);
    SetDlgItemTextW(hDlg, IDT_PAPER_WIDTH_LABEL, hidden);
    SetDlgItemTextW(hDlg, IDT_HIDDEN_PAPER_IMAGE_WIDTH, shown);
}

INT_PTR CALLBACK DlgUserDefinedPaper(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam)
{
    DIALOGINFO* lpdi = page::ModalRecord(hDlg, msg, lParam);
    if (lpdi == nullptr) return FALSE;   // messages before WM_INITDIALOG are ignored
    switch (msg) {
    case WM_INITDIALOG:
        UserPaper_OnInitDialog(hDlg, lpdi);
        return TRUE;
    case WM_COMMAND:
        UserPaper_OnCommand(hDlg, lpdi, LOWORD(wParam), HIWORD(wParam));
        return FALSE;
    case WM_VSCROLL:
        UserPaper_OnVScroll(hDlg, reinterpret_cast<HWND>(lParam), LOWORD(wParam));
        return FALSE;
    case WM_CLOSE:
        return TRUE;
    case WM_SYSCOMMAND:
        if ((wParam & 0xFFF0) == SC_CLOSE) {
            EndDialog(hDlg, 1);
            return TRUE;
        }
        return FALSE;
    }
    return FALSE;
}
