// The Layout page: paper size and type, copies, orientation, rotation, reduction and cropping.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <cstdlib>

#include "oemui/handles.h"
#include "oemui/module.h"
#include "oemui/log.h"
#include "oemui/themed.h"
#include "pages/devmode.h"
#include "pages/pages.h"
#include "pages/user_paper.h"
#include "resources/resource.h"
#include "settings/config_import.h"
#include "settings/printer_data.h"

namespace {

using namespace page;

void EnableReductionControls(HWND hDlg, BOOL enable);

// Each edge's group: its length edit, its spin and its unit list.
void EnableCropGroup(HWND hDlg, int edit, int spin, int unitList, BOOL enable)
{
    EnableAll(hDlg, { edit, spin, unitList }, enable);
}
void EnableTopCropControls(HWND hDlg, BOOL enable)
{
    EnableCropGroup(hDlg, IDE_LAYOUT_CROP_TOP, IDSB_LAYOUT_CROP_TOP, IDC_LAYOUT_CROP_TOP_UNIT, enable);
}
void EnableBottomCropControls(HWND hDlg, BOOL enable)
{
    EnableCropGroup(hDlg, IDE_LAYOUT_CROP_BOTTOM, IDSB_LAYOUT_CROP_BOTTOM, IDC_LAYOUT_CROP_BOTTOM_UNIT, enable);
}
void EnableLeftCropControls(HWND hDlg, BOOL enable)
{
    EnableCropGroup(hDlg, IDE_LAYOUT_CROP_LEFT, IDSB_LAYOUT_CROP_LEFT, IDC_LAYOUT_CROP_LEFT_UNIT, enable);
}
void EnableRightCropControls(HWND hDlg, BOOL enable)
{
    EnableCropGroup(hDlg, IDE_LAYOUT_CROP_RIGHT, IDSB_LAYOUT_CROP_RIGHT, IDC_LAYOUT_CROP_RIGHT_UNIT, enable);
}

// One edge of the image: its check box, length edit, spin, unit list and record bytes.
struct CropEdge {
    int check, edit, spin, unitList;
    unsigned on, length, unit;
    void (*enableGroup)(HWND, BOOL);
};

// In the order the page initialises and applies them.
const CropEdge kEdges[] = {
    { IDX_LAYOUT_CROP_TOP, IDE_LAYOUT_CROP_TOP, IDSB_LAYOUT_CROP_TOP, IDC_LAYOUT_CROP_TOP_UNIT,
      pref::TopCropOn, pref::TopCropLength, pref::TopCropUnit, EnableTopCropControls },
    { IDX_LAYOUT_CROP_BOTTOM, IDE_LAYOUT_CROP_BOTTOM, IDSB_LAYOUT_CROP_BOTTOM, IDC_LAYOUT_CROP_BOTTOM_UNIT,
      pref::BottomCropOn, pref::BottomCropLength, pref::BottomCropUnit, EnableBottomCropControls },
    { IDX_LAYOUT_CROP_LEFT, IDE_LAYOUT_CROP_LEFT, IDSB_LAYOUT_CROP_LEFT, IDC_LAYOUT_CROP_LEFT_UNIT,
      pref::LeftCropOn, pref::LeftCropLength, pref::LeftCropUnit, EnableLeftCropControls },
    { IDX_LAYOUT_CROP_RIGHT, IDE_LAYOUT_CROP_RIGHT, IDSB_LAYOUT_CROP_RIGHT, IDC_LAYOUT_CROP_RIGHT_UNIT,
      pref::RightCropOn, pref::RightCropLength, pref::RightCropUnit, EnableRightCropControls },
};

const int kRotationRadios[] = { IDR_LAYOUT_ROTATE_0, IDR_LAYOUT_ROTATE_90, IDR_LAYOUT_ROTATE_180,
                                IDR_LAYOUT_ROTATE_270 };
const WCHAR* const kFixedRates[] = { L"100%", L"75%", L"50%", L"25%" };
constexpr int kUserRateItem = 4;

const CropEdge* EdgeOfCheck(int id)
{
    for (const CropEdge& e : kEdges)
        if (e.check == id) return &e;
    return nullptr;
}

void EnableCropGroup(HWND hDlg, const CropEdge& edge, BOOL enable)
{
    edge.enableGroup(hDlg, enable);
}

// ---- WM_INITDIALOG ---------------------------------------------------------------------

void InitPaperSize(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("InitPaperSize : START", "InitPaperSize : END");
    ZeroMemory(lpdi->formId, sizeof lpdi->formId);
    WCHAR formId[260] = L"";
    DWORD length = 0;
    GetFormID(lpdi, formId, &length);
    CopyCut(lpdi->formId, formId);
    UpdatePaperSizeList(hDlg, lpdi, lpdi->formId);
    if (lpdi->preferencesStatus != 0) {
        // Nothing stored yet: start on the driver's default form.
        WCHAR defaultForm[260] = L"";
        GetFormDefaultWidthHeight(lpdi, defaultForm, &length);
        lpdi->byteValue[pref::PaperSize] = static_cast<BYTE>(FindPaperSizeIndex(hDlg, defaultForm));
    }
    SendDlgItemMessageW(hDlg, IDC_LAYOUT_PAPER_SIZE, CB_SETCURSEL, lpdi->byteValue[pref::PaperSize], 0);
}

void Layout_LoadPaperAndCopies(HWND hDlg, const DIALOGINFO* lpdi)
{
    const BYTE* v = lpdi->byteValue;
    HiddenString text;
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_RECEIPT, text);
    ListInsert(hDlg, IDC_LAYOUT_PAPER_TYPE, 0, text);
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_TICKET, text);
    ListInsert(hDlg, IDC_LAYOUT_PAPER_TYPE, 1, text);
    SendDlgItemMessageW(hDlg, IDC_LAYOUT_PAPER_TYPE, CB_SETCURSEL, v[pref::PaperType], 0);
    CheckDlgButton(hDlg, v[pref::Orientation] != 0 ? IDR_LAYOUT_LANDSCAPE : IDR_LAYOUT_PORTRAIT, BST_CHECKED);

    LimitText(hDlg, IDE_LAYOUT_COPIES, 3);
    SetScrollRange(GetDlgItem(hDlg, IDSB_LAYOUT_COPIES), SB_CTL, 1, 256, FALSE);
    ShowNumber(hDlg, IDE_LAYOUT_COPIES, v[pref::Copies]);
    const BYTE rotation = v[pref::Rotation];
    CheckDlgButton(hDlg, kRotationRadios[rotation <= 3 ? rotation : 0], BST_CHECKED);
}

