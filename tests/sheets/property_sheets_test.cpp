// Printing Preferences and Printer Properties as the driver core builds them: the record, the
// pages the plug-in adds, the header, the result and the clean-up.
#include <gtest/gtest.h>

#include <cstring>

#include "bench.h"
#include "host.h"
#include "settings/dialog_info.h"

using oemhost::DriverCoreHost;
using oemhost::SheetKind;

namespace {

const WORD kDocumentTemplates[] = { 113, 112, 114, 119, 157, 115 };
const WORD kDeviceTemplates[] = { 193, 133 };

// Busy blocks of a heap: what the plug-in still holds.
int BusyBlocks(HANDLE heap)
{
    int busy = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heap);
    while (HeapWalk(heap, &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ++busy;
    HeapUnlock(heap);
    return busy;
}

std::vector<BYTE> Misc(const std::wstring& printer, DWORD* status = nullptr)
{
    return bench::ReadPrinterData(printer, L"MISC", nullptr, status);
}

class PropertySheets : public ::testing::Test {
protected:
    void SetUp() override
    {
        printer = bench::NewTestPrinter(L"Sheets");
        ASSERT_FALSE(printer.empty());
        ASSERT_TRUE(host.Load(L"UIQVRPOS.dll")) << host.Error().c_str();
        bench::ClearLog();
    }
    DIALOGINFO* Record() const { return reinterpret_cast<DIALOGINFO*>(host.Info().UserData); }

    std::wstring printer;
    DriverCoreHost host;
};

}  // namespace

TEST_F(PropertySheets, DocumentSheetAddsSixPagesInOrderSharingOneRecord)
{
    EXPECT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    const auto& pages = host.PageDescriptions();
    ASSERT_EQ(6u, pages.size());
    for (size_t i = 0; i < pages.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "page " << i);
        EXPECT_EQ(sizeof(PROPSHEETPAGEW), pages[i].dwSize);
        EXPECT_EQ(0u, pages[i].dwFlags);
        EXPECT_EQ(bench::Plugin(), pages[i].hInstance);
        EXPECT_EQ(kDocumentTemplates[i], reinterpret_cast<ULONG_PTR>(pages[i].pszTemplate));
        EXPECT_NE(nullptr, pages[i].pfnDlgProc);
        EXPECT_EQ(static_cast<LPARAM>(host.Info().UserData), pages[i].lParam);
        EXPECT_EQ(nullptr, pages[i].pszTitle);
        EXPECT_EQ(nullptr, pages[i].pfnCallback);
    }
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(host.Pages().back()), host.InitResultValue())
        << "the result is the last page-adding call's answer";
    EXPECT_EQ(L"OEM UI Page", host.SheetTitle());

    DIALOGINFO* lpdi = Record();
    ASSERT_NE(nullptr, lpdi);
    EXPECT_GE(HeapSize(host.OemHeap(), 0, lpdi), sizeof(DIALOGINFO)) << "the record comes from the OEM heap";
    ASSERT_NE(nullptr, lpdi->codeData);
    ASSERT_NE(nullptr, lpdi->barcodeInfo);
    EXPECT_EQ(160u, HeapSize(host.OemHeap(), 0, lpdi->codeData));
    EXPECT_EQ(65u, HeapSize(host.OemHeap(), 0, lpdi->barcodeInfo));
    EXPECT_STREQ(printer.c_str(), lpdi->printerName);
    EXPECT_EQ(host.OemHeap(), lpdi->hHeap);
    EXPECT_NE(nullptr, lpdi->hPrinter);
    host.CloseSheet();
}

TEST_F(PropertySheets, DeviceSheetAddsTwoPagesAndNoSideBlocks)
{
    EXPECT_EQ(S_OK, host.InitSheet(SheetKind::Device, printer));
    const auto& pages = host.PageDescriptions();
    ASSERT_EQ(2u, pages.size());
    for (size_t i = 0; i < pages.size(); ++i)
        EXPECT_EQ(kDeviceTemplates[i], reinterpret_cast<ULONG_PTR>(pages[i].pszTemplate)) << i;
    ASSERT_NE(nullptr, Record());
    EXPECT_EQ(nullptr, Record()->codeData);
    EXPECT_EQ(nullptr, Record()->barcodeInfo);
    EXPECT_EQ(L"OEM UI Page", host.SheetTitle());
}

