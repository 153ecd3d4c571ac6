// Receipt throughput: a 576 x 4096 8-bit grey receipt-like picture (text strokes, rules, a gradient
// band, a photo area, mostly white) reduced to one bit per method, single thread, in megapixels per
// second (median of several runs, the source copy not counted). With an argument it also writes
// the picture as a binary PGM for other dithering programs to be timed on.
#include <cstring>

#include "bench_common.h"

int main(int argc, char** argv)
{
    CxImage receipt;
    bench::MakeReceipt(receipt);
    const DWORD w = receipt.GetWidth(), h = receipt.GetHeight();
    if (argc > 1) {
        FILE* f = fopen(argv[1], "wb");
        if (f == nullptr) return 1;
        fprintf(f, "P5\n%u %u\n255\n", w, h);
        for (DWORD ty = 0; ty < h; ty++) fwrite(receipt.GetBits(h - 1 - ty), 1, w, f);
        fclose(f);
    }
    const double mpx = double(w) * h / 1e6;
    const int runs = argc > 2 ? atoi(argv[2]) : 15;
    printf("receipt throughput: %u x %u 8-bit grey, median of %d runs\n", w, h, runs);
    const struct { long method; const char* name; double goal; } methods[] = {
        {0, "method 0 None (nearest colour)", 2000}, {1, "method 1 Floyd-Steinberg", 150},
        {2, "method 2 Ordered Dither", 2000},        {3, "method 3 4x4 Matrix", 2000},
        {4, "method 4 8x8 Matrix", 2000},            {5, "three-row diffusion", 120},
    };
    unsigned sink = 0;
    for (const auto& m : methods) {
        std::vector<double> times;
        for (int r = 0; r < runs + 2; r++) {
            CxImage img;
            img.Create(w, h, 8, 0);
            memcpy(img.GetDIB(), receipt.GetDIB(), receipt.GetDIBSize());
            const double t0 = bench::NowMicros();
            if (m.method == 0)
                img.DecreaseBpp(1, 2);
            else
                img.Dither(m.method);
            const double t1 = bench::NowMicros();
            sink += img.GetBits(h / 2)[3];
            if (r >= 2) times.push_back(t1 - t0);
        }
        const double rate = mpx / (bench::Median(times) / 1e6);
        printf("  %-36s %9.1f Mpx/s  (%7.3f ms; goal >= %.0f: %s)\n", m.name, rate, bench::Median(times) / 1000, m.goal,
               rate >= m.goal ? "met" : "MISSED");
        printf("RESULT method=%ld mpxs=%.1f\n", m.method, rate);
    }
    return sink == 0xFFFFFFFF;
}
