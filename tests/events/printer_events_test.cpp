// Printer and driver events as the spooler delivers them through the driver core: what a new
// queue looks like afterwards, and what an attribute change puts back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "event_bench.h"

using namespace events_bench;

namespace {

DWORD DwordValue(const std::wstring& printer, const std::wstring& name, DWORD* type)
{
    DWORD status = 0;
    std::vector<BYTE> v = Data(printer, name, &status, type);
    if (status != ERROR_SUCCESS || v.size() != sizeof(DWORD)) return 0xFFFFFFFF;
    return *reinterpret_cast<const DWORD*>(v.data());
}

std::string Preferences(std::initializer_list<std::pair<int, const char*>> values)
{
    std::string body;
    for (const auto& v : values) body += "PREFERENCE[" + std::to_string(v.first) + "]=" + v.second + "\r\n";
    return body;
}

const char kFullConfig[] =
    "PREFERENCE[0]=3\r\n"
    "PREFERENCE[2]=50\r\n"
    "PREFERENCE[5]=2\r\n"
    "PREFERENCE[19]=1\r\n"
    "PREFERENCE[28]=3\r\n"
    "PREFERENCE[35]=10\r\n"
    "PREFERENCE[53]=128\r\n"
    "PREFERENCE[98]=7\r\n"
    "START_DOCUMENT_CMD=<1B 40>\r\n"
    "START_PAGE_CMD=<1b 61 01>\r\n"
    "END_PAGE_CMD=<1D 56 41 00>\r\n"
    "END_DOCUMENT_CMD=AB<0A>\r\n"
    "1D_BARCODE[1]=<01 02 03 04 05>\r\n"
    "1D_BARCODE[13]=<0D 03 32 00 01>\r\n"
    "2D_BARCODE[2]=<11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F 20 21 22 23 24>\r\n";

}  // namespace

class Initialize : public EventTest {};

