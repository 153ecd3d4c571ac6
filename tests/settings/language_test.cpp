// The interface language: the mappings between the language index and the system's languages,
// the switch itself, and the Windows version classification.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench.h"
#include "oemui/language.h"
#include "settings/config_import.h"

TEST(LanguageIndex, FromPrimaryLanguage)
{
    const struct { WORD primary; BYTE index; } rows[] = {
        { LANG_GERMAN, 1 }, { LANG_FRENCH, 2 }, { LANG_SPANISH, 3 }, { LANG_ITALIAN, 4 },
        { LANG_CHINESE, 5 }, { LANG_HUNGARIAN, 5 }, { LANG_JAPANESE, 5 }, { LANG_KOREAN, 5 },
        { LANG_POLISH, 5 }, { LANG_RUSSIAN, 5 },
        { LANG_ENGLISH, 0 }, { LANG_PORTUGUESE, 0 }, { LANG_DUTCH, 0 }, { LANG_NEUTRAL, 0 }, { 0x3FF, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "primary " << row.primary);
        EXPECT_EQ(row.index, langdetail::IndexForPrimary(row.primary));
    }
}

TEST(LanguageIndex, SheetLanguage)
{
    const struct { BYTE index; LANGID system; bool switches; LANGID expected; } rows[] = {
        { 0, 1041, true, 1033 }, { 1, 1041, true, 1031 }, { 2, 1033, true, 1036 }, { 3, 1033, true, 1034 },
        { 4, 1033, true, 1040 }, { 6, 1041, true, 1033 }, { 9, 1031, true, 1033 }, { 255, 1031, true, 1033 },
        { 5, 2052, true, 2052 },            // Chinese, Simplified
        { 5, 1028, true, 1028 },            // Chinese, Traditional
        { 5, 3076, true, 1028 },            // Chinese, Hong Kong
        { 5, 4100, true, 1028 },            // Chinese, Singapore: not sub-language 2
        { 5, 1038, true, 1038 }, { 5, 1041, true, 1041 }, { 5, 1042, true, 1042 },
        { 5, 1045, true, 1045 }, { 5, 1049, true, 1049 },
        { 5, 2073, true, 1049 },            // Russian (Moldova) gets the one Russian set
        { 5, 1043, false, 0 },              // Dutch: the thread is left as it is
        { 5, 1031, false, 0 },              // German has an index of its own
        { 5, 1033, false, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "index " << int(row.index) << ", system " << row.system);
        WORD primary = 0xFFFF, sub = 0xFFFF;
        EXPECT_EQ(row.switches, langdetail::SheetLanguageFor(row.index, row.system, &primary, &sub));
        if (row.switches) EXPECT_EQ(row.expected, static_cast<LANGID>(primary | sub << 10));
    }
}

TEST(WindowsVersion, Classification)
{
    const struct { DWORD platform, major, minor; BYTE product; int r2; int code; } rows[] = {
        { 1, 4, 0, 0, 0, 2000 }, { 1, 4, 10, 0, 0, 2001 }, { 1, 4, 90, 0, 0, 2002 }, { 1, 4, 3, 0, 0, 2011 },
        { 2, 3, 51, 1, 0, 2003 }, { 2, 4, 0, 1, 0, 2003 }, { 2, 5, 0, 1, 0, 2004 }, { 2, 5, 1, 1, 0, 2005 },
        { 2, 5, 2, 3, 0, 2006 }, { 2, 5, 2, 3, 1, 2007 }, { 2, 5, 3, 1, 0, 2011 },
        { 2, 6, 0, 1, 0, 2008 }, { 2, 6, 0, 3, 0, 2009 },
        { 2, 6, 1, 1, 0, 2011 }, { 2, 6, 1, 3, 0, 2010 },     // the reverse order is intended
        { 2, 6, 2, 1, 0, 2012 }, { 2, 6, 2, 2, 0, 2014 }, { 2, 6, 3, 1, 0, 2013 }, { 2, 6, 3, 3, 0, 2015 },
        { 2, 6, 4, 1, 0, 2011 }, { 2, 10, 0, 1, 0, 2016 }, { 2, 10, 0, 3, 0, 2017 }, { 2, 10, 5, 1, 0, 2016 },
        { 2, 11, 0, 1, 0, 2011 }, { 0, 3, 10, 0, 0, 2011 }, { 3, 6, 1, 1, 0, 2011 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.platform << " " << row.major << "." << row.minor << " product "
                                        << int(row.product) << " R2 " << row.r2);
        EXPECT_EQ(row.code, langdetail::VersionCodeFor(row.platform, row.major, row.minor, row.product, row.r2));
    }
}

TEST(WindowsVersion, RunningSystem)
{
    OSVERSIONINFOEXW info = {};
    info.dwOSVersionInfoSize = sizeof info;
    ASSERT_TRUE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info)));
    const int code = GetWindowsVersionCode();
    EXPECT_GE(code, 2000);
    EXPECT_LE(code, 2017);
    if (info.dwMajorVersion == 10) EXPECT_EQ(info.wProductType == VER_NT_WORKSTATION ? 2016 : 2017, code);
}

