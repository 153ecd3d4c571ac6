// The "User Defined Paper Size" dialog, opened with the Layout page's "..." button and driven
// from a second thread while the page waits in the dialog's modal loop: adding, refusing,
// updating and deleting forms, the image-width rule and the millimetre display.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "bench.h"
#include "forms_store.h"
#include "host.h"
#include "page_bench.h"
#include "resources/resource.h"
#include "spooler_faults.h"

using namespace page_bench;
using oemhost::DriverCoreHost;
using oemhost::SheetKind;

namespace {

const WCHAR kCaption[] = L"User Defined Paper Size";

bool WaitUntil(const std::function<bool()>& condition, DWORD ms = 5000)
{
    const DWORD until = GetTickCount() + ms;
    while (!condition()) {
        if (static_cast<LONG>(until - GetTickCount()) <= 0) return false;
        Sleep(20);
    }
    return true;
}

forms::Form UserForm(const std::wstring& name, LONG cx, LONG cy)
{
    return { name, { cx, cy }, { 0, 0, cx, cy }, FORM_USER };
}

LONG Width(const std::wstring& name)
{
    const auto form = forms::Find(name);
    return form ? form->size.cx : -1;
}
LONG Length(const std::wstring& name)
{
    const auto form = forms::Find(name);
    return form ? form->size.cy : -1;
}

class UserPaper : public ::testing::Test {
protected:
    static void SetUpTestSuite() { InstallPageStandIns(); }

    void SetUp() override
    {
        forms::Reset();
        spooler_faults::Reset();
        forms::Preload(UserForm(L"Other maker[Q58]", 58000, 100000));
        printer = bench::NewTestPrinter(L"Paper", L"ORLIVEX QM-101", L"80 x 297 mm[R80]");
        ASSERT_FALSE(printer.empty());
        ASSERT_TRUE(StoreDevMode(printer, [](DEVMODEW&) {}));
        ASSERT_TRUE(host.Load(L"UIQVRPOS.dll")) << host.Error().c_str();
        bench::ClearLog();
        crashesBefore = CrashWatch::Crashes();
    }

    void TearDown() override
    {
        host.CloseSheet();
        EXPECT_EQ(crashesBefore, CrashWatch::Crashes()) << "an exception was raised inside the plug-in";
    }

    void Open()
    {
        sheet = host.OpenSheet(SheetKind::Document, printer);
        page = host.Page(0);
        ASSERT_NE(nullptr, page);
    }

    // Presses "..." on the Layout page and runs `script` against the dialog; the script ends by
    // closing it. A dialog that never appears, or a script that leaves it open, fails the test.
    void WithPaperDialog(const std::function<void(HWND)>& script)
    {
        RunModal([&] { SendMessageW(Item(page, IDB_LAYOUT_USER_PAPER), BM_CLICK, 0, 0); },
                 [&] {
                     const HWND dlg = WaitForDialog(kCaption);
                     if (dlg == nullptr) {
                         ADD_FAILURE() << "the paper dialog did not open";
                         return;
                     }
                     script(dlg);
                     if (IsWindow(dlg)) {
                         PressLater(dlg, IDB_PAPER_CLOSE);
                         EXPECT_TRUE(WaitUntil([&] { return !IsWindow(dlg); })) << "Close ends the dialog";
                     }
                 });
        oemhost::PumpMessages(20);
    }