TEST_F(Initialize, TurnsANewQueueIntoAPosQueue)
{
    const std::wstring printer = bench::NewTestPrinter(L"init");
    ASSERT_FALSE(printer.empty());
    ASSERT_TRUE(SetQueueAttributes(printer, PRINTER_ATTRIBUTE_SHARED | PRINTER_ATTRIBUTE_QUEUED | PRINTER_ATTRIBUTE_LOCAL));
    WriteConfig(kFullConfig);
    WritePaperFile(L"QM-101", "Paper name,Width,Height\r\nReceipt 58,58,210\r\nTicket,80,297\r\n");

    EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));

    // The queue: exactly raw-only (shared and queued are gone), served by the driver's processor.
    const auto writes = spooler_faults::QueueWrites();
    ASSERT_EQ(1u, writes.size());
    EXPECT_EQ(static_cast<DWORD>(PRINTER_ATTRIBUTE_RAW_ONLY), writes[0].attributes);
    EXPECT_EQ(L"ORLIVEX POS PRINT PROCESSOR", writes[0].printProcessor);
    EXPECT_EQ(L"RAW", writes[0].datatype) << "the data type is left alone";
    const Queue q = ReadQueue(printer);
    ASSERT_TRUE(q.read);
    EXPECT_EQ(0x00001000u, q.attributes);
    EXPECT_EQ(L"ORLIVEX POS PRINT PROCESSOR", q.printProcessor);

    // The version stamp.
    const struct { const WCHAR* name; DWORD value; } versions[] = {
        { L"MajorVersion", 5 }, { L"MinorVersion", 2 }, { L"BuildVersion", 1 }, { L"ExtraVersion", 0 } };
    for (const auto& v : versions) {
        SCOPED_TRACE(testing::Message() << "value " << std::string(v.name, v.name + lstrlenW(v.name)));
        DWORD type = 0;
        EXPECT_EQ(v.value, DwordValue(printer, v.name, &type));
        EXPECT_EQ(static_cast<DWORD>(REG_DWORD), type);
    }

    // The preferences: the file's values, zero where it says nothing, the language from the system.
    DWORD type = 0, status = 0;
    const std::vector<BYTE> misc = Data(printer, L"MISC", &status, &type);
    ASSERT_EQ(ERROR_SUCCESS, status);
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), type);
    ASSERT_EQ(99u, misc.size());
    std::vector<BYTE> expected(99, 0);
    expected[0] = 3; expected[2] = 50; expected[5] = 2; expected[19] = 1; expected[35] = 10;
    expected[53] = 128; expected[98] = 7;
    expected[28] = 0;     // the test process runs with an English user language
    EXPECT_EQ(expected, misc);

    // The four commands.
    EXPECT_EQ(Bytes({ 0x1B, 0x40 }), Data(printer, L"StartDoc"));
    EXPECT_EQ(Bytes({ 0x1B, 0x61, 0x01 }), Data(printer, L"StartPage"));
    EXPECT_EQ(Bytes({ 0x1D, 0x56, 0x41, 0x00 }), Data(printer, L"EndPage"));
    EXPECT_EQ(Bytes({ 'A', 'B', 0x0A }), Data(printer, L"EndDoc"));

    // Both barcode tables: the file's entries over the defaults.
    std::vector<BYTE> barcodeInfo;
    for (int k = 0; k < 13; ++k) {
        const std::vector<BYTE> entry = k == 0    ? Bytes({ 1, 2, 3, 4, 5 })
                                        : k == 12 ? Bytes({ 0x0D, 0x03, 0x32, 0x00, 0x01 })
                                                  : Bytes({ 0x00, 0x03, 0x32, 0x00, 0x00 });
        barcodeInfo.insert(barcodeInfo.end(), entry.begin(), entry.end());
    }
    EXPECT_EQ(barcodeInfo, Data(printer, L"BarcodeInfo"));
    std::vector<BYTE> codeData;
    for (int k = 0; k < 8; ++k) {
        std::vector<BYTE> entry = Bytes({ k % 3, 0x00, 0x03, 0x00, 0x03, 0x00, 0x00, 0x01, 0x03, 0x00,
                                          0x00, 0x03, 0x00, 0x02, 0x00, 0x02, 0, 0, 0, 0 });
        if (k == 1)
            entry = Bytes({ 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A,
                            0x1B, 0x1C, 0x1D, 0x1E, 0x1F, 0x20, 0x21, 0x22, 0x23, 0x24 });
        codeData.insert(codeData.end(), entry.begin(), entry.end());
    }
    EXPECT_EQ(codeData, Data(printer, L"CodeData"));

    // The custom forms, named with the driver's form identifier.
    const auto receipt = forms::Find(L"Receipt 58[R80]");
    ASSERT_TRUE(receipt.has_value());
    EXPECT_EQ(58000, receipt->size.cx);
    EXPECT_EQ(210000, receipt->size.cy);
    const auto ticket = forms::Find(L"Ticket[R80]");
    ASSERT_TRUE(ticket.has_value());
    EXPECT_EQ(80000, ticket->size.cx);
    EXPECT_EQ(297000, ticket->area.bottom);

    // The steps ran in their order.
    const std::string log = bench::ReadLog();
    size_t at = 0;
    for (const char* line : { "PrinterEvent : PRINTER_EVENT_INITIALIZE", "SetDriverBasicInfo : START",
                              "SetDriverBasicInfo : END", "SetBasicSettingPreferenceReg : START",
                              "SetBasicSettingPreferenceReg : END", "SetCustomPaper : START", "SetCustomPaper :FirstLine Skip",
                              "SetBarcodePreferenceReg : START", "SetBarcodePreferenceReg : END" }) {
        SCOPED_TRACE(line);
        at = log.find(line, at);
        EXPECT_NE(std::string::npos, at);
        if (at == std::string::npos) break;
    }
}

