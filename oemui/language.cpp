#include "oemui/language.h"

#include "oemui/handles.h"
#include "oemui/log.h"

namespace {

typedef LANGID(WINAPI* GetThreadUILanguageFn)();
typedef LANGID(WINAPI* SetThreadUILanguageFn)(LANGID);

DWORD MajorVersion()
{
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExW(&info)) return 0;
    return info.dwMajorVersion;
}

}  // namespace

namespace langdetail {

BYTE IndexForPrimary(WORD primary)
{
    switch (primary) {
    case LANG_GERMAN: return 1;
    case LANG_FRENCH: return 2;
    case LANG_SPANISH: return 3;
    case LANG_ITALIAN: return 4;
    case LANG_CHINESE:
    case LANG_HUNGARIAN:
    case LANG_JAPANESE:
    case LANG_KOREAN:
    case LANG_POLISH:
    case LANG_RUSSIAN: return 5;
    default: return 0;
    }
}

bool SheetLanguageFor(BYTE index, LANGID system, WORD* primary, WORD* sub)
{
    WORD p = LANG_ENGLISH, s = SUBLANG_ENGLISH_US;
    switch (index) {
    case 1: p = LANG_GERMAN; break;
    case 2: p = LANG_FRENCH; break;
    case 3: p = LANG_SPANISH; break;
    case 4: p = LANG_ITALIAN; break;
    case 5: {
        // The seven page languages without an index of their own follow the system.
        const WORD sysPrimary = PRIMARYLANGID(system);
        switch (sysPrimary) {
        case LANG_CHINESE:
            p = LANG_CHINESE;
            s = SUBLANGID(system) == SUBLANG_CHINESE_SIMPLIFIED ? SUBLANG_CHINESE_SIMPLIFIED
                                                                : SUBLANG_CHINESE_TRADITIONAL;
            break;
        case LANG_HUNGARIAN:
        case LANG_JAPANESE:
        case LANG_KOREAN:
        case LANG_POLISH:
        case LANG_RUSSIAN:
            p = sysPrimary;
            s = 1;
            break;
        default:
            return false;
        }
        break;
    }
    default: break;       // 0, and anything out of range, is English
    }
    *primary = p;
    *sub = s;
    return true;
}

int VersionCodeFor(DWORD platformId, DWORD major, DWORD minor, BYTE productType, int serverR2)
{
    const bool workstation = productType == VER_NT_WORKSTATION;
    if (platformId == VER_PLATFORM_WIN32_WINDOWS && major == 4) {
        if (minor == 0) return 2000;
        if (minor == 10) return 2001;
        if (minor == 90) return 2002;
        return 2011;
    }
    if (platformId != VER_PLATFORM_WIN32_NT) return 2011;
    if (major <= 4) return 2003;
    if (major == 5) {
        if (minor == 0) return 2004;
        if (minor == 1) return 2005;
        if (minor == 2) return serverR2 == 0 ? 2006 : 2007;
        return 2011;
    }
    if (major == 6) {
        // 6.1 answers the server first: 2010 is Server 2008 R2, 2011 is Windows 7; 2011 is
        // also the answer for every system the table does not know.
        if (minor == 0) return workstation ? 2008 : 2009;
        if (minor == 1) return workstation ? 2011 : 2010;
        if (minor == 2) return workstation ? 2012 : 2014;
        if (minor == 3) return workstation ? 2013 : 2015;
        return 2011;
    }
    if (major == 10) return workstation ? 2016 : 2017;
    return 2011;
}

}  // namespace langdetail

LANGID GetCurrentUILanguage()
{
    if (MajorVersion() >= 6) {
        // Looked up at run time so that the library also loads where the entry does not exist.
        ScopedModule kernel(LoadLibraryW(L"kernel32.dll"));
        if (kernel.valid()) {
            auto getUi = reinterpret_cast<GetThreadUILanguageFn>(
                reinterpret_cast<void*>(GetProcAddress(kernel.get(), "GetThreadUILanguage")));
            if (getUi != nullptr) {
                const LANGID lang = getUi();
                if (lang != 0) return lang;
            }
        }
    }
    return LOWORD(GetThreadLocale());
}

BOOL SwitchLanguage(WORD primary, WORD sub)
{
    Log("SwitchLanguage START");
    Log("PRIMARYLANGID : %x", primary);
    Log("SUBLANGID : %x", sub);
    const LANGID lang = static_cast<LANGID>(primary | (sub << 10));
    BOOL ok = FALSE;
    if (MajorVersion() >= 6) {
        Log("VISTA OR LATER");
        ScopedModule kernel(LoadLibraryW(L"kernel32.dll"));
        if (kernel.valid()) {
            auto setUi = reinterpret_cast<SetThreadUILanguageFn>(
                reinterpret_cast<void*>(GetProcAddress(kernel.get(), "SetThreadUILanguage")));
            if (setUi != nullptr && setUi(lang) != 0) ok = TRUE;
        }
    }
    if (!ok) ok = SetThreadLocale(MAKELCID(lang, SORT_DEFAULT));
    const LANGID now = GetCurrentUILanguage();
    Log("PRIMARYLANGID : %x", PRIMARYLANGID(now));
    Log("SUBLANGID : %x", SUBLANGID(now));
    if (!ok) Log("SetThreadLocale failed.");
    Log("SwitchLanguage END");
    return ok;
}

BYTE LanguageIndexFromSystem()
{
    return langdetail::IndexForPrimary(PRIMARYLANGID(GetCurrentUILanguage()));
}

void SelectSheetLanguage(const DIALOGINFO* lpdi)
{
    if (lpdi == nullptr) return;
    const BYTE index = lpdi->byteValue[pref::Language];
    // Only index 5 depends on the system; the others are fixed languages.
    const LANGID system = index == 5 ? GetCurrentUILanguage() : 0;
    WORD primary = 0, sub = 0;
    if (langdetail::SheetLanguageFor(index, system, &primary, &sub)) SwitchLanguage(primary, sub);
}

int GetWindowsVersionCode()
{
    OSVERSIONINFOEXW info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) {
        info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
        if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) return 2011;
    }
    int serverR2 = 0;
    if (info.dwPlatformId == VER_PLATFORM_WIN32_NT && info.dwMajorVersion == 5 && info.dwMinorVersion == 2)
        serverR2 = GetSystemMetrics(SM_SERVERR2);
    return langdetail::VersionCodeFor(info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion,
                                      info.wProductType, serverR2);
}
