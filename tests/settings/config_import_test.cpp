// Seeding a sheet's record from the configuration file in the system directory.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "bench.h"
#include "settings/config_import.h"

namespace {

std::wstring ConfigPath() { return bench::SystemDir() + L"\\QVRPOS_Config.QVR"; }

void WriteConfig(const std::string& bytes)
{
    DeleteFileW(ConfigPath().c_str());
    ASSERT_TRUE(bench::WriteTextFile(ConfigPath(), bytes));
}

std::vector<BYTE> Defaults()
{
    std::vector<BYTE> d(99, 0);
    for (int i : { 2, 4, 7, 9, 11, 13 }) d[i] = 25;
    for (int i : { 5, 19, 20, 36 }) d[i] = 1;
    d[35] = 10;
    d[53] = 128;
    return d;
}

// A record as a sheet has it before seeding: everything but the preferences holds data that
// seeding must not touch.
std::unique_ptr<DIALOGINFO> DirtyRecord()
{
    std::unique_ptr<DIALOGINFO> r(new DIALOGINFO());
    memset(r.get(), 0xAB, sizeof *r);
    return r;
}

void ExpectOnlyPreferencesChanged(const DIALOGINFO& r)
{
    const BYTE* p = reinterpret_cast<const BYTE*>(&r);
    for (size_t i = 99; i < sizeof r; ++i)
        if (p[i] != 0xAB) {
            ADD_FAILURE() << "byte " << i << " of the record changed";
            return;
        }
}

class InitDialogInfoTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        CreateDirectoryW(L"C:\\temp", nullptr);   // the log's parent folder
        DeleteFileW(ConfigPath().c_str());
        bench::ClearLog();
    }
    void TearDown() override { DeleteFileW(ConfigPath().c_str()); }
};

}  // namespace

TEST_F(InitDialogInfoTest, WithoutFileLeavesTheDefaults)
{
    auto r = DirtyRecord();
    InitDialogInfo(r.get());
    EXPECT_EQ(Defaults(), std::vector<BYTE>(r->byteValue, r->byteValue + 99));
    ExpectOnlyPreferencesChanged(*r);
    const std::string log = bench::ReadLog();
    EXPECT_NE(std::string::npos, log.find("InitDialogInfo : START"));
    EXPECT_NE(std::string::npos, log.find("InitDialogInfo : END"));
    EXPECT_EQ(std::string::npos, log.find("PREFERENCE[")) << "nothing is read without the file";
}

TEST_F(InitDialogInfoTest, FileValuesOverTheDefaults)
{
    WriteConfig("; factory settings\r\n[OTHER]\r\nPREFERENCE[0]=77\r\n[QVRPOS]\r\n"
                "PREFERENCE[0]=3\r\n"
                "preference[1]=1\r\n"            // keys match without regard to case
                "PREFERENCE[7]=\r\n"             // empty: the default stays
                "PREFERENCE[9]=300\r\n"
                "PREFERENCE[11]=-1\r\n"
                "PREFERENCE[13]=text\r\n"
                "PREFERENCE[35]=\"12\"\r\n"      // quotes are removed by the reader
                "PREFERENCE[53]=  200  \r\n"
                "PREFERENCE[98]=9\r\n"
                "PREFERENCE[99]=5\r\n");         // beyond the record: never read
    auto r = DirtyRecord();
    InitDialogInfo(r.get());
    std::vector<BYTE> expected = Defaults();
    expected[0] = 3; expected[1] = 1; expected[9] = 44; expected[11] = 255; expected[13] = 0;
    expected[35] = 12; expected[53] = 200; expected[98] = 9;
    EXPECT_EQ(expected, std::vector<BYTE>(r->byteValue, r->byteValue + 99));
    ExpectOnlyPreferencesChanged(*r);
    EXPECT_TRUE(bench::LogContains("InitDialogInfo : lpdi->byteValue[9] = 44"));
    EXPECT_TRUE(bench::LogContains("InitDialogInfo : PREFERENCE[7], GetPrivateProfileString failed with"));
    EXPECT_TRUE(bench::LogContains("InitDialogInfo : PREFERENCE[2], GetPrivateProfileString failed with"));
}

TEST_F(InitDialogInfoTest, NullRecord)
{
    InitDialogInfo(nullptr);
    const std::string log = bench::ReadLog();
    const size_t start = log.find("InitDialogInfo : START");
    const size_t null = log.find("InitDialogInfo : lpdi is NULL");
    const size_t end = log.find("InitDialogInfo : END");
    ASSERT_NE(std::string::npos, end);
    EXPECT_LT(start, null);
    EXPECT_LT(null, end);
}

TEST_F(InitDialogInfoTest, HostileFiles)
{
    std::string garbage;
    unsigned seed = 99;
    for (int i = 0; i < 30000; ++i) {
        seed = seed * 1664525u + 1013904223u;
        garbage.push_back(static_cast<char>(seed >> 24));
    }
    const std::string digits(10000, '7');
    BYTE sevens = 0;    // the low byte of 254 sevens, the most the 255-character buffer holds
    for (int i = 0; i < 254; ++i) sevens = static_cast<BYTE>(sevens * 10 + 7);
    const struct { const char* name; std::string bytes; int index; BYTE expected; } rows[] = {
        { "binary garbage", garbage, 0, 0 },
        { "garbage after the heading", "[QVRPOS]\r\n" + garbage, 0, 0 },
        { "value longer than the buffer", "[QVRPOS]\r\nPREFERENCE[4]=" + digits + "\r\n", 4, sevens },
        { "key longer than any buffer", "[QVRPOS]\r\n" + std::string(5000, 'K') + "=1\r\nPREFERENCE[4]=6\r\n", 4, 6 },
        { "no line ends", "[QVRPOS]PREFERENCE[4]=6", 4, 25 },
        { "NUL bytes", std::string("[QVRPOS]\r\nPREFERENCE[4]=6\0\0\0\r\n", 27), 4, 6 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WriteConfig(row.bytes);
        auto r = DirtyRecord();
        InitDialogInfo(r.get());
        ExpectOnlyPreferencesChanged(*r);
        if (row.index > 0 || row.expected != 0) EXPECT_EQ(row.expected, r->byteValue[row.index]);
        EXPECT_EQ(1, r->byteValue[19]) << "untouched defaults stay";
    }
}

TEST(PreferenceByte, Conversion)
{
    const struct { const WCHAR* text; BYTE expected; } rows[] = {
        { L"300", 44 }, { L"-1", 255 }, { L"", 0 }, { L"text", 0 }, { L" \t 12abc", 12 }, { L"+7", 7 },
        { L"0x10", 0 }, { L"256", 0 }, { L"-256", 0 }, { L"255", 255 }, { L"- 5", 0 }, { L"--5", 0 },
        { L"4294967296", 0 }, { L"4294967297", 1 }, { L"18446744073709551617", 1 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text, row.text + lstrlenW(row.text)));
        EXPECT_EQ(row.expected, configdetail::PreferenceByte(row.text));
    }
}