TEST_F(Initialize, PreferenceValuesAreCutToTheirLowByte)
{
    const std::wstring printer = bench::NewTestPrinter(L"prefs");
    ASSERT_FALSE(printer.empty());
    const struct { const char* text; BYTE expected; } rows[] = {
        { "300", 44 }, { "-1", 255 }, { "", 0 }, { "text", 0 }, { "  12abc", 12 }, { "+7", 7 }, { "0x10", 0 },
        { "99999999999999999999", 255 }, { "256", 0 }, { "-256", 0 }, { "1.9", 1 },
    };
    std::string body;
    for (size_t i = 0; i < std::size(rows); ++i)
        body += "PREFERENCE[" + std::to_string(60 + i) + "]=" + rows[i].text + "\r\n";
    WriteConfig(body);   // every other index is missing from the file

    PrinterEvent(printer, kInitialize);

    const std::vector<BYTE> misc = Data(printer, L"MISC");
    ASSERT_EQ(99u, misc.size());
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(testing::Message() << "PREFERENCE[" << 60 + i << "]=" << rows[i].text);
        EXPECT_EQ(rows[i].expected, misc[60 + i]);
    }
    EXPECT_EQ(0, misc[2]) << "a missing key gives 0, not the record default 25";
    EXPECT_EQ(0, misc[19]);
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : byteValue[60] = 44"));
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : PREFERENCE[2], GetPrivateProfileString failed with"));
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : PREFERENCE[62], GetPrivateProfileString failed with"))
        << "an empty value counts as missing";
}

TEST_F(Initialize, ModelOverrides)
{
    const struct { const WCHAR* model; BYTE b10, b11, b12, b13, b37; const char* line; } rows[] = {
        { L"ORLIVEX QM-143", 0x00, 0x03, 0x01, 0x03, 9, "InitDialogInfo : QM-143 Special" },
        { L"ORLIVEX QM-132", 9, 9, 9, 9, 1, "SetBasicSettingPreferenceReg : BT Two-Chip" },
        { L"ORLIVEX QM-133", 9, 9, 9, 9, 1, "SetBasicSettingPreferenceReg : BT Two-Chip" },
        { L"ORLIVEX QM-120", 9, 9, 9, 9, 1, "SetBasicSettingPreferenceReg : BT Two-Chip" },
        { L"ORLIVEX QM-121", 9, 9, 9, 9, 1, "SetBasicSettingPreferenceReg : BT Two-Chip" },
        { L"ORLIVEX qm-143", 9, 9, 9, 9, 9, nullptr },       // the comparison minds case
        { L"ORLIVEX QM-1430", 9, 9, 9, 9, 9, nullptr },
        { L"QM-143", 9, 9, 9, 9, 9, nullptr },               // no second word: "(null)"
    };
    WriteConfig(Preferences({ { 10, "9" }, { 11, "9" }, { 12, "9" }, { 13, "9" }, { 37, "9" } }));
    for (const auto& row : rows) {
        const std::string model(row.model, row.model + lstrlenW(row.model));
        SCOPED_TRACE(model);
        bench::ClearLog();
        const std::wstring printer = bench::NewTestPrinter(L"model", row.model);
        ASSERT_FALSE(printer.empty());
        PrinterEvent(printer, kInitialize);
        const std::vector<BYTE> misc = Data(printer, L"MISC");
        ASSERT_EQ(99u, misc.size());
        EXPECT_EQ(row.b10, misc[10]);
        EXPECT_EQ(row.b11, misc[11]);
        EXPECT_EQ(row.b12, misc[12]);
        EXPECT_EQ(row.b13, misc[13]);
        EXPECT_EQ(row.b37, misc[37]);
        EXPECT_TRUE(bench::LogContains("GetModelName : before wszModelName = " + model));
        if (row.line) EXPECT_TRUE(bench::LogContains(row.line));
    }
}

