// The Layout page in a real property sheet, driven the way a person does: what it shows from the
// stored settings, what Apply moves into "MISC" and into the queue's default device mode, and the
// corrections it makes on the way.
#include <gtest/gtest.h>

#include <cstring>
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

const WCHAR kMedia[] = L"80 x 297 mm[R80]";   // the driver's default form and its identifier

class LayoutPage : public ::testing::Test {
protected:
    static void SetUpTestSuite() { InstallPageStandIns(); }

    void SetUp() override
    {
        forms::Reset();
        spooler_faults::Reset();
        // In enumeration order: the default form comes last, so its position is not 0.
        forms::Preload({ L"Receipt 58[R80]", { 58000, 297000 }, { 0, 0, 58000, 297000 }, FORM_USER });
        forms::Preload({ L"Ticket 80[R80]", { 72000, 200000 }, { 0, 0, 72000, 200000 }, FORM_USER });
        forms::Preload({ L"Other maker[Q58]", { 58000, 100000 }, { 0, 0, 58000, 100000 }, FORM_USER });
        forms::Preload({ L"80 x 297 mm[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
        printer = bench::NewTestPrinter(L"Layout", L"ORLIVEX QM-101", kMedia);
        ASSERT_FALSE(printer.empty());
        ASSERT_TRUE(StoreDevMode(printer, [](DEVMODEW& dm) {
            dm.dmCopies = 1;
            dm.dmOrientation = DMORIENT_PORTRAIT;
            dm.dmDefaultSource = 265;
        }));
        ASSERT_TRUE(host.Load(L"UIQVRPOS.dll")) << host.Error().c_str();
        bench::ClearLog();
        crashesBefore = CrashWatch::Crashes();
    }

    void TearDown() override
    {
        host.CloseSheet();
        EXPECT_EQ(crashesBefore, CrashWatch::Crashes()) << "an exception was raised inside the plug-in";
    }

    // Stores `misc` as the printer's settings before the sheet opens.
    void StoreMisc(const std::vector<BYTE>& misc)
    {
        ASSERT_EQ(0u, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY,
                                              misc.data(), static_cast<DWORD>(misc.size())));
    }
    // Settings as a configured printer has them, with a recognisable byte in every unused index.
    static std::vector<BYTE> PatternedMisc()
    {
        std::vector<BYTE> misc(99, 0);
        for (int i = 55; i < 99; ++i) misc[i] = static_cast<BYTE>(i * 3);
        misc[14] = 0x5A;
        misc[22] = 0xA5;
        misc[19] = 1;
        misc[36] = 1;
        misc[35] = 10;
        misc[53] = 128;
        return misc;
    }

    HWND Open()
    {
        sheet = host.OpenSheet(SheetKind::Document, printer);
        page = host.Page(0);
        return page;
    }
    std::vector<BYTE> Misc() { return bench::ReadPrinterData(printer, L"MISC"); }
    std::vector<BYTE> DevMode() { return StoredDevModeBytes(printer); }

    CrashWatch watch;
    int crashesBefore = 0;
    std::wstring printer;
    DriverCoreHost host;
    HWND sheet = nullptr;
    HWND page = nullptr;
};

int Count(const std::string& haystack, const std::string& needle)
{
    int n = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
    return n;
}

}  // namespace

