#include "dialog_host.h"

#include <commctrl.h>

#include <cstdio>
#include <utility>

namespace dialogs {

const std::vector<Language>& Languages()
{
    static const std::vector<Language> languages = {
        {1033, "en-US", false}, {1031, "de-DE", false}, {1036, "fr-FR", false}, {1034, "es-ES", false},
        {1040, "it-IT", false}, {1045, "pl-PL", false}, {1038, "hu-HU", false}, {1049, "ru-RU", false},
        {1042, "ko-KR", true},  {1041, "ja-JP", true},  {2052, "zh-CN", true},  {1028, "zh-TW", true},
    };
    return languages;
}

const std::vector<WORD>& Templates()
{
    static const std::vector<WORD> templates = {112, 113, 114, 115, 119, 125, 133, 153, 157, 174, 193, 212};
    return templates;
}

const DLGTEMPLATE* FindTemplate(HMODULE module, WORD id, LANGID lang)
{
    HRSRC found = FindResourceExW(module, MAKEINTRESOURCEW(5) /* RT_DIALOG */, MAKEINTRESOURCEW(id), lang);
    if (found == nullptr) return nullptr;
    HGLOBAL loaded = LoadResource(module, found);
    return loaded == nullptr ? nullptr : static_cast<const DLGTEMPLATE*>(LockResource(loaded));
}

HWND HostWindow()
{
    static HWND host = nullptr;
    if (host == nullptr) {
        INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&icc);
        host = CreateWindowExW(0, L"Static", L"dialog host", WS_POPUP, 0, 0, 800, 700, nullptr, nullptr,
                               GetModuleHandleW(nullptr), nullptr);
    }
    return host;
}

static INT_PTR CALLBACK NothingProc(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG ? TRUE : FALSE;
}

HWND Create(HMODULE module, WORD id, LANGID lang, HWND parent)
{
    const DLGTEMPLATE* tmpl = FindTemplate(module, id, lang);
    if (tmpl == nullptr) return nullptr;
    HWND dialog = CreateDialogIndirectParamW(module, tmpl, parent, NothingProc, 0);
    if (dialog != nullptr) ShowWindow(dialog, SW_HIDE);
    return dialog;
}

static const wchar_t* const kCjkFaces[] = {L"MS UI Gothic", L"SimSun", L"PMingLiU", L"Gulim"};

static bool FaceHasGlyph(const wchar_t* face, wchar_t ch)
{
    HDC dc = CreateCompatibleDC(nullptr);
    LOGFONTW lf = {};
    lf.lfHeight = -12;
    lf.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(lf.lfFaceName, face, LF_FACESIZE);
    HFONT font = CreateFontIndirectW(&lf);
    HGDIOBJ old = SelectObject(dc, font);
    WORD glyph = 0xffff;
    GetGlyphIndicesW(dc, &ch, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc, old);
    DeleteObject(font);
    DeleteDC(dc);
    return glyph != 0xffff;
}

// The face GDI really uses for a requested one (without a substitute in place).
static std::wstring ResolvedFace(const wchar_t* face)
{
    HDC dc = CreateCompatibleDC(nullptr);
    LOGFONTW lf = {};
    lf.lfHeight = -11;
    lf.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(lf.lfFaceName, face, LF_FACESIZE);
    HFONT font = CreateFontIndirectW(&lf);
    HGDIOBJ old = SelectObject(dc, font);
    wchar_t used[LF_FACESIZE] = {};
    GetTextFaceW(dc, LF_FACESIZE, used);
    SelectObject(dc, old);
    DeleteObject(font);
    DeleteDC(dc);
    return used;
}

bool CjkFacesRender()
{
    for (const wchar_t* face : kCjkFaces)
        if (!FaceHasGlyph(face, 0x65E5 /* 日 */) || !FaceHasGlyph(face, 0xD55C /* 한 */)) return false;
    return true;
}

static int CALLBACK RememberFace(const LOGFONTW* lf, const TEXTMETRICW*, DWORD, LPARAM found)
{
    *reinterpret_cast<std::wstring*>(found) = lf->lfFaceName;
    return 0;
}

bool SubstituteCjkFaces()
{
    // Fonts that cover Japanese, Korean and both Chinese scripts; the first one installed wins.
    static const wchar_t* const candidates[] = {L"WenQuanYi Zen Hei", L"Noto Sans CJK JP", L"Noto Sans CJK SC",
                                                L"Droid Sans Fallback"};
    std::wstring target;
    HDC dc = GetDC(nullptr);
    for (const wchar_t* name : candidates) {
        LOGFONTW lf = {};
        lf.lfCharSet = DEFAULT_CHARSET;
        lstrcpynW(lf.lfFaceName, name, LF_FACESIZE);
        std::wstring found;
        EnumFontFamiliesExW(dc, &lf, RememberFace, reinterpret_cast<LPARAM>(&found), 0);
        if (!found.empty()) { target = found; break; }
    }
    ReleaseDC(nullptr, dc);
    if (target.empty()) return false;
    HKEY key;
    // Wine links its missing Tahoma (behind "MS Shell Dlg") to the CJK faces: once these exist,
    // Latin pages would be drawn with the CJK font, which lacks letters such as ő and ą. Pin the
    // Western faces to what they resolve to now.
    std::vector<std::pair<std::wstring, std::wstring>> pins;
    for (const wchar_t* face : {L"Tahoma", L"MS Sans Serif", L"Microsoft Sans Serif"}) {
        std::wstring now = ResolvedFace(face);
        if (!now.empty() && lstrcmpiW(now.c_str(), face) != 0) pins.emplace_back(face, now);
    }
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\FontSubstitutes", 0,
                        nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    for (const wchar_t* face : kCjkFaces)
        RegSetValueExW(key, face, 0, REG_SZ, reinterpret_cast<const BYTE*>(target.c_str()),
                       static_cast<DWORD>((target.size() + 1) * sizeof(wchar_t)));
    for (const auto& pin : pins)
        RegSetValueExW(key, pin.first.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(pin.second.c_str()),
                       static_cast<DWORD>((pin.second.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    return true;
}

int RunAgain()
{
    SetEnvironmentVariableW(L"QVR_CJK_FONTS_PREPARED", L"1");
    STARTUPINFOW si = {sizeof si};
    PROCESS_INFORMATION pi = {};
    std::wstring commandLine = GetCommandLineW();
    if (!CreateProcessW(nullptr, &commandLine[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &si, &pi)) {
        std::fprintf(stderr, "could not run the program again (%lu)\n", GetLastError());
        return 1;
    }
    WaitForSingleObject(pi.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(pi.hProcess, &code);
    CloseHandle(pi.hThread);
    CloseHandle(pi.hProcess);
    return static_cast<int>(code);
}

int PrepareFonts()
{
    if (CjkFacesRender()) return -1;
    wchar_t again[4] = {};
    if (GetEnvironmentVariableW(L"QVR_CJK_FONTS_PREPARED", again, 4) != 0) return -1;  // tried once
    if (!SubstituteCjkFaces()) return -1;
    std::fflush(stdout);
    return RunAgain();
}

}  // namespace dialogs
