// CxImage: creation, hand-over, pixel and palette access, masks and sub-images.
// Nothing in this file touches a window or GDI, so it builds natively as well.
#include "imaging/ximage.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace {

const char kMsgSize[] = "CxImage::Create : width and height must be greater than zero";
const char kMsgAlloc[] = "CxImage::Create can't allocate memory";

// 96 dots per inch in pixels per metre: the integer part of 96 * 10000 / 254 + 0.5.
const LONG kPelsPerMeter96 = static_cast<LONG>(96 * 10000 / 254.0 + 0.5);

// The largest DIB block Create hands out. biSizeImage is a DWORD, and the block must also stay
// addressable with signed offsets; anything larger is refused before allocation.
const uint64_t kMaxImageBytes = 0xFFFFFFFFull - 40 - 4 * 256;

RGBQUAD Rgb(BYTE r, BYTE g, BYTE b)
{
    RGBQUAD q;
    q.rgbBlue = b;
    q.rgbGreen = g;
    q.rgbRed = r;
    q.rgbReserved = 0;
    return q;
}

bool SameColor(RGBQUAD a, RGBQUAD b)
{
    return a.rgbBlue == b.rgbBlue && a.rgbGreen == b.rgbGreen && a.rgbRed == b.rgbRed &&
           a.rgbReserved == b.rgbReserved;
}

// The sixteen classic colours as (red, green, blue).
const BYTE kStd16[16][3] = {
    {0, 0, 0},     {128, 0, 0},   {0, 128, 0},   {128, 128, 0},
    {0, 0, 128},   {128, 0, 128}, {0, 128, 128}, {192, 192, 192},
    {128, 128, 128}, {255, 0, 0}, {0, 255, 0},   {255, 255, 0},
    {0, 0, 255},   {255, 0, 255}, {0, 255, 255}, {255, 255, 255},
};

}  // namespace

CxImage::CxImage()
    : m_dib(nullptr), m_head(), m_effWidth(0), m_bits(nullptr), m_type(1), m_lastError(),
      m_progress(0), m_escape(0), m_bkgndIndex(-1), m_selection(nullptr), m_selectionBox(),
      m_alpha(nullptr), m_lastColor(), m_lastColorIndex(0), m_lastColorValid(false),
      m_ghost(nullptr), m_layers(nullptr), m_numLayers(0), m_frames(nullptr), m_numFrames(0)
{
    m_head.biXPelsPerMeter = kPelsPerMeter96;
    m_head.biYPelsPerMeter = kPelsPerMeter96;
}

CxImage::~CxImage()
{
    if (m_ghost != nullptr) return;  // a view owns nothing
    DestroyFrames();
    Destroy();
}

void CxImage::SetLastError(const char* text)
{
    size_t n = strlen(text);
    if (n >= sizeof m_lastError) n = sizeof m_lastError - 1;
    memcpy(m_lastError, text, n);
    m_lastError[n] = '\0';
}