    // Save pressed as a person does; returns the message box it raised, if any, still open.
    MessageBoxSeen PressSaveExpectingBox(HWND dlg, const std::wstring& caption)
    {
        PressLater(dlg, IDB_PAPER_SAVE);
        return WaitForMessageBox(caption);
    }
    void Answer(const MessageBoxSeen& box, int button)
    {
        PressLater(box.window, button);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindow(box.window); })) << "the message box closes";
    }
    // Save or Delete pressed, waiting until the button's work has ended; the log then holds
    // what that work wrote.
    void PressAndSettle(HWND dlg, int button)
    {
        bench::ClearLog();
        PressLater(dlg, button);
        const std::string end = button == IDB_PAPER_SAVE ? "Utility_SaveForm END" : "Utility_DeleteForm END";
        EXPECT_TRUE(WaitUntil([&] { return bench::LogContains(end); })) << end;
    }
    static void PickForm(HWND dlg, int index)
    {
        const HWND list = Item(dlg, IDL_PAPER_FORMS);
        SendMessageW(list, LB_SETCURSEL, index, 0);
        SendMessageW(dlg, WM_COMMAND, MAKEWPARAM(IDL_PAPER_FORMS, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    }
    static int FormSelection(HWND dlg)
    {
        return static_cast<int>(SendMessageW(Item(dlg, IDL_PAPER_FORMS), LB_GETCURSEL, 0, 0));
    }

    CrashWatch watch;
    int crashesBefore = 0;
    std::wstring printer;
    DriverCoreHost host;
    HWND sheet = nullptr;
    HWND page = nullptr;
};

}  // namespace

