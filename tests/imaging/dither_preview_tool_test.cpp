// dither-preview run as a child process on the pictures in data/: its output must be what the
// per-pixel rules make of the same file, and bad input must end in one line and a failure code.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bmpfile.h"
#include "imaging/ximage.h"
#include "reference_rules.h"
#include "test_images.h"

namespace {

// Paths from the build machine reach Wine programs through drive Z:.
std::wstring HostPath(const char* path)
{
    std::wstring w;
    if (path[0] == '/') w = L"Z:";
    for (const char* p = path; *p; p++) w += *p == '/' ? L'\\' : static_cast<wchar_t>(*p);
    return w;
}

std::string Narrow(const std::wstring& w)
{
    std::string s;
    for (wchar_t c : w) s += static_cast<char>(c);
    return s;
}

std::wstring TempDir()
{
    wchar_t buf[MAX_PATH];
    GetTempPathW(MAX_PATH, buf);
    std::wstring dir = std::wstring(buf) + L"dither-preview-test\\";
    CreateDirectoryW(dir.c_str(), nullptr);
    return dir;
}

struct ToolRun {
    DWORD exitCode = 0xFFFFFFFF;
    std::string stderrText;
};

ToolRun RunTool(const std::wstring& args)
{
    ToolRun run;
    SECURITY_ATTRIBUTES sa = {sizeof sa, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &sa, 0)) return run;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW si = {};
    si.cb = sizeof si;
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdError = writeEnd;
    si.hStdOutput = writeEnd;
    si.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION pi = {};
    const std::wstring exe = HostPath(QVR_DITHER_PREVIEW_EXE);
    std::wstring cmd = L"\"" + exe + L"\" " + args;
    std::vector<wchar_t> line(cmd.begin(), cmd.end());
    line.push_back(0);
    const BOOL started = CreateProcessW(exe.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &si, &pi);
    CloseHandle(writeEnd);
    if (started) {
        char buf[4096];
        DWORD n;
        while (ReadFile(readEnd, buf, sizeof buf, &n, nullptr) && n > 0) run.stderrText.append(buf, n);
        WaitForSingleObject(pi.hProcess, 60000);
        GetExitCodeProcess(pi.hProcess, &run.exitCode);
        CloseHandle(pi.hProcess);
        CloseHandle(pi.hThread);
    }
    CloseHandle(readEnd);
    return run;
}

std::vector<uint8_t> ReadAll(const std::wstring& path)
{
    std::vector<uint8_t> data;
    FILE* f = _wfopen(path.c_str(), L"rb");
    if (f == nullptr) return data;
    uint8_t buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0) data.insert(data.end(), buf, buf + n);
    fclose(f);
    return data;
}

void WriteAll(const std::wstring& path, const std::vector<uint8_t>& data)
{
    FILE* f = _wfopen(path.c_str(), L"wb");
    ASSERT_NE(nullptr, f);
    fwrite(data.data(), 1, data.size(), f);
    fclose(f);
}

std::vector<std::wstring> Pictures()
{
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW fd;
    HANDLE h = FindFirstFileW((HostPath(QVR_IMAGING_DATA_DIR) + L"\\*.bmp").c_str(), &fd);
    if (h == INVALID_HANDLE_VALUE) return names;
    do names.push_back(fd.cFileName);
    while (FindNextFileW(h, &fd));
    FindClose(h);
    return names;
}

struct Setting {
    int brightness;
    int method;
    bool greyscale;
};

TEST(DitherPreviewTool, OutputOfEveryMethodMatchesTheRulesOnRealPictures)
{
    const std::vector<std::wstring> pictures = Pictures();
    ASSERT_GE(pictures.size(), 10u);
    const Setting settings[] = {
        {10, 0, false}, {10, 1, false}, {10, 2, false},  {10, 3, false}, {10, 4, false},
        {10, 5, false}, {10, 255, false}, {0, 1, false}, {20, 1, false}, {0, 0, false},
        {20, 4, false}, {3, 7, false},  {0, 1, true},    {20, 1, true},  {10, 1, true},
    };
    const std::wstring out = TempDir() + L"out.bmp";
    for (const std::wstring& name : pictures) {
        const std::wstring input = HostPath(QVR_IMAGING_DATA_DIR) + L"\\" + name;
        const std::vector<uint8_t> file = ReadAll(input);
        bmpfile::Layout layout;
        std::string error;
        ASSERT_TRUE(bmpfile::Check(file, &layout, &error)) << Narrow(name) << ": " << error;
        for (const Setting& s : settings) {
            SCOPED_TRACE(testing::Message() << Narrow(name) << ", brightness " << s.brightness << ", method " << s.method
                                            << (s.greyscale ? ", greyscale" : ""));
            DeleteFileW(out.c_str());
            std::wstring args = L"--brightness " + std::to_wstring(s.brightness) + L" --method " +
                                std::to_wstring(s.method) + (s.greyscale ? L" --greyscale" : L"") + L" \"" +
                                input + L"\" \"" + out + L"\"";
            const ToolRun run = RunTool(args);
            ASSERT_EQ(0u, run.exitCode) << run.stderrText;
            EXPECT_EQ("", run.stderrText);

            CxImage expected;
            ASSERT_TRUE(bmpfile::Decode(file, layout, expected));
            reference::Preview(expected, s.brightness, s.method, s.greyscale);

            const std::vector<uint8_t> result = ReadAll(out);
            bmpfile::Layout got;
            ASSERT_TRUE(bmpfile::Check(result, &got, &error)) << error;
            ASSERT_EQ(14 + expected.GetDIBSize(), result.size());
            EXPECT_EQ(0, memcmp(result.data() + 14, expected.GetDIB(), sizeof(BITMAPINFOHEADER)))
                << "header of the written DIB block";
            CxImage actual;
            ASSERT_TRUE(bmpfile::Decode(result, got, actual));
            actual.SetClrImportant(expected.GetClrImportant());
            ASSERT_TRUE(testimg::SameImage(expected, actual));
        }
    }
}