TEST_F(LayoutPage, ShowsWhatIsStored)
{
    std::vector<BYTE> misc = PatternedMisc();
    misc[19] = 7;     // copies
    misc[21] = 2;     // 180 degrees
    misc[31] = 1;     // ticket
    misc[32] = 1;     // second listed form
    misc[42] = 1;     // landscape
    misc[23] = 1; misc[24] = 12; misc[49] = 1;    // top on, 12, pixel
    misc[25] = 0; misc[26] = 3; misc[50] = 0;     // bottom off
    misc[45] = 1; misc[46] = 255; misc[51] = 2;   // left on, 255, margin crop
    misc[38] = 1; misc[40] = 4; misc[41] = 60; misc[39] = 1; misc[44] = 1;
    StoreMisc(misc);
    ASSERT_NE(nullptr, Open());

    EXPECT_EQ((std::vector<std::wstring>{ L"Receipt 58", L"Ticket 80", L"80 x 297 mm" }),
              ComboItems(page, IDC_LAYOUT_PAPER_SIZE))
        << "only this driver's forms, cut at '[', in enumeration order";
    EXPECT_EQ(1, Selection(page, IDC_LAYOUT_PAPER_SIZE));
    EXPECT_EQ((std::vector<std::wstring>{ L"Receipt", L"Ticket" }), ComboItems(page, IDC_LAYOUT_PAPER_TYPE));
    EXPECT_EQ(1, Selection(page, IDC_LAYOUT_PAPER_TYPE));
    EXPECT_TRUE(IsChecked(page, IDR_LAYOUT_LANDSCAPE));
    EXPECT_FALSE(IsChecked(page, IDR_LAYOUT_PORTRAIT));
    EXPECT_EQ(L"7", Text(page, IDE_LAYOUT_COPIES));
    EXPECT_TRUE(IsChecked(page, IDR_LAYOUT_ROTATE_180));

    const std::vector<std::wstring> units = { L"[ mm ]", L"[ Pixel ]", L"[Margin Crop]" };
    for (int list : { IDC_LAYOUT_CROP_TOP_UNIT, IDC_LAYOUT_CROP_BOTTOM_UNIT, IDC_LAYOUT_CROP_LEFT_UNIT,
                      IDC_LAYOUT_CROP_RIGHT_UNIT })
        EXPECT_EQ(units, ComboItems(page, list)) << list;
    EXPECT_TRUE(IsChecked(page, IDX_LAYOUT_CROP_TOP));
    EXPECT_EQ(L"12", Text(page, IDE_LAYOUT_CROP_TOP));
    EXPECT_EQ(1, Selection(page, IDC_LAYOUT_CROP_TOP_UNIT));
    EXPECT_TRUE(IsEnabled(page, IDE_LAYOUT_CROP_TOP));
    EXPECT_FALSE(IsChecked(page, IDX_LAYOUT_CROP_BOTTOM));
    EXPECT_EQ(L"3", Text(page, IDE_LAYOUT_CROP_BOTTOM));
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_CROP_BOTTOM));
    EXPECT_FALSE(IsEnabled(page, IDSB_LAYOUT_CROP_BOTTOM));
    EXPECT_FALSE(IsEnabled(page, IDC_LAYOUT_CROP_BOTTOM_UNIT));
    EXPECT_EQ(L"255", Text(page, IDE_LAYOUT_CROP_LEFT));
    EXPECT_EQ(2, Selection(page, IDC_LAYOUT_CROP_LEFT_UNIT));
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_CROP_RIGHT));

    EXPECT_EQ((std::vector<std::wstring>{ L"100%", L"75%", L"50%", L"25%", L"User Defined" }),
              ComboItems(page, IDC_LAYOUT_RATE));
    EXPECT_EQ(4, Selection(page, IDC_LAYOUT_RATE));
    EXPECT_EQ(L"60", Text(page, IDE_LAYOUT_RATE));
    EXPECT_TRUE(IsEnabled(page, IDE_LAYOUT_RATE));
    EXPECT_TRUE(IsEnabled(page, IDT_LAYOUT_PERCENT));
    EXPECT_TRUE(IsChecked(page, IDX_LAYOUT_REDUCTION));
    EXPECT_TRUE(IsChecked(page, IDR_LAYOUT_BARCODE_REDUCE));
    EXPECT_TRUE(IsChecked(page, IDX_LAYOUT_INTERPOLATION));

    const std::string log = bench::ReadLog();
    EXPECT_NE(std::string::npos, log.find("DlgLayoutProc : WM_INITDIALOG START"));
    EXPECT_NE(std::string::npos, log.find("InitPaperSize : START"));
    EXPECT_NE(std::string::npos, log.find("UpdatePaperSizeList : END"));
    EXPECT_NE(std::string::npos, log.find("DlgLayoutProc : WM_INITDIALOG END"));
}

TEST_F(LayoutPage, UnreadableSettingsStartOnTheDefaultForm)
{
    // Settings that cannot be read, and the sheet's attempt to store fresh ones refused too: the
    // page seeds the record itself and starts on the driver's default form.
    StoreMisc(std::vector<BYTE>(100, 1));
    spooler_faults::FailSetPrinterData(2, ERROR_ACCESS_DENIED);
    ASSERT_NE(nullptr, Open());
    EXPECT_EQ(2, Selection(page, IDC_LAYOUT_PAPER_SIZE)) << "\"80 x 297 mm\" is third in the list";
    EXPECT_EQ(L"1", Text(page, IDE_LAYOUT_COPIES));
    EXPECT_FALSE(IsEnabled(page, IDC_LAYOUT_RATE)) << "reduction is off by default";
}