void* CxImage::Create(DWORD dwWidth, DWORD dwHeight, DWORD wBpp, DWORD imagetype)
{
    if (dwWidth == 0 || dwHeight == 0) {
        SetLastError(kMsgSize);
        return nullptr;
    }
    DWORD colors;
    if (wBpp < 2) {
        wBpp = 1;
        colors = 2;
    } else if (wBpp < 5) {
        wBpp = 4;
        colors = 16;
    } else if (wBpp > 8) {
        wBpp = 24;
        colors = 0;
    } else {
        wBpp = 8;
        colors = 256;
    }
    // The header keeps width and height as signed 32-bit values and the image size as a DWORD:
    // sizes that do not fit are refused instead of wrapping into a too-small block.
    const uint64_t stride = ((uint64_t(dwWidth) * wBpp + 31) >> 5) << 2;
    if (dwWidth > 0x7FFFFFFFu || dwHeight > 0x7FFFFFFFu || stride > kMaxImageBytes / dwHeight) {
        SetLastError(kMsgAlloc);
        return nullptr;
    }
    const uint64_t imageBytes = stride * dwHeight;
    const uint64_t total = imageBytes + 4ull * colors + sizeof(BITMAPINFOHEADER);
    if (total > SIZE_MAX / 2) {
        SetLastError(kMsgAlloc);
        return nullptr;
    }

    // Create does not run Destroy (layers and frames stay), but a block left from an earlier
    // Create is released rather than leaked, and masks sized for that picture go with it. A view
    // becomes an image of its own and leaves its owner's blocks alone.
    if (m_ghost != nullptr) {
        m_ghost = nullptr;
        m_dib = nullptr;
        m_selection = nullptr;
        m_alpha = nullptr;
    }
    delete[] m_dib;
    m_dib = nullptr;
    m_bits = nullptr;
    delete[] m_selection;
    m_selection = nullptr;
    delete[] m_alpha;
    m_alpha = nullptr;

    m_type = imagetype;
    m_effWidth = static_cast<DWORD>(stride);
    m_head.biSize = sizeof(BITMAPINFOHEADER);
    m_head.biWidth = static_cast<LONG>(dwWidth);
    m_head.biHeight = static_cast<LONG>(dwHeight);
    m_head.biPlanes = 1;
    m_head.biBitCount = static_cast<WORD>(wBpp);
    m_head.biCompression = BI_RGB;
    m_head.biSizeImage = static_cast<DWORD>(imageBytes);
    m_head.biClrUsed = colors;

    m_dib = new (std::nothrow) BYTE[static_cast<size_t>(total)];
    if (m_dib == nullptr) {
        SetLastError(kMsgAlloc);
        return nullptr;
    }
    memset(m_dib + sizeof(BITMAPINFOHEADER), 0, 4 * colors);
    SyncHeader();
    DWORD headerSize;
    memcpy(&headerSize, m_dib, sizeof headerSize);
    m_bits = m_dib + headerSize + 4 * colors;
    m_lastColorValid = false;
    return m_dib;
}

void CxImage::SyncHeader()
{
    if (m_dib != nullptr) memcpy(m_dib, &m_head, sizeof m_head);
}

size_t CxImage::GetDIBSize() const
{
    if (m_dib == nullptr) return 0;
    return m_head.biSize + 4 * size_t(m_head.biClrUsed) + m_head.biSizeImage;
}

void CxImage::SetClrImportant(DWORD ncolors)
{
    if (ncolors > m_head.biClrUsed) ncolors = 0;  // "all of them"
    m_head.biClrImportant = ncolors;
    SyncHeader();
    m_lastColorValid = false;
}

BYTE* CxImage::GetBits(DWORD row) const
{
    if (m_dib == nullptr) return nullptr;
    if (row >= GetHeight()) return nullptr;
    return m_bits + size_t(row) * m_effWidth;
}

bool CxImage::Destroy()
{
    if (m_ghost != nullptr) return false;
    for (long i = 0; i < m_numLayers; i++) delete m_layers[i];
    delete[] m_layers;
    m_layers = nullptr;
    m_numLayers = 0;
    delete[] m_selection;
    m_selection = nullptr;
    delete[] m_alpha;
    m_alpha = nullptr;
    delete[] m_dib;
    m_dib = nullptr;
    m_bits = nullptr;
    // An empty image describes nothing: keep only the resolution, so a later Create starts clean.
    const LONG xres = m_head.biXPelsPerMeter, yres = m_head.biYPelsPerMeter;
    m_head = BITMAPINFOHEADER();
    m_head.biXPelsPerMeter = xres;
    m_head.biYPelsPerMeter = yres;
    m_effWidth = 0;
    m_lastColorValid = false;
    return true;
}