TEST_F(UserPaper, NewFormIsRefusedUnderTheDefaultNameThenSavedAsImageWidth)
{
    Open();
    WithPaperDialog([&](HWND dlg) {
        EXPECT_TRUE(ListBoxItems(dlg, IDL_PAPER_FORMS).empty()) << "no form of this driver yet";
        EXPECT_EQ(L"User-defined paper", Text(dlg, IDE_PAPER_NAME));
        EXPECT_EQ(L"80.0", Text(dlg, IDE_PAPER_WIDTH)) << "the default form's first token";
        EXPECT_EQ(L"3276.0", Text(dlg, IDE_PAPER_LENGTH));

        // The default name may not be saved.
        const MessageBoxSeen refused = PressSaveExpectingBox(dlg, L"Error");
        ASSERT_NE(nullptr, refused.window) << "a refusal is shown";
        EXPECT_NE(std::wstring::npos, refused.text.find(L"This paper name can not be registered."));
        Answer(refused, IDOK);
        EXPECT_EQ(0, forms::Counts().add);

        // Nor an empty one.
        Type(dlg, IDE_PAPER_NAME, L"");
        const MessageBoxSeen empty = PressSaveExpectingBox(dlg, L"Error");
        ASSERT_NE(nullptr, empty.window);
        Answer(empty, IDOK);

        // Sizes are brought into range when the field is left.
        Type(dlg, IDE_PAPER_NAME, L"Receipt 80");
        const struct { const WCHAR* typed; const WCHAR* shown; } widths[] = {
            { L"300", L"210.0" }, { L"10", L"25.4" }, { L"abc", L"25.4" }, { L"72.5", L"72.5" },
        };
        for (const auto& row : widths) {
            Type(dlg, IDE_PAPER_WIDTH, row.typed);
            FocusOn(dlg, IDE_PAPER_LENGTH);
            EXPECT_EQ(row.shown, Text(dlg, IDE_PAPER_WIDTH)) << "typed " << std::string(row.typed, row.typed + wcslen(row.typed));
        }
        Type(dlg, IDE_PAPER_WIDTH, L"210.0");
        EXPECT_EQ(L"210.", Text(dlg, IDE_PAPER_WIDTH)) << "four characters: 210.0 can be shown, not typed";
        Type(dlg, IDE_PAPER_LENGTH, L"5000");
        FocusOn(dlg, IDE_PAPER_WIDTH);
        EXPECT_EQ(L"3276.0", Text(dlg, IDE_PAPER_LENGTH));

        // The spins step by a tenth and stop at the limits.
        Spin(dlg, IDSB_PAPER_LENGTH, SB_LINEUP);
        EXPECT_EQ(L"3276.0", Text(dlg, IDE_PAPER_LENGTH));
        Type(dlg, IDE_PAPER_LENGTH, L"297");
        FocusOn(dlg, IDE_PAPER_NAME);
        EXPECT_EQ(L"297.0", Text(dlg, IDE_PAPER_LENGTH));
        Spin(dlg, IDSB_PAPER_LENGTH, SB_LINEUP);
        EXPECT_EQ(L"297.1", Text(dlg, IDE_PAPER_LENGTH));
        Spin(dlg, IDSB_PAPER_LENGTH, SB_LINEDOWN);
        EXPECT_EQ(L"297.0", Text(dlg, IDE_PAPER_LENGTH));
        Type(dlg, IDE_PAPER_WIDTH, L"25.4");
        Spin(dlg, IDSB_PAPER_WIDTH, SB_LINEDOWN);
        EXPECT_EQ(L"25.4", Text(dlg, IDE_PAPER_WIDTH));
        Type(dlg, IDE_PAPER_WIDTH, L"80");

        // Unchecked "Based on Image Width": the field is the paper width; 90 % of it is stored.
        PressAndSettle(dlg, IDB_PAPER_SAVE);
        EXPECT_EQ((std::vector<std::wstring>{ L"Receipt 80" }), ListBoxItems(dlg, IDL_PAPER_FORMS));
        EXPECT_EQ(0, FormSelection(dlg));
        EXPECT_EQ(L"80.0", Text(dlg, IDE_PAPER_WIDTH));
        EXPECT_EQ(L"297.0", Text(dlg, IDE_PAPER_LENGTH));

        // Checked: the field is the image width itself, and the label says so.
        Click(dlg, IDX_PAPER_IMAGE_WIDTH);
        EXPECT_EQ(L"Image Width :", Text(dlg, IDT_PAPER_WIDTH_LABEL));
        EXPECT_EQ(L"72.0", Text(dlg, IDE_PAPER_WIDTH)) << "the selected form re-shown as image width";
        Type(dlg, IDE_PAPER_NAME, L"Label 58");
        Type(dlg, IDE_PAPER_WIDTH, L"58");
        Type(dlg, IDE_PAPER_LENGTH, L"40.25");
        PressAndSettle(dlg, IDB_PAPER_SAVE);
        EXPECT_EQ(L"40.3", Text(dlg, IDE_PAPER_LENGTH)) << "pressing Save left the field, which was corrected";
        EXPECT_EQ((std::vector<std::wstring>{ L"Receipt 80", L"Label 58" }), ListBoxItems(dlg, IDL_PAPER_FORMS));
        Click(dlg, IDX_PAPER_IMAGE_WIDTH);
        EXPECT_EQ(L"Paper Width : ", Text(dlg, IDT_PAPER_WIDTH_LABEL));
    });

    EXPECT_EQ(72000, Width(L"Receipt 80[R80]"));
    EXPECT_EQ(297000, Length(L"Receipt 80[R80]"));
    const auto label = forms::Find(L"Label 58[R80]");
    ASSERT_TRUE(label.has_value());
    EXPECT_EQ(58000, label->size.cx);
    EXPECT_EQ(40300, label->size.cy);
    EXPECT_EQ(0, label->area.left);
    EXPECT_EQ(58000, label->area.right);
    EXPECT_EQ(40300, label->area.bottom);
    EXPECT_EQ(static_cast<DWORD>(FORM_USER), label->flags);
    // Back on the page, the new forms are offered.
    EXPECT_EQ((std::vector<std::wstring>{ L"Receipt 80", L"Label 58" }), ComboItems(page, IDC_LAYOUT_PAPER_SIZE));
}