TEST_F(LayoutPage, AnUnknownRotationShowsNormalAndIsStoredAsNone)
{
    std::vector<BYTE> misc = PatternedMisc();
    misc[21] = 7;
    StoreMisc(misc);
    ASSERT_NE(nullptr, Open());
    EXPECT_TRUE(IsChecked(page, IDR_LAYOUT_ROTATE_0)) << "an unknown rotation shows \"Normal\"";
    ASSERT_TRUE(host.Apply());
    EXPECT_EQ(0, Misc().at(21)) << "and is stored as none";
}

TEST_F(LayoutPage, ApplyWritesCopiesPaperTypeSizeAndOrientationToMiscAndTheDeviceMode)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());

    Type(page, IDE_LAYOUT_COPIES, L"3");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    DropAndPick(page, IDC_LAYOUT_PAPER_TYPE, 1);
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 1);
    Click(page, IDR_LAYOUT_LANDSCAPE);
    const int mergesBefore = MergeCalls();
    ASSERT_TRUE(host.Apply());

    std::vector<BYTE> misc = Misc();
    ASSERT_EQ(99u, misc.size());
    EXPECT_EQ(3, misc[19]);
    EXPECT_EQ(1, misc[31]);
    EXPECT_EQ(1, misc[32]);
    EXPECT_EQ(1, misc[42]);
    std::vector<BYTE> bytes = DevMode();
    const DEVMODEW* dm = AsDevMode(bytes);
    ASSERT_NE(nullptr, dm);
    EXPECT_EQ(3, dm->dmCopies);
    EXPECT_EQ(DMORIENT_LANDSCAPE, dm->dmOrientation);
    EXPECT_EQ(266, dm->dmDefaultSource) << "the ticket bin";
    EXPECT_STREQ(L"Ticket 80[R80]", dm->dmFormName);
    EXPECT_EQ(0, dm->dmPaperSize);
    EXPECT_EQ(720, dm->dmPaperWidth);
    EXPECT_EQ(2000, dm->dmPaperLength);
    EXPECT_GT(MergeCalls(), mergesBefore) << "the driver validates the form change";

    // And back again in the same sheet: every value travels the other way too.
    Type(page, IDE_LAYOUT_COPIES, L"255");
    DropAndPick(page, IDC_LAYOUT_PAPER_TYPE, 0);
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 0);
    Click(page, IDR_LAYOUT_PORTRAIT);
    ASSERT_TRUE(host.Apply());
    misc = Misc();
    EXPECT_EQ(255, misc[19]);
    EXPECT_EQ(0, misc[31]);
    EXPECT_EQ(0, misc[32]);
    EXPECT_EQ(0, misc[42]);
    bytes = DevMode();
    dm = AsDevMode(bytes);
    ASSERT_NE(nullptr, dm);
    EXPECT_EQ(255, dm->dmCopies);
    EXPECT_EQ(DMORIENT_PORTRAIT, dm->dmOrientation);
    EXPECT_EQ(265, dm->dmDefaultSource) << "the receipt bin";
    EXPECT_STREQ(L"Receipt 58[R80]", dm->dmFormName);
    EXPECT_EQ(580, dm->dmPaperWidth);
    EXPECT_EQ(2970, dm->dmPaperLength);

    const std::string log = bench::ReadLog();
    EXPECT_NE(std::string::npos, log.find("SetCopyCount : nCount = 255"));
    EXPECT_NE(std::string::npos, log.find("SetCopyCount : dmCopies = 3"));
    EXPECT_NE(std::string::npos, log.find("SetCopyCount : pDevMode->dmCopies = 255"));
    EXPECT_NE(std::string::npos, log.find("SetPaperType : pDevMode->dmDefaultSource = 265"));
    EXPECT_NE(std::string::npos, log.find("SetOrientation : pDevMode->dmOrientation = 1"));
}

