// Preview pipeline latency: one paint of the Dithering page's preview without GDI. From the
// loaded 96 x 102 24-bit bitmap (its pixels copied into a fresh CxImage, as GetDIBits does)
// through the brightness table and the method to the copy of the DIB pixels out (as into the
// DIB section). Median of many paints per method, in microseconds.
#include <cstring>
#include <new>

#include "bench_common.h"

int main(int argc, char** argv)
{
    const int paints = argc > 1 ? atoi(argv[1]) : 20000;
    std::vector<uint8_t> picture;
    uint32_t stride;
    bench::MakePreviewPicture(picture, stride);
    std::vector<uint8_t> section(96 * 102 * 3 + 4096);
    const int position = 8;  // a little brighter than neutral: the table really runs
    BYTE table[256];

    printf("preview pipeline: 96 x 102 24-bit, brightness position %d, median of %d paints\n", position, paints);
    const struct { long method; const char* name; double goal; } methods[] = {
        {0, "method 0 None (nearest colour)", 25}, {1, "method 1 Error Diffusion (Floyd-Steinberg)", 80},
        {2, "method 2 Ordered Dither", 25},        {3, "method 3 4x4 Matrix", 25},
        {4, "method 4 8x8 Matrix", 25},            {5, "three-row diffusion (other values)", 80},
    };
    unsigned sink = 0;
    for (const auto& m : methods) {
        std::vector<double> times;
        times.reserve(paints);
        for (int i = 0; i < paints + 200; i++) {
            const double t0 = bench::NowMicros();
            CxImage* img = new (std::nothrow) CxImage;
            img->Create(96, 102, 24, 0);
            memcpy(img->GetBits(), picture.data(), picture.size());
            BuildBrightnessTable(position, table);
            img->Lut(table);
            if (m.method == 0)
                img->DecreaseBpp(1, 2);
            else
                img->Dither(m.method);
            memcpy(section.data(), img->GetBits(), img->GetHeader().biSizeImage);
            delete img;
            const double t1 = bench::NowMicros();
            sink += section[i % 1000];
            if (i >= 200) times.push_back(t1 - t0);  // the first paints warm the caches
        }
        const double med = bench::Median(times);
        printf("  %-44s %8.2f us   (goal <= %.0f us: %s)\n", m.name, med, m.goal, med <= m.goal ? "met" : "MISSED");
    }
    return sink == 0xFFFFFFFF;
}