TEST_F(Initialize, CommandTexts)
{
    const std::wstring printer = bench::NewTestPrinter(L"commands");
    ASSERT_FALSE(printer.empty());
    // A value stored earlier survives when the file has nothing (or nothing but blanks) for it.
    const BYTE earlier[] = { 0x1B, 0x69 };
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"EndDoc", REG_BINARY,
                                                     earlier, sizeof earlier));
    const std::string longText(400, 'x');
    WriteConfig("START_DOCUMENT_CMD=" + longText + "\r\n"
                "START_PAGE_CMD=<1b 61 01\r\n"                  // left open at the end: accepted
                "END_PAGE_CMD=A>B<4>\r\n"                       // '>' outside is a character; a lone digit is dropped
                "END_DOCUMENT_CMD=\r\n");

    PrinterEvent(printer, kInitialize);

    EXPECT_EQ(std::vector<BYTE>(256, 'x'), Data(printer, L"StartDoc")) << "the reader's buffer holds 256 characters";
    EXPECT_EQ(Bytes({ 0x1B, 0x61, 0x01 }), Data(printer, L"StartPage"));
    EXPECT_EQ(Bytes({ 'A', '>', 'B' }), Data(printer, L"EndPage"));
    EXPECT_EQ(Bytes({ 0x1B, 0x69 }), Data(printer, L"EndDoc"));
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : GetPrivateProfileString failed with"));
    EXPECT_TRUE(bench::LogContains("(END_DOCUMENT_CMD)"));
}

TEST_F(Initialize, LongCommandsAreCutAt256Bytes)
{
    const std::wstring printer = bench::NewTestPrinter(L"longcmd");
    ASSERT_FALSE(printer.empty());
    std::string hex = "<";
    for (int i = 0; i < 200; ++i) hex += "1b";        // 400 characters: only the first 256 are read
    WriteConfig("START_DOCUMENT_CMD=" + hex + "\r\n" + "START_PAGE_CMD=" + std::string(300, 'q') + "\r\n");
    PrinterEvent(printer, kInitialize);
    EXPECT_EQ(std::vector<BYTE>(127, 0x1B), Data(printer, L"StartDoc")) << "255 digits: the last one is alone";
    EXPECT_EQ(std::vector<BYTE>(256, 'q'), Data(printer, L"StartPage"));
}

TEST_F(Initialize, BarcodeEntriesShortAndLong)
{
    const std::wstring printer = bench::NewTestPrinter(L"barcodes");
    ASSERT_FALSE(printer.empty());
    WriteConfig("1D_BARCODE[1]=<00 03 32>\r\n"                          // 10 characters: default entry
                "1D_BARCODE[2]=<00 03 32 00 05>\r\n"                    // exactly one entry
                "1D_BARCODE[3]=<01 02 03 04 05 06 07 08>\r\n"           // extra bytes ignored
                "1D_BARCODE[4]=<0102>         \r\n"                     // blanks trimmed by the reader: default
                "1D_BARCODE[5]=<01 02 03 04 0>\r\n"                     // 12 characters, a lone digit last
                "1D_BARCODE[6]=ABCDEFGHIJKL\r\n"                        // plain characters are bytes too
                "1D_BARCODE[7]=<01 02 03    >\r\n"                      // 13 characters, 3 bytes: zero-padded
                "2D_BARCODE[1]=<01 02 03 04 05 06 07 08 09 0A 0B 0C 0D>Z\r\n"  // 41 characters: default
                "2D_BARCODE[8]=<01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E>\r\n");
    PrinterEvent(printer, kInitialize);

    const std::vector<BYTE> info = Data(printer, L"BarcodeInfo");
    ASSERT_EQ(65u, info.size());
    const struct { int entry; std::vector<BYTE> bytes; } rows[] = {
        { 0, Bytes({ 0x00, 0x03, 0x32, 0x00, 0x00 }) }, { 1, Bytes({ 0x00, 0x03, 0x32, 0x00, 0x05 }) },
        { 2, Bytes({ 1, 2, 3, 4, 5 }) },                { 3, Bytes({ 0x00, 0x03, 0x32, 0x00, 0x00 }) },
        { 4, Bytes({ 1, 2, 3, 4, 0 }) },                { 5, Bytes({ 'A', 'B', 'C', 'D', 'E' }) },
        { 6, Bytes({ 1, 2, 3, 0, 0 }) },                { 12, Bytes({ 0x00, 0x03, 0x32, 0x00, 0x00 }) },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "1D entry " << row.entry);
        EXPECT_EQ(row.bytes, std::vector<BYTE>(info.begin() + row.entry * 5, info.begin() + row.entry * 5 + 5));
    }
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : 1D_BARCODE[1], The number of characters = 10"));
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : 1D_BARCODE[8], The number of characters = 0"));
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : 1D_BARCODE[8], GetPrivateProfileString failed with"));

    const std::vector<BYTE> code = Data(printer, L"CodeData");
    ASSERT_EQ(160u, code.size());
    EXPECT_EQ(Bytes({ 0, 0, 3, 0, 3, 0, 0, 1, 3, 0, 0, 3, 0, 2, 0, 2, 0, 0, 0, 0 }),
              std::vector<BYTE>(code.begin(), code.begin() + 20));
    EXPECT_EQ(Bytes({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0, 0, 0, 0, 0, 0 }),
              std::vector<BYTE>(code.begin() + 140, code.end()));
    for (int k = 0; k < 7; ++k) {
        SCOPED_TRACE(testing::Message() << "2D entry " << k);
        EXPECT_EQ(k % 3, code[k * 20]);
    }
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : 2D_BARCODE[1], The number of characters = 41"));
}

