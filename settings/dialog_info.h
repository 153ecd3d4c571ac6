// The dialog information record: the settings that every page of one property sheet shares.
// Its first 99 bytes are the preferences, persisted whole as the printer value "MISC".
#pragma once

#include <windows.h>
#include <cstddef>

constexpr DWORD kPreferenceCount = 99;     // size of "MISC"
constexpr DWORD kCommandBytes = 256;       // longest command string
constexpr DWORD kCodeDataBytes = 160;      // "CodeData": 8 entries of 20 bytes
constexpr DWORD kCodeDataEntry = 20;
constexpr DWORD kCodeDataEntries = 8;
constexpr DWORD kBarcodeInfoBytes = 65;    // "BarcodeInfo": 13 entries of 5 bytes
constexpr DWORD kBarcodeInfoEntry = 5;
constexpr DWORD kBarcodeInfoEntries = 13;

typedef struct _DIALOGINFO {
    BYTE   byteValue[kPreferenceCount];
    BYTE   startDocCmd[kCommandBytes];
    BYTE   startPageCmd[kCommandBytes];
    BYTE   endPageCmd[kCommandBytes];
    BYTE   endDocCmd[kCommandBytes];
    DWORD  cbPreferences;        // in/out size of the last "MISC" read (also used for "BarcodeInfo")
    DWORD  cbStartDocCmd;        // valid bytes of each command
    DWORD  cbStartPageCmd;
    DWORD  cbEndPageCmd;
    DWORD  cbEndDocCmd;
    DWORD  preferencesStatus;    // Win32 status of the last "MISC" read; non-zero: re-seeded
    DWORD  codeDataIndex;        // Barcode page: "CodeData" entry being edited (0..7)
    DWORD  codeDataSymbol;       // Barcode page: first byte of that entry
    DWORD  barcodeInfoIndex;     // Barcode page: "BarcodeInfo" entry being edited (0..12)
    BYTE   barcodeInfoValue;     // Barcode page: first byte written into that entry on apply
    BYTE*  codeData;             // kCodeDataBytes, document sheet only
    BYTE*  barcodeInfo;          // kBarcodeInfoBytes, document sheet only
    WCHAR  formId[260];          // the driver's form identifier, "[...]"
    WCHAR  printerName[520];
    HANDLE hPrinter;
    HANDLE hHeap;                // the driver core's heap that the record and its blocks come from
} DIALOGINFO, *PDIALOGINFO;

static_assert(offsetof(DIALOGINFO, startDocCmd) == 99, "preferences come first, unpadded");
static_assert(offsetof(DIALOGINFO, endDocCmd) == 99 + 3 * 256, "commands follow");

// Meanings of byteValue indices (ranges and defaults beside each).
namespace pref {
enum : unsigned {
    LineFeeds = 0,               // 0..99
    Drawer1After = 1,            // 0/1
    Drawer1PulseAfter = 2,       // 0..250 in 2 ms steps, default 25
    Drawer2After = 3,
    Drawer2PulseAfter = 4,       // default 25
    PaperCut = 5,                // 0 none, 1 partial at job end, 2 partial at both; default 1
    Drawer1Before = 6,
    Drawer1PulseBefore = 7,      // default 25
    Drawer2Before = 8,
    Drawer2PulseBefore = 9,      // default 25
    BeepBefore = 10,
    BeepBeforeDuration = 11,     // default 25; QM-143: alarm count at End Page
    BeepAfter = 12,
    BeepAfterDuration = 13,      // default 25; QM-143: alarm count at End Doc
    NvImageStartDoc = 15,
    NvImageStartPage = 16,
    NvImageEndPage = 17,
    NvImageEndDoc = 18,
    Copies = 19,                 // 1..255, default 1
    NvImageCommand = 20,         // 1 NV graphic, 0 NV bit image; default 1
    Rotation = 21,               // 0 none, 1 90, 2 180, 3 270 degrees clockwise
    TopCropOn = 23,
    TopCropLength = 24,
    BottomCropOn = 25,
    BottomCropLength = 26,
    TextKey = 27,                // only 1 counts as on
    Language = 28,               // 0 English, 1 German, 2 French, 3 Spanish, 4 Italian, 5 system
    PrintPreview = 29,
    Journal = 30,
    PaperType = 31,              // 0 receipt, 1 ticket
    PaperSize = 32,              // position in the filtered forms list
    ColorMode = 33,              // 0 monochrome, 1 greyscale
    DitherMethod = 34,           // 0..4
    Brightness = 35,             // 0..20, default 10 (unchanged)
    Reserved36 = 36,             // carried unchanged, default 1
    BluetoothTwoChip = 37,
    ReductionOn = 38,
    ReduceBarcodes = 39,
    ReductionRate = 40,          // 0 100%, 1 75%, 2 50%, 3 25%, 4 user defined
    UserReductionRate = 41,      // 25..100
    Orientation = 42,            // 0 portrait, 1 landscape
    FontReplacement = 43,
    PixelInterpolation = 44,
    LeftCropOn = 45,
    LeftCropLength = 46,
    RightCropOn = 47,
    RightCropLength = 48,
    TopCropUnit = 49,            // 0 mm, 1 pixel, 2 margin crop
    BottomCropUnit = 50,
    LeftCropUnit = 51,
    RightCropUnit = 52,
    ColorThreshold = 53,         // default 128
    BoldLine = 54,               // 0..5
};
}  // namespace pref

// Sets byteValue to the built-in defaults (everything else of the record is left alone).
void SetDefaultPreferences(BYTE (&byteValue)[kPreferenceCount]);
