// The plug-in's COM face, driven through the DLL's exports as the driver core drives it.
#include <gtest/gtest.h>

#include <cstring>

#include "bench.h"

namespace {

const CLSID kClsid = { 0xABCE80D7, 0x9F46, 0x11D1, { 0x88, 0x2A, 0x00, 0xC0, 0x4F, 0xB9, 0x61, 0xEC } };
const IID kIidOemUi = { 0xC6A7A9D0, 0x774C, 0x11D1, { 0x94, 0x7F, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };
const IID kIidDriverUi = { 0x92B05D50, 0x78BC, 0x11D1, { 0x94, 0x80, 0x00, 0xA0, 0xC9, 0x06, 0x40, 0xB8 } };

using GetClassObjectFn = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadFn = HRESULT(STDAPICALLTYPE*)();

GetClassObjectFn GetClassObject()
{
    return reinterpret_cast<GetClassObjectFn>(GetProcAddress(bench::Plugin(), "DllGetClassObject"));
}
CanUnloadFn CanUnloadNow() { return reinterpret_cast<CanUnloadFn>(GetProcAddress(bench::Plugin(), "DllCanUnloadNow")); }

IClassFactory* Factory()
{
    IClassFactory* factory = nullptr;
    EXPECT_EQ(S_OK, GetClassObject()(kClsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    return factory;
}

// A reference count read the way the driver core could: AddRef's answer, minus the one added.
ULONG RefCount(IUnknown* u)
{
    const ULONG n = u->AddRef();
    u->Release();
    return n - 1;
}

// The driver core's own IPrintOemDriverUI: counts its references and which interfaces were asked for.
class FakeDriverUi : public IUnknown {
public:
    LONG refs = 1;
    int driverUiQueries = 0;
    bool answer = true;
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override
    {
        if (memcmp(&riid, &kIidDriverUi, sizeof(GUID)) == 0) {
            ++driverUiQueries;
            if (!answer) { *ppv = nullptr; return E_NOINTERFACE; }
            *ppv = this;
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++refs; }
    STDMETHODIMP_(ULONG) Release() override { return --refs; }
};

}  // namespace

TEST(Exports, OnlyTheTwoComEntryPoints)
{
    HMODULE m = bench::Plugin();
    ASSERT_NE(nullptr, m) << "UIQVRPOS.dll beside the test program";
    auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(m);
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS64*>(reinterpret_cast<BYTE*>(m) + dos->e_lfanew);
    const auto& dir = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    ASSERT_NE(0u, dir.VirtualAddress);
    auto* exp = reinterpret_cast<IMAGE_EXPORT_DIRECTORY*>(reinterpret_cast<BYTE*>(m) + dir.VirtualAddress);
    ASSERT_EQ(2u, exp->NumberOfNames);
    auto* names = reinterpret_cast<DWORD*>(reinterpret_cast<BYTE*>(m) + exp->AddressOfNames);
    EXPECT_STREQ("DllCanUnloadNow", reinterpret_cast<char*>(m) + names[0]);
    EXPECT_STREQ("DllGetClassObject", reinterpret_cast<char*>(m) + names[1]);
}

TEST(ClassFactory, OtherClassIdIsRefusedAndOutputUntouched)
{
    const CLSID other = { 0x12345678, 0x1, 0x2, { 1, 2, 3, 4, 5, 6, 7, 8 } };
    void* out = reinterpret_cast<void*>(0x1234);
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, GetClassObject()(other, IID_IClassFactory, &out));
    EXPECT_EQ(reinterpret_cast<void*>(0x1234), out);
}

TEST(ClassFactory, QueryForUnknownInterfaceGivesNoInterfaceAndNull)
{
    void* out = reinterpret_cast<void*>(0x1234);
    EXPECT_EQ(E_NOINTERFACE, GetClassObject()(kClsid, kIidOemUi, &out));
    EXPECT_EQ(nullptr, out);
}

TEST(ClassFactory, FactoryHandedOutWithOneReference)
{
    IUnknown* unk = nullptr;
    ASSERT_EQ(S_OK, GetClassObject()(kClsid, IID_IUnknown, reinterpret_cast<void**>(&unk)));
    ASSERT_NE(nullptr, unk);
    EXPECT_EQ(1u, RefCount(unk));
    IClassFactory* cf = nullptr;
    EXPECT_EQ(S_OK, unk->QueryInterface(IID_IClassFactory, reinterpret_cast<void**>(&cf)));
    EXPECT_EQ(1u, cf->Release());   // returns the new count
    EXPECT_EQ(0u, unk->Release());
}

TEST(ClassFactory, AggregationIsRefused)
{
    IClassFactory* cf = Factory();
    FakeDriverUi outer;
    void* out = nullptr;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, cf->CreateInstance(&outer, kIidOemUi, &out));
    cf->Release();
}

TEST(ClassFactory, CreateInstanceAnswersOnlyItsInterfaces)
{
    IClassFactory* cf = Factory();
    IPrintOemUI* ui = nullptr;
    ASSERT_EQ(S_OK, cf->CreateInstance(nullptr, kIidOemUi, reinterpret_cast<void**>(&ui)));
    EXPECT_EQ(1u, RefCount(ui));
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(E_NOINTERFACE, cf->CreateInstance(nullptr, IID_IClassFactory, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_NOINTERFACE, ui->QueryInterface(IID_IDispatch, &out));
    EXPECT_EQ(nullptr, out);
    IUnknown* unk = nullptr;
    EXPECT_EQ(S_OK, ui->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unk)));
    EXPECT_EQ(static_cast<IUnknown*>(ui), unk);
    EXPECT_EQ(2u, RefCount(ui));
    unk->Release();
    EXPECT_EQ(0u, ui->Release());
    cf->Release();
}

TEST(ClassFactory, LockServerDecidesUnloading)
{
    IClassFactory* cf = Factory();
    IPrintOemUI* ui = nullptr;
    ASSERT_EQ(S_OK, cf->CreateInstance(nullptr, kIidOemUi, reinterpret_cast<void**>(&ui)));
    EXPECT_EQ(S_OK, CanUnloadNow()()) << "live objects do not pin the library";
    EXPECT_EQ(S_OK, cf->LockServer(TRUE));
    EXPECT_EQ(S_OK, cf->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, CanUnloadNow()());
    EXPECT_EQ(S_OK, cf->LockServer(FALSE));
    EXPECT_EQ(S_FALSE, CanUnloadNow()());
    EXPECT_EQ(S_OK, cf->LockServer(FALSE));
    EXPECT_EQ(S_OK, CanUnloadNow()());
    ui->Release();
    cf->Release();
}

class PluginObject : public ::testing::Test {
protected:
    void SetUp() override
    {
        ui = bench::CreatePlugin();
        ASSERT_NE(nullptr, ui);
    }
    void TearDown() override
    {
        if (ui) EXPECT_EQ(0u, ui->Release());
    }
    IPrintOemUI* ui = nullptr;
};

TEST_F(PluginObject, GetInfoSignatureAndVersion)
{
    DWORD value = 0, needed = 0;
    EXPECT_EQ(S_OK, ui->GetInfo(OEMGI_GETSIGNATURE, &value, sizeof value, &needed));
    EXPECT_EQ(0x4D534654u, value);
    EXPECT_EQ(4u, needed);
    EXPECT_EQ(S_OK, ui->GetInfo(OEMGI_GETVERSION, &value, sizeof value, &needed));
    EXPECT_EQ(1u, value);
}

TEST_F(PluginObject, GetInfoRefusals)
{
    struct Row { DWORD mode; DWORD size; bool buffer; bool neededPtr; DWORD error; DWORD needed; };
    const Row rows[] = {
        { OEMGI_GETINTERFACEVERSION, 64, true, true, ERROR_INVALID_PARAMETER, 0xdead },
        { 0, 4, true, true, ERROR_INVALID_PARAMETER, 0xdead },
        { 5, 4, true, true, ERROR_INVALID_PARAMETER, 0xdead },
        { OEMGI_GETSIGNATURE, 4, true, false, ERROR_INVALID_PARAMETER, 0xdead },
        { OEMGI_GETSIGNATURE, 3, true, true, ERROR_INSUFFICIENT_BUFFER, 4 },
        { OEMGI_GETVERSION, 4, false, true, ERROR_INSUFFICIENT_BUFFER, 4 },
        { OEMGI_GETPUBLISHERINFO, 4, true, true, ERROR_NOT_SUPPORTED, 0 },
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << "mode " << r.mode << ", size " << r.size);
        BYTE buffer[64] = {};
        DWORD needed = 0xdead;
        SetLastError(0xdeadbeef);
        EXPECT_EQ(E_FAIL, ui->GetInfo(r.mode, r.buffer ? buffer : nullptr, r.size, r.neededPtr ? &needed : nullptr));
        EXPECT_EQ(r.error, GetLastError());
        EXPECT_EQ(r.needed, needed);
        EXPECT_EQ(0, buffer[0]) << "nothing written on failure";
    }
}

