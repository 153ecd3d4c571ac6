// The diagnostic log: file name, line format, cutting, and silence when it cannot write.
#include <gtest/gtest.h>

#include <string>

#include "bench.h"
#include "oemui/log.h"

namespace {

SYSTEMTIME Time(WORD month, WORD day, WORD hour, WORD minute, WORD second)
{
    SYSTEMTIME t = {};
    t.wYear = 2026; t.wMonth = month; t.wDay = day; t.wHour = hour; t.wMinute = minute; t.wSecond = second;
    return t;
}

std::wstring FileFor(const SYSTEMTIME& t, const WCHAR* windowsDir)
{
    WCHAR path[260];
    logdetail::BuildLogDirectory(windowsDir, path);
    logdetail::AppendLogFileName(t, path);
    return path;
}

std::wstring CurrentLogFile()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    return FileFor(now, bench::WindowsDir().c_str());
}

}  // namespace

TEST(LogFormat, FileNamePerMinuteOnTheSystemDrive)
{
    EXPECT_EQ(L"C:\\temp\\QVRPOS\\QVRPOS_11151359_OEMUI.LOG", FileFor(Time(11, 15, 13, 59, 59), L"C:\\Windows"));
    EXPECT_EQ(L"C:\\temp\\QVRPOS\\QVRPOS_11151400_OEMUI.LOG", FileFor(Time(11, 15, 14, 0, 0), L"C:\\Windows"));
    EXPECT_EQ(L"D:\\temp\\QVRPOS\\QVRPOS_01050907_OEMUI.LOG", FileFor(Time(1, 5, 9, 7, 3), L"D:\\WINNT"));
}

TEST(LogFormat, LineLayout)
{
    char line[logdetail::kLineBytes];
    logdetail::FormatLogLine(Time(1, 5, 9, 7, 3), "InitDialogInfo : START", line);
    EXPECT_STREQ("01/05_09:07:03: InitDialogInfo : START \r\n", line);
}

TEST(LogFormat, OverlongLineIsCutWithoutLineEnd)
{
    std::string message(300, 'x');
    char line[logdetail::kLineBytes];
    logdetail::FormatLogLine(Time(1, 5, 9, 7, 3), message.c_str(), line);
    EXPECT_EQ(259u, strlen(line));
    EXPECT_EQ('x', line[258]);
}

class LogFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        CreateDirectoryW(L"C:\\temp", nullptr);
        bench::ClearLog();
    }
};

TEST_F(LogFile, LinesAreAppendedWithWideAndNarrowArguments)
{
    Log("GetModelName : before wszModelName = %S", L"ORLIVEX QM-101");
    Log("SetPrinterDataToReg : SetPrinterDataEx failed-1 with (%d)", 5);
    // "%ws" is the Windows spelling the compiler's format check does not know: call around it.
    void (*unchecked)(const char*, ...) = Log;
    unchecked("%s and %ws", "narrow", L"wide");
    const std::string log = bench::ReadLog();
    EXPECT_NE(std::string::npos, log.find(": GetModelName : before wszModelName = ORLIVEX QM-101 \r\n")) << log;
    EXPECT_NE(std::string::npos, log.find(": SetPrinterDataToReg : SetPrinterDataEx failed-1 with (5) \r\n"));
    EXPECT_NE(std::string::npos, log.find(": narrow and wide \r\n"));
    // Stamp of every line: "MM/DD_hh:mm:ss: ".
    ASSERT_GE(log.size(), 16u);
    EXPECT_EQ('/', log[2]);
    EXPECT_EQ('_', log[5]);
    EXPECT_EQ(':', log[8]);
    EXPECT_EQ(": ", log.substr(14, 2));
}

TEST_F(LogFile, MessageOf300CharactersIsCutTo259BytesInAll)
{
    Log("%s", std::string(300, 'm').c_str());
    const std::string log = bench::ReadLog();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(259u, log.size()) << "the line is cut at 259 bytes and has no CR LF";
    EXPECT_EQ(std::string::npos, log.find('\n'));
}

TEST_F(LogFile, LastErrorIsLeftAsTheCallerHadIt)
{
    SetLastError(1801);
    Log("x : START");
    EXPECT_EQ(1801u, GetLastError());
}

TEST_F(LogFile, WritesIntoTheFileOfTheCurrentMinute)
{
    // Retry once if the minute turned between the log call and the name.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const std::wstring before = CurrentLogFile();
        Log("LogFile : minute check");
        if (before == CurrentLogFile()) {
            EXPECT_NE(std::string::npos, bench::ReadTextFile(before).find("LogFile : minute check"));
            return;
        }
    }
    FAIL() << "minute kept changing";
}

TEST_F(LogFile, WithoutTempNothingIsWrittenAndTheCallerGoesOn)
{
    bench::ClearLog();
    RemoveDirectoryW(L"C:\\temp\\QVRPOS");
    ASSERT_TRUE(RemoveDirectoryW(L"C:\\temp")) << "C:\\temp must be empty for this test";
    SetLastError(42);
    Log("Nothing : START");
    EXPECT_EQ(42u, GetLastError());
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(L"C:\\temp")) << "\\temp is never created";
    CreateDirectoryW(L"C:\\temp", nullptr);
    EXPECT_EQ(std::string(), bench::ReadLog());
}

TEST_F(LogFile, AWriterHoldingTheFileMakesTheLineDisappear)
{
    Log("first");   // creates the file of this minute
    const std::wstring path = CurrentLogFile();
    HANDLE holder = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (holder == INVALID_HANDLE_VALUE) GTEST_SKIP() << "minute turned";
    Log("lost line");
    CloseHandle(holder);
    EXPECT_EQ(std::string::npos, bench::ReadLog().find("lost line"));
}
