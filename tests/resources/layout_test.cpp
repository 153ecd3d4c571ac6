// The dialog templates as a person sees them, in each of the twelve languages: every template is
// there, every control the code drives is there with the right kind, the hidden text sources carry
// text, no caption is cut off, no two controls cover each other and nothing sticks out of its
// dialog. Each language's template is loaded explicitly, whatever the thread's language is.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bench.h"
#include "dialog_host.h"
#include "resources/resource.h"

namespace {

enum class Kind { Hidden, Text, Frame, Edit, Combo, SortedCombo, List, Spin, Check, Radio, Push, Group, Trackbar };

struct Expected {
    int id;
    Kind kind;
};

struct TemplateControls {
    WORD id;
    const char* name;
    bool page;  // property page (child) or modal dialog (popup)
    std::vector<Expected> controls;
};

const std::vector<TemplateControls>& Expectations()
{
    static const std::vector<TemplateControls> all = {
        {IDD_LAYOUT, "Layout", true, {
            {IDC_LAYOUT_PAPER_SIZE, Kind::SortedCombo}, {IDB_LAYOUT_USER_PAPER, Kind::Push},
            {IDC_LAYOUT_PAPER_TYPE, Kind::SortedCombo}, {IDE_LAYOUT_COPIES, Kind::Edit}, {IDSB_LAYOUT_COPIES, Kind::Spin},
            {IDR_LAYOUT_PORTRAIT, Kind::Radio}, {IDR_LAYOUT_LANDSCAPE, Kind::Radio},
            {IDR_LAYOUT_ROTATE_0, Kind::Radio}, {IDR_LAYOUT_ROTATE_90, Kind::Radio},
            {IDR_LAYOUT_ROTATE_180, Kind::Radio}, {IDR_LAYOUT_ROTATE_270, Kind::Radio},
            {IDX_LAYOUT_REDUCTION, Kind::Check}, {IDC_LAYOUT_RATE, Kind::SortedCombo}, {IDE_LAYOUT_RATE, Kind::Edit},
            {IDT_LAYOUT_PERCENT, Kind::Text}, {IDR_LAYOUT_BARCODE_KEEP, Kind::Radio},
            {IDR_LAYOUT_BARCODE_REDUCE, Kind::Radio}, {IDX_LAYOUT_INTERPOLATION, Kind::Check},
            {IDX_LAYOUT_CROP_LEFT, Kind::Check}, {IDE_LAYOUT_CROP_LEFT, Kind::Edit}, {IDSB_LAYOUT_CROP_LEFT, Kind::Spin},
            {IDC_LAYOUT_CROP_LEFT_UNIT, Kind::Combo},
            {IDX_LAYOUT_CROP_RIGHT, Kind::Check}, {IDE_LAYOUT_CROP_RIGHT, Kind::Edit}, {IDSB_LAYOUT_CROP_RIGHT, Kind::Spin},
            {IDC_LAYOUT_CROP_RIGHT_UNIT, Kind::Combo},
            {IDX_LAYOUT_CROP_TOP, Kind::Check}, {IDE_LAYOUT_CROP_TOP, Kind::Edit}, {IDSB_LAYOUT_CROP_TOP, Kind::Spin},
            {IDC_LAYOUT_CROP_TOP_UNIT, Kind::Combo},
            {IDX_LAYOUT_CROP_BOTTOM, Kind::Check}, {IDE_LAYOUT_CROP_BOTTOM, Kind::Edit},
            {IDSB_LAYOUT_CROP_BOTTOM, Kind::Spin}, {IDC_LAYOUT_CROP_BOTTOM_UNIT, Kind::Combo},
            {IDT_HIDDEN_LAYOUT_RECEIPT, Kind::Hidden}, {IDT_HIDDEN_LAYOUT_TICKET, Kind::Hidden},
            {IDT_HIDDEN_LAYOUT_USER_RATE, Kind::Hidden}, {IDT_HIDDEN_LAYOUT_UNIT_MM, Kind::Hidden},
            {IDT_HIDDEN_LAYOUT_UNIT_PIXEL, Kind::Hidden}, {IDT_HIDDEN_LAYOUT_UNIT_MARGIN, Kind::Hidden}}},
        {IDD_USER_PAPER, "User Defined Paper Size", false, {
            {IDL_PAPER_FORMS, Kind::List}, {IDE_PAPER_NAME, Kind::Edit}, {IDE_PAPER_WIDTH, Kind::Edit},
            {IDSB_PAPER_WIDTH, Kind::Spin}, {IDE_PAPER_LENGTH, Kind::Edit}, {IDSB_PAPER_LENGTH, Kind::Spin},
            {IDX_PAPER_IMAGE_WIDTH, Kind::Check}, {IDT_PAPER_WIDTH_LABEL, Kind::Text},
            {IDB_PAPER_DELETE, Kind::Push}, {IDB_PAPER_SAVE, Kind::Push}, {IDB_PAPER_CLOSE, Kind::Push},
            {IDT_HIDDEN_PAPER_IMAGE_WIDTH, Kind::Hidden}, {IDT_HIDDEN_PAPER_REFUSED, Kind::Hidden},
            {IDT_HIDDEN_PAPER_UPDATE, Kind::Hidden}, {IDT_HIDDEN_PAPER_ERROR, Kind::Hidden},
            {IDT_HIDDEN_PAPER_QUESTION, Kind::Hidden}, {IDT_HIDDEN_PAPER_DEFAULT_NAME, Kind::Hidden}}},
        {IDD_DOCSETTINGS, "Document Settings", true, {
            {IDE_DOC_START_DOC, Kind::Edit}, {IDE_DOC_START_PAGE, Kind::Edit}, {IDE_DOC_END_PAGE, Kind::Edit},
            {IDE_DOC_END_DOC, Kind::Edit},
            {IDX_DOC_DRAWER1_BEFORE, Kind::Check}, {IDE_DOC_DRAWER1_BEFORE, Kind::Edit},
            {IDSB_DOC_DRAWER1_BEFORE, Kind::Spin}, {IDT_DOC_DRAWER1_BEFORE_UNIT, Kind::Text},
            {IDX_DOC_DRAWER2_BEFORE, Kind::Check}, {IDE_DOC_DRAWER2_BEFORE, Kind::Edit},
            {IDSB_DOC_DRAWER2_BEFORE, Kind::Spin}, {IDT_DOC_DRAWER2_BEFORE_UNIT, Kind::Text},
            {IDX_DOC_DRAWER1_AFTER, Kind::Check}, {IDE_DOC_DRAWER1_AFTER, Kind::Edit},
            {IDSB_DOC_DRAWER1_AFTER, Kind::Spin}, {IDT_DOC_DRAWER1_AFTER_UNIT, Kind::Text},
            {IDX_DOC_DRAWER2_AFTER, Kind::Check}, {IDE_DOC_DRAWER2_AFTER, Kind::Edit},
            {IDSB_DOC_DRAWER2_AFTER, Kind::Spin}, {IDT_DOC_DRAWER2_AFTER_UNIT, Kind::Text},
            {IDX_DOC_BEEP_BEFORE, Kind::Check}, {IDE_DOC_BEEP_BEFORE, Kind::Edit},
            {IDSB_DOC_BEEP_BEFORE, Kind::Spin}, {IDT_DOC_BEEP_BEFORE_UNIT, Kind::Text},
            {IDX_DOC_BEEP_AFTER, Kind::Check}, {IDE_DOC_BEEP_AFTER, Kind::Edit},
            {IDSB_DOC_BEEP_AFTER, Kind::Spin}, {IDT_DOC_BEEP_AFTER_UNIT, Kind::Text},
            {IDE_DOC_LINE_FEEDS, Kind::Edit}, {IDSB_DOC_LINE_FEEDS, Kind::Spin},
            {IDR_DOC_CUT_NONE_NONE, Kind::Radio}, {IDR_DOC_CUT_NONE_PARTIAL, Kind::Radio},
            {IDR_DOC_CUT_PARTIAL_PARTIAL, Kind::Radio},
            {IDT_HIDDEN_DOC_ALARM_END_DOC, Kind::Hidden}, {IDT_HIDDEN_DOC_ALARM_END_PAGE, Kind::Hidden},
            {IDT_HIDDEN_DOC_TIMES, Kind::Hidden}}},
        {IDD_NVIMAGE, "NV Image", true, {
            {IDC_NV_START_DOC, Kind::Combo}, {IDC_NV_START_PAGE, Kind::Combo}, {IDC_NV_END_PAGE, Kind::Combo},
            {IDC_NV_END_DOC, Kind::Combo}, {IDR_NV_GRAPHIC, Kind::Radio}, {IDR_NV_BITMAP, Kind::Radio},
            {IDT_HIDDEN_NV_IMAGE, Kind::Hidden}, {IDT_HIDDEN_NV_NONE, Kind::Hidden}}},
        {IDD_BARCODE, "Barcode", true, {
            {IDC_BARCODE_NAME, Kind::Combo}, {IDC_BARCODE_TYPE, Kind::Combo}, {IDC_BARCODE_SET, Kind::Push},
            {IDC_COMBO_FONTNAME, Kind::Combo}, {IDC_2D_CODE_TYPE, Kind::Combo}, {IDC_CODE_SET, Kind::Push}}},
        {IDD_BARCODE_1D_PROPERTY, "Barcode Setting", false, {
            {IDE_BC1D_WIDTH, Kind::Edit}, {IDSB_BC1D_WIDTH, Kind::Spin}, {IDE_BC1D_HEIGHT, Kind::Edit},
            {IDSB_BC1D_HEIGHT, Kind::Spin}, {IDC_BC1D_HRI_POSITION, Kind::Combo}, {IDR_BC1D_FONT_A, Kind::Radio},
            {IDR_BC1D_FONT_B, Kind::Radio}, {IDOK, Kind::Push}, {IDCANCEL, Kind::Push},
            {IDT_HIDDEN_BC1D_HRI_NONE, Kind::Hidden}, {IDT_HIDDEN_BC1D_HRI_TOP, Kind::Hidden},
            {IDT_HIDDEN_BC1D_HRI_BOTTOM, Kind::Hidden}, {IDT_HIDDEN_BC1D_HRI_BOTH, Kind::Hidden}}},
        {IDD_BARCODE_2D_PROPERTY, "2D-Code Setting", false, {
            {IDE_BC2D_PDF_COLUMNS, Kind::Edit}, {IDSB_BC2D_PDF_COLUMNS, Kind::Spin},
            {IDE_BC2D_PDF_ROWS, Kind::Edit}, {IDSB_BC2D_PDF_ROWS, Kind::Spin},
            {IDE_BC2D_PDF_MODULE_WIDTH, Kind::Edit}, {IDSB_BC2D_PDF_MODULE_WIDTH, Kind::Spin},
            {IDE_BC2D_PDF_MODULE_HEIGHT, Kind::Edit}, {IDSB_BC2D_PDF_MODULE_HEIGHT, Kind::Spin},
            {IDC_BC2D_PDF_LEVEL, Kind::Combo}, {IDX_BC2D_PDF_SIMPLIFIED, Kind::Check},
            {IDE_BC2D_QR_MODULE_SIZE, Kind::Edit}, {IDSB_BC2D_QR_MODULE_SIZE, Kind::Spin},
            {IDC_BC2D_QR_MODEL, Kind::Combo}, {IDC_BC2D_QR_LEVEL, Kind::Combo},
            {IDE_BC2D_DM_MODULE_SIZE, Kind::Edit}, {IDSB_BC2D_DM_MODULE_SIZE, Kind::Spin},
            {IDC_BC2D_DATABAR_TYPE, Kind::Combo}, {IDE_BC2D_DATABAR_MODULE_SIZE, Kind::Edit},
            {IDSB_BC2D_DATABAR_MODULE_SIZE, Kind::Spin}, {IDC_BC2D_COMPOSITE_LINEAR, Kind::Combo},
            {IDE_BC2D_COMPOSITE_MODULE_SIZE, Kind::Edit}, {IDSB_BC2D_COMPOSITE_MODULE_SIZE, Kind::Spin},
            {IDOK, Kind::Push}, {IDCANCEL, Kind::Push},
            {IDT_HIDDEN_BC2D_PDF_LEVEL_0, Kind::Hidden}, {IDT_HIDDEN_BC2D_PDF_LEVEL_1, Kind::Hidden},
            {IDT_HIDDEN_BC2D_PDF_LEVEL_2, Kind::Hidden}, {IDT_HIDDEN_BC2D_PDF_LEVEL_3, Kind::Hidden},
            {IDT_HIDDEN_BC2D_PDF_LEVEL_4, Kind::Hidden}, {IDT_HIDDEN_BC2D_PDF_LEVEL_5, Kind::Hidden},
            {IDT_HIDDEN_BC2D_PDF_LEVEL_6, Kind::Hidden}, {IDT_HIDDEN_BC2D_PDF_LEVEL_7, Kind::Hidden},
            {IDT_HIDDEN_BC2D_PDF_LEVEL_8, Kind::Hidden}, {IDT_HIDDEN_BC2D_QR_MODEL_1, Kind::Hidden},
            {IDT_HIDDEN_BC2D_QR_MODEL_2, Kind::Hidden}, {IDT_HIDDEN_BC2D_QR_LEVEL_L, Kind::Hidden},
            {IDT_HIDDEN_BC2D_QR_LEVEL_M, Kind::Hidden}, {IDT_HIDDEN_BC2D_QR_LEVEL_Q, Kind::Hidden},
            {IDT_HIDDEN_BC2D_QR_LEVEL_H, Kind::Hidden}, {IDT_HIDDEN_BC2D_DATABAR_STACKED, Kind::Hidden},
            {IDT_HIDDEN_BC2D_DATABAR_STACKED_OMNI, Kind::Hidden}, {IDT_HIDDEN_BC2D_LINEAR_OMNI, Kind::Hidden},
            {IDT_HIDDEN_BC2D_LINEAR_TRUNCATED, Kind::Hidden}, {IDT_HIDDEN_BC2D_LINEAR_STACKED, Kind::Hidden},
            {IDT_HIDDEN_BC2D_LINEAR_STACKED_OMNI, Kind::Hidden}, {IDT_HIDDEN_BC2D_LINEAR_LIMITED, Kind::Hidden},
            {IDT_HIDDEN_BC2D_LINEAR_EXPANDED, Kind::Hidden}}},
        {IDD_UTILITY, "Utility", true, {
            {IDB_UTIL_CONFIG_UTILITY, Kind::Push}, {IDB_UTIL_SPECIAL_FONT, Kind::Push}, {IDX_UTIL_JOURNAL, Kind::Check},
            {IDB_UTIL_JOURNAL_VIEWER, Kind::Push}, {IDX_UTIL_TEXT_KEY, Kind::Check}, {IDB_UTIL_TEXT_KEY, Kind::Push},
            {IDX_UTIL_PRINT_PREVIEW, Kind::Check}, {IDX_UTIL_FONT_REPLACE, Kind::Check},
            {IDB_UTIL_FONT_REPLACE, Kind::Push}, {IDG_UTIL_STATUS_MONITOR, Kind::Group},
            {IDB_UTIL_STATUS_MONITOR, Kind::Push}}},
        {IDD_PRINTER_SETTINGS, "Printer Settings", true, {
            {IDC_PRN_LANGUAGE, Kind::Combo}, {IDG_PRN_BLUETOOTH, Kind::Group}, {IDR_PRN_BT_SINGLE_CHIP, Kind::Radio},
            {IDR_PRN_BT_TWO_CHIP, Kind::Radio},
            {IDT_HIDDEN_PRN_LANG_ENGLISH, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_GERMAN, Kind::Hidden},
            {IDT_HIDDEN_PRN_LANG_FRENCH, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_SPANISH, Kind::Hidden},
            {IDT_HIDDEN_PRN_LANG_ITALIAN, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_POLISH, Kind::Hidden},
            {IDT_HIDDEN_PRN_LANG_HUNGARIAN, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_RUSSIAN, Kind::Hidden},
            {IDT_HIDDEN_PRN_LANG_KOREAN, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_JAPANESE, Kind::Hidden},
            {IDT_HIDDEN_PRN_LANG_CHINESE_S, Kind::Hidden}, {IDT_HIDDEN_PRN_LANG_CHINESE_T, Kind::Hidden}}},
        {IDD_ABOUT, "Version", true, {
            {IDE_ABOUT_DRIVER, Kind::Edit}, {IDE_ABOUT_COPYRIGHT, Kind::Edit}, {IDF_ABOUT_FRAME1, Kind::Frame},
            {IDF_ABOUT_FRAME2, Kind::Frame}}},
        {IDD_DITHER, "Dithering", true, {
            {IDR_DITHER_MONOCHROME, Kind::Radio}, {IDR_DITHER_GREYSCALE, Kind::Radio}, {IDF_DITHER_PREVIEW, Kind::Frame},
            {IDR_DITHER_NONE, Kind::Radio}, {IDR_DITHER_ERROR_DIFFUSION, Kind::Radio}, {IDR_DITHER_ORDERED, Kind::Radio},
            {IDR_DITHER_MATRIX4, Kind::Radio}, {IDR_DITHER_MATRIX8, Kind::Radio},
            {IDTB_DITHER_BRIGHTNESS, Kind::Trackbar}, {IDB_DITHER_ADVANCED, Kind::Push}}},
        {IDD_DITHER_ADVANCED, "Dither Advanced", false, {
            {IDTB_ADV_THRESHOLD, Kind::Trackbar}, {IDT_ADV_THRESHOLD_VALUE, Kind::Text},
            {IDTB_ADV_BOLD_LINE, Kind::Trackbar}, {IDT_ADV_BOLD_LINE_VALUE, Kind::Text}, {IDOK, Kind::Push},
            {IDB_ADV_CLOSE, Kind::Push}}},
    };
    return all;
}

// Captions the code puts into a control at run time, taken from a hidden text of the same
// template: the control must have room for them too.
struct Replacement {
    WORD templateId;
    int control;
    int source;
};
const Replacement kReplacements[] = {
    {IDD_USER_PAPER, IDT_PAPER_WIDTH_LABEL, IDT_HIDDEN_PAPER_IMAGE_WIDTH},
    {IDD_DOCSETTINGS, IDX_DOC_BEEP_BEFORE, IDT_HIDDEN_DOC_ALARM_END_PAGE},
    {IDD_DOCSETTINGS, IDX_DOC_BEEP_AFTER, IDT_HIDDEN_DOC_ALARM_END_DOC},
    {IDD_DOCSETTINGS, IDT_DOC_BEEP_BEFORE_UNIT, IDT_HIDDEN_DOC_TIMES},
    {IDD_DOCSETTINGS, IDT_DOC_BEEP_AFTER_UNIT, IDT_HIDDEN_DOC_TIMES},
};

std::string Narrow(const std::wstring& text)
{
    int n = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string out(n > 0 ? n - 1 : 0, '\0');
    if (n > 1) WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, &out[0], n, nullptr, nullptr);
    return out;
}