TEST_F(PropertySheets, DestroyFreesEverythingFromTheOemHeap)
{
    for (SheetKind kind : { SheetKind::Document, SheetKind::Device }) {
        SCOPED_TRACE(kind == SheetKind::Document ? "document" : "device");
        DriverCoreHost h;
        ASSERT_TRUE(h.Load(L"UIQVRPOS.dll"));
        ASSERT_EQ(S_OK, h.InitSheet(kind, printer));
        const HANDLE heap = h.OemHeap();
        EXPECT_EQ(kind == SheetKind::Document ? 3 : 1, BusyBlocks(heap));
        EXPECT_EQ(S_OK, h.CallReason(PROPSHEETUI_REASON_DESTROY, 0));
        EXPECT_EQ(1u, h.Info().Result);
        EXPECT_EQ(0, BusyBlocks(heap));
        EXPECT_EQ(S_OK, h.CallReason(PROPSHEETUI_REASON_DESTROY, 0)) << "a second destroy finds nothing to free";
    }
}

TEST_F(PropertySheets, NoStoredSettingsAreSeededAndStoredAtOnce)
{
    DWORD status = 0;
    Misc(printer, &status);
    ASSERT_NE(0u, status) << "a new queue has no MISC";
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    const std::vector<BYTE> misc = Misc(printer);
    ASSERT_EQ(99u, misc.size());
    // The built-in defaults (no configuration file in this prefix), English system.
    BYTE defaults[99] = {};
    for (int i : { 2, 4, 7, 9, 11, 13 }) defaults[i] = 25;
    for (int i : { 5, 19, 20, 36 }) defaults[i] = 1;
    defaults[35] = 10;
    defaults[53] = 128;
    EXPECT_EQ(0, memcmp(defaults, misc.data(), 99));
    EXPECT_EQ(0, memcmp(defaults, Record()->byteValue, 99));
    EXPECT_NE(0u, Record()->preferencesStatus);
    EXPECT_TRUE(bench::LogContains("hrOEMDocumentPropertySheets : PROPSHEETUI_REASON_INIT START"));
    EXPECT_TRUE(bench::LogContains("hrOEMDocumentPropertySheets : GetPrinterDataFromReg failed with "));
    EXPECT_TRUE(bench::LogContains("hrOEMDocumentPropertySheets : PROPSHEETUI_REASON_INIT END"));
}

TEST_F(PropertySheets, StoredSettingsAreUsedAsTheyAre)
{
    BYTE stored[99];
    for (int i = 0; i < 99; ++i) stored[i] = static_cast<BYTE>(200 - i);
    stored[pref::Language] = 0;
    ASSERT_EQ(0u, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY, stored, 99));
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Device, printer));
    EXPECT_EQ(0u, Record()->preferencesStatus);
    EXPECT_EQ(0, memcmp(stored, Record()->byteValue, 99));
    EXPECT_EQ(std::vector<BYTE>(stored, stored + 99), Misc(printer)) << "nothing rewritten";
    EXPECT_FALSE(bench::LogContains("GetPrinterDataFromReg failed"));
}

TEST_F(PropertySheets, ShortStoredSettingsKeepZeroesBeyondTheirEnd)
{
    BYTE stored[40];
    memset(stored, 7, sizeof stored);
    stored[pref::Language] = 0;
    ASSERT_EQ(0u, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY, stored,
                                          sizeof stored));
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    EXPECT_EQ(0u, Record()->preferencesStatus);
    EXPECT_EQ(40u, Record()->cbPreferences);
    EXPECT_EQ(7, Record()->byteValue[39]);
    EXPECT_EQ(0, Record()->byteValue[40]);
    EXPECT_EQ(0, Record()->byteValue[98]);
}

TEST_F(PropertySheets, OverlongStoredSettingsAreReseeded)
{
    BYTE stored[500];
    memset(stored, 0xEE, sizeof stored);
    ASSERT_EQ(0u, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY, stored,
                                          sizeof stored));
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    EXPECT_EQ(DWORD(ERROR_MORE_DATA), Record()->preferencesStatus);
    EXPECT_EQ(25, Record()->byteValue[pref::Drawer1PulseAfter]);
    EXPECT_EQ(99u, Misc(printer).size()) << "the seeded preferences replace the unreadable value";
}

TEST_F(PropertySheets, ARefusedPageEndsThePageLoop)
{
    host.RefuseAfter(2);
    EXPECT_EQ(E_FAIL, host.InitSheet(SheetKind::Document, printer));
    EXPECT_EQ(3u, host.PageDescriptions().size()) << "the third page was offered, then nothing more";
    EXPECT_EQ(0, host.InitResultValue());
    EXPECT_NE(nullptr, Record()) << "the record stays for DESTROY";
}