TEST_F(Initialize, WithoutConfigurationFileStillStampsTheQueue)
{
    // A queue that already has settings keeps every one of them.
    const std::wstring kept = bench::NewTestPrinter(L"kept");
    ASSERT_FALSE(kept.empty());
    const std::vector<BYTE> misc(99, 0x42), command = Bytes({ 0x1B, 0x70 }), info(65, 0x07);
    const std::wstring key = L"PrinterDriverData\\Properties";
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(kept, key, L"MISC", REG_BINARY, misc.data(), 99));
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(kept, key, L"StartDoc", REG_BINARY, command.data(), 2));
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(kept, key, L"BarcodeInfo", REG_BINARY, info.data(), 65));
    EXPECT_EQ(S_OK, PrinterEvent(kept, kInitialize));
    EXPECT_EQ(misc, Data(kept, L"MISC"));
    EXPECT_EQ(command, Data(kept, L"StartDoc"));
    EXPECT_EQ(info, Data(kept, L"BarcodeInfo"));

    const std::wstring printer = bench::NewTestPrinter(L"nofile");
    ASSERT_FALSE(printer.empty());
    EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));
    EXPECT_EQ(0x1000u, ReadQueue(printer).attributes);
    DWORD type = 0;
    EXPECT_EQ(5u, DwordValue(printer, L"MajorVersion", &type));
    for (const WCHAR* value : { L"MISC", L"StartDoc", L"BarcodeInfo", L"CodeData" }) {
        DWORD status = 0;
        Data(printer, value, &status);
        EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), status) << "nothing is written without the file";
    }
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : _wfopen failed with 2"));
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : _wfopen failed with 2"));
}

TEST_F(Initialize, RepeatedInitializeRewritesEverything)
{
    const std::wstring printer = bench::NewTestPrinter(L"again");
    ASSERT_FALSE(printer.empty());
    WriteConfig(Preferences({ { 0, "3" } }) + "START_DOCUMENT_CMD=<1B 40>\r\n");
    WritePaperFile(L"QM-101", "heading\r\nTicket,80,297\r\n");
    PrinterEvent(printer, kInitialize);
    WriteConfig(Preferences({ { 0, "4" } }) + "START_DOCUMENT_CMD=<1B 41>\r\n");
    WritePaperFile(L"QM-101", "heading\r\nTicket,80,200\r\n");
    PrinterEvent(printer, kInitialize);
    EXPECT_EQ(4, Data(printer, L"MISC").at(0));
    EXPECT_EQ(Bytes({ 0x1B, 0x41 }), Data(printer, L"StartDoc"));
    ASSERT_EQ(1u, forms::UserForms().size());
    EXPECT_EQ(200000, forms::UserForms()[0].size.cy) << "the second import replaces the form";
}