std::wstring ClassOf(HWND control)
{
    wchar_t name[64] = {};
    GetClassNameW(control, name, 64);
    return name;
}

std::wstring TextOf(HWND control)
{
    wchar_t text[512] = {};
    GetWindowTextW(control, text, 512);
    return text;
}

LONG StyleOf(HWND control) { return static_cast<LONG>(GetWindowLongPtrW(control, GWL_STYLE)); }

bool IsGroupBox(HWND control)
{
    return lstrcmpiW(ClassOf(control).c_str(), L"Button") == 0 && (StyleOf(control) & BS_TYPEMASK) == BS_GROUPBOX;
}

// Where a control sits, in the dialog's client coordinates.
RECT RectIn(HWND dialog, HWND control)
{
    RECT r;
    GetWindowRect(control, &r);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
    return r;
}

std::vector<HWND> Children(HWND dialog)
{
    std::vector<HWND> out;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        out.push_back(child);
    return out;
}

bool Visible(HWND control) { return (StyleOf(control) & WS_VISIBLE) != 0; }

std::string Describe(HWND control)
{
    return "control " + std::to_string(GetDlgCtrlID(control)) + " \"" + Narrow(TextOf(control)) + "\"";
}

std::string Where(const RECT& r)
{
    return "(" + std::to_string(r.left) + "," + std::to_string(r.top) + ")-(" + std::to_string(r.right) + "," +
           std::to_string(r.bottom) + ")";
}

