#include "fonts.h"

#include <utility>
#include <vector>

namespace oemhost {

namespace {

const wchar_t* const kCjkFaces[] = {L"MS UI Gothic", L"SimSun", L"PMingLiU", L"Gulim"};

bool FaceHasGlyph(const wchar_t* face, wchar_t ch)
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
std::wstring ResolvedFace(const wchar_t* face)
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

int CALLBACK RememberFace(const LOGFONTW* lf, const TEXTMETRICW*, DWORD, LPARAM found)
{
    *reinterpret_cast<std::wstring*>(found) = lf->lfFaceName;
    return 0;
}

}  // namespace

bool CjkFacesRender()
{
    for (const wchar_t* face : kCjkFaces)
        if (!FaceHasGlyph(face, 0x65E5 /* 日 */) || !FaceHasGlyph(face, 0xD55C /* 한 */)) return false;
    return true;
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

}  // namespace oemhost
