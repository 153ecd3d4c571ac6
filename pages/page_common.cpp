#include "pages/pages.h"

#include <prsht.h>

DIALOGINFO* PageRecord(HWND hDlg, UINT msg, LPARAM lParam)
{
    if (msg == WM_INITDIALOG)
        SetWindowLongPtrW(hDlg, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
    return reinterpret_cast<DIALOGINFO*>(GetWindowLongPtrW(hDlg, DWLP_USER));
}