// Room the text of a control needs, measured with the control's own font as the control draws it.
struct Fit {
    bool fits;
    std::string why;
};

Fit TextFits(HWND control, const std::wstring& text)
{
    if (text.empty()) return {true, ""};
    const std::wstring cls = ClassOf(control);
    const LONG style = StyleOf(control);
    RECT client;
    GetClientRect(control, &client);
    HDC dc = GetDC(control);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    TEXTMETRICW tm;
    GetTextMetricsW(dc, &tm);
    int roomX = client.right, roomY = client.bottom;
    UINT flags = DT_CALCRECT | DT_SINGLELINE;
    if (lstrcmpiW(cls.c_str(), L"Static") == 0) {
        // A text static wraps at word breaks; whatever does not fit its height is lost.
        if (roomY >= 2 * tm.tmHeight) flags = DT_CALCRECT | DT_WORDBREAK;
    } else if (lstrcmpiW(cls.c_str(), L"Button") == 0) {
        const LONG type = style & BS_TYPEMASK;
        if (type == BS_GROUPBOX) {
            roomX -= 2 * tm.tmAveCharWidth;  // the caption is indented and breaks the frame line
        } else if (type == BS_CHECKBOX || type == BS_AUTOCHECKBOX || type == BS_RADIOBUTTON ||
                   type == BS_AUTORADIOBUTTON || type == BS_3STATE || type == BS_AUTO3STATE) {
            roomX -= GetSystemMetrics(SM_CXMENUCHECK) + tm.tmAveCharWidth / 2 + 1;  // glyph and gap
        } else {
            roomX -= 2 * GetSystemMetrics(SM_CXEDGE) + 4;  // push button frame and focus rectangle
            roomY -= 2 * GetSystemMetrics(SM_CYEDGE);
        }
    }
    RECT need = {0, 0, roomX, 0};
    DrawTextW(dc, text.c_str(), -1, &need, flags);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    if (need.right > roomX || need.bottom > roomY) {
        return {false, "needs " + std::to_string(need.right) + " x " + std::to_string(need.bottom) + " px, has " +
                           std::to_string(roomX) + " x " + std::to_string(roomY)};
    }
    return {true, ""};
}