bool CxImage::DestroyFrames()
{
    if (m_ghost != nullptr) return false;
    for (long i = 0; i < m_numFrames; i++) delete m_frames[i];
    delete[] m_frames;
    m_frames = nullptr;
    m_numFrames = 0;
    return true;
}

bool CxImage::Transfer(CxImage& from)
{
    if (&from == this || from.m_ghost != nullptr) return false;
    if (!Destroy()) return false;

    m_head = from.m_head;
    m_effWidth = from.m_effWidth;
    m_bits = from.m_bits;
    m_type = from.m_type;
    memcpy(m_lastError, from.m_lastError, sizeof m_lastError);
    m_progress = from.m_progress;
    m_escape = from.m_escape;
    m_bkgndIndex = from.m_bkgndIndex;
    m_selectionBox = from.m_selectionBox;
    m_lastColor = from.m_lastColor;
    m_lastColorIndex = from.m_lastColorIndex;
    m_lastColorValid = from.m_lastColorValid;
    m_dib = from.m_dib;
    m_selection = from.m_selection;
    m_alpha = from.m_alpha;
    m_layers = from.m_layers;
    m_numLayers = from.m_numLayers;

    from.m_head = BITMAPINFOHEADER();
    from.m_effWidth = 0;
    from.m_bits = nullptr;
    from.m_type = 0;
    memset(from.m_lastError, 0, sizeof from.m_lastError);
    from.m_progress = 0;
    from.m_escape = 0;
    from.m_bkgndIndex = 0;
    from.m_selectionBox = RECT();
    from.m_lastColor = RGBQUAD();
    from.m_lastColorIndex = 0;
    from.m_lastColorValid = false;
    from.m_dib = nullptr;
    from.m_selection = nullptr;
    from.m_alpha = nullptr;
    from.m_layers = nullptr;
    from.m_numLayers = 0;

    DestroyFrames();
    m_frames = from.m_frames;
    m_numFrames = from.m_numFrames;
    from.m_frames = nullptr;
    from.m_numFrames = 0;
    return true;
}

void CxImage::CopyInfo(const CxImage& src)
{
    m_type = src.m_type;
    m_head.biXPelsPerMeter = src.m_head.biXPelsPerMeter;
    m_head.biYPelsPerMeter = src.m_head.biYPelsPerMeter;
    m_bkgndIndex = src.m_bkgndIndex;
    m_selectionBox = src.m_selectionBox;
    m_escape = src.m_escape;
    SyncHeader();
}

void CxImage::Ghost(const CxImage& src)
{
    if (m_ghost == nullptr) {
        DestroyFrames();
        Destroy();
    }
    m_head = src.m_head;
    m_effWidth = src.m_effWidth;
    m_bits = src.m_bits;
    m_type = src.m_type;
    m_bkgndIndex = src.m_bkgndIndex;
    m_selectionBox = src.m_selectionBox;
    m_dib = src.m_dib;
    m_selection = src.m_selection;
    m_alpha = src.m_alpha;
    m_layers = nullptr;
    m_numLayers = 0;
    m_frames = nullptr;
    m_numFrames = 0;
    m_lastColorValid = false;
    m_ghost = &src;
}

// ---- pixels ----

bool CxImage::IsInside(long x, long y) const
{
    return x >= 0 && y >= 0 && x < m_head.biWidth && y < m_head.biHeight;
}

BYTE CxImage::GetPixelIndex(long x, long y) const
{
    if (m_dib == nullptr || m_head.biClrUsed == 0) return 0;
    if (!IsInside(x, y)) {
        if (m_bkgndIndex >= 0) return static_cast<BYTE>(m_bkgndIndex);
        return *m_bits;
    }
    return BlindGetPixelIndex(x, y);
}

BYTE CxImage::BlindGetPixelIndex(long x, long y) const
{
    const BYTE* row = m_bits + size_t(y) * m_effWidth;
    switch (m_head.biBitCount) {
    case 8:
        return row[x];
    case 4: {
        const BYTE b = row[x >> 1];
        return (x & 1) ? (b & 0x0F) : (b >> 4);
    }
    case 1:
        return (row[x >> 3] >> (7 - (x & 7))) & 1;
    default:
        return 0;
    }
}