TEST(DitherPreviewTool, DefaultsAreBrightnessTenAndErrorDiffusion)
{
    const std::wstring input = HostPath(QVR_IMAGING_DATA_DIR) + L"\\photo97x61_24.bmp";
    const std::wstring a = TempDir() + L"defaults.bmp", b = TempDir() + L"explicit.bmp";
    ASSERT_EQ(0u, RunTool(L"\"" + input + L"\" \"" + a + L"\"").exitCode);
    ASSERT_EQ(0u, RunTool(L"--method 1 \"" + input + L"\" --brightness 10 \"" + b + L"\"").exitCode);
    const std::vector<uint8_t> da = ReadAll(a), db = ReadAll(b);
    ASSERT_FALSE(da.empty());
    EXPECT_EQ(da, db);
}

std::vector<uint8_t> GoodFile()
{
    return ReadAll(HostPath(QVR_IMAGING_DATA_DIR) + L"\\text121x40_8grey.bmp");
}

void Put32(std::vector<uint8_t>& f, size_t at, uint32_t v) { memcpy(f.data() + at, &v, 4); }

TEST(DitherPreviewTool, BadInputGetsOneLineAndAFailureCode)
{
    const std::wstring dir = TempDir();
    const std::wstring out = dir + L"never.bmp";
    struct Bad {
        const char* what;
        std::vector<uint8_t> bytes;
    };
    std::vector<Bad> bad;
    bad.push_back({"empty file", {}});
    bad.push_back({"text file", std::vector<uint8_t>{'h', 'e', 'l', 'l', 'o', '\n'}});
    std::vector<uint8_t> f = GoodFile();
    ASSERT_GT(f.size(), 1000u);
    bad.push_back({"truncated pixels", std::vector<uint8_t>(f.begin(), f.end() - 100)});
    bad.push_back({"truncated header", std::vector<uint8_t>(f.begin(), f.begin() + 30)});
    bad.push_back({"truncated palette", std::vector<uint8_t>(f.begin(), f.begin() + 300)});
    std::vector<uint8_t> g = f;
    Put32(g, 30, 1);  // BI_RLE8
    bad.push_back({"compressed", g});
    g = f;
    Put32(g, 18, 0);
    bad.push_back({"zero width", g});
    g = f;
    Put32(g, 22, 0);
    bad.push_back({"zero height", g});
    g = f;
    Put32(g, 18, 100000);
    Put32(g, 22, 100000);
    bad.push_back({"enormous", g});
    g = f;
    Put32(g, 18, 0x80000000u);
    bad.push_back({"negative width", g});
    g = f;
    Put32(g, 22, 0x80000000u);
    bad.push_back({"most negative height", g});
    g = f;
    g[28] = 16;
    bad.push_back({"16-bit", g});
    g = f;
    Put32(g, 10, 0xFFFFFFF0u);
    bad.push_back({"pixel offset past the end", g});
    g = f;
    Put32(g, 46, 100000);
    bad.push_back({"palette too large", g});

    for (size_t i = 0; i < bad.size(); i++) {
        SCOPED_TRACE(bad[i].what);
        const std::wstring input = dir + L"bad" + std::to_wstring(i) + L".bmp";
        WriteAll(input, bad[i].bytes);
        DeleteFileW(out.c_str());
        const ToolRun run = RunTool(L"\"" + input + L"\" \"" + out + L"\"");
        EXPECT_NE(0u, run.exitCode);
        EXPECT_NE(STATUS_ACCESS_VIOLATION, run.exitCode);
        EXPECT_EQ(0u, run.stderrText.rfind("dither-preview: ", 0)) << run.stderrText;
        EXPECT_EQ(1, std::count(run.stderrText.begin(), run.stderrText.end(), '\n')) << run.stderrText;
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(out.c_str()));
    }

    const std::wstring good = L"\"" + HostPath(QVR_IMAGING_DATA_DIR) + L"\\text121x40_8grey.bmp\"";
    const std::wstring badArgs[] = {
        L"--brightness 21 " + good + L" \"" + out + L"\"",
        L"--brightness -1 " + good + L" \"" + out + L"\"",
        L"--method 256 " + good + L" \"" + out + L"\"",
        L"--method x " + good + L" \"" + out + L"\"",
        L"--method " + good + L" \"" + out + L"\"",
        L"--sharpen " + good + L" \"" + out + L"\"",
        good,
        L"",
        L"\"" + dir + L"missing.bmp\" \"" + out + L"\"",
    };
    for (const std::wstring& args : badArgs) {
        SCOPED_TRACE(Narrow(args));
        DeleteFileW(out.c_str());
        const ToolRun run = RunTool(args);
        EXPECT_NE(0u, run.exitCode);
        EXPECT_EQ(0u, run.stderrText.rfind("dither-preview: ", 0)) << run.stderrText;
        EXPECT_EQ(1, std::count(run.stderrText.begin(), run.stderrText.end(), '\n')) << run.stderrText;
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(out.c_str()));
    }
}

}  // namespace
