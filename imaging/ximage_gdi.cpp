// CxImage's one way in from GDI: reading a bitmap handle through GetDIBits.
#include "imaging/ximage.h"

namespace {

// The screen DC, released on every way out.
class ScreenDC {
public:
    ScreenDC() : dc_(GetDC(nullptr)) {}
    ~ScreenDC()
    {
        if (dc_ != nullptr) ReleaseDC(nullptr, dc_);
    }
    ScreenDC(const ScreenDC&) = delete;
    ScreenDC& operator=(const ScreenDC&) = delete;
    HDC get() const { return dc_; }

private:
    HDC dc_;
};

}  // namespace

bool CxImage::CreateFromBitmap(HBITMAP hbmp)
{
    if (!Destroy()) return false;
    if (hbmp == nullptr) return false;
    BITMAP bm = {};
    // Anything but a bitmap answers with another structure's size.
    if (GetObjectW(hbmp, sizeof bm, &bm) != static_cast<int>(sizeof bm)) return false;
    if (bm.bmWidth <= 0 || bm.bmHeight <= 0) {
        Create(0, 0, 0, 0);  // stores the width/height message
        return false;
    }
    if (Create(static_cast<DWORD>(bm.bmWidth), static_cast<DWORD>(bm.bmHeight), bm.bmBitsPixel, 0) == nullptr)
        return false;
    ScreenDC screen;
    // The block is a BITMAPINFO as it stands: GetDIBits converts to its depth and, for 1, 4 and
    // 8 bits, fills in its colour table.
    const int rows = GetDIBits(screen.get(), hbmp, 0, GetHeight(), m_bits,
                               reinterpret_cast<BITMAPINFO*>(m_dib), DIB_RGB_COLORS);
    if (rows == 0) {
        SetLastError("GetDIBits failed");
        return false;
    }
    // GetDIBits may have rewritten header fields (colour count, image size) in the block; the
    // object's header stays the authority, so the block keeps describing its own layout.
    SyncHeader();
    return true;
}
