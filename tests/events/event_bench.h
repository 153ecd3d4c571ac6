// Shared by the event tests: the plug-in with its spooler stand-ins in place, the configuration
// and paper files in the prefix, and the queue read back.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bench.h"
#include "forms_store.h"
#include "spooler_faults.h"

namespace events_bench {

constexpr INT kConfigurationChange = 0;
constexpr INT kInitialize = 3;
constexpr INT kAttributesChanged = 7;

inline IPrintOemUI* Plugin()
{
    static IPrintOemUI* plugin = [] {
        IPrintOemUI* p = bench::CreatePlugin();
        if (p != nullptr) {
            forms::Install(bench::Plugin());
            spooler_faults::Install(bench::Plugin());
        }
        return p;
    }();
    return plugin;
}

inline std::wstring ConfigPath() { return bench::SystemDir() + L"\\QVRPOS_Config.QVR"; }

// The configuration file: `body` follows the "[QVRPOS]" heading.
inline void WriteConfig(const std::string& body)
{
    DeleteFileW(ConfigPath().c_str());
    ASSERT_TRUE(bench::WriteTextFile(ConfigPath(), "[QVRPOS]\r\n" + body));
}
inline void WriteRawConfig(const std::string& bytes)
{
    DeleteFileW(ConfigPath().c_str());
    ASSERT_TRUE(bench::WriteTextFile(ConfigPath(), bytes));
}
inline void RemoveConfig() { DeleteFileW(ConfigPath().c_str()); }

inline std::wstring PaperPath(const std::wstring& model)
{
    return bench::WindowsDir() + L"\\" + model + L"\\AddCustomPaper.txt";
}
inline void WritePaperFile(const std::wstring& model, const std::string& text)
{
    CreateDirectoryW((bench::WindowsDir() + L"\\" + model).c_str(), nullptr);
    ASSERT_TRUE(bench::WriteTextFile(PaperPath(model), text));
}

inline HRESULT PrinterEvent(const std::wstring& printer, INT event, LPARAM lParam = 0)
{
    std::wstring name = printer;
    return Plugin()->PrinterEvent(name.empty() ? nullptr : &name[0], event, 0, lParam);
}

// The queue's level-2 fields as the spooler reports them.
struct Queue {
    DWORD attributes = 0;
    std::wstring printProcessor;
    std::wstring datatype;
    bool read = false;
};
inline Queue ReadQueue(const std::wstring& printer)
{
    Queue q;
    HANDLE h = nullptr;
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, nullptr)) return q;
    DWORD needed = 0;
    GetPrinterW(h, 2, nullptr, 0, &needed);
    std::vector<BYTE> buffer(needed + 16);
    if (needed != 0 && GetPrinterW(h, 2, buffer.data(), needed, &needed)) {
        const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
        q.attributes = info->Attributes;
        q.printProcessor = info->pPrintProcessor ? info->pPrintProcessor : L"";
        q.datatype = info->pDatatype ? info->pDatatype : L"";
        q.read = true;
    }
    ClosePrinter(h);
    return q;
}

// Sets the queue's attributes through the real spooler, as an administrator would.
inline bool SetQueueAttributes(const std::wstring& printer, DWORD attributes)
{
    HANDLE h = nullptr;
    PRINTER_DEFAULTSW all = { nullptr, nullptr, PRINTER_ALL_ACCESS };
    if (!OpenPrinterW(const_cast<WCHAR*>(printer.c_str()), &h, &all)) return false;
    DWORD needed = 0;
    GetPrinterW(h, 2, nullptr, 0, &needed);
    std::vector<BYTE> buffer(needed + 16);
    bool ok = false;
    if (needed != 0 && GetPrinterW(h, 2, buffer.data(), needed, &needed)) {
        reinterpret_cast<PRINTER_INFO_2W*>(buffer.data())->Attributes = attributes;
        ok = SetPrinterW(h, 2, buffer.data(), 0) != FALSE;
    }
    ClosePrinter(h);
    return ok;
}

inline std::vector<BYTE> Data(const std::wstring& printer, const std::wstring& value, DWORD* status = nullptr,
                              DWORD* type = nullptr, const std::wstring& key = L"PrinterDriverData\\Properties")
{
    return bench::ReadPrinterData(printer, value, type, status, key);
}

inline std::vector<BYTE> Bytes(std::initializer_list<int> list)
{
    std::vector<BYTE> v;
    for (int b : list) v.push_back(static_cast<BYTE>(b));
    return v;
}

// Fresh state for every test: no configuration file, no user forms, no planned faults, empty log.
class EventTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, Plugin());
        forms::Reset();
        spooler_faults::Reset();
        RemoveConfig();
        bench::ClearLog();
    }
    void TearDown() override
    {
        EXPECT_EQ(spooler_faults::OpenedHandles(), spooler_faults::ClosedHandles()) << "printer handles left open";
    }
};

}  // namespace events_bench
