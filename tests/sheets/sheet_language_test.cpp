// The page language a sheet chooses, on the kind of system named by QVR_EXPECT (the test runs with
// the matching LC_ALL, which is what sets Wine's user-interface language).
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "bench.h"
#include "host.h"
#include "settings/dialog_info.h"

using oemhost::DriverCoreHost;
using oemhost::SheetKind;

namespace {

struct SystemCase {
    const char* tag;
    LANGID ui;             // what the system reports
    BYTE seededIndex;      // byteValue[28] of a new queue
    const char* switchedTo;   // the log lines of the switch for the seeded index, or null for none
};

const SystemCase kCases[] = {
    { "de", 1031, 1, ": PRIMARYLANGID : 7 \r\n" },
    { "ja", 1041, 5, ": PRIMARYLANGID : 11 \r\n" },
    { "zh-CN", 2052, 5, ": SUBLANGID : 2 \r\n" },
    { "nl", 1043, 0, ": PRIMARYLANGID : 9 \r\n" },
};

const SystemCase& Expected()
{
    const char* tag = getenv("QVR_EXPECT");
    for (const auto& c : kCases)
        if (tag && std::string(tag) == c.tag) return c;
    static const SystemCase none = { "?", 0, 0, nullptr };
    return none;
}

BYTE StoredIndex(const std::wstring& printer)
{
    auto misc = bench::ReadPrinterData(printer, L"MISC");
    return misc.size() == 99 ? misc[pref::Language] : 0xFF;
}

void StoreIndex(const std::wstring& printer, BYTE index)
{
    auto misc = bench::ReadPrinterData(printer, L"MISC");
    ASSERT_EQ(99u, misc.size());
    misc[pref::Language] = index;
    ASSERT_EQ(0u, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY,
                                          misc.data(), 99));
}

std::string OpenAndLog(const std::wstring& printer)
{
    bench::ClearLog();
    DriverCoreHost host;
    EXPECT_TRUE(host.Load(L"UIQVRPOS.dll"));
    EXPECT_EQ(S_OK, host.InitSheet(SheetKind::Document, printer));
    host.CloseSheet();
    return bench::ReadLog();
}

}  // namespace

TEST(SheetLanguage, NewQueueIsSeededFromTheSystemLanguageAndSwitched)
{
    const SystemCase& expected = Expected();
    ASSERT_NE(nullptr, expected.switchedTo) << "QVR_EXPECT names no known system";
    if (GetUserDefaultUILanguage() != expected.ui)
        GTEST_SKIP() << "Wine reports language " << GetUserDefaultUILanguage() << " for this LC_ALL";
    const std::wstring printer = bench::NewTestPrinter(L"Lang");
    const std::string log = OpenAndLog(printer);
    EXPECT_EQ(expected.seededIndex, StoredIndex(printer));
    EXPECT_NE(std::string::npos, log.find(": SwitchLanguage START \r\n")) << log;
    EXPECT_NE(std::string::npos, log.find(expected.switchedTo)) << log;
}

TEST(SheetLanguage, StoredChoicesOnThisSystem)
{
    const SystemCase& expected = Expected();
    ASSERT_NE(nullptr, expected.switchedTo);
    if (GetUserDefaultUILanguage() != expected.ui) GTEST_SKIP() << "Wine's language differs";
    const std::wstring printer = bench::NewTestPrinter(L"Lang");
    OpenAndLog(printer);

    // 9 is no valid choice: English.
    StoreIndex(printer, 9);
    std::string log = OpenAndLog(printer);
    EXPECT_NE(std::string::npos, log.find(": PRIMARYLANGID : 9 \r\n")) << log;
    EXPECT_EQ(9, StoredIndex(printer)) << "the stored choice is not corrected behind the user's back";

    // 2 is French wherever the sheet opens.
    StoreIndex(printer, 2);
    log = OpenAndLog(printer);
    EXPECT_NE(std::string::npos, log.find(": PRIMARYLANGID : c \r\n")) << log;

    // 5 follows the system only for the seven languages without an index of their own.
    StoreIndex(printer, 5);
    log = OpenAndLog(printer);
    const bool follows = std::string(expected.tag) == "ja" || std::string(expected.tag) == "zh-CN";
    EXPECT_EQ(follows, log.find(": SwitchLanguage START \r\n") != std::string::npos) << log;
}
