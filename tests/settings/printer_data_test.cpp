// Printer data access as the pages and the event handlers use it, against Wine's spooler; the
// faults Wine cannot produce come from stand-ins in this program's import table.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bench.h"
#include "oemui/log.h"
#include "settings/printer_data.h"
#include "spooler_faults.h"

namespace {

const std::wstring kProperties = L"PrinterDriverData\\Properties";
const std::wstring kClient = L"PrinterDriverData\\PropertiesClient";

std::string Narrow(const std::wstring& w) { return std::string(w.begin(), w.end()); }

// A record as a sheet holds it: the printer's name and a handle opened by it.
struct Sheet {
    std::unique_ptr<DIALOGINFO> record{ new DIALOGINFO() };
    explicit Sheet(const std::wstring& printer)
    {
        lstrcpynW(record->printerName, printer.c_str(), ARRAYSIZE(record->printerName));
        PRINTER_DEFAULTSW readOnly = { nullptr, nullptr, PRINTER_ACCESS_USE };
        OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &record->hPrinter, &readOnly);
    }
    ~Sheet()
    {
        if (record->hPrinter) ClosePrinter(record->hPrinter);
    }
    HANDLE handle() const { return record->hPrinter; }
};

class PrinterData : public ::testing::Test {
protected:
    static void SetUpTestSuite() { spooler_faults::Install(GetModuleHandleW(nullptr)); }
    void SetUp() override
    {
        spooler_faults::Reset();
        bench::ClearLog();
        printer_ = bench::NewTestPrinter(L"data");
        ASSERT_FALSE(printer_.empty());
    }
    void TearDown() override
    {
        spooler_faults::Reset();
    }
    std::wstring printer_;
};

}  // namespace

TEST_F(PrinterData, WriteAndReadBack)
{
    Sheet sheet(printer_);
    BYTE misc[99];
    for (int i = 0; i < 99; ++i) misc[i] = static_cast<BYTE>(i * 3);
    EXPECT_EQ(ERROR_SUCCESS, SetPrinterDataToReg(sheet.handle(), L"MISC", REG_BINARY, misc, sizeof misc, sheet.record.get()));
    DWORD type = 0;
    EXPECT_EQ(std::vector<BYTE>(misc, misc + 99), bench::ReadPrinterData(printer_, L"MISC", &type));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), type);

    BYTE back[99] = {};
    DWORD needed = 0;
    type = 0;
    EXPECT_EQ(ERROR_SUCCESS, GetPrinterDataFromReg(sheet.handle(), L"MISC", &type, back, sizeof back, &needed));
    EXPECT_EQ(99u, needed);
    EXPECT_EQ(0, memcmp(misc, back, 99));
    EXPECT_EQ(ERROR_SUCCESS, GetPrinterDataFromReg(sheet.handle(), L"MISC", nullptr, back, sizeof back, &needed))
        << "the type may be left out";
    EXPECT_EQ("", bench::ReadLog()) << "success logs nothing";
}

TEST_F(PrinterData, FailedReadsAreLoggedWithTheValueName)
{
    Sheet sheet(printer_);
    const std::vector<BYTE> big(500, 0x11);
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, kProperties, L"MISC", REG_BINARY, big.data(), 500));
    BYTE misc[99];
    memset(misc, 0x5A, sizeof misc);
    DWORD needed = 0;
    EXPECT_EQ(static_cast<DWORD>(ERROR_MORE_DATA), GetPrinterDataFromReg(sheet.handle(), L"MISC", nullptr, misc, 99, &needed));
    EXPECT_EQ(500u, needed);
    EXPECT_TRUE(bench::LogContains("GetPrinterDataFromReg : GetPrinterDataEx failed with 234 (MISC)"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND),
              GetPrinterDataFromReg(sheet.handle(), L"StartDoc", nullptr, misc, 99, &needed));
    EXPECT_TRUE(bench::LogContains("GetPrinterDataFromReg : GetPrinterDataEx failed with 2 (StartDoc)"));
    EXPECT_NE(static_cast<DWORD>(ERROR_SUCCESS), GetPrinterDataFromReg(nullptr, L"MISC", nullptr, misc, 99, &needed));
}