void Layout_LoadCrop(HWND hDlg, const DIALOGINFO* lpdi)
{
    const BYTE* v = lpdi->byteValue;
    HiddenString mm, pixel, margin;
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_UNIT_MM, mm);
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_UNIT_PIXEL, pixel);
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_UNIT_MARGIN, margin);
    for (const CropEdge& e : kEdges) {
        SetScrollRange(GetDlgItem(hDlg, e.spin), SB_CTL, 0, 255, FALSE);
        LimitText(hDlg, e.edit, 3);
        // Each at the front: the list ends up "[ mm ]", "[ Pixel ]", "[Margin Crop]".
        ListInsert(hDlg, e.unitList, 0, margin);
        ListInsert(hDlg, e.unitList, 0, pixel);
        ListInsert(hDlg, e.unitList, 0, mm);
    }
    for (const CropEdge& e : kEdges) {
        if (v[e.on] == 1) {
            CheckDlgButton(hDlg, e.check, BST_CHECKED);
            EnableCropGroup(hDlg, e, TRUE);
        } else {
            EnableCropGroup(hDlg, e, FALSE);
        }
        ShowNumber(hDlg, e.edit, v[e.length]);
        SendDlgItemMessageW(hDlg, e.unitList, CB_SETCURSEL, v[e.unit], 0);
    }
}

void Layout_LoadReduction(HWND hDlg, const DIALOGINFO* lpdi)
{
    const BYTE* v = lpdi->byteValue;
    for (int i = 0; i < 4; ++i) ListInsert(hDlg, IDC_LAYOUT_RATE, static_cast<WPARAM>(i), kFixedRates[i]);
    HiddenString text;
    HiddenText(hDlg, IDT_HIDDEN_LAYOUT_USER_RATE, text);
    ListInsert(hDlg, IDC_LAYOUT_RATE, kUserRateItem, text);
    SendDlgItemMessageW(hDlg, IDC_LAYOUT_RATE, CB_SETCURSEL, v[pref::ReductionRate], 0);
    // Two characters: 100 can be shown but not typed.
    LimitText(hDlg, IDE_LAYOUT_RATE, 2);
    const BOOL userRate = v[pref::ReductionRate] == kUserRateItem;
    EnableAll(hDlg, { IDE_LAYOUT_RATE, IDT_LAYOUT_PERCENT }, userRate);
    if (userRate) ShowNumber(hDlg, IDE_LAYOUT_RATE, v[pref::UserReductionRate]);

    if (v[pref::ReductionOn] == 1)
        CheckDlgButton(hDlg, IDX_LAYOUT_REDUCTION, BST_CHECKED);
    else
        EnableReductionControls(hDlg, FALSE);
    if (v[pref::PixelInterpolation] == 1) CheckDlgButton(hDlg, IDX_LAYOUT_INTERPOLATION, BST_CHECKED);
    CheckDlgButton(hDlg, v[pref::ReduceBarcodes] != 0 ? IDR_LAYOUT_BARCODE_REDUCE : IDR_LAYOUT_BARCODE_KEEP,
                   BST_CHECKED);
}

