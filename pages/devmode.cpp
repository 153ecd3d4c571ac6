#include "pages/devmode.h"

#include <commctrl.h>
#include <new>

#include "oemui/handles.h"
#include "oemui/log.h"
#include "pages/user_paper.h"
#include "resources/resource.h"
#include "settings/printer_data.h"

namespace {

// The printer's current default device mode, as the driver answers it.
class DefaultDevMode {
public:
    DefaultDevMode(HANDLE hPrinter, WCHAR* printerName)
        : block_(AllocateBytes(ByteCount(DocumentPropertiesW(nullptr, hPrinter, printerName, nullptr, nullptr, 0))))
    {
        if (block_.get() != nullptr &&
            DocumentPropertiesW(nullptr, hPrinter, printerName, get(), nullptr, DM_OUT_BUFFER) < 0)
            failed_ = true;
    }
    DEVMODEW* get() const { return failed_ ? nullptr : reinterpret_cast<DEVMODEW*>(block_.get()); }

private:
    static size_t ByteCount(LONG size) { return size > 0 ? static_cast<size_t>(size) : 0; }
    OwnedBytes block_;
    bool failed_ = false;
};

// The log texts of one device-mode member's writer.
struct WriterTexts {
    const char* start;
    const char* end;
    const char* nullRecord;
    const char* who;          // the writer's name, which starts every other line
    const char* argument;     // "<who> : <argument> = <n>"
    const char* oldValue;     // "<who> : <oldValue> = <n>", the member before the write
    const char* newValue;     // "<who> : <newValue> = <n>", the member after it
    const char* storeFailed;  // "<who> : <storeFailed> = <error>"
    const char* readFailed;   // "<who> : <readFailed> = <error>"
};

// The pattern that copies, orientation, colour and paper source share: fetch the default device
// mode, read the queue, put the new value into the member and store the result only when the
// value really changed.
typedef short& (*DevModeMember)(DEVMODEW*);
short& CopiesOf(DEVMODEW* dm) { return dm->dmCopies; }
short& OrientationOf(DEVMODEW* dm) { return dm->dmOrientation; }
short& ColorOf(DEVMODEW* dm) { return dm->dmColor; }
short& DefaultSourceOf(DEVMODEW* dm) { return dm->dmDefaultSource; }

BOOL WriteDevModeMember(DIALOGINFO* lpdi, int argument, DevModeMember member, short value, const WriterTexts& t)
{
    ScopedLog log(t.start, t.end);
    if (lpdi == nullptr) {
        Log("%s", t.nullRecord);
        return FALSE;
    }
    DefaultDevMode devMode(lpdi->hPrinter, lpdi->printerName);
    PrinterInfo2 info(lpdi->hPrinter);
    if (info.get() == nullptr || devMode.get() == nullptr) {
        Log("%s : %s = %d", t.who, t.readFailed, LastErrorCode());
        return FALSE;
    }
    DEVMODEW* dm = devMode.get();
    const short old = member(dm);
    info.get()->pDevMode = dm;
    info.get()->pSecurityDescriptor = nullptr;   // the queue's security stays as it is
    member(dm) = value;
    Log("%s : %s = %d", t.who, t.argument, argument);
    Log("%s : %s = %d", t.who, t.oldValue, old);
    Log("%s : %s = %d", t.who, t.newValue, member(dm));
    if (old == value) return TRUE;

    const BOOL stored = SetPrinterInfo2(lpdi->hPrinter, info.get(), lpdi);
    if (!stored) Log("%s : %s = %d", t.who, t.storeFailed, LastErrorCode());
    return stored;
}

}  // namespace

BOOL SetCopyCount(DIALOGINFO* lpdi, int nCount)
{
    static const WriterTexts texts = {
        "SetCopyCount : START", "SetCopyCount : END", "SetCopyCount : lpdi is NULL", "SetCopyCount",
        "nCount", "dmCopies", "pDevMode->dmCopies", "SetPrinterInfo2 failed", "GetPrinter failed with" };
    return WriteDevModeMember(lpdi, nCount, CopiesOf, static_cast<short>(nCount & 0xFF), texts);
}

BOOL SetOrientation(DIALOGINFO* lpdi, int nOrientation)
{
    static const WriterTexts texts = {
        "SetOrientation : START", "SetOrientation : END", "SetOrientation : lpdi is NULL", "SetOrientation",
        "nOrientation", "dmOrientation", "pDevMode->dmOrientation", "SetPrinterInfo2 failed",
        "GetPrinter failed with" };
    const short value = nOrientation == 1 ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    return WriteDevModeMember(lpdi, nOrientation, OrientationOf, value, texts);
}

BOOL SetColorType(DIALOGINFO* lpdi, int nType)
{
    static const WriterTexts texts = {
        "SetColorType : START", "SetColorType : END", "SetColorType : lpdi is NULL", "SetColorType",
        "nType", "dmColor", "pDevMode->dmColor", "SetPrinterInfo2 failed", "GetPrinter failed with" };
    const short value = nType == 2 ? DMCOLOR_COLOR : DMCOLOR_MONOCHROME;
    return WriteDevModeMember(lpdi, nType, ColorOf, value, texts);
}