TEST_F(Initialize, HostileConfigurationFiles)
{
    std::string garbage;
    unsigned seed = 12345;
    for (int i = 0; i < 20000; ++i) {
        seed = seed * 1103515245u + 12345u;
        garbage.push_back(static_cast<char>(seed >> 16));
    }
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("[QVRPOS]\r\nPREFERENCE[0]=5\r\nSTART_DOCUMENT_CMD=<1B 40>\r\n")) {
        utf16.push_back(c);
        utf16.push_back('\0');
    }
    const std::string huge(10000, '7');
    const struct { const char* name; std::string bytes; } rows[] = {
        { "binary garbage", garbage },
        { "binary garbage after the heading", "[QVRPOS]\r\n" + garbage },
        { "UTF-16", utf16 },
        { "values longer than the buffers", "[QVRPOS]\r\nPREFERENCE[0]=" + huge + "\r\nSTART_DOCUMENT_CMD=" + huge +
                                                "\r\n1D_BARCODE[1]=<" + huge + ">\r\n2D_BARCODE[1]=" + huge + "\r\n" },
        { "no section", "PREFERENCE[0]=5\r\n" },
        { "empty", "" },
        { "keys without values", "[QVRPOS]\r\nPREFERENCE[0]\r\n=5\r\n[\r\n]=\r\n" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        bench::ClearLog();
        const std::wstring printer = bench::NewTestPrinter(L"hostile");
        ASSERT_FALSE(printer.empty());
        WriteRawConfig(row.bytes);
        EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));
        EXPECT_EQ(99u, Data(printer, L"MISC").size());
        EXPECT_EQ(65u, Data(printer, L"BarcodeInfo").size());
        EXPECT_EQ(160u, Data(printer, L"CodeData").size());
        EXPECT_LE(Data(printer, L"StartDoc").size(), 256u);
        EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : END"));
    }
}

TEST_F(Initialize, Utf16ConfigurationIsReadAsText)
{
    const std::wstring printer = bench::NewTestPrinter(L"utf16");
    ASSERT_FALSE(printer.empty());
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("[QVRPOS]\r\nPREFERENCE[0]=5\r\nSTART_DOCUMENT_CMD=<1B 40>\r\n")) {
        utf16.push_back(c);
        utf16.push_back('\0');
    }
    WriteRawConfig(utf16);
    PrinterEvent(printer, kInitialize);
    EXPECT_EQ(5, Data(printer, L"MISC").at(0));
    EXPECT_EQ(Bytes({ 0x1B, 0x40 }), Data(printer, L"StartDoc"));
}

TEST_F(Initialize, HostilePrinterData)
{
    // "MISC" of 500 bytes from an older driver: replaced by the 99 bytes of the file.
    const std::wstring printer = bench::NewTestPrinter(L"olddata", L"ORLIVEX", L"");
    ASSERT_FALSE(printer.empty());
    const std::vector<BYTE> old(500, 0xEE);
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer, L"PrinterDriverData\\Properties", L"MISC", REG_BINARY,
                                                     old.data(), 500));
    const WCHAR empty[2] = { 0, 0 };
    ASSERT_EQ(ERROR_SUCCESS, bench::WritePrinterData(printer, L"DsDriver", L"printMediaReady", REG_MULTI_SZ, empty, 0));
    WriteConfig(Preferences({ { 0, "1" } }));
    WritePaperFile(L"(null)", "heading\r\nTicket,80,297\r\n");

    EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));
    const std::vector<BYTE> misc = Data(printer, L"MISC");
    ASSERT_EQ(99u, misc.size());
    EXPECT_EQ(1, misc[0]);
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : Model Name = (null)"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : after wszFormId = [(null)"));
    EXPECT_TRUE(forms::Find(L"Ticket[(null)").has_value());
}

