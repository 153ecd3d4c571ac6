// CxImage: the preview's in-memory device-independent bitmap.
//
// One heap block holds a BITMAPINFOHEADER, the palette and the bottom-up pixel rows, so the block
// can be handed to CreateDIBSection / GetDIBits as it is. The processing steps that turn the
// sample picture into what a two-level receipt printer prints (brightness table, grey conversion,
// dithering, reduction to one bit) are members too; they live in ximadither.cpp.
//
// Nothing here throws: failures return null/false and leave a message in GetLastError().
#pragma once

#include <cstddef>

#include "imaging/dibtypes.h"

class CxImage {
public:
    CxImage();
    virtual ~CxImage();
    CxImage(const CxImage&) = delete;
    CxImage& operator=(const CxImage&) = delete;

    // Life cycle.
    void* Create(DWORD dwWidth, DWORD dwHeight, DWORD wBpp, DWORD imagetype);
#ifdef _WIN32
    bool CreateFromBitmap(HBITMAP hbmp);
#endif
    bool Destroy();
    bool DestroyFrames();
    bool Transfer(CxImage& from);
    // Copies the descriptive state (type, resolution, background index, selection box, escape
    // flag) of `src`, as a new image derived from it should start.
    void CopyInfo(const CxImage& src);
    // Makes this image a non-owning view of `src`'s pixels: Destroy then refuses and the
    // destructor leaves the blocks alone. `src` must outlive the view.
    void Ghost(const CxImage& src);
    bool IsGhost() const { return m_ghost != nullptr; }

    // Description.
    bool IsValid() const { return m_dib != nullptr; }
    void* GetDIB() const { return m_dib; }
    // Header + palette + pixel rows: the whole block, as written after a BITMAPFILEHEADER.
    size_t GetDIBSize() const;
    const BITMAPINFOHEADER& GetHeader() const { return m_head; }
    DWORD GetWidth() const { return static_cast<DWORD>(m_head.biWidth); }
    DWORD GetHeight() const { return static_cast<DWORD>(m_head.biHeight); }
    WORD GetBpp() const { return m_head.biBitCount; }
    DWORD GetEffWidth() const { return m_effWidth; }
    DWORD GetNumColors() const { return m_head.biClrUsed; }
    DWORD GetClrImportant() const { return m_head.biClrImportant; }
    void SetClrImportant(DWORD ncolors);
    DWORD GetType() const { return m_type; }
    BYTE* GetBits(DWORD row = 0) const;
    const char* GetLastError() const { return m_lastError; }
    void SetLastError(const char* text);
    long GetProgress() const { return m_progress; }
    void SetProgress(long percent) { m_progress = percent; }
    long GetEscape() const { return m_escape; }
    void SetEscape(long escape) { m_escape = escape; }
    long GetBkgndIndex() const { return m_bkgndIndex; }
    void SetBkgndIndex(long index) { m_bkgndIndex = index; }

    // Pixels. Row y counts from the bottom (row 0 is the first stored row).
    BYTE GetPixelIndex(long x, long y) const;
    BYTE BlindGetPixelIndex(long x, long y) const;
    void SetPixelIndex(long x, long y, BYTE i);
    void BlindSetPixelIndex(long x, long y, BYTE i);
    RGBQUAD GetPixelColor(long x, long y) const;
    void SetPixelColor(long x, long y, RGBQUAD c);
    bool IsInside(long x, long y) const;

    // Palette.
    RGBQUAD* GetPalette() const;
    RGBQUAD GetPaletteColor(BYTE idx) const;
    void SetPaletteColor(BYTE idx, RGBQUAD c);
    BYTE GetNearestIndex(RGBQUAD c);
    void SetGrayPalette();
    void SetStdPalette();
    bool IsGrayScale() const;
    // Forgets the remembered GetNearestIndex answer; whoever rewrites palette entries directly
    // through GetPalette() must call it.
    void ClearNearestCache() { m_lastColorValid = false; }

    // Selection: one byte per pixel (non-zero = may be changed) and the box around it.
    bool SelectionCreate();
    bool SelectionDelete();
    bool SelectionIsValid() const { return m_selection != nullptr; }
    bool SelectionAddPixel(long x, long y);
    bool SelectionIsInside(long x, long y) const;
    const RECT& GetSelectionBox() const { return m_selectionBox; }
    bool SelectionCopy(const CxImage& from);

    // Alpha: one byte per pixel.
    bool AlphaCreate();
    bool AlphaDelete();
    bool AlphaIsValid() const { return m_alpha != nullptr; }
    void AlphaSet(long x, long y, BYTE a);
    BYTE AlphaGet(long x, long y) const;
    bool AlphaCopy(const CxImage& from);

    // Sub-images: layers belong to this image, frames are handed on by Transfer.
    CxImage* LayerCreate();
    long GetNumLayers() const { return m_numLayers; }
    CxImage* GetLayer(long position) const;
    bool AddFrame(CxImage* frame);  // takes ownership, also on failure
    long GetNumFrames() const { return m_numFrames; }
    CxImage* GetFrame(long position) const;

    // Processing (ximadither.cpp).
    bool Lut(const BYTE* table);
    bool GrayScale();
    bool DecreaseBpp(DWORD nbit, DWORD clrimportant);
    bool Dither(long method);

private:
    void SyncHeader();
    size_t MaskSize() const;
    bool GrayScaleFromPalette();
    bool StartGrayCopy(CxImage& gray);

    BYTE* m_dib;
    BITMAPINFOHEADER m_head;
    DWORD m_effWidth;
    BYTE* m_bits;
    DWORD m_type;
    char m_lastError[256];
    long m_progress;
    long m_escape;
    long m_bkgndIndex;
    BYTE* m_selection;
    RECT m_selectionBox;
    BYTE* m_alpha;
    RGBQUAD m_lastColor;
    BYTE m_lastColorIndex;
    bool m_lastColorValid;
    const CxImage* m_ghost;
    CxImage** m_layers;
    long m_numLayers;
    CxImage** m_frames;
    long m_numFrames;
};

// The brightness table for trackbar position 0..20 (10 leaves every value as it is, 0 adds 100,
// 20 takes 100 away), for CxImage::Lut.
void BuildBrightnessTable(int position, BYTE (&table)[256]);
