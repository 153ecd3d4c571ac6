#include "settings/config_import.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

#include "oemui/handles.h"
#include "oemui/language.h"
#include "oemui/log.h"
#include "settings/printer_data.h"

namespace {

const WCHAR kSection[] = L"QVRPOS";

void BuildConfigPath(WCHAR (&path)[255])
{
    path[0] = L'\0';
    WCHAR systemDir[260] = {};
    GetSystemDirectoryW(systemDir, ARRAYSIZE(systemDir));
    CopyCut(path, systemDir);
    AppendCut(path, L"\\");
    AppendCut(path, L"QVRPOS_Config.QVR");
}

// The file is only ever read through the profile reader; this merely tells whether it is there.
bool ConfigFileExists(const WCHAR* path)
{
    FILE* file = _wfopen(path, L"r");
    if (file == nullptr) return false;
    fclose(file);
    return true;
}

template <size_t N>
DWORD ReadConfigString(const WCHAR* key, WCHAR (&value)[N], const WCHAR* path)
{
    value[0] = L'\0';
    return GetPrivateProfileStringW(kSection, key, nullptr, value, N, path);
}

// The ANSI form of a command text, terminated even when the conversion had to stop short.
template <size_t N>
void ToAnsi(const WCHAR* text, char (&ansi)[N])
{
    memset(ansi, 0, sizeof ansi);
    WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, text, -1, ansi, N, nullptr, nullptr);
    ansi[N - 1] = '\0';
}

// Entry `index` (0-based) of the default "CodeData": the first byte runs 0, 1, 2, 0, 1, 2, ...
void DefaultCodeDataEntry(DWORD index, BYTE* entry)
{
    static const BYTE pattern[16] = { 0x00, 0x00, 0x03, 0x00, 0x03, 0x00, 0x00, 0x01,
                                      0x03, 0x00, 0x00, 0x03, 0x00, 0x02, 0x00, 0x02 };
    memset(entry, 0, kCodeDataEntry);
    memcpy(entry, pattern, sizeof pattern);
    entry[0] = static_cast<BYTE>(index % 3);
}

}  // namespace

namespace configdetail {

BYTE PreferenceByte(const WCHAR* text)
{
    const WCHAR* p = text;
    while (*p == L' ' || *p == L'\t' || *p == L'\n' || *p == L'\r' || *p == L'\v' || *p == L'\f') ++p;
    bool negative = false;
    if (*p == L'+' || *p == L'-') negative = *p++ == L'-';
    // Unsigned arithmetic wraps without harm and keeps the low 8 bits exact for any length.
    unsigned value = 0;
    for (; *p >= L'0' && *p <= L'9'; ++p) value = value * 10u + static_cast<unsigned>(*p - L'0');
    if (negative) value = 0u - value;
    return static_cast<BYTE>(value & 0xFF);
}

void DefaultBarcodeInfo(BYTE (&table)[kBarcodeInfoBytes])
{
    static const BYTE entry[kBarcodeInfoEntry] = { 0x00, 0x03, 0x32, 0x00, 0x00 };
    for (DWORD k = 0; k < kBarcodeInfoEntries; ++k) memcpy(table + k * kBarcodeInfoEntry, entry, sizeof entry);
}

void DefaultCodeData(BYTE (&table)[kCodeDataBytes])
{
    for (DWORD k = 0; k < kCodeDataEntries; ++k) DefaultCodeDataEntry(k, table + k * kCodeDataEntry);
}

}  // namespace configdetail

void InitDialogInfo(DIALOGINFO* lpdi)
{
    ScopedLog log("InitDialogInfo : START", "InitDialogInfo : END");
    if (lpdi == nullptr) {
        Log("InitDialogInfo : lpdi is NULL");
        return;
    }
    SetDefaultPreferences(lpdi->byteValue);

    WCHAR path[255];
    BuildConfigPath(path);
    if (!ConfigFileExists(path)) return;

    for (int n = 0; n < static_cast<int>(kPreferenceCount); ++n) {
        WCHAR key[32];
        StringCbPrintfW(key, sizeof key, L"PREFERENCE[%d]", n);
        WCHAR value[255];
        if (ReadConfigString(key, value, path) != 0) {
            lpdi->byteValue[n] = configdetail::PreferenceByte(value);
            Log("InitDialogInfo : lpdi->byteValue[%d] = %d", n, lpdi->byteValue[n]);
        } else {
            Log("InitDialogInfo : PREFERENCE[%d], GetPrivateProfileString failed with %d", n, LastErrorCode());
        }
    }
}

