// dither-preview: renders a BMP the way the Dithering page's preview does and writes the result.
//   dither-preview [--brightness P] [--method N] [--greyscale] INPUT.bmp OUTPUT.bmp
// The picture goes the preview's own way: LoadImageW, CxImage::CreateFromBitmap, the brightness
// table for position P (0..20, default 10), then unless --greyscale the nearest of black and
// white for method 0 or Dither(N) for any other N (0..255, default 1). The image's DIB block is
// written out behind a BMP file header. Any bad input gives one line on stderr and exit code 1
// (2 for a bad command line).
#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bmpfile.h"

namespace {

int Error(int code, const std::string& text)
{
    fprintf(stderr, "dither-preview: %s\n", text.c_str());
    return code;
}

bool ReadWide(const wchar_t* path, std::vector<uint8_t>* data)
{
    FILE* f = _wfopen(path, L"rb");
    if (f == nullptr) return false;
    uint8_t buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, f)) > 0) data->insert(data->end(), buf, buf + n);
    const bool ok = !ferror(f);
    fclose(f);
    return ok;
}

bool WriteWide(const wchar_t* path, const std::vector<uint8_t>& data)
{
    FILE* f = _wfopen(path, L"wb");
    if (f == nullptr) return false;
    const bool ok = fwrite(data.data(), 1, data.size(), f) == data.size();
    return fclose(f) == 0 && ok;
}

// Options are ASCII; paths stay wide.
std::string Narrow(const wchar_t* s)
{
    std::string out;
    for (; *s; s++) out += (*s < 128) ? static_cast<char>(*s) : '?';
    return out;
}

}  // namespace

int main()
{
    int argc = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argv == nullptr) return Error(2, "cannot read the command line");
    std::vector<std::string> args;
    for (int i = 0; i < argc; i++) args.push_back(Narrow(argv[i]));

    bmpfile::Options options;
    std::string error;
    if (!bmpfile::ParseArgs(args, &options, &error)) return Error(2, error);
    const wchar_t* input = argv[options.paths[0]];
    const wchar_t* output = argv[options.paths[1]];

    // Check the file first: GDI's loader is not the place to meet a damaged file.
    std::vector<uint8_t> data;
    if (!ReadWide(input, &data)) return Error(1, "cannot read " + args[options.paths[0]]);
    bmpfile::Layout layout;
    if (!bmpfile::Check(data, &layout, &error)) return Error(1, args[options.paths[0]] + ": " + error);

    // Core-header and top-down files go to GDI rewritten as plain bottom-up files.
    std::wstring loadPath = input;
    wchar_t tempFile[MAX_PATH] = L"";
    if (layout.paletteEntrySize == 3 || layout.topDown) {
        wchar_t tempDir[MAX_PATH];
        if (GetTempPathW(MAX_PATH, tempDir) == 0 || GetTempFileNameW(tempDir, L"dpv", 0, tempFile) == 0 ||
            !WriteWide(tempFile, bmpfile::WithInfoHeader(data, layout)))
            return Error(1, "cannot write a temporary file");
        loadPath = tempFile;
    }

    // A DIB section keeps the file's depth and colour table, so GetDIBits hands back 1-, 4- and
    // 8-bit pictures as they are instead of at the screen's depth.
    HBITMAP bitmap = static_cast<HBITMAP>(
        LoadImageW(nullptr, loadPath.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION));
    if (tempFile[0] != 0) DeleteFileW(tempFile);
    if (bitmap == nullptr) return Error(1, args[options.paths[0]] + ": LoadImage failed");
    CxImage* img = new (std::nothrow) CxImage;
    if (img == nullptr) {
        DeleteObject(bitmap);
        return Error(1, "out of memory");
    }
    const bool loaded = img->CreateFromBitmap(bitmap);
    DeleteObject(bitmap);
    if (!loaded) {
        const std::string why = img->GetLastError();
        delete img;
        return Error(1, args[options.paths[0]] + ": " + (why.empty() ? "cannot load the bitmap" : why));
    }

    bmpfile::Process(*img, options);
    const std::vector<uint8_t> file = bmpfile::Encode(*img);
    delete img;
    if (file.empty()) return Error(1, "processing failed");
    if (!WriteWide(output, file)) return Error(1, "cannot write " + args[options.paths[1]]);
    LocalFree(argv);
    return 0;
}