bool HasCaption(HWND control)
{
    const std::wstring cls = ClassOf(control);
    if (lstrcmpiW(cls.c_str(), L"Button") == 0) return true;
    if (lstrcmpiW(cls.c_str(), L"Static") != 0) return false;
    const LONG type = StyleOf(control) & SS_TYPEMASK;
    return type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT || type == SS_LEFTNOWORDWRAP || type == SS_SIMPLE;
}

class Templates : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        plugin_ = bench::Plugin();
        dialogs::HostWindow();
    }
    // Every template in every language, created, handed to `check`, destroyed.
    template <typename Check>
    void ForEachDialog(Check check)
    {
        ASSERT_NE(nullptr, plugin_);
        for (const TemplateControls& t : Expectations()) {
            for (const dialogs::Language& lang : dialogs::Languages()) {
                SCOPED_TRACE(testing::Message() << "template " << t.id << " (" << t.name << "), " << lang.tag);
                HWND dialog = dialogs::Create(plugin_, t.id, lang.id, dialogs::HostWindow());
                if (dialog == nullptr) {
                    ADD_FAILURE() << "not created";
                    continue;
                }
                check(t, lang, dialog);
                DestroyWindow(dialog);
            }
        }
    }
    static HMODULE plugin_;
};
HMODULE Templates::plugin_ = nullptr;

