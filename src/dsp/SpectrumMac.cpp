#include "dsp/SpectrumMac.h"

#include <emmintrin.h>

#include "platform/CpuFeatures.h"

namespace dsp {

SpectrumMac spectrumMac(MacFamily family) {
    switch (family) {
        case MacFamily::Avx2Fma:
            if (platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2)) return mac::avx2Fma;
            [[fallthrough]];
        case MacFamily::Sse2: return mac::sse2;
        default: return mac::plain;
    }
}

MacFamily preferredMacFamily() {
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

void plain(double* acc, const double* x, const double* k, int half) {
    const double dc = acc[0] + x[0] * k[0], nyquist = acc[4] + x[4] * k[4];
    for (int run = 0; run < 2 * half; run += 8)
        for (int j = run; j < run + 4; ++j) {
            const double xr = x[j], xi = x[j + 4], kr = k[j], ki = k[j + 4];
            acc[j] += xr * kr - xi * ki;
            acc[j + 4] += xi * kr + xr * ki;
        }
    acc[0] = dc;
    acc[4] = nyquist;
}

void sse2(double* acc, const double* x, const double* k, int half) {
    const double dc = acc[0] + x[0] * k[0], nyquist = acc[4] + x[4] * k[4];
    for (int run = 0; run < 2 * half; run += 8)
        for (int j = run; j < run + 4; j += 2) {
            const __m128d xr = _mm_load_pd(x + j), xi = _mm_load_pd(x + j + 4);
            const __m128d kr = _mm_load_pd(k + j), ki = _mm_load_pd(k + j + 4);
            const __m128d re = _mm_sub_pd(_mm_mul_pd(xr, kr), _mm_mul_pd(xi, ki));
            const __m128d im = _mm_add_pd(_mm_mul_pd(xi, kr), _mm_mul_pd(xr, ki));
            _mm_store_pd(acc + j, _mm_add_pd(_mm_load_pd(acc + j), re));
            _mm_store_pd(acc + j + 4, _mm_add_pd(_mm_load_pd(acc + j + 4), im));
        }
    acc[0] = dc;
    acc[4] = nyquist;
}

}  // namespace mac
}  // namespace dsp