TEST_F(PrinterData, KeyFollowsTheConnection)
{
    const struct { const char* name; const WCHAR* server; const WCHAR* value; const std::wstring* key; } rows[] = {
        { "local MISC", L"", L"MISC", &kProperties },
        { "local ClientCount", L"", L"ClientCount", &kProperties },
        { "connection MISC", L"\\\\POSSERVER", L"MISC", &kClient },
        { "connection StartDoc", L"\\\\POSSERVER", L"StartDoc", &kClient },
        { "connection ClientCount", L"\\\\POSSERVER", L"ClientCount", &kProperties },
        { "connection clientcount", L"\\\\POSSERVER", L"clientcount", &kClient },   // exact comparison
    };
    int serial = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::wstring printer = bench::NewTestPrinter(L"key");
        ASSERT_FALSE(printer.empty());
        Sheet sheet(printer);
        spooler_faults::ReportServerName(row.server);
        const DWORD value = 1000 + ++serial;
        EXPECT_EQ(ERROR_SUCCESS, SetPrinterDataToReg(sheet.handle(), row.value, REG_DWORD,
                                                     reinterpret_cast<const BYTE*>(&value), sizeof value, nullptr));
        DWORD readBack = 0, needed = 0;
        EXPECT_EQ(ERROR_SUCCESS, GetPrinterDataFromReg(sheet.handle(), row.value, nullptr,
                                                       reinterpret_cast<BYTE*>(&readBack), sizeof readBack, &needed));
        EXPECT_EQ(value, readBack);
        spooler_faults::ReportServerName(L"");
        EXPECT_EQ(sizeof(DWORD), bench::ReadPrinterData(printer, row.value, nullptr, nullptr, *row.key).size());
        const std::wstring& other = row.key == &kClient ? kProperties : kClient;
        EXPECT_TRUE(bench::ReadPrinterData(printer, row.value, nullptr, nullptr, other).empty());
        EXPECT_EQ(L"PrinterDriverData\\" + std::wstring(row.key == &kClient ? L"PropertiesClient" : L"Properties"),
                  std::wstring(PropertiesKeyPath));
    }
}