TEST_F(Initialize, FailuresDoNotStopTheSequence)
{
    const std::wstring printer = bench::NewTestPrinter(L"failures");
    ASSERT_FALSE(printer.empty());
    WriteConfig(Preferences({ { 0, "6" } }));
    WritePaperFile(L"QM-101", "heading\r\nTicket,80,297\r\n");

    // The first open (SetDriverBasicInfo's) is refused; the imports after it still run.
    spooler_faults::FailOpenPrinter(0, 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));
    EXPECT_TRUE(bench::LogContains("SetDriverBasicInfo : OpenPrinter failed with 5"));
    EXPECT_TRUE(spooler_faults::QueueWrites().empty());
    DWORD status = 0;
    Data(printer, L"MajorVersion", &status);
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), status);
    EXPECT_EQ(6, Data(printer, L"MISC").at(0));
    EXPECT_TRUE(forms::Find(L"Ticket[R80]").has_value());
    EXPECT_EQ(65u, Data(printer, L"BarcodeInfo").size());

    // The queue change is refused: logged, the version values are still written.
    const std::wstring second = bench::NewTestPrinter(L"refused");
    ASSERT_FALSE(second.empty());
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    PrinterEvent(second, kInitialize);
    EXPECT_TRUE(bench::LogContains("SetDriverBasicInfo : SetPrinter failed with 5"));
    DWORD type = 0;
    EXPECT_EQ(2u, DwordValue(second, L"MinorVersion", &type));
    spooler_faults::RefuseSetPrinter(0);

    // Every open of the sequence after the first fails: each step logs its own line.
    const std::wstring third = bench::NewTestPrinter(L"noopen");
    ASSERT_FALSE(third.empty());
    spooler_faults::FailOpenPrinter(1, 3, ERROR_INVALID_PRINTER_NAME);
    PrinterEvent(third, kInitialize);
    EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : OpenPrinter failed with 1801"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : OpenPrinter failed with 1801"));
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : OpenPrinter failed with 1801"));
}

TEST_F(Initialize, PrintServerConnectionUsesTheClientKey)
{
    const std::wstring printer = bench::NewTestPrinter(L"client");
    ASSERT_FALSE(printer.empty());
    WriteConfig(Preferences({ { 0, "8" } }));
    spooler_faults::ReportServerName(L"\\\\POSSERVER");
    PrinterEvent(printer, kInitialize);
    const std::wstring client = L"PrinterDriverData\\PropertiesClient";
    EXPECT_EQ(8, Data(printer, L"MISC", nullptr, nullptr, client).at(0));
    DWORD status = 0;
    Data(printer, L"MISC", &status);
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), status) << "nothing under the local key";
    EXPECT_EQ(4u, Data(printer, L"MajorVersion", nullptr, nullptr, client).size());
}

TEST_F(Initialize, NullPrinterNameTouchesNothing)
{
    WriteConfig(Preferences({ { 0, "8" } }));
    EXPECT_EQ(S_OK, PrinterEvent(L"", kInitialize));
    EXPECT_TRUE(bench::LogContains("SetDriverBasicInfo : OpenPrinter failed with 1801"));
    EXPECT_TRUE(bench::LogContains("SetBarcodePreferenceReg : OpenPrinter failed with 1801"));
}

class AttributesChanged : public EventTest {};

TEST_F(AttributesChanged, RawOnlyIsPutBack)
{
    const struct { DWORD queue; DWORD oldAttr; DWORD newAttr; DWORD expected; bool written; } rows[] = {
        { 0x48, 0x1048, 0x48, 0x1048, true },
        { 0x40, 0x1000, 0x40, 0x1040, true },
        { 0x1048, 0x48, 0x1048, 0x1048, false },
        { 0x40, 0x40, 0x1040, 0x40, false },      // only the reported new value decides
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << "queue 0x" << row.queue << ", new 0x" << row.newAttr);
        spooler_faults::Reset();
        bench::ClearLog();
        const std::wstring printer = bench::NewTestPrinter(L"attributes");
        ASSERT_FALSE(printer.empty());
        ASSERT_TRUE(SetQueueAttributes(printer, row.queue));
        PRINTER_EVENT_ATTRIBUTES_INFO info = { sizeof info, row.oldAttr, row.newAttr };
        EXPECT_EQ(S_OK, PrinterEvent(printer, kAttributesChanged, reinterpret_cast<LPARAM>(&info)));
        const Queue q = ReadQueue(printer);
        EXPECT_EQ(row.expected, q.attributes);
        EXPECT_EQ(row.written ? 1u : 0u, spooler_faults::QueueWrites().size());
        char line[128];
        snprintf(line, sizeof line, "SetRawDataPrintJob : pEventInfo->dwNewAttributes : 0x%x", row.newAttr);
        EXPECT_TRUE(bench::LogContains(line));
        snprintf(line, sizeof line, "SetRawDataPrintJob : pEventInfo->dwOldAttributes : 0x%x", row.oldAttr);
        EXPECT_TRUE(bench::LogContains(line));
        if (row.written) {
            EXPECT_EQ(L"ORLIVEX POS PRINT PROCESSOR", q.printProcessor);
            EXPECT_TRUE(bench::LogContains("SetRawDataPrintJob : SetPrinter succeeded."));
        } else {
            snprintf(line, sizeof line, "SetRawDataPrintJob :  pEventInfo->dwNewAttributes = 0x%x", row.newAttr);
            EXPECT_TRUE(bench::LogContains(line));
        }
        EXPECT_EQ(spooler_faults::OpenedHandles(), spooler_faults::ClosedHandles());
    }
}