TEST_F(LayoutPage, UnchangedValuesAreNotWrittenButWrappedFormSizesAlwaysAre)
{
    forms::Preload({ L"Small[R80]", { 30000, 30000 }, { 0, 0, 30000, 30000 }, FORM_USER });
    std::vector<BYTE> misc = PatternedMisc();
    misc[32] = 3;   // "Small", listed after the three of every test
    StoreMisc(misc);
    ASSERT_TRUE(StoreDevMode(printer, [](DEVMODEW& dm) {
        dm.dmPaperWidth = 300;
        dm.dmPaperLength = 300;
    }));
    ASSERT_NE(nullptr, Open());
    ASSERT_EQ(3, Selection(page, IDC_LAYOUT_PAPER_SIZE));
    ASSERT_TRUE(host.Apply());
    EXPECT_TRUE(spooler_faults::QueueWrites().empty())
        << "copies, source, orientation and a 30 x 30 mm form already match: nothing is stored";
    EXPECT_NE(std::string::npos, bench::ReadLog().find("SetCopyCount : pDevMode->dmCopies = 1"));

    // 58 mm is 58000 thousandths, beyond 16 bits: the comparison never matches, so it is stored
    // even though the device mode already holds 580 x 2970.
    ASSERT_TRUE(StoreDevMode(printer, [](DEVMODEW& dm) {
        dm.dmPaperWidth = 580;
        dm.dmPaperLength = 2970;
    }));
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 0);
    ASSERT_TRUE(host.Apply());
    ASSERT_EQ(1u, spooler_faults::QueueWrites().size());
    const std::vector<BYTE> bytes = DevMode();
    ASSERT_NE(nullptr, AsDevMode(bytes));
    EXPECT_STREQ(L"Receipt 58[R80]", AsDevMode(bytes)->dmFormName);
}

TEST_F(LayoutPage, CopiesAreCorrectedOnLeavingClampedOnApplyAndTheSpinWraps)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());

    Type(page, IDE_LAYOUT_COPIES, L"0");
    ASSERT_TRUE(host.Apply());
    EXPECT_EQ(1, Misc().at(19)) << "\"0\" applied stores 1";
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"1", Text(page, IDE_LAYOUT_COPIES)) << "leaving the edit with \"0\" shows 1";

    Type(page, IDE_LAYOUT_COPIES, L"3000");
    EXPECT_EQ(L"300", Text(page, IDE_LAYOUT_COPIES)) << "three characters at most";
    ASSERT_TRUE(host.Apply());
    EXPECT_EQ(255, Misc().at(19));
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"255", Text(page, IDE_LAYOUT_COPIES));

    Type(page, IDE_LAYOUT_COPIES, L"x");
    ASSERT_TRUE(host.Apply());
    EXPECT_EQ(1, Misc().at(19)) << "no digits reads as 0, clamped to 1";

    Type(page, IDE_LAYOUT_COPIES, L"255");
    Spin(page, IDSB_LAYOUT_COPIES, SB_LINEUP);
    EXPECT_EQ(L"1", Text(page, IDE_LAYOUT_COPIES)) << "255 up wraps to 1";
    Spin(page, IDSB_LAYOUT_COPIES, SB_LINEDOWN);
    EXPECT_EQ(L"255", Text(page, IDE_LAYOUT_COPIES)) << "1 down wraps to 255";
    Spin(page, IDSB_LAYOUT_COPIES, SB_LINEDOWN);
    EXPECT_EQ(L"254", Text(page, IDE_LAYOUT_COPIES));
    EXPECT_EQ(254, GetScrollPos(Item(page, IDSB_LAYOUT_COPIES), SB_CTL));
}