BOOL SetPaperType(DIALOGINFO* lpdi, int nType)
{
    static const WriterTexts texts = {
        "SetPaperType : START", "SetPaperType : END", "SetPaperType : lpdi is NULL", "SetPaperType",
        "nType", "dwDefaultSource", "pDevMode->dmDefaultSource", "SetPrinterInfo2 failed with",
        "GetPrinter failed with" };
    const short value = nType == 0 ? kReceiptBin : nType == 1 ? kTicketBin : DMBIN_FORMSOURCE;
    return WriteDevModeMember(lpdi, nType, DefaultSourceOf, value, texts);
}

BOOL SetPaperSize(HWND hDlg, int index)
{
    auto* lpdi = reinterpret_cast<DIALOGINFO*>(GetWindowLongPtrW(hDlg, DWLP_USER));
    ScopedLog log("SetPaperSize : START", "SetPaperSize : END");
    if (lpdi == nullptr) return FALSE;

    // The full form name: the list's display name followed by the driver's form identifier.
    WCHAR fullName[kFormNameChars] = L"";
    const HWND list = GetDlgItem(hDlg, IDC_LAYOUT_PAPER_SIZE);
    const LRESULT textLength = SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0);
    if (textLength != CB_ERR && textLength < static_cast<LRESULT>(kFormNameChars)) {
        SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(fullName));
    }
    WCHAR formId[260] = L"";
    DWORD formIdLength = 0;
    GetFormID(lpdi, formId, &formIdLength);
    AppendCut(fullName, formId);

    PrinterForms forms(lpdi->hPrinter);
    const FORM_INFO_1W* form = forms.Find(fullName);
    if (form == nullptr) {
        // The form went away (deleted or renamed in the paper dialog): remember where the driver's
        // default form sits in the list instead, in byte 12, and leave the device mode alone.
        WCHAR defaultForm[260] = L"";
        DWORD defaultLength = 0;
        GetFormDefaultWidthHeight(lpdi, defaultForm, &defaultLength);
        lpdi->byteValue[12] = static_cast<BYTE>(FindPaperSizeIndex(hDlg, defaultForm));
        return forms.ok();
    }

    DefaultDevMode devMode(lpdi->hPrinter, lpdi->printerName);
    DEVMODEW* dm = devMode.get();
    PrinterInfo2 info(lpdi->hPrinter);
    if (info.get() == nullptr || dm == nullptr) {
        Log("SetPaperSize : GetPrinter failed with (%d)", LastErrorCode());
        return FALSE;
    }
    CopyCut(dm->dmFormName, form->pName);
    info.get()->pDevMode = dm;
    info.get()->pSecurityDescriptor = nullptr;
    dm->dmPaperSize = 0;

    // Only the low 16 bits of the form's size take part in the comparison, read as a signed
    // number: forms from 32.768 mm up never match and so are always written.
    const short width16 = static_cast<short>(form->Size.cx & 0xFFFF);
    const short length16 = static_cast<short>(form->Size.cy & 0xFFFF);
    if (width16 / 100 == dm->dmPaperWidth && length16 / 100 == dm->dmPaperLength) return TRUE;

    dm->dmPaperWidth = static_cast<short>(form->Size.cx / 100);
    dm->dmPaperLength = static_cast<short>(form->Size.cy / 100);
    DocumentPropertiesW(nullptr, lpdi->hPrinter, lpdi->printerName, dm, dm, DM_IN_BUFFER | DM_OUT_BUFFER);
    const BOOL stored = SetPrinterInfo2(lpdi->hPrinter, info.get(), lpdi);
    if (!stored) Log("SetPaperSize : SetPrinterInfo2 failed = %d", LastErrorCode());
    return stored;
}

BOOL SetPrinterInfo2(HANDLE hPrinter, PRINTER_INFO_2W* pInfo, const DIALOGINFO* lpdi)
{
    if (SetPrinterW(hPrinter, 2, reinterpret_cast<BYTE*>(pInfo), 0)) return TRUE;
    Log("SetPrinterInfo2 : SetPrinter failed-1 with (%d)", LastErrorCode());
    if (lpdi == nullptr) return FALSE;

    ScopedPrinter byName;
    if (!OpenPrinterByName(lpdi->printerName, byName)) {
        Log("SetPrinterInfo2 : OpenPrinter failed-2 with (%d)", LastErrorCode());
        return FALSE;
    }
    // The second attempt goes through the caller's handle again: the handle opened by name only
    // shows that the printer can still be reached.
    const BOOL second = SetPrinterW(hPrinter, 2, reinterpret_cast<BYTE*>(pInfo), 0);
    if (second)
        Log("SetPrinterInfo2 : SetPrinter succeeded");
    else
        Log("SetPrinterInfo2 : SetPrinter failed-2 with (%d)", LastErrorCode());
    return second;
}