TEST_F(PrinterData, RefusedWriteIsRetriedThroughTheName)
{
    Sheet sheet(printer_);
    const BYTE data[] = { 1, 2, 3 };
    spooler_faults::Reset();
    spooler_faults::FailSetPrinterData(1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(ERROR_SUCCESS, SetPrinterDataToReg(sheet.handle(), L"StartDoc", REG_BINARY, data, 3, sheet.record.get()));
    EXPECT_EQ(1, spooler_faults::OpenedHandles());
    EXPECT_EQ(1, spooler_faults::ClosedHandles()) << "the reopened handle is closed again";
    EXPECT_EQ(std::vector<BYTE>(data, data + 3), bench::ReadPrinterData(printer_, L"StartDoc"));
    EXPECT_TRUE(bench::LogContains("SetPrinterDataToReg : SetPrinterDataEx failed-1 with (5)"));
    EXPECT_TRUE(bench::LogContains("SetPrinterDataToReg : SetPrinterDataEx succeeded"));
    EXPECT_EQ(2u, spooler_faults::DataWrites().size());
}

TEST_F(PrinterData, RetryOutcomes)
{
    const BYTE data[] = { 9, 8 };
    const struct {
        const char* name;
        bool record;
        int writeFailures;
        bool openFails;
        DWORD expected;
        size_t writes;
        const char* line;
    } rows[] = {
        { "no record: no retry", false, 1, false, ERROR_ACCESS_DENIED, 1, "SetPrinterDataToReg : SetPrinterDataEx failed-1 with (5)" },
        { "reopen fails", true, 1, true, ERROR_ACCESS_DENIED, 1, "SetPrinterDataToReg : OpenPrinter failed-2 with (1801)" },
        { "second write fails", true, 2, false, ERROR_ACCESS_DENIED, 2, "SetPrinterDataToReg : SetPrinterDataEx failed-2 with (5)" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        bench::ClearLog();
        const std::wstring printer = bench::NewTestPrinter(L"retry");
        ASSERT_FALSE(printer.empty());
        Sheet sheet(printer);
        spooler_faults::Reset();
        spooler_faults::FailSetPrinterData(row.writeFailures, ERROR_ACCESS_DENIED);
        if (row.openFails) spooler_faults::FailOpenPrinter(0, 1, ERROR_INVALID_PRINTER_NAME);
        EXPECT_EQ(row.expected, SetPrinterDataToReg(sheet.handle(), L"EndDoc", REG_BINARY, data, sizeof data,
                                                    row.record ? sheet.record.get() : nullptr));
        EXPECT_EQ(row.writes, spooler_faults::DataWrites().size());
        EXPECT_TRUE(bench::LogContains(row.line));
        EXPECT_FALSE(bench::LogContains("SetPrinterDataToReg : SetPrinterDataEx succeeded"));
        EXPECT_TRUE(bench::ReadPrinterData(printer, L"EndDoc").empty()) << "nothing stored";
        EXPECT_EQ(spooler_faults::OpenedHandles(), spooler_faults::ClosedHandles());
    }
}

TEST_F(PrinterData, RetryWithoutAPrinterName)
{
    Sheet sheet(printer_);
    sheet.record->printerName[0] = L'\0';
    const BYTE data[] = { 1 };
    spooler_faults::FailSetPrinterData(1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED),
              SetPrinterDataToReg(sheet.handle(), L"EndDoc", REG_BINARY, data, 1, sheet.record.get()));
    EXPECT_TRUE(bench::LogContains("SetPrinterDataToReg : OpenPrinter failed-2 with (1801)"));
}

namespace {

struct Lookup {
    BOOL ok;
    std::wstring text;
    DWORD length;
};

using LookupFn = BOOL (*)(const DIALOGINFO*, DriverText&, DWORD*);

Lookup CallLookup(LookupFn fn, const DIALOGINFO* record)
{
    WCHAR buffer[260];
    wmemset(buffer, L'#', 260);
    buffer[259] = L'\0';
    DWORD length = 1234;
    const BOOL ok = fn(record, buffer, &length);
    return { ok, ok ? std::wstring(buffer) : std::wstring(), length };
}

std::wstring Multi(const std::wstring& first) { return first + L'\0' + L"Second" + L'\0' + L'\0'; }

}  // namespace

TEST_F(PrinterData, ModelName)
{
    const struct { const WCHAR* model; const WCHAR* expected; } rows[] = {
        { L"ORLIVEX QM-101", L"QM-101" },
        { L"ORLIVEX", L"(null)" },
        { L"", L"(null)" },
        { L"   ORLIVEX    QM-143   extra", L"QM-143" },
        { L"ORLIVEX\tQM-1", L"(null)" },          // only blanks separate
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Narrow(row.model));
        bench::ClearLog();
        ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"PrinterDriverData", L"Model", REG_SZ, row.model,
                                                         (lstrlenW(row.model) + 1) * sizeof(WCHAR)));
        Sheet sheet(printer_);
        const Lookup got = CallLookup(GetModelName, sheet.record.get());
        EXPECT_TRUE(got.ok);
        EXPECT_EQ(std::wstring(row.expected), got.text);
        EXPECT_EQ(static_cast<DWORD>(lstrlenW(row.expected)), got.length);
        EXPECT_TRUE(bench::LogContains("GetModelName : before wszModelName = " + Narrow(row.model) + " \r\n"));
        EXPECT_TRUE(bench::LogContains("GetModelName : after wszModelName = " + Narrow(row.expected) + " \r\n"));
        EXPECT_TRUE(bench::LogContains("GetModelName : END"));
    }
}

TEST_F(PrinterData, FormTexts)
{
    const struct { const WCHAR* media; const WCHAR* id; const WCHAR* name; } rows[] = {
        { L"Roll 80 x 297 mm[R80]", L"[R80]", L"Roll 80 x 297 mm" },
        { L"Roll 80", L"[(null)", L"Roll 80" },
        { L"[R80]", L"[(null)", L"R80]" },
        { L"A[B[C", L"[B", L"A" },
        { L"Roll[[R58]]", L"[R58]]", L"Roll" },
        { L"", L"[(null)", L"(null)" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Narrow(row.media));
        const std::wstring multi = Multi(row.media);
        ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"DsDriver", L"printMediaReady", REG_MULTI_SZ,
                                                         multi.data(), multi.size() * sizeof(WCHAR)));
        Sheet sheet(printer_);
        bench::ClearLog();
        const Lookup id = CallLookup(GetFormID, sheet.record.get());
        EXPECT_TRUE(id.ok);
        EXPECT_EQ(std::wstring(row.id), id.text);
        EXPECT_EQ(static_cast<DWORD>(lstrlenW(row.id)), id.length);
        EXPECT_TRUE(bench::LogContains("GetFormID : before wszFormId = " + Narrow(row.media) + " \r\n"));
        EXPECT_TRUE(bench::LogContains("GetFormID : after wszFormId = " + Narrow(row.id) + " \r\n"));
        const Lookup name = CallLookup(GetFormDefaultWidthHeight, sheet.record.get());
        EXPECT_TRUE(name.ok);
        EXPECT_EQ(std::wstring(row.name), name.text);
        EXPECT_TRUE(bench::LogContains("GetFormDefaultWidthHeight : before wszForm = " + Narrow(row.media)));
        EXPECT_TRUE(bench::LogContains("GetFormDefaultWidthHeight : after wszForm = " + Narrow(row.name) + " \r\n"));
    }
}