void Layout_OnInitDialog(HWND hDlg, DIALOGINFO* lpdi)
{
    ScopedLog log("DlgLayoutProc : WM_INITDIALOG START", "DlgLayoutProc : WM_INITDIALOG END");
    // Show what is stored, not what another page of this sheet changed without applying.
    ReloadPreferences(lpdi);

    InitPaperSize(hDlg, lpdi);
    Layout_LoadPaperAndCopies(hDlg, lpdi);
    Layout_LoadCrop(hDlg, lpdi);
    Layout_LoadReduction(hDlg, lpdi);
}

// ---- WM_COMMAND -------------------------------------------------------------------------

// "...": the user-defined paper dialog may add, change or delete forms, so the paper-size list is
// refilled and the choice re-found by name. The choice is saved at once, even if the sheet is
// cancelled later.
void Layout_OnUserPaper(HWND hDlg, DIALOGINFO* lpdi)
{
    const HWND list = GetDlgItem(hDlg, IDC_LAYOUT_PAPER_SIZE);
    WCHAR fullName[kFormNameChars] = L"";
    const LRESULT sel = SendMessageW(list, CB_GETCURSEL, 0, 0);
    if (sel != CB_ERR) {
        const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(sel), 0);
        if (length != CB_ERR && length < static_cast<LRESULT>(kFormNameChars))
            SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(sel), reinterpret_cast<LPARAM>(fullName));
    }
    AppendCut(fullName, lpdi->formId);

    {
        PluginControlsScope themed;
        DialogBoxParamW(ModuleInstance, MAKEINTRESOURCEW(IDD_USER_PAPER), hDlg, DlgUserDefinedPaper,
                        reinterpret_cast<LPARAM>(lpdi));
    }

    UpdatePaperSizeList(hDlg, lpdi, lpdi->formId);
    const int exists = Utility_EnumPrinterForms(lpdi, fullName);
    WCHAR name[260];
    DisplayNameOf(fullName, name);
    if (sel == CB_ERR || !exists) {
        DWORD length = 0;
        name[0] = L'\0';
        GetFormDefaultWidthHeight(lpdi, name, &length);
    }
    lpdi->byteValue[pref::PaperSize] = static_cast<BYTE>(FindPaperSizeIndex(hDlg, name));
    SendMessageW(list, CB_SETCURSEL, lpdi->byteValue[pref::PaperSize], 0);
    SavePreferences(lpdi);
}

void Layout_OnClick(HWND hDlg, DIALOGINFO* lpdi, int id)
{
    if (const CropEdge* edge = EdgeOfCheck(id)) {
        MarkChanged(hDlg);
        EnableCropGroup(hDlg, *edge, Checked(hDlg, id));
        return;
    }
    switch (id) {
    case IDX_LAYOUT_REDUCTION:
        MarkChanged(hDlg);
        EnableReductionControls(hDlg, Checked(hDlg, IDX_LAYOUT_REDUCTION));
        break;
    case IDX_LAYOUT_INTERPOLATION:
    case IDR_LAYOUT_BARCODE_KEEP:
    case IDR_LAYOUT_BARCODE_REDUCE:
        MarkChanged(hDlg);
        break;
    case IDR_LAYOUT_ROTATE_0:
    case IDR_LAYOUT_ROTATE_90:
    case IDR_LAYOUT_ROTATE_180:
    case IDR_LAYOUT_ROTATE_270:
        for (int value = 0; value < 4; ++value)
            if (kRotationRadios[value] == id && value != lpdi->byteValue[pref::Rotation]) MarkChanged(hDlg);
        break;
    case IDR_LAYOUT_PORTRAIT:
    case IDR_LAYOUT_LANDSCAPE:
        // Clicking the orientation that is already stored changes nothing.
        if ((id == IDR_LAYOUT_LANDSCAPE ? 1 : 0) != lpdi->byteValue[pref::Orientation]) MarkChanged(hDlg);
        break;
    case IDB_LAYOUT_USER_PAPER:
        Layout_OnUserPaper(hDlg, lpdi);
        MarkChanged(hDlg);
        break;
    }
}