TEST_F(AttributesChanged, FailuresAreLogged)
{
    const std::wstring printer = bench::NewTestPrinter(L"attrfail");
    ASSERT_FALSE(printer.empty());
    EXPECT_EQ(S_OK, PrinterEvent(printer, kAttributesChanged, 0));
    EXPECT_TRUE(bench::LogContains("SetRawDataPrintJob : OpenPrinter failed. ("));
    EXPECT_TRUE(bench::LogContains("SetRawDataPrintJob : pPrinterName : " +
                                   std::string(printer.begin(), printer.end())));
    EXPECT_EQ(spooler_faults::ClosedHandles() + 1, spooler_faults::OpenedHandles())
        << "without its parameter block the event leaves the handle it opened";
    spooler_faults::Reset();

    PRINTER_EVENT_ATTRIBUTES_INFO info = { sizeof info, 0x1040, 0x40 };
    bench::ClearLog();
    spooler_faults::FailOpenPrinter(0, 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, PrinterEvent(printer, kAttributesChanged, reinterpret_cast<LPARAM>(&info)));
    EXPECT_TRUE(bench::LogContains("SetRawDataPrintJob : OpenPrinter failed. (5)"));

    bench::ClearLog();
    spooler_faults::RefuseSetPrinter(ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, PrinterEvent(printer, kAttributesChanged, reinterpret_cast<LPARAM>(&info)));
    EXPECT_TRUE(bench::LogContains("SetRawDataPrintJob : SetPrinter failed with 5"));
}

class OtherEvents : public EventTest {};

TEST_F(OtherEvents, AreLoggedOnly)
{
    const std::wstring printer = bench::NewTestPrinter(L"other");
    ASSERT_FALSE(printer.empty());
    WriteConfig(Preferences({ { 0, "8" } }));
    const struct { INT event; const char* line; } rows[] = {
        { kConfigurationChange, "PrinterEvent : PRINTER_EVENT_CONFIGURATION_CHANGE" },
        { 5, "PrinterEvent : iDriverEvent = 5" },
        { 1, "PrinterEvent : iDriverEvent = 1" },
        { 4, "PrinterEvent : iDriverEvent = 4" },
        { 0x2A, "PrinterEvent : iDriverEvent = 2a" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        bench::ClearLog();
        EXPECT_EQ(S_OK, PrinterEvent(printer, row.event, 0x1234));
        EXPECT_TRUE(bench::LogContains(row.line));
    }
    DWORD status = 0;
    Data(printer, L"MISC", &status);
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), status);
    EXPECT_TRUE(spooler_faults::QueueWrites().empty());
}

TEST_F(OtherEvents, DriverEvents)
{
    const struct { DWORD event; const char* line; } rows[] = {
        { 1, "DriverEvent : DRIVER_EVENT_INITIALIZE" }, { 2, "DriverEvent : DRIVER_EVENT_DELETE" }, { 3, nullptr },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "event " << row.event);
        bench::ClearLog();
        EXPECT_EQ(S_OK, Plugin()->DriverEvent(row.event, 3, nullptr, 0));
        if (row.line)
            EXPECT_TRUE(bench::LogContains(row.line));
        else
            EXPECT_EQ("", bench::ReadLog());
    }
}
