#include "pages/page_toolkit.h"

#include <cstdlib>
#include <cwchar>

#include "settings/config_import.h"
#include "settings/printer_data.h"

namespace page {

DIALOGINFO* PageRecord(HWND hDlg, UINT msg, LPARAM lParam)
{
    if (msg == WM_INITDIALOG)
        SetWindowLongPtrW(hDlg, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
    return reinterpret_cast<DIALOGINFO*>(GetWindowLongPtrW(hDlg, DWLP_USER));
}

bool ReloadPreferences(DIALOGINFO* lpdi)
{
    lpdi->cbPreferences = kPreferenceCount;
    lpdi->preferencesStatus = GetPrinterDataFromReg(lpdi->hPrinter, L"MISC", nullptr, lpdi->byteValue,
                                                    kPreferenceCount, &lpdi->cbPreferences);
    if (lpdi->preferencesStatus == 0) return true;
    InitDialogInfo(lpdi);
    return false;
}

DWORD SavePreferences(DIALOGINFO* lpdi)
{
    return SetPrinterDataToReg(lpdi->hPrinter, L"MISC", REG_BINARY, lpdi->byteValue, kPreferenceCount, lpdi);
}

void MarkChanged(HWND hDlg)
{
    SendMessageW(GetParent(hDlg), PSM_CHANGED, reinterpret_cast<WPARAM>(hDlg), 0);
}

INT_PTR NotifyResult(HWND hDlg, LONG_PTR result)
{
    SetWindowLongPtrW(hDlg, DWLP_MSGRESULT, result);
    return TRUE;
}

void Enable(HWND hDlg, int id, BOOL enable)
{
    EnableWindow(GetDlgItem(hDlg, id), enable);
}

void EnableAll(HWND hDlg, std::initializer_list<int> ids, BOOL enable)
{
    for (int id : ids) Enable(hDlg, id, enable);
}

void Show(HWND hDlg, int id, bool visible)
{
    ShowWindow(GetDlgItem(hDlg, id), visible ? SW_SHOW : SW_HIDE);
}

bool IsEnabled(HWND hDlg, int id)
{
    return IsWindowEnabled(GetDlgItem(hDlg, id)) != FALSE;
}

bool Checked(HWND hDlg, int id)
{
    return IsDlgButtonChecked(hDlg, id) == BST_CHECKED;
}

void Check(HWND hDlg, int id, bool checked)
{
    CheckDlgButton(hDlg, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

LRESULT ListSelection(HWND hDlg, int id)
{
    return SendDlgItemMessageW(hDlg, id, CB_GETCURSEL, 0, 0);
}

void ListSelect(HWND hDlg, int id, int index)
{
    const LRESULT count = SendDlgItemMessageW(hDlg, id, CB_GETCOUNT, 0, 0);
    const WPARAM which = index >= 0 && index < count ? static_cast<WPARAM>(index) : static_cast<WPARAM>(-1);
    SendDlgItemMessageW(hDlg, id, CB_SETCURSEL, which, 0);
}

void ListInsert(HWND hDlg, int id, WPARAM position, const WCHAR* text)
{
    SendDlgItemMessageW(hDlg, id, CB_INSERTSTRING, position, reinterpret_cast<LPARAM>(text));
}

void ListAdd(HWND hDlg, int id, const WCHAR* text)
{
    SendDlgItemMessageW(hDlg, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

void ListClear(HWND hDlg, int id)
{
    SendDlgItemMessageW(hDlg, id, CB_RESETCONTENT, 0, 0);
}

void ListAddHiddenTexts(HWND hDlg, int listId, std::initializer_list<int> ids)
{
    HiddenString text;
    for (int id : ids) {
        HiddenText(hDlg, id, text);
        ListInsert(hDlg, listId, static_cast<WPARAM>(-1), text);
    }
}

void CaptionFromHidden(HWND hDlg, int id, int hiddenId)
{
    HiddenString text;
    HiddenText(hDlg, hiddenId, text);
    SetDlgItemTextW(hDlg, id, text);
}

void ShowNumber(HWND hDlg, int id, int value)
{
    SetDlgItemInt(hDlg, id, static_cast<UINT>(value), TRUE);
}

void LimitText(HWND hDlg, int id, int characters)
{
    SendDlgItemMessageW(hDlg, id, EM_LIMITTEXT, static_cast<WPARAM>(characters), 0);
}

int Clamp(int value, int low, int high)
{
    return value < low ? low : value > high ? high : value;
}

void GetEditTextAnsi(HWND hDlg, int id, char* narrow, size_t capacity)
{
    if (capacity == 0) return;
    WCHAR wide[257] = L"";
    GetDlgItemTextW(hDlg, id, wide, 256);
    narrow[0] = '\0';
    WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, wide, -1, narrow, static_cast<int>(capacity) - 1, nullptr,
                        nullptr);
    narrow[capacity - 1] = '\0';
}

int ReadEditNumber(HWND hDlg, int id)
{
    char narrow[520];
    GetEditTextAnsi(hDlg, id, narrow);
    return atoi(narrow);
}

bool StepSpin(HWND hDlg, const SpinEdit& row, int code)
{
    int value = ReadEditNumber(hDlg, row.edit);
    if (code == SB_LINEUP) ++value;
    else if (code == SB_LINEDOWN) --value;
    else if (row.others == OtherCodes::Ignore) return false;

    if (row.ends == SpinEnds::Wrap) {
        if (value < row.low) value = row.high;
        else if (value > row.high) value = row.low;
    } else {
        value = Clamp(value, row.low, row.high);
    }
    SetScrollPos(GetDlgItem(hDlg, row.spin), SB_CTL, value, TRUE);
    ShowNumber(hDlg, row.edit, value);
    return true;
}

void InitSpin(HWND hDlg, const SpinEdit& row, int rangeLow, int rangeHigh, int characters, int value)
{
    LimitText(hDlg, row.edit, characters);
    const HWND bar = GetDlgItem(hDlg, row.spin);
    SetScrollRange(bar, SB_CTL, rangeLow, rangeHigh, FALSE);
    SetScrollPos(bar, SB_CTL, value, FALSE);
    ShowNumber(hDlg, row.edit, value);
}

bool CorrectEditRange(HWND hDlg, int id, int low, int high)
{
    const int value = ReadEditNumber(hDlg, id);
    if (value >= low && value <= high) return false;
    WCHAR text[16];
    swprintf(text, 16, L"%d", value < low ? low : high);
    SetDlgItemTextW(hDlg, id, text);
    return true;
}

}  // namespace page

void GetEditByteValue(HWND hDlg, int id, BYTE* value)
{
    *value = static_cast<BYTE>(page::ReadEditNumber(hDlg, id) & 0xFF);
}

void GetEditIntValue(HWND hDlg, int id, int* value)
{
    *value = page::ReadEditNumber(hDlg, id);
}