void CxImage::SetPixelIndex(long x, long y, BYTE i)
{
    if (m_dib == nullptr || m_head.biClrUsed == 0 || !IsInside(x, y)) return;
    BlindSetPixelIndex(x, y, i);
}

void CxImage::BlindSetPixelIndex(long x, long y, BYTE i)
{
    BYTE* row = m_bits + size_t(y) * m_effWidth;
    switch (m_head.biBitCount) {
    case 8:
        row[x] = i;
        break;
    case 4: {
        BYTE& b = row[x >> 1];
        if (x & 1)
            b = static_cast<BYTE>((b & 0xF0) | (i & 0x0F));
        else
            b = static_cast<BYTE>((b & 0x0F) | (i << 4));
        break;
    }
    case 1: {
        BYTE& b = row[x >> 3];
        const BYTE mask = static_cast<BYTE>(0x80 >> (x & 7));
        if (i & 1)
            b |= mask;
        else
            b &= static_cast<BYTE>(~mask);
        break;
    }
    default:
        break;
    }
}

RGBQUAD CxImage::GetPixelColor(long x, long y) const
{
    RGBQUAD c = RGBQUAD();
    if (m_dib == nullptr) return c;
    if (m_head.biClrUsed != 0) {
        c = GetPaletteColor(BlindGetPixelIndex(x, y));
    } else {
        const BYTE* p = m_bits + size_t(y) * m_effWidth + 3 * size_t(x);
        c.rgbBlue = p[0];
        c.rgbGreen = p[1];
        c.rgbRed = p[2];
    }
    if (m_alpha != nullptr) c.rgbReserved = AlphaGet(x, y);
    return c;
}

void CxImage::SetPixelColor(long x, long y, RGBQUAD c)
{
    if (m_dib == nullptr) return;
    if (m_head.biClrUsed != 0) {
        BlindSetPixelIndex(x, y, GetNearestIndex(c));
    } else {
        BYTE* p = m_bits + size_t(y) * m_effWidth + 3 * size_t(x);
        p[0] = c.rgbBlue;
        p[1] = c.rgbGreen;
        p[2] = c.rgbRed;
    }
}

// ---- palette ----

RGBQUAD* CxImage::GetPalette() const
{
    if (m_dib == nullptr || m_head.biClrUsed == 0) return nullptr;
    return reinterpret_cast<RGBQUAD*>(m_dib + m_head.biSize);
}

RGBQUAD CxImage::GetPaletteColor(BYTE idx) const
{
    const RGBQUAD* pal = GetPalette();
    if (pal == nullptr || idx >= m_head.biClrUsed) return RGBQUAD();
    return pal[idx];
}

void CxImage::SetPaletteColor(BYTE idx, RGBQUAD c)
{
    RGBQUAD* pal = GetPalette();
    if (pal == nullptr || idx >= m_head.biClrUsed) return;
    pal[idx] = c;
    m_lastColorValid = false;
}

BYTE CxImage::GetNearestIndex(RGBQUAD c)
{
    const RGBQUAD* pal = GetPalette();
    if (pal == nullptr) return 0;
    if (m_lastColorValid && SameColor(m_lastColor, c)) return m_lastColorIndex;

    const DWORD n = m_head.biClrImportant != 0 ? m_head.biClrImportant : m_head.biClrUsed;
    long best = 200000;
    BYTE bestIndex = 0;
    for (DWORD i = 0; i < n; i++) {
        const long db = long(pal[i].rgbBlue) - c.rgbBlue;
        const long dg = long(pal[i].rgbGreen) - c.rgbGreen;
        const long dr = long(pal[i].rgbRed) - c.rgbRed;
        const long d = dr * dr + dg * dg + db * db;
        if (d == 0) {
            bestIndex = static_cast<BYTE>(i);
            break;
        }
        if (d < best) {
            best = d;
            bestIndex = static_cast<BYTE>(i);
        }
    }
    m_lastColor = c;
    m_lastColorIndex = bestIndex;
    m_lastColorValid = true;
    return bestIndex;
}

