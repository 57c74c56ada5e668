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

namespace mac {

void plain(double* acc, const double* x, const double* k, int half) {
    acc[0] += x[0] * k[0];
    acc[1] += x[1] * k[1];
    for (int j = 2; j < 2 * half; j += 2) {
        const double xr = x[j], xi = x[j + 1], kr = k[j], ki = k[j + 1];
        acc[j] += xr * kr - xi * ki;
        acc[j + 1] += xi * kr + xr * ki;
    }
}

void sse2(double* acc, const double* x, const double* k, int half) {
    const __m128d signLow = _mm_set_pd(0.0, -0.0);
    _mm_store_pd(acc, _mm_add_pd(_mm_load_pd(acc), _mm_mul_pd(_mm_load_pd(x), _mm_load_pd(k))));
    for (int j = 2; j < 2 * half; j += 2) {
        const __m128d a = _mm_load_pd(x + j), b = _mm_load_pd(k + j);
        const __m128d re = _mm_unpacklo_pd(b, b), im = _mm_unpackhi_pd(b, b);
        const __m128d swapped = _mm_shuffle_pd(a, a, 1);
        const __m128d product = _mm_add_pd(_mm_mul_pd(a, re), _mm_xor_pd(_mm_mul_pd(swapped, im), signLow));
        _mm_store_pd(acc + j, _mm_add_pd(_mm_load_pd(acc + j), product));
    }
}

}  // namespace mac
}  // namespace dsp