TEST_F(Templates, EveryTemplateExistsInEveryLanguage)
{
    ASSERT_NE(nullptr, plugin_);
    for (WORD id : dialogs::Templates())
        for (const dialogs::Language& lang : dialogs::Languages()) {
            SCOPED_TRACE(testing::Message() << "template " << id << ", " << lang.tag);
            EXPECT_NE(nullptr, FindResourceExW(plugin_, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(id), lang.id));
            EXPECT_NE(nullptr, dialogs::FindTemplate(plugin_, id, lang.id));
        }
}

TEST_F(Templates, PagesAreChildrenAndDialogsAreModalPopups)
{
    ForEachDialog([](const TemplateControls& t, const dialogs::Language&, HWND dialog) {
        const LONG style = StyleOf(dialog);
        EXPECT_NE(0, style & WS_CAPTION) << "the caption is the page's tab text or the dialog's title";
        if (t.page) {
            EXPECT_NE(0, style & WS_CHILD);
            EXPECT_EQ(0, style & WS_POPUP);
        } else {
            EXPECT_NE(0, style & WS_POPUP);
            EXPECT_NE(0, style & WS_SYSMENU);
            EXPECT_NE(0, style & DS_MODALFRAME);
        }
        EXPECT_FALSE(TextOf(dialog).empty());
    });
}

TEST_F(Templates, EnglishCaptionsAreTheProductNames)
{
    ASSERT_NE(nullptr, plugin_);
    for (const TemplateControls& t : Expectations()) {
        SCOPED_TRACE(testing::Message() << "template " << t.id);
        HWND dialog = dialogs::Create(plugin_, t.id, 1033, dialogs::HostWindow());
        ASSERT_NE(nullptr, dialog);
        EXPECT_EQ(t.name, Narrow(TextOf(dialog)));
        DestroyWindow(dialog);
    }
}

// The dithering dialogs are drawn for a fixed size and face; the preview and the trackbars rely on them.
TEST_F(Templates, DitherTemplatesHaveTheirFixedSizeAndFont)
{
    static const struct {
        WORD id;
        int cx, cy;
    } fixed[] = {{IDD_DITHER, 219, 300}, {IDD_DITHER_ADVANCED, 224, 84}};
    ASSERT_NE(nullptr, plugin_);
    for (const auto& f : fixed) {
        SCOPED_TRACE(testing::Message() << "template " << f.id);
        HWND dialog = dialogs::Create(plugin_, f.id, 1033, dialogs::HostWindow());
        ASSERT_NE(nullptr, dialog);
        RECT units = {0, 0, f.cx, f.cy}, client;
        MapDialogRect(dialog, &units);
        GetClientRect(dialog, &client);
        EXPECT_EQ(units.right, client.right);
        EXPECT_EQ(units.bottom, client.bottom);
        LOGFONTW font = {};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0)), sizeof font, &font);
        EXPECT_STREQ(L"MS Sans Serif", font.lfFaceName);
        HDC screen = GetDC(nullptr);
        EXPECT_EQ(-MulDiv(8, GetDeviceCaps(screen, LOGPIXELSY), 72), font.lfHeight) << "8 points";
        ReleaseDC(nullptr, screen);
        DestroyWindow(dialog);
    }
}