void CxImage::SetGrayPalette()
{
    RGBQUAD* pal = GetPalette();
    const DWORD n = m_head.biClrUsed;
    if (pal == nullptr || n < 2) return;
    const DWORD step = 255 / (n - 1);
    for (DWORD i = 0; i < n; i++) {
        const BYTE v = static_cast<BYTE>(step * i);
        pal[i] = Rgb(v, v, v);
    }
    m_lastColorValid = false;
}

void CxImage::SetStdPalette()
{
    RGBQUAD* pal = GetPalette();
    if (pal == nullptr) return;
    switch (m_head.biBitCount) {
    case 1:
        pal[0] = Rgb(0, 0, 0);
        pal[1] = Rgb(255, 255, 255);
        break;
    case 4:
        for (int i = 0; i < 16; i++) pal[i] = Rgb(kStd16[i][0], kStd16[i][1], kStd16[i][2]);
        break;
    case 8: {
        // The system colours at both ends, a 6 x 6 x 6 colour cube and a grey ramp between them.
        for (int i = 0; i < 8; i++) pal[i] = Rgb(kStd16[i][0], kStd16[i][1], kStd16[i][2]);
        pal[8] = Rgb(192, 220, 192);
        pal[9] = Rgb(166, 202, 240);
        int k = 10;
        for (int r = 0; r < 6; r++)
            for (int g = 0; g < 6; g++)
                for (int b = 0; b < 6; b++)
                    pal[k++] = Rgb(static_cast<BYTE>(51 * r), static_cast<BYTE>(51 * g),
                                   static_cast<BYTE>(51 * b));
        for (int i = 0; k < 248; i++, k++) {
            const BYTE v = static_cast<BYTE>(12 + 11 * i);
            pal[k] = Rgb(v, v, v);
        }
        for (int i = 0; i < 8; i++)
            pal[248 + i] = Rgb(kStd16[8 + i][0], kStd16[8 + i][1], kStd16[8 + i][2]);
        break;
    }
    default:
        break;
    }
    m_lastColorValid = false;
}

bool CxImage::IsGrayScale() const
{
    const RGBQUAD* pal = GetPalette();
    if (pal == nullptr) return false;
    for (DWORD i = 0; i < m_head.biClrUsed; i++)
        if (pal[i].rgbBlue != i || pal[i].rgbGreen != i || pal[i].rgbRed != i) return false;
    return true;
}

// ---- selection and alpha ----

size_t CxImage::MaskSize() const
{
    if (m_dib == nullptr) return 0;
    return size_t(m_head.biWidth) * size_t(m_head.biHeight);
}

bool CxImage::SelectionCreate()
{
    const size_t n = MaskSize();
    if (n == 0) return false;
    if (m_selection == nullptr) {
        m_selection = new (std::nothrow) BYTE[n];
        if (m_selection == nullptr) return false;
    }
    memset(m_selection, 0, n);
    m_selectionBox = RECT();
    return true;
}

bool CxImage::SelectionDelete()
{
    delete[] m_selection;
    m_selection = nullptr;
    m_selectionBox = RECT();
    return true;
}

bool CxImage::SelectionAddPixel(long x, long y)
{
    if (m_selection == nullptr || !IsInside(x, y)) return false;
    m_selection[size_t(y) * size_t(m_head.biWidth) + size_t(x)] = 255;
    RECT& box = m_selectionBox;  // left/bottom inclusive, right/top exclusive, rows bottom-up
    if (box.right <= box.left || box.top <= box.bottom) {
        box.left = x;
        box.right = x + 1;
        box.bottom = y;
        box.top = y + 1;
    } else {
        if (x < box.left) box.left = x;
        if (x + 1 > box.right) box.right = x + 1;
        if (y < box.bottom) box.bottom = y;
        if (y + 1 > box.top) box.top = y + 1;
    }
    return true;
}

