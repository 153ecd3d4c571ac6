#include "dialog_host.h"

#include "fonts.h"

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

bool CjkFacesRender() { return oemhost::CjkFacesRender(); }

bool SubstituteCjkFaces() { return oemhost::SubstituteCjkFaces(); }

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