TEST_F(PluginObject, SixMethodsAreLeftToTheDriverCore)
{
    SetLastError(0xdeadbeef);
    EXPECT_EQ(E_NOTIMPL, ui->DevMode(1, nullptr));
    EXPECT_EQ(E_NOTIMPL, ui->DevQueryPrintEx(nullptr, nullptr, nullptr, nullptr));
    DWORD result = 0;
    EXPECT_EQ(E_NOTIMPL, ui->DeviceCapabilities(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, &result));
    EXPECT_EQ(E_NOTIMPL, ui->UpgradePrinter(1, nullptr));
    EXPECT_EQ(E_NOTIMPL, ui->FontInstallerDlgProc(nullptr, 0, 0, 0));
    EXPECT_EQ(E_NOTIMPL, ui->UpdateExternalFonts(nullptr, nullptr, nullptr));
    EXPECT_EQ(0xdeadbeefu, GetLastError()) << "no last error set";
}

TEST_F(PluginObject, PublishDriverInterfaceKeepsTheFirstAndReleasesItWithTheObject)
{
    FakeDriverUi first, second;
    EXPECT_EQ(S_OK, ui->PublishDriverInterface(&first));
    EXPECT_EQ(2, first.refs);
    EXPECT_EQ(S_OK, ui->PublishDriverInterface(&second));
    EXPECT_EQ(0, second.driverUiQueries) << "a second interface is not even asked for";
    EXPECT_EQ(1, second.refs);
    EXPECT_EQ(0u, ui->Release());
    ui = nullptr;
    EXPECT_EQ(1, first.refs) << "the held reference goes with the object";
}