TEST_F(PrinterData, LookupFailures)
{
    const struct { const char* name; LookupFn fn; const char* nullLine; const char* failLine; const char* endLine; } fns[] = {
        { "GetModelName", GetModelName, "GetModelName : LPDI is null.", "GetModelName : GetPrinterDataEx failed.",
          "GetModelName : END" },
        { "GetFormID", GetFormID, "GetFormID : LPDI is null.", "GetFormID : GetPrinterDataEx failed.", "GetFormID : END" },
        { "GetFormDefaultWidthHeight", GetFormDefaultWidthHeight, "GetFormDefaultWidthHeight : LPDI is null.",
          "GetFormDefaultWidthHeight : GetPrinterDataEx failed.", "GetFormDefaultWidthHeight : END" },
    };
    // A printer whose driver published neither value, and one whose values are longer than 520 bytes.
    const std::wstring bare = bench::NewTestPrinter(L"bare", L"", L"");
    const std::wstring longer = bench::NewTestPrinter(L"long", L"ORLIVEX " + std::wstring(300, L'M'),
                                                      std::wstring(300, L'R') + L"[R80]");
    ASSERT_FALSE(bare.empty());
    ASSERT_FALSE(longer.empty());
    for (const auto& fn : fns) {
        SCOPED_TRACE(fn.name);
        bench::ClearLog();
        const Lookup none = CallLookup(fn.fn, nullptr);
        EXPECT_FALSE(none.ok);
        EXPECT_EQ(0u, none.length);
        EXPECT_TRUE(bench::LogContains(fn.nullLine));
        EXPECT_TRUE(bench::LogContains(fn.endLine));
        for (const std::wstring* printer : { &bare, &longer }) {
            bench::ClearLog();
            Sheet sheet(*printer);
            const Lookup got = CallLookup(fn.fn, sheet.record.get());
            EXPECT_FALSE(got.ok);
            EXPECT_EQ(0u, got.length);
            EXPECT_TRUE(bench::LogContains(fn.failLine));
            // A failed read returns right after its failure line, without the END line.
            EXPECT_FALSE(bench::LogContains(fn.endLine)) << bench::ReadLog();
        }
    }
}

TEST_F(PrinterData, OddlyStoredDriverTexts)
{
    // No terminator, an odd byte count, another type: the text still ends inside the buffer.
    const WCHAR text[] = { L'O', L'R', L' ', L'Q', L'M', L'-', L'1', L'4', L'3' };
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"PrinterDriverData", L"Model", REG_BINARY, text, sizeof text));
    Sheet sheet(printer_);
    EXPECT_EQ(L"QM-143", CallLookup(GetModelName, sheet.record.get()).text);
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"PrinterDriverData", L"Model", REG_SZ, text, sizeof text - 1));
    EXPECT_EQ(L"QM-14", CallLookup(GetModelName, sheet.record.get()).text.substr(0, 5));
    const DWORD number = 0x00410041;
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"PrinterDriverData", L"Model", REG_DWORD, &number, 4));
    EXPECT_EQ(L"(null)", CallLookup(GetModelName, sheet.record.get()).text);
    // Exactly 520 bytes without a terminator: all 260 characters are read, the result still ends.
    std::wstring full = L"ORLIVEX " + std::wstring(252, L'Z');
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer_, L"PrinterDriverData", L"Model", REG_BINARY, full.data(), 520));
    const Lookup got = CallLookup(GetModelName, sheet.record.get());
    EXPECT_TRUE(got.ok);
    EXPECT_EQ(std::wstring(252, L'Z'), got.text);
}
