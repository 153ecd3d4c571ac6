// Pages whose controls are laid out but not yet wired: they keep the record like every page and
// otherwise leave the sheet's default handling alone.
#include "pages/pages.h"

namespace {
INT_PTR PendingPage(HWND hDlg, UINT msg, LPARAM lParam)
{
    page::PageRecord(hDlg, msg, lParam);
    return msg == WM_INITDIALOG ? TRUE : FALSE;
}
}  // namespace

INT_PTR CALLBACK DlgDocSettingsProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgNVImageProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgBarcodeSettingsProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgDitherProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgUtilityProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgPrinterSettingProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
INT_PTR CALLBACK DlgAboutProc(HWND hDlg, UINT msg, WPARAM, LPARAM lParam) { return PendingPage(hDlg, msg, lParam); }