TEST_F(PropertySheets, ResultsOfTheLaterReasons)
{
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    SETRESULT_INFO setResult = {};
    setResult.cbSize = sizeof setResult;
    setResult.Result = 0x1234;
    EXPECT_EQ(S_OK, host.CallReason(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&setResult)));
    EXPECT_EQ(0x1234u, host.Info().Result);
    setResult.Result = 0;
    EXPECT_EQ(E_FAIL, host.CallReason(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&setResult)));

    PROPSHEETUI_GETICON_INFO icon = {};
    icon.cbSize = sizeof icon;
    EXPECT_EQ(E_FAIL, host.CallReason(PROPSHEETUI_REASON_GET_ICON, reinterpret_cast<LPARAM>(&icon)));
    EXPECT_EQ(0u, host.Info().Result);
    EXPECT_EQ(nullptr, icon.hIcon);

    EXPECT_EQ(E_FAIL, host.CallReason(0x55, 0)) << "an unknown reason reports failure";
    EXPECT_EQ(0u, host.Info().Result);
}

TEST_F(PropertySheets, AMissingOrForeignInfoBlockIsRefusedWithoutTouchingIt)
{
    for (SheetKind kind : { SheetKind::Document, SheetKind::Device }) {
        SCOPED_TRACE(kind == SheetKind::Document ? "document" : "device");
        auto call = [&](PPROPSHEETUI_INFO info) {
            return kind == SheetKind::Document ? host.Plugin()->DocumentPropertySheets(info, 0)
                                               : host.Plugin()->DevicePropertySheets(info, 0);
        };
        SetLastError(0);
        EXPECT_EQ(E_FAIL, call(nullptr));
        EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());

        for (WORD reason : { WORD(PROPSHEETUI_REASON_INIT), WORD(PROPSHEETUI_REASON_GET_INFO_HEADER),
                             WORD(PROPSHEETUI_REASON_DESTROY) }) {
            SCOPED_TRACE(reason);
            PROPSHEETUI_INFO info = {};
            info.cbSize = sizeof info;
            info.Version = 0x0200;
            info.Reason = reason;
            info.Result = 0x77;
            info.UserData = 0x5A5A;
            SetLastError(0);
            EXPECT_EQ(E_FAIL, call(&info));
            EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
            EXPECT_EQ(0x77u, info.Result) << "the result is left alone";
            EXPECT_EQ(0x5A5Au, info.UserData) << "no record is made or freed";
        }
    }
    EXPECT_FALSE(bench::LogContains("PROPSHEETUI_REASON_INIT START"));
}

TEST_F(PropertySheets, DeviceSheetLogsUnderItsOwnName)
{
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Device, printer));
    EXPECT_TRUE(bench::LogContains("hrOEMDevicePropertySheets : PROPSHEETUI_REASON_INIT START"));
    EXPECT_TRUE(bench::LogContains("hrOEMDevicePropertySheets : GetPrinterDataFromReg failed with "));
    EXPECT_TRUE(bench::LogContains("hrOEMDevicePropertySheets : PROPSHEETUI_REASON_INIT END"));
    EXPECT_FALSE(bench::LogContains("hrOEMDocumentPropertySheets"));
    EXPECT_EQ(99u, Misc(printer).size()) << "the device sheet seeds and stores the settings too";
}

TEST_F(PropertySheets, PagesShowInARealSheet)
{
    HWND sheet = host.OpenSheet(SheetKind::Document, printer);
    ASSERT_NE(nullptr, sheet) << host.Error().c_str();
    EXPECT_EQ(6, host.PageCount());
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(host.SelectPage(i));
        EXPECT_NE(nullptr, host.Page(i));
    }
    host.PressCancel();
    host.CloseSheet(0);
}

TEST_F(PropertySheets, DocumentAndDeviceSheetsOpenTogetherHaveTheirOwnRecords)
{
    DriverCoreHost device;
    ASSERT_TRUE(device.Load(L"UIQVRPOS.dll"));
    ASSERT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    ASSERT_EQ(S_OK, device.InitSheet(SheetKind::Device, printer));
    EXPECT_NE(host.Info().UserData, device.Info().UserData);
    device.CloseSheet();
    ASSERT_NE(nullptr, Record());
    EXPECT_STREQ(printer.c_str(), Record()->printerName) << "the document record survives the device sheet";
}