TEST_F(LayoutPage, CropRotationAndReductionReachMiscWithTheirCorrections)
{
    std::vector<BYTE> misc = PatternedMisc();
    misc[41] = 77;   // an old user rate that a fixed rate must leave alone
    StoreMisc(misc);
    ASSERT_NE(nullptr, Open());

    // Top: on, "-5" is corrected to 0 when left; its spin stops at 0 and 255.
    Click(page, IDX_LAYOUT_CROP_TOP);
    EXPECT_TRUE(IsEnabled(page, IDE_LAYOUT_CROP_TOP));
    Type(page, IDE_LAYOUT_CROP_TOP, L"-5");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"0", Text(page, IDE_LAYOUT_CROP_TOP));
    Spin(page, IDSB_LAYOUT_CROP_TOP, SB_LINEDOWN);
    EXPECT_EQ(L"0", Text(page, IDE_LAYOUT_CROP_TOP));
    Spin(page, IDSB_LAYOUT_CROP_TOP, SB_LINEUP);
    Spin(page, IDSB_LAYOUT_CROP_TOP, SB_LINEUP);
    EXPECT_EQ(L"2", Text(page, IDE_LAYOUT_CROP_TOP)) << "the upper arrow counts up";
    Pick(page, IDC_LAYOUT_CROP_TOP_UNIT, 1);

    // Bottom: "300" is corrected to 255 when left; its spin stops there.
    Click(page, IDX_LAYOUT_CROP_BOTTOM);
    Type(page, IDE_LAYOUT_CROP_BOTTOM, L"300");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"255", Text(page, IDE_LAYOUT_CROP_BOTTOM));
    Spin(page, IDSB_LAYOUT_CROP_BOTTOM, SB_LINEUP);
    EXPECT_EQ(L"255", Text(page, IDE_LAYOUT_CROP_BOTTOM));
    Pick(page, IDC_LAYOUT_CROP_BOTTOM_UNIT, 2);

    // Left and right are not corrected on leaving, only clamped on apply.
    Click(page, IDX_LAYOUT_CROP_LEFT);
    Type(page, IDE_LAYOUT_CROP_LEFT, L"-5");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"-5", Text(page, IDE_LAYOUT_CROP_LEFT));
    Click(page, IDX_LAYOUT_CROP_RIGHT);
    Type(page, IDE_LAYOUT_CROP_RIGHT, L"300");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"300", Text(page, IDE_LAYOUT_CROP_RIGHT));

    Click(page, IDR_LAYOUT_ROTATE_270);

    // Reduction on, "User Defined" rate: "10" becomes 25 on leaving.
    Click(page, IDX_LAYOUT_REDUCTION);
    EXPECT_TRUE(IsEnabled(page, IDC_LAYOUT_RATE));
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_RATE)) << "rate 100% is selected";
    Pick(page, IDC_LAYOUT_RATE, 4);
    EXPECT_TRUE(IsEnabled(page, IDE_LAYOUT_RATE));
    EXPECT_TRUE(IsEnabled(page, IDT_LAYOUT_PERCENT));
    Type(page, IDE_LAYOUT_RATE, L"10");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_EQ(L"25", Text(page, IDE_LAYOUT_RATE));
    Type(page, IDE_LAYOUT_RATE, L"60");
    Click(page, IDR_LAYOUT_BARCODE_REDUCE);
    Click(page, IDX_LAYOUT_INTERPOLATION);
    ASSERT_TRUE(host.Apply());

    misc = Misc();
    ASSERT_EQ(99u, misc.size());
    EXPECT_EQ(1, misc[23]); EXPECT_EQ(2, misc[24]); EXPECT_EQ(1, misc[49]);
    EXPECT_EQ(1, misc[25]); EXPECT_EQ(255, misc[26]); EXPECT_EQ(2, misc[50]);
    EXPECT_EQ(1, misc[45]); EXPECT_EQ(0, misc[46]) << "\"-5\" is stored as 0"; EXPECT_EQ(0, misc[51]);
    EXPECT_EQ(1, misc[47]); EXPECT_EQ(255, misc[48]) << "\"300\" is stored as 255"; EXPECT_EQ(0, misc[52]);
    EXPECT_EQ(3, misc[21]);
    EXPECT_EQ(1, misc[38]); EXPECT_EQ(4, misc[40]); EXPECT_EQ(60, misc[41]); EXPECT_EQ(1, misc[39]);
    EXPECT_EQ(1, misc[44]);

    // A fixed rate: the rate edit greys out and the stored user rate stays.
    Pick(page, IDC_LAYOUT_RATE, 2);
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_RATE));
    EXPECT_FALSE(IsEnabled(page, IDT_LAYOUT_PERCENT));
    Type(page, IDE_LAYOUT_RATE, L"30");
    // Clearing reduction greys everything of it; setting it again brings the edit back only for
    // "User Defined".
    Click(page, IDX_LAYOUT_REDUCTION);
    for (int id : { IDC_LAYOUT_RATE, IDR_LAYOUT_BARCODE_KEEP, IDR_LAYOUT_BARCODE_REDUCE, IDX_LAYOUT_INTERPOLATION,
                    IDE_LAYOUT_RATE, IDT_LAYOUT_PERCENT })
        EXPECT_FALSE(IsEnabled(page, id)) << id;
    Click(page, IDX_LAYOUT_REDUCTION);
    EXPECT_TRUE(IsEnabled(page, IDC_LAYOUT_RATE));
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_RATE));
    Click(page, IDX_LAYOUT_CROP_TOP);
    EXPECT_FALSE(IsEnabled(page, IDE_LAYOUT_CROP_TOP));
    EXPECT_FALSE(IsEnabled(page, IDSB_LAYOUT_CROP_TOP));
    EXPECT_FALSE(IsEnabled(page, IDC_LAYOUT_CROP_TOP_UNIT));
    ASSERT_TRUE(host.Apply());
    misc = Misc();
    EXPECT_EQ(2, misc[40]);
    EXPECT_EQ(60, misc[41]) << "a fixed rate keeps the old user rate";
    EXPECT_EQ(0, misc[23]);

    const std::vector<BYTE> pattern = PatternedMisc();
    EXPECT_EQ(pattern[14], misc[14]);
    EXPECT_EQ(pattern[22], misc[22]);
    for (int i = 55; i < 99; ++i) EXPECT_EQ(pattern[i], misc[i]) << "index " << i << " is carried unchanged";
}