TEST_F(PluginObject, PublishDriverInterfaceFailureClearsAndAllowsAnotherTry)
{
    FakeDriverUi refusing;
    refusing.answer = false;
    EXPECT_EQ(E_FAIL, ui->PublishDriverInterface(&refusing));
    FakeDriverUi good;
    EXPECT_EQ(S_OK, ui->PublishDriverInterface(&good));
    EXPECT_EQ(1, good.driverUiQueries);
    EXPECT_EQ(2, good.refs);
}

TEST_F(PluginObject, CommonUIPropHidesEveryDriverItem)
{
    OPTITEM items[3] = {};
    for (auto& it : items) { it.cbSize = sizeof it; it.Flags = OPTIF_COLLAPSE; }
    OEMCUIPPARAM param = {};
    param.cbSize = sizeof param;
    param.pDrvOptItems = items;
    param.cDrvOptItems = 3;
    for (DWORD mode : { DWORD(OEMCUIP_DOCPROP), DWORD(OEMCUIP_PRNPROP) }) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(S_OK, ui->CommonUIProp(mode, &param));
        for (const auto& it : items) EXPECT_EQ(DWORD(OPTIF_COLLAPSE | OPTIF_HIDE), it.Flags);
    }
    param.cDrvOptItems = 0;
    param.pDrvOptItems = nullptr;
    EXPECT_EQ(S_OK, ui->CommonUIProp(OEMCUIP_DOCPROP, &param));
}