TEST(LanguageSwitch, FollowsTheProcessLanguage)
{
    // The user language of a Wine process follows its LC_ALL; the test runs with whatever it got.
    const LANGID current = GetCurrentUILanguage();
    EXPECT_NE(0, current);
    EXPECT_EQ(langdetail::IndexForPrimary(PRIMARYLANGID(current)), LanguageIndexFromSystem());
}

namespace {
// The log needs its parent folder, which a new prefix lacks.
const bool logFolder = CreateDirectoryW(L"C:\\temp", nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}  // namespace

TEST(LanguageSwitch, LogsTheRequestAndTheOutcome)
{
    ASSERT_TRUE(logFolder);
    bench::ClearLog();
    EXPECT_TRUE(SwitchLanguage(LANG_GERMAN, SUBLANG_GERMAN));
    const std::string log = bench::ReadLog();
    size_t at = 0;
    for (const char* line : { "SwitchLanguage START", "PRIMARYLANGID : 7", "SUBLANGID : 1", "VISTA OR LATER",
                              "PRIMARYLANGID :", "SUBLANGID :", "SwitchLanguage END" }) {
        SCOPED_TRACE(line);
        at = log.find(line, at);
        ASSERT_NE(std::string::npos, at);
    }
    EXPECT_EQ(std::string::npos, log.find("SetThreadLocale failed."));
    SwitchLanguage(LANG_ENGLISH, SUBLANG_ENGLISH_US);
}

TEST(LanguageSwitch, SheetLanguageSwitchesByIndex)
{
    std::unique_ptr<DIALOGINFO> record(new DIALOGINFO());
    const struct { BYTE index; const char* primaryLine; } rows[] = {
        { 0, "PRIMARYLANGID : 9" }, { 1, "PRIMARYLANGID : 7" }, { 2, "PRIMARYLANGID : c" },
        { 3, "PRIMARYLANGID : a" }, { 4, "PRIMARYLANGID : 10" }, { 7, "PRIMARYLANGID : 9" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "index " << int(row.index));
        bench::ClearLog();
        record->byteValue[28] = row.index;
        SelectSheetLanguage(record.get());
        const std::string log = bench::ReadLog();
        const size_t start = log.find("SwitchLanguage START");
        ASSERT_NE(std::string::npos, start);
        EXPECT_NE(std::string::npos, log.find(std::string(row.primaryLine) + " \r\n", start));
    }
    // Index 5 on this (English) system: nothing is switched.
    if (PRIMARYLANGID(GetCurrentUILanguage()) == LANG_ENGLISH) {
        bench::ClearLog();
        record->byteValue[28] = 5;
        SelectSheetLanguage(record.get());
        EXPECT_FALSE(bench::LogContains("SwitchLanguage START"));
    }
    bench::ClearLog();
    SelectSheetLanguage(nullptr);
    EXPECT_EQ("", bench::ReadLog());
}

namespace {

int ExpectedFromEnvironment(const char* name)
{
    char value[32] = {};
    if (GetEnvironmentVariableA(name, value, sizeof value) == 0) return -1;
    return atoi(value);
}

}  // namespace

// Run with LC_ALL set to a system language (see CMakeLists.txt); skipped otherwise.
TEST(SystemLanguage, SeedsAndSwitchesFromTheSystem)
{
    const int expectedLanguage = ExpectedFromEnvironment("QVR_EXPECTED_UI_LANGUAGE");
    const int expectedIndex = ExpectedFromEnvironment("QVR_EXPECTED_LANGUAGE_INDEX");
    if (expectedLanguage < 0 || expectedIndex < 0) GTEST_SKIP() << "no system language given for this run";
    ASSERT_TRUE(logFolder);
    EXPECT_EQ(expectedLanguage, GetCurrentUILanguage());
    EXPECT_EQ(expectedIndex, LanguageIndexFromSystem());

    // A sheet whose record says "follow the system" switches to the system's own set, if it has one.
    std::unique_ptr<DIALOGINFO> record(new DIALOGINFO());
    record->byteValue[28] = 5;
    bench::ClearLog();
    SelectSheetLanguage(record.get());
    char line[64];
    snprintf(line, sizeof line, "PRIMARYLANGID : %x \r\n", PRIMARYLANGID(expectedLanguage));
    if (expectedIndex == 5) {
        EXPECT_TRUE(bench::LogContains("SwitchLanguage START"));
        EXPECT_TRUE(bench::LogContains(line));
    } else {
        EXPECT_FALSE(bench::LogContains("SwitchLanguage START"));
    }

    // Installing a printer stores the system's index, whatever the configuration file says.
    const std::wstring printer = bench::NewTestPrinter(L"language");
    ASSERT_FALSE(printer.empty());
    const std::wstring config = bench::SystemDir() + L"\\QVRPOS_Config.QVR";
    ASSERT_TRUE(bench::WriteTextFile(config, "[QVRPOS]\r\nPREFERENCE[28]=3\r\n"));
    EXPECT_TRUE(SetBasicSettingPreferenceReg(printer.c_str()));
    DeleteFileW(config.c_str());
    const std::vector<BYTE> misc = bench::ReadPrinterData(printer, L"MISC");
    ASSERT_EQ(99u, misc.size());
    EXPECT_EQ(expectedIndex, misc[28]);
}