TEST_F(LayoutPage, OnlyRealChangesEnableApply)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());
    Type(page, IDE_LAYOUT_COPIES, L"2");
    ASSERT_TRUE(ApplyEnabled(sheet)) << "typing is a change";
    PressApply(sheet);
    ASSERT_FALSE(ApplyEnabled(sheet)) << "applied: nothing pending";
    ASSERT_EQ(2, Misc().at(19));

    Click(page, IDR_LAYOUT_PORTRAIT);
    EXPECT_FALSE(ApplyEnabled(sheet)) << "portrait is what is stored";
    Click(page, IDR_LAYOUT_ROTATE_0);
    EXPECT_FALSE(ApplyEnabled(sheet)) << "no rotation is what is stored";
    Pick(page, IDC_LAYOUT_CROP_LEFT_UNIT, 2);
    EXPECT_FALSE(ApplyEnabled(sheet)) << "a crop unit alone is not a change";
    Pick(page, IDC_LAYOUT_PAPER_TYPE, 1);
    EXPECT_FALSE(ApplyEnabled(sheet)) << "the paper type counts when its list is opened";
    DropAndPick(page, IDC_LAYOUT_PAPER_TYPE, 1);
    EXPECT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    ASSERT_FALSE(ApplyEnabled(sheet));
    EXPECT_EQ(2, Misc().at(51)) << "the unit chosen earlier is applied with the rest";

    Click(page, IDR_LAYOUT_LANDSCAPE);
    EXPECT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    Click(page, IDR_LAYOUT_ROTATE_90);
    EXPECT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    Spin(page, IDSB_LAYOUT_COPIES, SB_LINEUP);
    EXPECT_TRUE(ApplyEnabled(sheet)) << "the spin's new text is an edit change";
    PressApply(sheet);
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 0);
    EXPECT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    Click(page, IDX_LAYOUT_CROP_TOP);
    EXPECT_TRUE(ApplyEnabled(sheet));
    PressApply(sheet);
    EXPECT_FALSE(ApplyEnabled(sheet));
    const std::vector<BYTE> misc = Misc();
    EXPECT_EQ(1, misc.at(42));
    EXPECT_EQ(1, misc.at(21));
    EXPECT_EQ(3, misc.at(19));
    EXPECT_EQ(1, misc.at(23));
}

TEST_F(LayoutPage, RefusedDeviceModeWritesAreRetriedOnceAndKeepTheOldSettings)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    Type(page, IDE_LAYOUT_COPIES, L"5");
    DropAndPick(page, IDC_LAYOUT_PAPER_TYPE, 1);
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 1);
    Click(page, IDR_LAYOUT_LANDSCAPE);
    ASSERT_TRUE(host.Apply());

    const std::vector<BYTE> misc = Misc();
    EXPECT_EQ(1, misc.at(19)) << "copies keep the stored value";
    EXPECT_EQ(0, misc.at(31));
    EXPECT_EQ(0, misc.at(42));
    EXPECT_EQ(1, misc.at(32)) << "the paper size is stored regardless";
    const std::vector<BYTE> bytes = DevMode();
    ASSERT_NE(nullptr, AsDevMode(bytes));
    EXPECT_EQ(1, AsDevMode(bytes)->dmCopies);

    const std::string log = bench::ReadLog();
    EXPECT_EQ(2, Count(log, "SetCopyCount : SetPrinterInfo2 failed = 5")) << "tried, then once more";
    EXPECT_EQ(2, Count(log, "SetPaperType : SetPrinterInfo2 failed with = 5"));
    EXPECT_EQ(2, Count(log, "SetOrientation : SetPrinterInfo2 failed = 5"));
    EXPECT_EQ(2, Count(log, "SetPaperSize : SetPrinterInfo2 failed = 5"));
    EXPECT_EQ(8, Count(log, "SetPrinterInfo2 : SetPrinter failed-1 with (5)"));
    EXPECT_EQ(8, Count(log, "SetPrinterInfo2 : SetPrinter failed-2 with (5)"));
    // Each retry goes through the sheet's own handle again: every one of the sixteen attempts
    // was a level-2 write.
    EXPECT_EQ(16u, spooler_faults::QueueWrites().size());
}