TEST_F(PluginObject, CommonUIPropRefusals)
{
    OEMCUIPPARAM param = {};
    for (DWORD mode : { 0u, 3u }) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(E_FAIL, ui->CommonUIProp(mode, &param));
        EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
    }
    SetLastError(0xdeadbeef);
    EXPECT_EQ(E_FAIL, ui->CommonUIProp(OEMCUIP_DOCPROP, nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST_F(PluginObject, QueryColorProfileNamesTheProfileFile)
{
    WCHAR profile[32] = {};
    ULONG size = sizeof profile;
    FLONG kind = 0;
    EXPECT_EQ(S_OK, ui->QueryColorProfile(nullptr, nullptr, nullptr, nullptr, 0, profile, &size, &kind));
    EXPECT_STREQ(L"OEMPROFILE.icm", profile);
    EXPECT_EQ(32u, size);
    EXPECT_EQ(FLONG(QCP_PROFILEDISK), kind);
}

TEST_F(PluginObject, QueryColorProfileTooSmallOrNoBuffer)
{
    WCHAR profile[32] = {};
    FLONG kind = 7;
    for (bool withBuffer : { true, false }) {
        SCOPED_TRACE(withBuffer ? "31 bytes" : "no buffer");
        ULONG size = withBuffer ? 31 : 64;
        SetLastError(0xdeadbeef);
        EXPECT_EQ(E_FAIL, ui->QueryColorProfile(nullptr, nullptr, nullptr, nullptr, 0,
                                                withBuffer ? profile : nullptr, &size, &kind));
        EXPECT_EQ(32u, size);
        EXPECT_EQ(DWORD(ERROR_INSUFFICIENT_BUFFER), GetLastError());
        EXPECT_EQ(FLONG(7), kind);
        EXPECT_EQ(L'\0', profile[0]);
    }
}

TEST_F(PluginObject, QueryColorProfileWithQueryFlagTouchesNothing)
{
    WCHAR profile[32] = {};
    ULONG size = 31;
    FLONG kind = 7;
    SetLastError(0xdeadbeef);
    EXPECT_EQ(E_FAIL, ui->QueryColorProfile(nullptr, nullptr, nullptr, nullptr, 1, profile, &size, &kind));
    EXPECT_EQ(31u, size);
    EXPECT_EQ(FLONG(7), kind);
    EXPECT_EQ(0xdeadbeefu, GetLastError());
}

TEST_F(PluginObject, PropertySheetsRefuseABadInfoBlock)
{
    PROPSHEETUI_INFO info = {};
    info.cbSize = sizeof info;
    info.Version = 0x0200;
    info.Result = 0x77;
    for (PROPSHEETUI_INFO* p : { static_cast<PROPSHEETUI_INFO*>(nullptr), &info }) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(E_FAIL, ui->DocumentPropertySheets(p, 0));
        EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
        SetLastError(0xdeadbeef);
        EXPECT_EQ(E_FAIL, ui->DevicePropertySheets(p, 0));
        EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
    }
    EXPECT_EQ(0x77u, info.Result) << "Result is not touched";
}

TEST_F(PluginObject, EventsAnswerOkWhateverTheyAreGiven)
{
    EXPECT_EQ(S_OK, ui->PrinterEvent(const_cast<WCHAR*>(L"no such printer"), 5, 0, 0));
    EXPECT_EQ(S_OK, ui->PrinterEvent(const_cast<WCHAR*>(L"no such printer"), PRINTER_EVENT_ATTRIBUTES_CHANGED, 0, 0));
    EXPECT_EQ(S_OK, ui->DriverEvent(DRIVER_EVENT_INITIALIZE, 3, nullptr, 0));
    EXPECT_EQ(S_OK, ui->DriverEvent(DRIVER_EVENT_DELETE, 3, nullptr, 0));
    EXPECT_EQ(S_OK, ui->DriverEvent(99, 3, nullptr, 0));
}