TEST_F(UserPaper, StoredSizesShowInMillimetresWithOneDecimal)
{
    forms::Preload(UserForm(L"Half up[R80]", 72000, 80550));
    forms::Preload(UserForm(L"Dropped[R80]", 72000, 80050));
    forms::Preload(UserForm(L"Carried[R80]", 72900, 80960));
    Open();
    WithPaperDialog([&](HWND dlg) {
        EXPECT_EQ((std::vector<std::wstring>{ L"Half up", L"Dropped", L"Carried" }),
                  ListBoxItems(dlg, IDL_PAPER_FORMS))
            << "other makers' forms are not offered";
        EXPECT_EQ(2, FormSelection(dlg)) << "the last form is selected";
        EXPECT_EQ(L"Carried", Text(dlg, IDE_PAPER_NAME));
        EXPECT_EQ(L"81.0", Text(dlg, IDE_PAPER_LENGTH)) << "80.96 mm: tenths round up into a whole millimetre";
        EXPECT_EQ(L"81.0", Text(dlg, IDE_PAPER_WIDTH)) << "72.9 mm of image is 81.0 mm of paper";
        PickForm(dlg, 0);
        EXPECT_EQ(L"Half up", Text(dlg, IDE_PAPER_NAME));
        EXPECT_EQ(L"80.6", Text(dlg, IDE_PAPER_LENGTH));
        EXPECT_EQ(L"80.0", Text(dlg, IDE_PAPER_WIDTH)) << "72000 without image width";
        PickForm(dlg, 1);
        EXPECT_EQ(L"80.0", Text(dlg, IDE_PAPER_LENGTH)) << "a remainder below 0.1 mm is dropped";
        Click(dlg, IDX_PAPER_IMAGE_WIDTH);
        PickForm(dlg, 0);
        EXPECT_EQ(L"72.0", Text(dlg, IDE_PAPER_WIDTH)) << "72000 as image width";
    });
}

TEST_F(UserPaper, SavingAnExistingNameAsksBeforeUpdating)
{
    forms::Preload(UserForm(L"Receipt 80[R80]", 72000, 297000));
    Open();
    WithPaperDialog([&](HWND dlg) {
        ASSERT_EQ(L"Receipt 80", Text(dlg, IDE_PAPER_NAME));
        Type(dlg, IDE_PAPER_LENGTH, L"200");

        MessageBoxSeen question = PressSaveExpectingBox(dlg, L"Question");
        ASSERT_NE(nullptr, question.window);
        EXPECT_NE(std::wstring::npos, question.text.find(L"Do you want to update the paper size?"));
        Answer(question, IDNO);
        EXPECT_TRUE(WaitUntil([] { return bench::LogContains("Utility_SaveForm END"); }));
        EXPECT_EQ(297000, Length(L"Receipt 80[R80]")) << "No leaves the form as it was";
        EXPECT_EQ(0, forms::Counts().set);
        bench::ClearLog();

        question = PressSaveExpectingBox(dlg, L"Question");
        ASSERT_NE(nullptr, question.window);
        Answer(question, IDYES);
        EXPECT_TRUE(WaitUntil([] { return bench::LogContains("Utility_SaveForm END"); }));
        EXPECT_EQ(200000, Length(L"Receipt 80[R80]"));
        EXPECT_EQ(L"200.0", Text(dlg, IDE_PAPER_LENGTH)) << "the updated form is shown again";
        bench::ClearLog();

        // A spooler that will not change a form in place gets it replaced instead.
        forms::FailSet(1, ERROR_NOT_SUPPORTED);
        Type(dlg, IDE_PAPER_LENGTH, L"150");
        question = PressSaveExpectingBox(dlg, L"Question");
        ASSERT_NE(nullptr, question.window);
        Answer(question, IDYES);
        EXPECT_TRUE(WaitUntil([] { return bench::LogContains("Utility_SaveForm END"); }));
        EXPECT_EQ(150000, Length(L"Receipt 80[R80]"));
        EXPECT_TRUE(bench::LogContains("SetForm returned FALSE, (50)"));
        EXPECT_TRUE(bench::LogContains("AddForm returned FALSE, (80)")) << "the first add found the name taken";
    });
    EXPECT_EQ(2u, forms::UserForms().size()) << "still one form of this driver beside the other maker's";
}