TEST_F(Templates, EveryControlTheCodeDrivesIsThereWithItsKind)
{
    ForEachDialog([](const TemplateControls& t, const dialogs::Language&, HWND dialog) {
        for (const Expected& e : t.controls) {
            SCOPED_TRACE(testing::Message() << "control " << e.id);
            HWND control = GetDlgItem(dialog, e.id);
            ASSERT_NE(nullptr, control) << "missing";
            const std::wstring cls = ClassOf(control);
            const LONG style = StyleOf(control);
            switch (e.kind) {
            case Kind::Hidden:
                EXPECT_STREQ(L"Static", cls.c_str());
                EXPECT_FALSE(Visible(control)) << "a text source must not show";
                EXPECT_FALSE(TextOf(control).empty()) << "a text source without text";
                break;
            case Kind::Text:
                EXPECT_STREQ(L"Static", cls.c_str());
                EXPECT_TRUE(Visible(control));
                break;
            case Kind::Frame:
                EXPECT_STREQ(L"Static", cls.c_str());
                break;
            case Kind::Edit:
                EXPECT_STREQ(L"Edit", cls.c_str());
                break;
            case Kind::Combo:
            case Kind::SortedCombo:
                EXPECT_STREQ(L"ComboBox", cls.c_str());
                EXPECT_EQ(CBS_DROPDOWNLIST, style & 3) << "a drop-down list, not an editable combo";
                EXPECT_EQ(e.kind == Kind::SortedCombo, (style & CBS_SORT) != 0) << "sorted style";
                break;
            case Kind::List:
                EXPECT_STREQ(L"ListBox", cls.c_str());
                break;
            case Kind::Spin:
                EXPECT_STREQ(L"ScrollBar", cls.c_str());
                EXPECT_NE(0, style & SBS_VERT) << "up-down buttons are a vertical scroll bar";
                break;
            case Kind::Check:
                EXPECT_STREQ(L"Button", cls.c_str());
                EXPECT_EQ(BS_AUTOCHECKBOX, style & BS_TYPEMASK);
                break;
            case Kind::Radio:
                EXPECT_STREQ(L"Button", cls.c_str());
                EXPECT_EQ(BS_AUTORADIOBUTTON, style & BS_TYPEMASK);
                break;
            case Kind::Push:
                EXPECT_STREQ(L"Button", cls.c_str());
                EXPECT_TRUE((style & BS_TYPEMASK) == BS_PUSHBUTTON || (style & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
                break;
            case Kind::Group:
                EXPECT_TRUE(IsGroupBox(control));
                break;
            case Kind::Trackbar:
                EXPECT_STREQ(L"msctls_trackbar32", cls.c_str());
                break;
            }
        }
    });
}

TEST_F(Templates, NoVisibleCaptionIsCutOff)
{
    ForEachDialog([](const TemplateControls&, const dialogs::Language&, HWND dialog) {
        for (HWND control : Children(dialog)) {
            if (!Visible(control) || !HasCaption(control)) continue;
            Fit fit = TextFits(control, TextOf(control));
            EXPECT_TRUE(fit.fits) << Describe(control) << " is cut off: " << fit.why;
        }
    });
}

TEST_F(Templates, CaptionsTheCodeSwapsInFitToo)
{
    ForEachDialog([](const TemplateControls& t, const dialogs::Language&, HWND dialog) {
        for (const Replacement& r : kReplacements) {
            if (r.templateId != t.id) continue;
            HWND control = GetDlgItem(dialog, r.control);
            ASSERT_NE(nullptr, control);
            const std::wstring text = TextOf(GetDlgItem(dialog, r.source));
            Fit fit = TextFits(control, text);
            EXPECT_TRUE(fit.fits) << Describe(control) << " cannot show \"" << Narrow(text) << "\": " << fit.why;
        }
    });
}

TEST_F(Templates, NoTwoVisibleControlsOverlap)
{
    ForEachDialog([](const TemplateControls&, const dialogs::Language&, HWND dialog) {
        std::vector<HWND> controls;
        for (HWND c : Children(dialog))
            if (Visible(c)) controls.push_back(c);
        for (size_t i = 0; i < controls.size(); ++i) {
            for (size_t j = i + 1; j < controls.size(); ++j) {
                RECT a = RectIn(dialog, controls[i]), b = RectIn(dialog, controls[j]), both;
                if (!IntersectRect(&both, &a, &b)) continue;
                // A group box frames what lies wholly inside it; anything else touching it is a fault.
                RECT onlyB, onlyA;
                UnionRect(&onlyB, &a, &b);
                const bool aHoldsB = IsGroupBox(controls[i]) && EqualRect(&onlyB, &a);
                UnionRect(&onlyA, &a, &b);
                const bool bHoldsA = IsGroupBox(controls[j]) && EqualRect(&onlyA, &b);
                EXPECT_TRUE(aHoldsB || bHoldsA) << Describe(controls[i]) << " at " << Where(a) << " overlaps "
                                                << Describe(controls[j]) << " at " << Where(b);
            }
        }
    });
}

TEST_F(Templates, EveryVisibleControlLiesInsideItsDialog)
{
    ForEachDialog([](const TemplateControls&, const dialogs::Language&, HWND dialog) {
        RECT client;
        GetClientRect(dialog, &client);
        for (HWND control : Children(dialog)) {
            if (!Visible(control)) continue;
            RECT r = RectIn(dialog, control), inside;
            IntersectRect(&inside, &r, &client);
            EXPECT_TRUE(EqualRect(&inside, &r)) << Describe(control) << " sticks out of the dialog";
        }
    });
}

// The English texts users, manuals and support already know, byte for byte.
struct KnownText {
    WORD templateId;
    int control;
    const char* text;
};
const KnownText kEnglishTexts[] = {
    {IDD_LAYOUT, IDB_LAYOUT_USER_PAPER, "..."}, {IDD_LAYOUT, IDR_LAYOUT_PORTRAIT, "Portrait"},
    {IDD_LAYOUT, IDR_LAYOUT_LANDSCAPE, "Landscape"}, {IDD_LAYOUT, IDR_LAYOUT_ROTATE_0, "Normal"},
    {IDD_LAYOUT, IDR_LAYOUT_ROTATE_90, "Rotation by 90 Degrees [CW]"},
    {IDD_LAYOUT, IDR_LAYOUT_ROTATE_180, "Rotation by 180 Degrees [CW]"},
    {IDD_LAYOUT, IDR_LAYOUT_ROTATE_270, "Rotation by 270 Degrees [CW]"},
    {IDD_LAYOUT, IDX_LAYOUT_REDUCTION, "Paper Reduction"},
    {IDD_LAYOUT, IDR_LAYOUT_BARCODE_KEEP, "Disable reducing barcode"},
    {IDD_LAYOUT, IDR_LAYOUT_BARCODE_REDUCE, "Enable reducing barcode"},
    {IDD_LAYOUT, IDX_LAYOUT_INTERPOLATION, "Pixel Interpolation"},
    {IDD_LAYOUT, IDX_LAYOUT_CROP_LEFT, "Left Crop Length"}, {IDD_LAYOUT, IDX_LAYOUT_CROP_RIGHT, "Right Crop Length"},
    {IDD_LAYOUT, IDX_LAYOUT_CROP_TOP, "Top Crop Length"}, {IDD_LAYOUT, IDX_LAYOUT_CROP_BOTTOM, "Bottom Crop Length"},
    {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_RECEIPT, "Receipt"}, {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_TICKET, "Ticket"},
    {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_USER_RATE, "User Defined"}, {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_UNIT_MM, "[ mm ]"},
    {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_UNIT_PIXEL, "[ Pixel ]"},
    {IDD_LAYOUT, IDT_HIDDEN_LAYOUT_UNIT_MARGIN, "[Margin Crop]"},
    {IDD_USER_PAPER, IDX_PAPER_IMAGE_WIDTH, "Based on Image Width"},
    {IDD_USER_PAPER, IDT_PAPER_WIDTH_LABEL, "Paper Width : "},
    {IDD_USER_PAPER, IDT_HIDDEN_PAPER_IMAGE_WIDTH, "Image Width :"}, {IDD_USER_PAPER, IDB_PAPER_DELETE, "Delete"},
    {IDD_USER_PAPER, IDB_PAPER_SAVE, "Save"}, {IDD_USER_PAPER, IDB_PAPER_CLOSE, "Close"},
    {IDD_USER_PAPER, IDT_HIDDEN_PAPER_REFUSED, "This paper name can not be registered."},
    {IDD_USER_PAPER, IDT_HIDDEN_PAPER_UPDATE, "Do you want to update the paper size?"},
    {IDD_USER_PAPER, IDT_HIDDEN_PAPER_ERROR, "Error"}, {IDD_USER_PAPER, IDT_HIDDEN_PAPER_QUESTION, "Question"},
    {IDD_USER_PAPER, IDT_HIDDEN_PAPER_DEFAULT_NAME, "User-defined paper"},
    {IDD_DOCSETTINGS, IDX_DOC_DRAWER1_BEFORE, "Open before printing #1"},
    {IDD_DOCSETTINGS, IDX_DOC_DRAWER2_BEFORE, "Open before printing #2"},
    {IDD_DOCSETTINGS, IDX_DOC_DRAWER1_AFTER, "Open after printing #1"},
    {IDD_DOCSETTINGS, IDX_DOC_DRAWER2_AFTER, "Open after printing #2"},
    {IDD_DOCSETTINGS, IDX_DOC_BEEP_BEFORE, "Beep sound before printing"},
    {IDD_DOCSETTINGS, IDX_DOC_BEEP_AFTER, "Beep sound after printing"},
    {IDD_DOCSETTINGS, IDT_DOC_DRAWER1_BEFORE_UNIT, "[ ms ]"}, {IDD_DOCSETTINGS, IDT_DOC_DRAWER2_BEFORE_UNIT, "[ ms ]"},
    {IDD_DOCSETTINGS, IDT_DOC_DRAWER1_AFTER_UNIT, "[ ms ]"}, {IDD_DOCSETTINGS, IDT_DOC_DRAWER2_AFTER_UNIT, "[ ms ]"},
    {IDD_DOCSETTINGS, IDT_DOC_BEEP_BEFORE_UNIT, "[ ms ]"}, {IDD_DOCSETTINGS, IDT_DOC_BEEP_AFTER_UNIT, "[ ms ]"},
    {IDD_DOCSETTINGS, IDR_DOC_CUT_NONE_NONE, "Page / Job : No Cut / No Cut"},
    {IDD_DOCSETTINGS, IDR_DOC_CUT_NONE_PARTIAL, "Page / Job : No Cut / Partial Cut"},
    {IDD_DOCSETTINGS, IDR_DOC_CUT_PARTIAL_PARTIAL, "Page / Job : Partial Cut / Partial Cut"},
    {IDD_DOCSETTINGS, IDT_HIDDEN_DOC_ALARM_END_DOC, "Alarm on End Doc"},
    {IDD_DOCSETTINGS, IDT_HIDDEN_DOC_ALARM_END_PAGE, "Alarm on End Page"},
    {IDD_DOCSETTINGS, IDT_HIDDEN_DOC_TIMES, "[ times ]"},
    {IDD_NVIMAGE, IDR_NV_GRAPHIC, "NV Graphic"}, {IDD_NVIMAGE, IDR_NV_BITMAP, "NV Bitmap Image"},
    {IDD_NVIMAGE, IDT_HIDDEN_NV_IMAGE, "NV Image"}, {IDD_NVIMAGE, IDT_HIDDEN_NV_NONE, "None"},
    {IDD_BARCODE, IDC_BARCODE_SET, "Properties"}, {IDD_BARCODE, IDC_CODE_SET, "Properties"},
    {IDD_BARCODE_1D_PROPERTY, IDR_BC1D_FONT_A, "Font A"}, {IDD_BARCODE_1D_PROPERTY, IDR_BC1D_FONT_B, "Font B"},
    {IDD_BARCODE_1D_PROPERTY, IDT_HIDDEN_BC1D_HRI_NONE, "None"},
    {IDD_BARCODE_1D_PROPERTY, IDT_HIDDEN_BC1D_HRI_TOP, "Top"},
    {IDD_BARCODE_1D_PROPERTY, IDT_HIDDEN_BC1D_HRI_BOTTOM, "Bottom"},
    {IDD_BARCODE_1D_PROPERTY, IDT_HIDDEN_BC1D_HRI_BOTH, "Top and Bottom"},
    {IDD_BARCODE_1D_PROPERTY, IDOK, "OK"}, {IDD_BARCODE_1D_PROPERTY, IDCANCEL, "Cancel"},
    {IDD_BARCODE_2D_PROPERTY, IDX_BC2D_PDF_SIMPLIFIED, "Set the processing of simplified PDF417 symbol"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_0, "Level 0"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_1, "Level 1"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_2, "Level 2"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_3, "Level 3"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_4, "Level 4"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_5, "Level 5"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_6, "Level 6"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_7, "Level 7"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_PDF_LEVEL_8, "Level 8"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_MODEL_1, "Model 1"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_MODEL_2, "Model 2"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_LEVEL_L, "Level L"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_LEVEL_M, "Level M"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_LEVEL_Q, "Level Q"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_QR_LEVEL_H, "Level H"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_DATABAR_STACKED, "Stacked"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_DATABAR_STACKED_OMNI, "Stacked Omnidirection"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_OMNI, "GS1 DataBar Omnidirection"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_TRUNCATED, "GS1 DataBar Truncated"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_STACKED, "GS1 DataBar Stacked"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_STACKED_OMNI, "GS1 DataBar Stacked Omnidirection"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_LIMITED, "GS1 DataBar Limited"},
    {IDD_BARCODE_2D_PROPERTY, IDT_HIDDEN_BC2D_LINEAR_EXPANDED, "GS1 DataBar Expanded"},
    {IDD_UTILITY, IDB_UTIL_CONFIG_UTILITY, "Orlivex Utility"},
    {IDD_UTILITY, IDB_UTIL_SPECIAL_FONT, "Special Font(FontcontrolA) Edit"},
    {IDD_UTILITY, IDX_UTIL_JOURNAL, "Enable Journal"}, {IDD_UTILITY, IDB_UTIL_JOURNAL_VIEWER, "Journal Viewer"},
    {IDD_UTILITY, IDX_UTIL_TEXT_KEY, "Enable Text-Key Function"}, {IDD_UTILITY, IDB_UTIL_TEXT_KEY, "Text-Key Function"},
    {IDD_UTILITY, IDX_UTIL_PRINT_PREVIEW, "Enable Print Preview"},
    {IDD_UTILITY, IDX_UTIL_FONT_REPLACE, "Enable Font Replacement Function"},
    {IDD_UTILITY, IDB_UTIL_FONT_REPLACE, "Font Replacement Function"},
    {IDD_UTILITY, IDG_UTIL_STATUS_MONITOR, "Status Monitor Utility"},
    {IDD_UTILITY, IDB_UTIL_STATUS_MONITOR, "Status Monitor Utility"},
    {IDD_UTILITY, IDX_UTIL_IMAGE_MACRO, "Enable Image Macro"}, {IDD_UTILITY, IDB_UTIL_IMAGE_MACRO, "Image Macro"},
    {IDD_PRINTER_SETTINGS, IDG_PRN_BLUETOOTH, "Bluetooth"},
    {IDD_PRINTER_SETTINGS, IDR_PRN_BT_SINGLE_CHIP, "Single Chip"},
    {IDD_PRINTER_SETTINGS, IDR_PRN_BT_TWO_CHIP, "Two-Chip"},
    {IDD_DITHER, IDR_DITHER_MONOCHROME, "Monochrome"}, {IDD_DITHER, IDR_DITHER_GREYSCALE, "Greyscale"},
    {IDD_DITHER, IDR_DITHER_NONE, "None"}, {IDD_DITHER, IDR_DITHER_ERROR_DIFFUSION, "Error Diffusion"},
    {IDD_DITHER, IDR_DITHER_ORDERED, "Ordered Dither"}, {IDD_DITHER, IDR_DITHER_MATRIX4, "4x4 Matrix"},
    {IDD_DITHER, IDR_DITHER_MATRIX8, "8x8 Matrix"}, {IDD_DITHER, IDB_DITHER_ADVANCED, "Advanced"},
    {IDD_DITHER_ADVANCED, IDT_ADV_THRESHOLD_VALUE, "128"}, {IDD_DITHER_ADVANCED, IDT_ADV_BOLD_LINE_VALUE, "0"},
    {IDD_DITHER_ADVANCED, IDOK, "OK"}, {IDD_DITHER_ADVANCED, IDB_ADV_CLOSE, "Close"},
};

TEST_F(Templates, EnglishTextsAreTheKnownTexts)
{
    ASSERT_NE(nullptr, plugin_);
    for (const KnownText& k : kEnglishTexts) {
        SCOPED_TRACE(testing::Message() << "template " << k.templateId << ", control " << k.control);
        HWND dialog = dialogs::Create(plugin_, k.templateId, 1033, dialogs::HostWindow());
        ASSERT_NE(nullptr, dialog);
        HWND control = GetDlgItem(dialog, k.control);
        ASSERT_NE(nullptr, control);
        EXPECT_EQ(k.text, Narrow(TextOf(control)));
        DestroyWindow(dialog);
    }
}

// The language list names each language in itself, so it reads the same whatever the pages show.
TEST_F(Templates, LanguageNamesAreTheSameInEveryLanguage)
{
    static const struct {
        int control;
        const char* name;
    } names[] = {
        {IDT_HIDDEN_PRN_LANG_ENGLISH, "English"}, {IDT_HIDDEN_PRN_LANG_GERMAN, "Deutsch"},
        {IDT_HIDDEN_PRN_LANG_FRENCH, "Fran\xc3\xa7" "ais"}, {IDT_HIDDEN_PRN_LANG_SPANISH, "Espa\xc3\xb1ol"},
        {IDT_HIDDEN_PRN_LANG_ITALIAN, "Italiano"}, {IDT_HIDDEN_PRN_LANG_POLISH, "Polski"},
        {IDT_HIDDEN_PRN_LANG_HUNGARIAN, "Magyar"},
        {IDT_HIDDEN_PRN_LANG_RUSSIAN, "\xd1\x80\xd1\x83\xd1\x81\xd1\x81\xd0\xba\xd0\xb8\xd0\xb9"},
        {IDT_HIDDEN_PRN_LANG_KOREAN, "\xed\x95\x9c\xea\xb5\xad\xec\x96\xb4"},
        {IDT_HIDDEN_PRN_LANG_JAPANESE, "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e"},
        {IDT_HIDDEN_PRN_LANG_CHINESE_S, "\xe7\xae\x80\xe4\xbd\x93\xe4\xb8\xad\xe6\x96\x87"},
        {IDT_HIDDEN_PRN_LANG_CHINESE_T, "\xe7\xb9\x81\xe9\xab\x94\xe4\xb8\xad\xe6\x96\x87"},
    };
    ASSERT_NE(nullptr, plugin_);
    for (const dialogs::Language& lang : dialogs::Languages()) {
        SCOPED_TRACE(lang.tag);
        HWND dialog = dialogs::Create(plugin_, IDD_PRINTER_SETTINGS, lang.id, dialogs::HostWindow());
        ASSERT_NE(nullptr, dialog);
        for (const auto& n : names) EXPECT_EQ(n.name, Narrow(TextOf(GetDlgItem(dialog, n.control))));
        DestroyWindow(dialog);
    }
}

// The Dithering page previews a 96 x 102 picture of 24 bits per pixel, whatever the page language.
TEST_F(Templates, PreviewPictureIsThere)
{
    ASSERT_NE(nullptr, plugin_);
    HANDLE image = LoadImageW(plugin_, MAKEINTRESOURCEW(IDBM_DITHER_SAMPLE), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
    ASSERT_NE(nullptr, image);
    DIBSECTION dib = {};
    ASSERT_EQ(static_cast<int>(sizeof dib), GetObjectW(image, sizeof dib, &dib));
    EXPECT_EQ(96, dib.dsBmih.biWidth);
    EXPECT_EQ(102, dib.dsBmih.biHeight);
    EXPECT_EQ(24, dib.dsBmih.biBitCount);
    EXPECT_EQ(static_cast<DWORD>(BI_RGB), dib.dsBmih.biCompression);
    DeleteObject(image);
    // Neutral, so a page of any language finds it.
    EXPECT_NE(nullptr, FindResourceExW(plugin_, MAKEINTRESOURCEW(2) /* RT_BITMAP */, MAKEINTRESOURCEW(IDBM_DITHER_SAMPLE),
                                       MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL)));
}

}  // namespace

int main(int argc, char** argv)
{
    // Under Wine the CJK faces of the templates only exist once substituted: see dialog_host.h.
    int prepared = dialogs::PrepareFonts();
    if (prepared >= 0) return prepared;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