void Layout_OnSelChange(HWND hDlg, int id)
{
    if (id == IDC_LAYOUT_RATE) {
        MarkChanged(hDlg);
        EnableAll(hDlg, { IDE_LAYOUT_RATE, IDT_LAYOUT_PERCENT },
                  ListSelection(hDlg, IDC_LAYOUT_RATE) == kUserRateItem);
    } else if (id == IDC_LAYOUT_PAPER_SIZE) {
        MarkChanged(hDlg);
    }
    // Paper type and crop units: a new selection alone does not count as a change.
}

// An edit left by the focus gets an out-of-range number corrected. The left and right crop
// lengths are not corrected here; apply clamps them.
void Layout_OnEditKillFocus(HWND hDlg, HWND edit)
{
    switch (const int id = GetDlgCtrlID(edit)) {
    case IDE_LAYOUT_CROP_TOP:
    case IDE_LAYOUT_CROP_BOTTOM:
        CorrectEditRange(hDlg, id, 0, 255);
        break;
    case IDE_LAYOUT_COPIES:
        CorrectEditRange(hDlg, id, 1, 255);
        break;
    case IDE_LAYOUT_RATE:
        CorrectEditRange(hDlg, id, 25, 100);
        break;
    }
}

void Layout_OnCommand(HWND hDlg, DIALOGINFO* lpdi, int id, int code, HWND control)
{
    switch (code) {
    case BN_CLICKED:
        if (id >= IDX_LAYOUT_CROP_TOP && id <= IDR_LAYOUT_BARCODE_REDUCE) Layout_OnClick(hDlg, lpdi, id);
        break;
    case CBN_SELCHANGE:
        Layout_OnSelChange(hDlg, id);
        break;
    case CBN_DROPDOWN:
        // A change of paper type is registered when its list is opened.
        if (id == IDC_LAYOUT_PAPER_TYPE) MarkChanged(hDlg);
        break;
    case EN_KILLFOCUS:
        Layout_OnEditKillFocus(hDlg, control);
        break;
    case EN_CHANGE:
        MarkChanged(hDlg);
        break;
    }
}

// ---- WM_VSCROLL --------------------------------------------------------------------------

// The spins count up with the upper arrow. Crop lengths stop at 0 and 255; copies wrap round.
const SpinEdit kSpins[] = {
    { IDE_LAYOUT_COPIES, IDSB_LAYOUT_COPIES, 1, 255, SpinEnds::Wrap, OtherCodes::Redisplay },
    { IDE_LAYOUT_CROP_TOP, IDSB_LAYOUT_CROP_TOP, 0, 255, SpinEnds::Clamp, OtherCodes::Ignore },
    { IDE_LAYOUT_CROP_BOTTOM, IDSB_LAYOUT_CROP_BOTTOM, 0, 255, SpinEnds::Clamp, OtherCodes::Ignore },
    { IDE_LAYOUT_CROP_LEFT, IDSB_LAYOUT_CROP_LEFT, 0, 255, SpinEnds::Clamp, OtherCodes::Ignore },
    { IDE_LAYOUT_CROP_RIGHT, IDSB_LAYOUT_CROP_RIGHT, 0, 255, SpinEnds::Clamp, OtherCodes::Ignore },
};

void Layout_OnVScroll(HWND hDlg, HWND scrollBar, int code)
{
    if (const SpinEdit* row = SpinOf(kSpins, GetDlgCtrlID(scrollBar))) StepSpin(hDlg, *row, code);
}

// ---- PSN_APPLY ---------------------------------------------------------------------------

// Each device-mode write is tried twice before it is given up.
template <typename Writer, typename Arg>
BOOL TwiceIfNeeded(Writer writer, Arg arg, int value)
{
    return writer(arg, value) || writer(arg, value);
}