TEST_F(UserPaper, DeleteRemovesTheSelectedFormAndThePageFallsBackAtOnce)
{
    forms::Preload(UserForm(L"Alpha[R80]", 72000, 100000));
    forms::Preload(UserForm(L"Beta[R80]", 72000, 120000));
    forms::Preload(UserForm(L"80 x 297 mm[R80]", 72000, 297000));
    Open();
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 1);   // "Beta"
    WithPaperDialog([&](HWND dlg) {
        // Nothing selected: nothing happens but a log line.
        SendMessageW(Item(dlg, IDL_PAPER_FORMS), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        PressAndSettle(dlg, IDB_PAPER_DELETE);
        EXPECT_TRUE(bench::LogContains("LB_GETTEXT : LB_ERR"));
        EXPECT_EQ(0, forms::Counts().remove);

        PickForm(dlg, 1);
        ASSERT_EQ(L"Beta", Text(dlg, IDE_PAPER_NAME));
        PressAndSettle(dlg, IDB_PAPER_DELETE);
        EXPECT_FALSE(forms::Find(L"Beta[R80]").has_value()) << "deleted without a question";
        EXPECT_EQ((std::vector<std::wstring>{ L"Alpha", L"80 x 297 mm" }), ListBoxItems(dlg, IDL_PAPER_FORMS));
        EXPECT_EQ(1, FormSelection(dlg));
    });
    EXPECT_TRUE(forms::Find(L"Other maker[Q58]").has_value());

    // The page's form is gone: it falls back to the driver's default form and stores that choice
    // at once, so cancelling the sheet keeps it.
    EXPECT_EQ((std::vector<std::wstring>{ L"Alpha", L"80 x 297 mm" }), ComboItems(page, IDC_LAYOUT_PAPER_SIZE));
    EXPECT_EQ(1, Selection(page, IDC_LAYOUT_PAPER_SIZE));
    EXPECT_EQ(1, bench::ReadPrinterData(printer, L"MISC").at(32));
    host.PressCancel();
    EXPECT_EQ(1, bench::ReadPrinterData(printer, L"MISC").at(32));
}

TEST_F(UserPaper, TheChosenFormStaysChosenWhenItSurvives)
{
    forms::Preload(UserForm(L"Alpha[R80]", 72000, 100000));
    forms::Preload(UserForm(L"Beta[R80]", 72000, 120000));
    Open();
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 1);
    ASSERT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    ASSERT_FALSE(ApplyEnabled(sheet));
    WithPaperDialog([&](HWND dlg) {
        // A form added in the dialog comes after the chosen one; the choice is found by name.
        Type(dlg, IDE_PAPER_NAME, L"Aardvark");
        PressAndSettle(dlg, IDB_PAPER_SAVE);
    });
    EXPECT_EQ((std::vector<std::wstring>{ L"Alpha", L"Beta", L"Aardvark" }), ComboItems(page, IDC_LAYOUT_PAPER_SIZE));
    EXPECT_EQ(1, Selection(page, IDC_LAYOUT_PAPER_SIZE));
    EXPECT_EQ(1, bench::ReadPrinterData(printer, L"MISC").at(32));
    EXPECT_TRUE(ApplyEnabled(sheet)) << "the page counts the dialog as a change";
}

TEST_F(UserPaper, OnlyTheWindowMenusCloseEndsTheDialogAClosingMessageAloneDoesNot)
{
    Open();
    WithPaperDialog([&](HWND dlg) {
        EXPECT_TRUE(bench::LogContains("DlgUserDefinedPaper : WM_INITDIALOG START"));
        EXPECT_TRUE(bench::LogContains("DlgUserDefinedPaper : WM_INITDIALOG END"));
        // Answered as handled: no IDCANCEL is made of it, so the dialog stays.
        PostMessageW(dlg, WM_CLOSE, 0, 0);
        Sleep(300);
        EXPECT_TRUE(IsWindow(dlg)) << "WM_CLOSE does nothing";
        PostMessageW(dlg, WM_SYSCOMMAND, SC_CLOSE, 0);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindow(dlg); })) << "SC_CLOSE ends the dialog";
    });
    EXPECT_TRUE(IsWindow(page)) << "the page stays open";
}
