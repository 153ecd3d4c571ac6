// Installing a QM-101 queue with the configuration and paper files that ship in samples/.
#include <gtest/gtest.h>

#include <string>

#include "event_bench.h"

using namespace events_bench;

TEST_F(EventTest, SampleFilesGiveAWorkingQueue)
{
    const std::string config = bench::ReadTextFile(QVR_SAMPLES_DIR L"/QVRPOS_Config.QVR");
    const std::string paper = bench::ReadTextFile(QVR_SAMPLES_DIR L"/AddCustomPaper.txt");
    ASSERT_FALSE(config.empty());
    ASSERT_FALSE(paper.empty());
    WriteRawConfig(config);
    WritePaperFile(L"QM-101", paper);
    const std::wstring printer = bench::NewTestPrinter(L"sample");
    ASSERT_FALSE(printer.empty());

    EXPECT_EQ(S_OK, PrinterEvent(printer, kInitialize));

    // The shipped preferences are the record's own defaults (the language follows the system).
    std::vector<BYTE> expected(99, 0);
    for (int i : { 2, 4, 7, 9, 11, 13 }) expected[i] = 25;
    for (int i : { 5, 19, 20, 36 }) expected[i] = 1;
    expected[35] = 10;
    expected[53] = 128;
    EXPECT_EQ(expected, Data(printer, L"MISC"));
    EXPECT_FALSE(bench::LogContains("GetPrivateProfileString failed with 2 (PREFERENCE"));
    for (int n = 0; n < 99; ++n) {
        SCOPED_TRACE(n);
        EXPECT_TRUE(bench::LogContains("SetBasicSettingPreferenceReg : byteValue[" + std::to_string(n) + "] ="));
    }
    EXPECT_EQ(Bytes({ 0x1B, 0x40 }), Data(printer, L"StartDoc"));
    EXPECT_EQ(Bytes({ 0x1B, 0x64, 0x03 }), Data(printer, L"EndDoc"));
    EXPECT_FALSE(bench::LogContains("The number of characters")) << "every barcode entry is complete";
    const std::vector<BYTE> info = Data(printer, L"BarcodeInfo");
    ASSERT_EQ(65u, info.size());
    for (int k = 0; k < 13; ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(k, info[k * 5]);
        EXPECT_EQ(50, info[k * 5 + 2]);
    }
    EXPECT_EQ(160u, Data(printer, L"CodeData").size());

    EXPECT_EQ(7u, forms::UserForms().size());
    const auto receipt = forms::Find(L"Receipt 80 x 297[R80]");
    ASSERT_TRUE(receipt.has_value());
    EXPECT_EQ(80000, receipt->size.cx);
    EXPECT_EQ(297000, receipt->size.cy);
    EXPECT_FALSE(bench::LogContains("swscanf Fail"));
    EXPECT_EQ(0x1000u, ReadQueue(printer).attributes);
}