void Layout_SaveControls(HWND hDlg, DIALOGINFO* lpdi)
{
    BYTE* v = lpdi->byteValue;

    const int copies = Clamp(ReadEditNumber(hDlg, IDE_LAYOUT_COPIES), 1, 255);
    if (TwiceIfNeeded(SetCopyCount, lpdi, copies)) v[pref::Copies] = static_cast<BYTE>(copies);

    v[pref::Rotation] = Checked(hDlg, IDR_LAYOUT_ROTATE_90) ? 1
                      : Checked(hDlg, IDR_LAYOUT_ROTATE_180) ? 2
                      : Checked(hDlg, IDR_LAYOUT_ROTATE_270) ? 3 : 0;

    for (const CropEdge& e : kEdges) {
        v[e.on] = Checked(hDlg, e.check) ? 1 : 0;
        v[e.length] = static_cast<BYTE>(Clamp(ReadEditNumber(hDlg, e.edit), 0, 255));
        v[e.unit] = static_cast<BYTE>(ListSelection(hDlg, e.unitList));   // no selection gives 255
    }

    const int paperType = ListSelection(hDlg, IDC_LAYOUT_PAPER_TYPE) != 0 ? 1 : 0;
    if (TwiceIfNeeded(SetPaperType, lpdi, paperType)) v[pref::PaperType] = static_cast<BYTE>(paperType);

    // The paper size is kept whether or not the device mode could take it.
    v[pref::PaperSize] = static_cast<BYTE>(ListSelection(hDlg, IDC_LAYOUT_PAPER_SIZE));
    TwiceIfNeeded(SetPaperSize, hDlg, v[pref::PaperSize]);

    v[pref::ReductionOn] = Checked(hDlg, IDX_LAYOUT_REDUCTION) ? 1 : 0;
    v[pref::ReduceBarcodes] = Checked(hDlg, IDR_LAYOUT_BARCODE_KEEP) ? 0 : 1;
    v[pref::ReductionRate] = static_cast<BYTE>(ListSelection(hDlg, IDC_LAYOUT_RATE));
    if (v[pref::ReductionRate] == kUserRateItem)
        v[pref::UserReductionRate] = static_cast<BYTE>(Clamp(ReadEditNumber(hDlg, IDE_LAYOUT_RATE), 25, 100));
    v[pref::PixelInterpolation] = Checked(hDlg, IDX_LAYOUT_INTERPOLATION) ? 1 : 0;

    const int orientation = Checked(hDlg, IDR_LAYOUT_LANDSCAPE) ? 1 : 0;
    if (TwiceIfNeeded(SetOrientation, lpdi, orientation)) v[pref::Orientation] = static_cast<BYTE>(orientation);

    SavePreferences(lpdi);
}

INT_PTR Layout_OnNotify(HWND hDlg, DIALOGINFO* lpdi, const NMHDR* header)
{
    if (header->code != static_cast<UINT>(PSN_APPLY)) return FALSE;
    Layout_SaveControls(hDlg, lpdi);
    return NotifyResult(hDlg, PSNRET_NOERROR);
}

// Greys or restores everything that only matters with reduction on.
void EnableReductionControls(HWND hDlg, BOOL enable)
{
    EnableAll(hDlg, { IDC_LAYOUT_RATE, IDR_LAYOUT_BARCODE_KEEP, IDR_LAYOUT_BARCODE_REDUCE, IDX_LAYOUT_INTERPOLATION },
              enable);
    if (!enable)
        EnableAll(hDlg, { IDE_LAYOUT_RATE, IDT_LAYOUT_PERCENT }, FALSE);
    else if (ListSelection(hDlg, IDC_LAYOUT_RATE) == kUserRateItem)
        // The rate edit only comes back for "User Defined"; otherwise it stays as it is.
        EnableAll(hDlg, { IDE_LAYOUT_RATE, IDT_LAYOUT_PERCENT }, TRUE);
}

}  // namespace

INT_PTR CALLBACK DlgLayoutProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam)
{
    DIALOGINFO* lpdi = PageRecord(hDlg, msg, lParam);
    if (lpdi == nullptr) return FALSE;   // messages before WM_INITDIALOG are ignored
    switch (msg) {
    case WM_INITDIALOG:
        Layout_OnInitDialog(hDlg, lpdi);
        break;
    case WM_COMMAND:
        Layout_OnCommand(hDlg, lpdi, LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        break;
    case WM_VSCROLL:
        Layout_OnVScroll(hDlg, reinterpret_cast<HWND>(lParam), LOWORD(wParam));
        break;
    case WM_NOTIFY:
        return Layout_OnNotify(hDlg, lpdi, reinterpret_cast<const NMHDR*>(lParam));
    }
    return FALSE;
}
