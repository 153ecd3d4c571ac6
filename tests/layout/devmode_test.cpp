// The device-mode writers called directly with a record, for the values the Layout page never
// passes (the Dithering page's colour type, out-of-range arguments) and the store's retry.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "bench.h"
#include "page_bench.h"
#include "pages/devmode.h"
#include "spooler_faults.h"

using namespace page_bench;

namespace {

int Count(const std::string& haystack, const std::string& needle)
{
    int n = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
    return n;
}

class DeviceModeWriteBack : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        // The writers are linked into this program: its own imports are the ones to redirect.
        spooler_faults::Install(GetModuleHandleW(nullptr));
    }

    void SetUp() override
    {
        ASSERT_TRUE(InstallDevModeDriver(GetModuleHandleW(nullptr)));
        spooler_faults::Reset();
        printer = bench::NewTestPrinter(L"DevMode");
        ASSERT_FALSE(printer.empty());
        ASSERT_TRUE(StoreDevMode(printer, [](DEVMODEW& dm) {
            dm.dmCopies = 1;
            dm.dmOrientation = DMORIENT_PORTRAIT;
            dm.dmColor = DMCOLOR_MONOCHROME;
            dm.dmDefaultSource = 265;
        }));
        ASSERT_TRUE(OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &record.hPrinter, nullptr));
        wcsncpy(record.printerName, printer.c_str(), 519);
        spooler_faults::Reset();   // the opens and writes of the set-up do not count
        bench::ClearLog();
    }
    void TearDown() override { ClosePrinter(record.hPrinter); }

    DEVMODEW Stored()
    {
        const std::vector<BYTE> bytes = StoredDevModeBytes(printer);
        DEVMODEW dm = {};
        if (AsDevMode(bytes) != nullptr) memcpy(&dm, bytes.data(), sizeof dm);
        return dm;
    }
    size_t Writes() { return spooler_faults::QueueWrites().size(); }

    std::wstring printer;
    DIALOGINFO record = {};
};

}  // namespace