bool CxImage::SelectionIsInside(long x, long y) const
{
    if (!IsInside(x, y)) return false;
    if (m_selection == nullptr) return true;
    return m_selection[size_t(y) * size_t(m_head.biWidth) + size_t(x)] != 0;
}

bool CxImage::SelectionCopy(const CxImage& from)
{
    if (from.m_selection == nullptr || m_dib == nullptr || from.m_head.biWidth != m_head.biWidth ||
        from.m_head.biHeight != m_head.biHeight)
        return false;
    const size_t n = MaskSize();
    if (m_selection == nullptr) {
        m_selection = new (std::nothrow) BYTE[n];
        if (m_selection == nullptr) return false;
    }
    memcpy(m_selection, from.m_selection, n);
    m_selectionBox = from.m_selectionBox;
    return true;
}

bool CxImage::AlphaCreate()
{
    const size_t n = MaskSize();
    if (n == 0) return false;
    if (m_alpha == nullptr) {
        m_alpha = new (std::nothrow) BYTE[n];
        if (m_alpha == nullptr) return false;
        memset(m_alpha, 255, n);
    }
    return true;
}

bool CxImage::AlphaDelete()
{
    delete[] m_alpha;
    m_alpha = nullptr;
    return true;
}

void CxImage::AlphaSet(long x, long y, BYTE a)
{
    if (m_alpha != nullptr && IsInside(x, y)) m_alpha[size_t(y) * size_t(m_head.biWidth) + size_t(x)] = a;
}

BYTE CxImage::AlphaGet(long x, long y) const
{
    if (m_alpha == nullptr || !IsInside(x, y)) return 0;
    return m_alpha[size_t(y) * size_t(m_head.biWidth) + size_t(x)];
}

bool CxImage::AlphaCopy(const CxImage& from)
{
    if (from.m_alpha == nullptr || m_dib == nullptr || from.m_head.biWidth != m_head.biWidth ||
        from.m_head.biHeight != m_head.biHeight)
        return false;
    const size_t n = MaskSize();
    if (m_alpha == nullptr) {
        m_alpha = new (std::nothrow) BYTE[n];
        if (m_alpha == nullptr) return false;
    }
    memcpy(m_alpha, from.m_alpha, n);
    return true;
}

// ---- layers and frames ----

namespace {

bool Append(CxImage**& list, long& count, CxImage* item)
{
    CxImage** grown = new (std::nothrow) CxImage*[size_t(count) + 1];
    if (grown == nullptr) return false;
    for (long i = 0; i < count; i++) grown[i] = list[i];
    grown[count] = item;
    delete[] list;
    list = grown;
    count++;
    return true;
}

}  // namespace

CxImage* CxImage::LayerCreate()
{
    if (m_ghost != nullptr) return nullptr;
    CxImage* layer = new (std::nothrow) CxImage;
    if (layer == nullptr) return nullptr;
    if (!Append(m_layers, m_numLayers, layer)) {
        delete layer;
        return nullptr;
    }
    return layer;
}

CxImage* CxImage::GetLayer(long position) const
{
    if (position < 0 || position >= m_numLayers) return nullptr;
    return m_layers[position];
}

bool CxImage::AddFrame(CxImage* frame)
{
    if (frame == nullptr) return false;
    if (m_ghost != nullptr || !Append(m_frames, m_numFrames, frame)) {
        delete frame;
        return false;
    }
    return true;
}

CxImage* CxImage::GetFrame(long position) const
{
    if (position < 0 || position >= m_numFrames) return nullptr;
    return m_frames[position];
}
