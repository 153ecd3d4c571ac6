// Handles that close themselves.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <memory>
#include <new>

template <typename Traits>
class Scoped {
public:
    using Handle = typename Traits::Handle;
    Scoped() = default;
    explicit Scoped(Handle h) : h_(h) {}
    ~Scoped() { reset(); }
    Scoped(const Scoped&) = delete;
    Scoped& operator=(const Scoped&) = delete;

    Handle get() const { return h_; }
    bool valid() const { return h_ != Traits::Invalid(); }
    Handle* put() { reset(); return &h_; }   // for out-parameters such as OpenPrinterW
    Handle release() { Handle h = h_; h_ = Traits::Invalid(); return h; }
    void reset(Handle h = Traits::Invalid())
    {
        if (h_ != Traits::Invalid()) Traits::Close(h_);
        h_ = h;
    }

private:
    Handle h_ = Traits::Invalid();
};

struct FileTraits {
    using Handle = HANDLE;
    static Handle Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle h) { CloseHandle(h); }
};
struct PrinterTraits {
    using Handle = HANDLE;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle h) { ClosePrinter(h); }
};
struct ModuleTraits {
    using Handle = HMODULE;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle h) { FreeLibrary(h); }
};
struct LocalMemTraits {
    using Handle = HLOCAL;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle h) { LocalFree(h); }
};
struct GdiObjectTraits {
    using Handle = HGDIOBJ;
    static Handle Invalid() { return nullptr; }
    static void Close(Handle h) { DeleteObject(h); }
};

using ScopedFile = Scoped<FileTraits>;
using ScopedPrinter = Scoped<PrinterTraits>;
using ScopedModule = Scoped<ModuleTraits>;
using ScopedLocal = Scoped<LocalMemTraits>;
using ScopedGdiObject = Scoped<GdiObjectTraits>;

// ---- Owned buffers ----------------------------------------------------------------------------

// A zero-filled block of bytes that frees itself: the one way the plug-in owns a variable-size
// buffer (spooler structures, device modes, forms). Null when `size` is 0 or memory is short.
using OwnedBytes = std::unique_ptr<BYTE[]>;
inline OwnedBytes AllocateBytes(size_t size)
{
    return OwnedBytes(size > 0 ? new (std::nothrow) BYTE[size]() : nullptr);
}

// The queue's PRINTER_INFO_2, read afresh (size query, allocation, call). get() is null when the
// read failed; the last error then says why.
class PrinterInfo2 {
public:
    explicit PrinterInfo2(HANDLE hPrinter)
    {
        DWORD needed = 0;
        GetPrinterW(hPrinter, 2, nullptr, 0, &needed);
        if (needed < sizeof(PRINTER_INFO_2W)) return;
        block_ = AllocateBytes(needed);
        ok_ = block_ != nullptr && GetPrinterW(hPrinter, 2, block_.get(), needed, &needed);
    }
    PRINTER_INFO_2W* get() const { return ok_ ? reinterpret_cast<PRINTER_INFO_2W*>(block_.get()) : nullptr; }
    BYTE* bytes() const { return ok_ ? block_.get() : nullptr; }

private:
    OwnedBytes block_;
    bool ok_ = false;
};

// Opens a printer by name with full access (no data type, no device mode), as every
// procedure that changes a queue does.
inline BOOL OpenPrinterFullAccess(const WCHAR* printerName, ScopedPrinter& printer)
{
    PRINTER_DEFAULTSW fullAccess = { nullptr, nullptr, PRINTER_ALL_ACCESS };
    return OpenPrinterW(const_cast<WCHAR*>(printerName), printer.put(), &fullAccess);
}

// Bounded wide-string copy and append into arrays whose size the compiler knows: cut to fit,
// always terminated; S_OK, 0x80070057 or 0x8007007A.
#include <strsafe.h>
template <size_t N>
HRESULT CopyCut(WCHAR (&dst)[N], const WCHAR* src) { return StringCbCopyW(dst, sizeof dst, src); }
template <size_t N>
HRESULT AppendCut(WCHAR (&dst)[N], const WCHAR* src) { return StringCbCatW(dst, sizeof dst, src); }