TEST_F(DeviceModeWriteBack, EachWriterMapsItsArgument)
{
    const struct {
        const char* what;
        BOOL (*writer)(DIALOGINFO*, int);
        int argument;
        int expected;
    } rows[] = {
        { "copies 300 keeps the low 8 bits", SetCopyCount, 300, 44 },
        { "copies 7", SetCopyCount, 7, 7 },
        { "orientation 1 is landscape", SetOrientation, 1, DMORIENT_LANDSCAPE },
        { "orientation 7 is portrait", SetOrientation, 7, DMORIENT_PORTRAIT },
        { "colour type 2 is colour", SetColorType, 2, DMCOLOR_COLOR },
        { "colour type 1 is monochrome", SetColorType, 1, DMCOLOR_MONOCHROME },
        { "colour type 3 is monochrome", SetColorType, 3, DMCOLOR_MONOCHROME },
        { "paper type 1 is the ticket bin", SetPaperType, 1, 266 },
        { "paper type 2 is the form source", SetPaperType, 2, DMBIN_FORMSOURCE },
        { "paper type 0 is the receipt bin", SetPaperType, 0, 265 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_TRUE(row.writer(&record, row.argument));
        const DEVMODEW dm = Stored();
        const int got = row.writer == SetCopyCount     ? dm.dmCopies
                      : row.writer == SetOrientation   ? dm.dmOrientation
                      : row.writer == SetColorType     ? dm.dmColor
                                                       : dm.dmDefaultSource;
        EXPECT_EQ(row.expected, got);
    }
    const DEVMODEW dm = Stored();
    EXPECT_EQ(7, dm.dmCopies) << "each writer leaves the others' members alone";
    EXPECT_EQ(DMORIENT_PORTRAIT, dm.dmOrientation);
    EXPECT_EQ(DMCOLOR_MONOCHROME, dm.dmColor);
    const std::string log = bench::ReadLog();
    EXPECT_NE(std::string::npos, log.find("SetCopyCount : nCount = 300"));
    EXPECT_NE(std::string::npos, log.find("SetCopyCount : pDevMode->dmCopies = 44"));
    EXPECT_NE(std::string::npos, log.find("SetColorType : nType = 2"));
    EXPECT_NE(std::string::npos, log.find("SetColorType : dmColor = 1"));
    EXPECT_NE(std::string::npos, log.find("SetColorType : pDevMode->dmColor = 2"));
    EXPECT_NE(std::string::npos, log.find("SetPaperType : dwDefaultSource = 266"));
    EXPECT_NE(std::string::npos, log.find("SetPaperType : pDevMode->dmDefaultSource = 15"));
    EXPECT_NE(std::string::npos, log.find("SetOrientation : nOrientation = 7"));
}

TEST_F(DeviceModeWriteBack, TheSameValueAgainWritesNothingAndSucceeds)
{
    EXPECT_TRUE(SetCopyCount(&record, 1));
    EXPECT_TRUE(SetOrientation(&record, 0));
    EXPECT_TRUE(SetColorType(&record, 0));
    EXPECT_TRUE(SetPaperType(&record, 0));
    EXPECT_EQ(0u, Writes());
    EXPECT_TRUE(SetCopyCount(&record, 257)) << "257 is 1 in the low 8 bits";
    EXPECT_EQ(0u, Writes());
    EXPECT_TRUE(SetCopyCount(&record, 2));
    EXPECT_EQ(1u, Writes());
}

TEST_F(DeviceModeWriteBack, NoRecordNoWrite)
{
    EXPECT_FALSE(SetCopyCount(nullptr, 3));
    EXPECT_FALSE(SetOrientation(nullptr, 1));
    EXPECT_FALSE(SetColorType(nullptr, 2));
    EXPECT_FALSE(SetPaperType(nullptr, 1));
    EXPECT_EQ(0u, Writes());
    const std::string log = bench::ReadLog();
    for (const char* line : { "SetCopyCount : lpdi is NULL", "SetOrientation : lpdi is NULL",
                              "SetColorType : lpdi is NULL", "SetPaperType : lpdi is NULL", "SetCopyCount : END" })
        EXPECT_NE(std::string::npos, log.find(line)) << line;
}

TEST_F(DeviceModeWriteBack, ARefusedStoreIsRetriedOnTheCallersHandleOnlyWhenThePrinterCanBeReopened)
{
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    EXPECT_FALSE(SetColorType(&record, 2));
    EXPECT_EQ(2u, Writes());
    EXPECT_EQ(1, spooler_faults::OpenedHandles());
    EXPECT_EQ(1, spooler_faults::ClosedHandles()) << "the handle opened by name is closed again";
    std::string log = bench::ReadLog();
    EXPECT_EQ(1, Count(log, "SetPrinterInfo2 : SetPrinter failed-1 with (5)"));
    EXPECT_EQ(1, Count(log, "SetPrinterInfo2 : SetPrinter failed-2 with (5)"));
    EXPECT_EQ(1, Count(log, "SetColorType : SetPrinterInfo2 failed = 5"));

    spooler_faults::Reset();
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    spooler_faults::FailOpenPrinter(0, 1, ERROR_INVALID_PRINTER_NAME);
    bench::ClearLog();
    EXPECT_FALSE(SetOrientation(&record, 1));
    EXPECT_EQ(1u, Writes()) << "no second attempt when the printer cannot be reached by name";
    log = bench::ReadLog();
    EXPECT_EQ(1, Count(log, "SetPrinterInfo2 : OpenPrinter failed-2 with (1801)"));
    EXPECT_EQ(0, Count(log, "failed-2 with (5)"));

    // Without a record there is no name to reopen by.
    spooler_faults::Reset();
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    DWORD needed = 0;
    GetPrinterW(record.hPrinter, 2, nullptr, 0, &needed);
    std::vector<BYTE> info(needed);
    ASSERT_TRUE(GetPrinterW(record.hPrinter, 2, info.data(), needed, &needed));
    EXPECT_FALSE(SetPrinterInfo2(record.hPrinter, reinterpret_cast<PRINTER_INFO_2W*>(info.data()), nullptr));
    EXPECT_EQ(1u, Writes());
    EXPECT_EQ(0, spooler_faults::OpenedHandles());
    spooler_faults::Reset();
    EXPECT_TRUE(SetPrinterInfo2(record.hPrinter, reinterpret_cast<PRINTER_INFO_2W*>(info.data()), nullptr));
}

TEST_F(DeviceModeWriteBack, WinesOwnDriverCarriesASingleChange)
{
    // Without the stand-in: Wine's driver answers its per-process copy, loaded from the stored
    // device mode on first use, which is enough for one change per queue.
    UninstallDevModeDriver(GetModuleHandleW(nullptr));
    EXPECT_TRUE(SetCopyCount(&record, 9));
    EXPECT_EQ(9, Stored().dmCopies);
    EXPECT_EQ(1u, Writes());
}
