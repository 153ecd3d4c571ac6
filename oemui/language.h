// The interface language: which of the twelve template sets a sheet shows, and the Windows
// version classification used by the Utility page.
#pragma once

#include <windows.h>

#include "settings/dialog_info.h"

// The thread's user-interface language (GetThreadUILanguage where the system has it), else
// the low 16 bits of the thread locale.
LANGID GetCurrentUILanguage();
// Switches the calling thread to primary | sub << 10. Non-zero on success.
BOOL SwitchLanguage(WORD primary, WORD sub);
// byteValue[28] for a record seeded now: 1..4 for German, French, Spanish, Italian; 5 for the
// languages that follow the system; 0 (English) for any other.
BYTE LanguageIndexFromSystem();
// Switches the thread to the language of lpdi->byteValue[28]; called before a sheet adds its pages.
void SelectSheetLanguage(const DIALOGINFO* lpdi);
// 2000..2017, classifying the running system.
int GetWindowsVersionCode();

// The pure decisions behind the calls above.
namespace langdetail {
BYTE IndexForPrimary(WORD primary);
// The language that index `index` switches to on a system whose language is `system`;
// false when the thread is left as it is.
bool SheetLanguageFor(BYTE index, LANGID system, WORD* primary, WORD* sub);
// serverR2 is GetSystemMetrics(SM_SERVERR2); productType is OSVERSIONINFOEXW.wProductType.
int VersionCodeFor(DWORD platformId, DWORD major, DWORD minor, BYTE productType, int serverR2);
}  // namespace langdetail
