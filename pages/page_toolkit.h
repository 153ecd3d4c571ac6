// The page toolkit: the small operations every property page and modal dialog of the plug-in is
// made of. A page's dialog procedure dispatches to its own named helpers, and those helpers are
// written in these words: controls by id, the record, "MISC", and the hidden statics that carry
// each language's run-time texts.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <cstddef>
#include <initializer_list>

#include "settings/dialog_info.h"
#include "settings/printer_data.h"

namespace page {

// ---- The record ----------------------------------------------------------------------------

// The record a property page keeps in DWLP_USER: stored on WM_INITDIALOG from the
// PROPSHEETPAGEW's lParam, fetched for every later message (null before that).
DIALOGINFO* PageRecord(HWND hDlg, UINT msg, LPARAM lParam);

// The same for a modal dialog opened with DialogBoxParamW, whose lParam is the record itself.
template <typename Record = DIALOGINFO>
Record* ModalRecord(HWND hDlg, UINT msg, LPARAM lParam)
{
    if (msg == WM_INITDIALOG) SetWindowLongPtrW(hDlg, DWLP_USER, lParam);
    return reinterpret_cast<Record*>(GetWindowLongPtrW(hDlg, DWLP_USER));
}

// Re-reads the 99 preference bytes from "MISC" into the record, as every page does when it is
// created, so that it shows what is stored rather than what another page changed without applying.
// The read's status is kept in the record; when it fails the defaults are reloaded. True when read.
bool ReloadPreferences(DIALOGINFO* lpdi);

// Writes the 99 preference bytes as "MISC" (with the retry by printer name); the Win32 status.
DWORD SavePreferences(DIALOGINFO* lpdi);

// ---- The sheet -----------------------------------------------------------------------------

// Tells the sheet that this page has changes (enables Apply).
void MarkChanged(HWND hDlg);

// Answers a WM_NOTIFY (or another message whose answer is DWLP_MSGRESULT): stores the result and
// returns TRUE, so the dialog manager hands it on instead of its default.
INT_PTR NotifyResult(HWND hDlg, LONG_PTR result);

// ---- Buttons and enabling ------------------------------------------------------------------

void Enable(HWND hDlg, int id, BOOL enable);
void EnableAll(HWND hDlg, std::initializer_list<int> ids, BOOL enable);
template <size_t N>
void EnableAll(HWND hDlg, const int (&ids)[N], BOOL enable)
{
    for (int id : ids) Enable(hDlg, id, enable);
}
void Show(HWND hDlg, int id, bool visible);
bool IsEnabled(HWND hDlg, int id);
bool Checked(HWND hDlg, int id);
void Check(HWND hDlg, int id, bool checked);

// The index of the first checked radio of `radios`, or -1 when none is.
template <size_t N>
int CheckedIndex(HWND hDlg, const int (&radios)[N])
{
    for (size_t i = 0; i < N; ++i)
        if (Checked(hDlg, radios[i])) return static_cast<int>(i);
    return -1;
}

// ---- Lists (combo boxes) -------------------------------------------------------------------

LRESULT ListSelection(HWND hDlg, int id);
// Selects `index`; an index past the end clears the selection (as Windows does, and Wine does not).
void ListSelect(HWND hDlg, int id, int index);
void ListInsert(HWND hDlg, int id, WPARAM position, const WCHAR* text);
void ListAdd(HWND hDlg, int id, const WCHAR* text);
void ListClear(HWND hDlg, int id);

// ---- Texts ---------------------------------------------------------------------------------

// Run-time texts are read with a 320-character buffer.
constexpr size_t kHiddenChars = 320;
using HiddenString = WCHAR[kHiddenChars];

// The text of a (hidden) static: each language's wording of a list entry, caption or message.
template <size_t N>
void HiddenText(HWND hDlg, int id, WCHAR (&text)[N])
{
    text[0] = L'\0';
    GetWindowTextW(GetDlgItem(hDlg, id), text, static_cast<int>(N));
}

// Adds the texts of the hidden statics `ids`, in order, to the end of list `listId`.
void ListAddHiddenTexts(HWND hDlg, int listId, std::initializer_list<int> ids);
// Gives control `id` the text of hidden static `hiddenId`.
void CaptionFromHidden(HWND hDlg, int id, int hiddenId);

// ---- Numbers in edits ----------------------------------------------------------------------

void ShowNumber(HWND hDlg, int id, int value);
void LimitText(HWND hDlg, int id, int characters);
int Clamp(int value, int low, int high);

// An edit's text (at most 256 characters) in the ANSI code page, as the number readers take it.
void GetEditTextAnsi(HWND hDlg, int id, char* narrow, size_t capacity);
template <size_t N>
void GetEditTextAnsi(HWND hDlg, int id, char (&narrow)[N])
{
    GetEditTextAnsi(hDlg, id, narrow, N);
}

// The number in an edit as the ANSI run-time's atoi reads it: leading digits, none reads as 0.
int ReadEditNumber(HWND hDlg, int id);

// ---- Edits with an up-down scroll bar ------------------------------------------------------

// What a step past either end does.
enum class SpinEnds { Clamp, Wrap };
// What a scroll code other than SB_LINEUP / SB_LINEDOWN does: nothing at all, or show the value
// again (position and text) unchanged.
enum class OtherCodes { Ignore, Redisplay };

// One numeric edit paired with a vertical scroll bar used as its up-down control. The upper arrow
// counts up; the current value is read from the edit's text, not from the bar.
struct SpinEdit {
    int edit;
    int spin;
    int low;
    int high;
    SpinEnds ends;
    OtherCodes others;
};

// The row whose scroll bar is `spinId`, or null.
template <size_t N>
const SpinEdit* SpinOf(const SpinEdit (&rows)[N], int spinId)
{
    for (const SpinEdit& row : rows)
        if (row.spin == spinId) return &row;
    return nullptr;
}
template <size_t N>
const SpinEdit* EditOf(const SpinEdit (&rows)[N], int editId)
{
    for (const SpinEdit& row : rows)
        if (row.edit == editId) return &row;
    return nullptr;
}

// One step of `row` for scroll code `code`: the new value goes to the bar (redrawn) and the edit.
// False when the code was ignored.
bool StepSpin(HWND hDlg, const SpinEdit& row, int code);

// Sets the bar's range and the edit's character limit, and shows `value` in both.
void InitSpin(HWND hDlg, const SpinEdit& row, int rangeLow, int rangeHigh, int characters, int value);

// An edit left by the focus: a number below `low` or above `high` is replaced by that bound's
// decimal text; a number within range is left as typed. True when the text was replaced.
bool CorrectEditRange(HWND hDlg, int id, int low, int high);

// ---- Models --------------------------------------------------------------------------------

// Exact, case-sensitive equality of `model` with one of a list (settings/printer_data.h).
using ::ModelIn;

}  // namespace page

// The edit readers of the Document Settings page, shared by the barcode dialogs: the edit's
// decimal number as atoi reads its ANSI text (leading digits, 0 if none), into one byte by
// truncation to the low 8 bits, or into an int.
void GetEditByteValue(HWND hDlg, int id, BYTE* value);
void GetEditIntValue(HWND hDlg, int id, int* value);
