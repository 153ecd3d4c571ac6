// dialog_snapshot OUTDIR [template...]: draws every dialog template of the plug-in in every
// language on the screen and saves each as OUTDIR\<template>-<language>.bmp, for a person to
// look at the pages the way a user sees them (bmp_to_png.py converts them).
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "dialog_host.h"

static void Pump(int rounds)
{
    for (int i = 0; i < rounds; ++i) {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
        Sleep(30);
    }
}

static bool SaveScreenRect(const RECT& r, const std::wstring& path)
{
    const int w = r.right - r.left, h = r.bottom - r.top;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO bi = {};
    bi.bmiHeader.biSize = sizeof bi.bmiHeader;
    bi.bmiHeader.biWidth = w;
    bi.bmiHeader.biHeight = h;
    bi.bmiHeader.biPlanes = 1;
    bi.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &bi, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, w, h, screen, r.left, r.top, SRCCOPY);
    GdiFlush();
    const DWORD stride = (w * 3 + 3) & ~3;
    BITMAPFILEHEADER fh = {};
    fh.bfType = 0x4d42;
    fh.bfOffBits = sizeof fh + sizeof bi.bmiHeader;
    fh.bfSize = fh.bfOffBits + stride * h;
    bool ok = false;
    if (FILE* f = _wfopen(path.c_str(), L"wb")) {
        ok = fwrite(&fh, sizeof fh, 1, f) == 1 && fwrite(&bi.bmiHeader, sizeof bi.bmiHeader, 1, f) == 1 &&
             fwrite(bits, stride * h, 1, f) == 1;
        fclose(f);
    }
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return ok;
}

int wmain(int argc, wchar_t** argv)
{
    int prepared = dialogs::PrepareFonts();
    if (prepared >= 0) return prepared;
    if (argc < 2) {
        std::fprintf(stderr, "usage: dialog_snapshot OUTDIR [template...]\n");
        return 2;
    }
    std::vector<WORD> templates;
    for (int i = 2; i < argc; ++i) templates.push_back(static_cast<WORD>(_wtoi(argv[i])));
    if (templates.empty()) templates = dialogs::Templates();

    HMODULE plugin = LoadLibraryW(L"UIQVRPOS.dll");
    if (plugin == nullptr) {
        std::fprintf(stderr, "UIQVRPOS.dll not loaded (%lu)\n", GetLastError());
        return 1;
    }
    dialogs::HostWindow();
    int failures = 0;
    for (WORD id : templates) {
        for (const dialogs::Language& lang : dialogs::Languages()) {
            const DLGTEMPLATE* tmpl = dialogs::FindTemplate(plugin, id, lang.id);
            if (tmpl == nullptr) { ++failures; continue; }
            // Pages are child windows: give them a frame of their own to sit in.
            const bool child = (tmpl->style & WS_CHILD) != 0 ||
                               (reinterpret_cast<const WORD*>(tmpl)[1] == 0xffff &&
                                (reinterpret_cast<const DWORD*>(tmpl)[3] & WS_CHILD) != 0);
            HWND frame = nullptr;
            if (child) {
                frame = CreateWindowExW(WS_EX_TOPMOST, L"Static", L"", WS_POPUP | WS_BORDER | SS_GRAYRECT, 0, 0, 900, 800,
                                        nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
            }
            HWND dialog = dialogs::Create(plugin, id, lang.id, child ? frame : dialogs::HostWindow());
            if (dialog == nullptr) { ++failures; if (frame) DestroyWindow(frame); continue; }
            RECT r;
            GetWindowRect(dialog, &r);
            if (child) {
                SetWindowLongPtrW(dialog, GWL_STYLE, (GetWindowLongPtrW(dialog, GWL_STYLE) & ~WS_CAPTION));
                SetWindowPos(dialog, nullptr, 1, 1, r.right - r.left, r.bottom - r.top, SWP_NOZORDER | SWP_FRAMECHANGED);
                SetWindowPos(frame, HWND_TOPMOST, 0, 0, r.right - r.left + 2, r.bottom - r.top + 2, SWP_SHOWWINDOW);
                ShowWindow(dialog, SW_SHOW);
            } else {
                SetWindowPos(dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
            }
            Pump(6);
            RedrawWindow(child ? frame : dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            Pump(4);
            GetWindowRect(child ? frame : dialog, &r);
            wchar_t path[MAX_PATH];
            swprintf(path, MAX_PATH, L"%ls\\%u-%hs.bmp", argv[1], id, lang.tag);
            if (!SaveScreenRect(r, path)) ++failures;
            DestroyWindow(dialog);
            if (frame) DestroyWindow(frame);
        }
    }
    return failures == 0 ? 0 : 1;
}
