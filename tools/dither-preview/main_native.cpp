// dither-preview, native build: the same processing as the Windows tool, with the file decoded by
// bmpfile::Decode instead of LoadImageW + GetDIBits.
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "bmpfile.h"

namespace {

int Error(int code, const std::string& text)
{
    fprintf(stderr, "dither-preview: %s\n", text.c_str());
    return code;
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> args(argv, argv + argc);
    bmpfile::Options options;
    std::string error;
    if (!bmpfile::ParseArgs(args, &options, &error)) return Error(2, error);
    const std::string& input = args[options.paths[0]];
    const std::string& output = args[options.paths[1]];

    std::vector<uint8_t> data;
    if (!bmpfile::ReadFile(input.c_str(), &data)) return Error(1, "cannot read " + input);
    bmpfile::Layout layout;
    if (!bmpfile::Check(data, &layout, &error)) return Error(1, input + ": " + error);
    CxImage img;
    if (!bmpfile::Decode(data, layout, img)) return Error(1, input + ": " + img.GetLastError());
    bmpfile::Process(img, options);
    const std::vector<uint8_t> file = bmpfile::Encode(img);
    if (file.empty()) return Error(1, "processing failed");
    FILE* f = fopen(output.c_str(), "wb");
    if (f == nullptr) return Error(1, "cannot write " + output);
    const bool ok = fwrite(file.data(), 1, file.size(), f) == file.size();
    if (fclose(f) != 0 || !ok) return Error(1, "cannot write " + output);
    return 0;
}
