#include "dsp/SpectrumMac.h"

#include <emmintrin.h>

#include "platform/CpuFeatures.h"

namespace dsp {

SpectrumMac spectrumMac(MacFamily family) {
    switch (family) {
        case MacFamily::Avx512:
            if (platform::cpuFeatures().usable(platform::kCpuAvx512)) return {mac::avx512, mac::swapAvx512};
            [[fallthrough]];
        case MacFamily::Avx2Fma:
            if (platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2)) return {mac::avx2Fma, mac::swapAvx2};
            [[fallthrough]];
        case MacFamily::Sse2: return {mac::sse2, swapMacLayout};
        default: return {mac::plain, swapMacLayout};
    }
}

MacFamily preferredMacFamily() {
    if (platform::cpuFeatures().usable(platform::kCpuAvx512)) return MacFamily::Avx512;
    return platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2) ? MacFamily::Avx2Fma
                                                                                    : MacFamily::Sse2;
}

void swapMacLayout(double* spectrum, int half) {
    for (int run = 0; run < 2 * half; run += 8) {
        double* s = spectrum + run;
        const double a1 = s[1], a3 = s[3], b0 = s[4], b2 = s[6];
        s[1] = b0;
        s[3] = b2;
        s[4] = a1;
        s[6] = a3;
    }
}

namespace mac {

void plain(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    for (int run = 0; run < 2 * half; run += 8)
        for (int j = run; j < run + 4; ++j) {
            double re = acc[j], im = acc[j + 4];
            for (int t = 0; t < terms; ++t) {
                const double xr = x[t][j], xi = x[t][j + 4], kr = k[t][j], ki = k[t][j + 4];
                re += xr * kr - xi * ki;
                im += xi * kr + xr * ki;
            }
            acc[j] = re;
            acc[j + 4] = im;
        }
}

void sse2(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    for (int run = 0; run < 2 * half; run += 8)
        for (int j = run; j < run + 4; j += 2) {
            __m128d re = _mm_load_pd(acc + j), im = _mm_load_pd(acc + j + 4);
            for (int t = 0; t < terms; ++t) {
                const __m128d xr = _mm_load_pd(x[t] + j), xi = _mm_load_pd(x[t] + j + 4);
                const __m128d kr = _mm_load_pd(k[t] + j), ki = _mm_load_pd(k[t] + j + 4);
                re = _mm_add_pd(re, _mm_sub_pd(_mm_mul_pd(xr, kr), _mm_mul_pd(xi, ki)));
                im = _mm_add_pd(im, _mm_add_pd(_mm_mul_pd(xi, kr), _mm_mul_pd(xr, ki)));
            }
            _mm_store_pd(acc + j, re);
            _mm_store_pd(acc + j + 4, im);
        }
}

}  // namespace mac
}  // namespace dsp