TEST_F(LayoutPage, AFormThatWentAwayLeavesTheDeviceModeAndMarksTheDefaultForm)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());
    Pick(page, IDC_LAYOUT_PAPER_SIZE, 1);   // "Ticket 80"
    // Someone deletes it behind the page's back.
    forms::Reset();
    forms::Preload({ L"Receipt 58[R80]", { 58000, 297000 }, { 0, 0, 58000, 297000 }, FORM_USER });
    forms::Preload({ L"80 x 297 mm[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
    const std::vector<BYTE> before = DevMode();
    ASSERT_TRUE(host.Apply());
    EXPECT_TRUE(spooler_faults::QueueWrites().empty()) << bench::ReadLog();
    const std::vector<BYTE> after = DevMode();
    ASSERT_EQ(before.size(), after.size());
    // Wine refills dmDeviceName from the queue name on every read (a long name leaves no room for
    // a terminator), so the comparison starts after it.
    for (size_t i = offsetof(DEVMODEW, dmSpecVersion); i < before.size(); ++i)
        EXPECT_EQ(before[i], after[i]) << "device-mode byte " << i << " was touched";
    const std::vector<BYTE> misc = Misc();
    EXPECT_EQ(1, misc.at(32)) << "the chosen position is stored anyway";
    EXPECT_EQ(2, misc.at(12)) << "byte 12 receives the default form's position in the list as shown";
}

TEST_F(LayoutPage, OkStoresTheEditsAndCancelDropsThem)
{
    StoreMisc(PatternedMisc());
    ASSERT_NE(nullptr, Open());
    Type(page, IDE_LAYOUT_COPIES, L"7");
    FocusOn(page, IDR_LAYOUT_PORTRAIT);
    Click(page, IDR_LAYOUT_ROTATE_180);
    host.PressOk();
    EXPECT_EQ(nullptr, PropSheet_GetCurrentPageHwnd(sheet)) << "OK closes the sheet";
    std::vector<BYTE> misc = Misc();
    ASSERT_EQ(99u, misc.size());
    EXPECT_EQ(7, misc[19]);
    EXPECT_EQ(2, misc[21]);
    std::vector<BYTE> bytes = DevMode();
    ASSERT_NE(nullptr, AsDevMode(bytes));
    EXPECT_EQ(7, AsDevMode(bytes)->dmCopies);
    host.CloseSheet();

    // A second sheet shows what OK stored; Cancel then leaves the printer as it was.
    DriverCoreHost again;
    ASSERT_TRUE(again.Load(L"UIQVRPOS.dll"));
    HWND secondSheet = again.OpenSheet(SheetKind::Document, printer);
    ASSERT_NE(nullptr, secondSheet);
    HWND secondPage = again.Page(0);
    EXPECT_EQ(L"7", Text(secondPage, IDE_LAYOUT_COPIES));
    EXPECT_TRUE(IsChecked(secondPage, IDR_LAYOUT_ROTATE_180));
    Type(secondPage, IDE_LAYOUT_COPIES, L"9");
    FocusOn(secondPage, IDR_LAYOUT_PORTRAIT);
    Click(secondPage, IDR_LAYOUT_ROTATE_0);
    again.PressCancel();
    again.CloseSheet(0);
    EXPECT_EQ(misc, Misc()) << "Cancel writes nothing";
    bytes = DevMode();
    ASSERT_NE(nullptr, AsDevMode(bytes));
    EXPECT_EQ(7, AsDevMode(bytes)->dmCopies);
}