BOOL SetBasicSettingPreferenceReg(const WCHAR* printerName)
{
    ScopedLog log("SetBasicSettingPreferenceReg : START", "SetBasicSettingPreferenceReg : END");
    WCHAR path[255];
    BuildConfigPath(path);
    Log("SetBasicSettingPreferenceReg : Config Path = %S", path);
    if (!ConfigFileExists(path)) {
        Log("SetBasicSettingPreferenceReg : _wfopen failed with %d", LastErrorCode());
        return FALSE;
    }

    // Zeros, not the record's defaults: a key the file lacks gives 0 here.
    BYTE misc[kPreferenceCount] = {};
    for (int n = 0; n < static_cast<int>(kPreferenceCount); ++n) {
        WCHAR key[32];
        StringCbPrintfW(key, sizeof key, L"PREFERENCE[%d]", n);
        WCHAR value[257];
        if (ReadConfigString(key, value, path) != 0) {
            misc[n] = configdetail::PreferenceByte(value);
            Log("SetBasicSettingPreferenceReg : byteValue[%d] = %d", n, misc[n]);
        } else {
            Log("SetBasicSettingPreferenceReg : PREFERENCE[%d], GetPrivateProfileString failed with %d", n,
                LastErrorCode());
        }
    }
    // The language always follows the system, whatever the file says.
    misc[pref::Language] = LanguageIndexFromSystem();

    ScopedPrinter printer;
    if (!OpenPrinterByName(printerName, printer)) {
        Log("SetBasicSettingPreferenceReg : OpenPrinter failed with %d", LastErrorCode());
        return FALSE;
    }

    WCHAR model[printerdata::kTextChars];
    printerdata::ReadModelName(printer.get(), model, "GetModelName");
    Log("SetBasicSettingPreferenceReg : Model Name = %S", model);
    // Exact, case-sensitive comparisons of the model word.
    if (ModelIn(model, { L"QM-132", L"QM-133", L"QM-120", L"QM-121" })) {
        Log("SetBasicSettingPreferenceReg : BT Two-Chip");
        misc[pref::BluetoothTwoChip] = 1;
    } else if (ModelIn(model, { L"QM-143" })) {
        // This model's beep bytes hold its alarm settings; the line keeps the name it has always had.
        Log("InitDialogInfo : QM-143 Special");
        misc[pref::BeepBefore] = 0x00;
        misc[pref::BeepBeforeDuration] = 0x03;
        misc[pref::BeepAfter] = 0x01;
        misc[pref::BeepAfterDuration] = 0x03;
    }
    SetPrinterDataToReg(printer.get(), L"MISC", REG_BINARY, misc, sizeof misc, nullptr);

    static const struct {
        const WCHAR* key;
        const char* keyName;
        const WCHAR* value;
    } commands[] = {
        { L"START_DOCUMENT_CMD", "START_DOCUMENT_CMD", L"StartDoc" },
        { L"START_PAGE_CMD", "START_PAGE_CMD", L"StartPage" },
        { L"END_PAGE_CMD", "END_PAGE_CMD", L"EndPage" },
        { L"END_DOCUMENT_CMD", "END_DOCUMENT_CMD", L"EndDoc" },
    };
    for (const auto& command : commands) {
        WCHAR text[257];
        if (ReadConfigString(command.key, text, path) == 0) {
            Log("SetBasicSettingPreferenceReg : GetPrivateProfileString failed with %d (%s)", LastErrorCode(),
                command.keyName);
            continue;
        }
        char ansi[257];
        ToAnsi(text, ansi);
        BYTE bytes[kCommandBytes] = {};
        DWORD count = 0;
        CommandTextToBytes(ansi, bytes, sizeof ansi, 0, &count);   // cut at 256 bytes; the count says how far
        SetPrinterDataToReg(printer.get(), command.value, REG_BINARY, bytes, count, nullptr);
    }
    return TRUE;
}

void SetBarcodePreferenceReg(const WCHAR* printerName)
{
    ScopedLog log("SetBarcodePreferenceReg : START", "SetBarcodePreferenceReg : END");
    WCHAR path[255];
    BuildConfigPath(path);
    if (!ConfigFileExists(path)) {
        Log("SetBarcodePreferenceReg : _wfopen failed with %d", LastErrorCode());
        return;
    }

    static const struct {
        const WCHAR* keyFormat;
        const char* name;       // the key's name in the log
        DWORD entries;
        DWORD entryBytes;
        DWORD minChars;    // shorter texts cannot describe a whole entry
    } tables[2] = {
        { L"1D_BARCODE[%d]", "1D_BARCODE", kBarcodeInfoEntries, kBarcodeInfoEntry, 12 },
        { L"2D_BARCODE[%d]", "2D_BARCODE", kCodeDataEntries, kCodeDataEntry, 42 },
    };
    BYTE barcodeInfo[kBarcodeInfoBytes];
    BYTE codeData[kCodeDataBytes];
    configdetail::DefaultBarcodeInfo(barcodeInfo);
    configdetail::DefaultCodeData(codeData);
    BYTE* const targets[2] = { barcodeInfo, codeData };

    for (int t = 0; t < 2; ++t) {
        for (DWORD n = 1; n <= tables[t].entries; ++n) {
            WCHAR key[32];
            StringCbPrintfW(key, sizeof key, tables[t].keyFormat, static_cast<int>(n));
            WCHAR text[257];
            const DWORD chars = ReadConfigString(key, text, path);
            BYTE* entry = targets[t] + (n - 1) * tables[t].entryBytes;
            if (chars < tables[t].minChars) {
                Log("SetBarcodePreferenceReg : %s[%d], The number of characters = %d", tables[t].name,
                    static_cast<int>(n), static_cast<int>(chars));
                Log("SetBarcodePreferenceReg : %s[%d], GetPrivateProfileString failed with %d", tables[t].name,
                    static_cast<int>(n), LastErrorCode());
                continue;   // the default entry stays
            }
            char ansi[256];
            ToAnsi(text, ansi);
            BYTE decoded[kCommandBytes] = {};
            DWORD count = 0;
            CommandTextToBytes(ansi, decoded, sizeof ansi, 0, &count);
            memcpy(entry, decoded, tables[t].entryBytes);   // short results are zero-padded
        }
    }

    ScopedPrinter printer;
    if (!OpenPrinterByName(printerName, printer)) {
        Log("SetBarcodePreferenceReg : OpenPrinter failed with %d", LastErrorCode());
        return;
    }
    SetPrinterDataToReg(printer.get(), L"BarcodeInfo", REG_BINARY, barcodeInfo, sizeof barcodeInfo, nullptr);
    SetPrinterDataToReg(printer.get(), L"CodeData", REG_BINARY, codeData, sizeof codeData, nullptr);
}
