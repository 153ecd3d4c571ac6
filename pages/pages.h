// Dialog procedures of the plug-in's property pages and modal dialogs.
#pragma once

#include <windows.h>

#include "settings/dialog_info.h"

INT_PTR CALLBACK DlgLayoutProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgDocSettingsProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgNVImageProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgBarcodeSettingsProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgDitherProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgUtilityProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgPrinterSettingProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK DlgAboutProc(HWND hDlg, UINT msg, WPARAM wParam, LPARAM lParam);

// An edit's text (at most 256 characters) in the ANSI code page, as the number readers of the
// pages take it: atoi/atof on this text read leading digits, and no number reads as 0.
template <size_t N>
void GetEditTextAnsi(HWND hDlg, int id, char (&narrow)[N])
{
    WCHAR wide[257] = L"";
    GetDlgItemTextW(hDlg, id, wide, 256);
    narrow[0] = '\0';
    WideCharToMultiByte(CP_ACP, 0, wide, -1, narrow, static_cast<int>(N) - 1, nullptr, nullptr);
    narrow[N - 1] = '\0';
}

// The record a page keeps in DWLP_USER: stored on WM_INITDIALOG from the PROPSHEETPAGEW's lParam,
// fetched for every later message (null before that).
DIALOGINFO* PageRecord(HWND hDlg, UINT msg, LPARAM lParam);
