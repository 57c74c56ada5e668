#include "dsp/SpectrumMac.h"

#include <emmintrin.h>

#include "platform/CpuFeatures.h"

namespace dsp {

SpectrumMac spectrumMac(MacFamily family) {
    switch (family) {
        case MacFamily::Avx512:
            if (platform::cpuFeatures().usable(platform::kCpuAvx512)) return {mac::avx512<false>, mac::avx512<true>, mac::swapAvx512};
            [[fallthrough]];
        case MacFamily::Avx2Fma:
            if (platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2)) return {mac::avx2Fma<false>, mac::avx2Fma<true>, mac::swapAvx2};
            [[fallthrough]];
        case MacFamily::Sse2: return {mac::sse2<false>, mac::sse2<true>, swapMacLayout};
        default: return {mac::plain<false>, mac::plain<true>, swapMacLayout};
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

template <bool packed>
void plain(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    for (int run = 0; run < 2 * half; run += 8) {
        double re[4], im[4];
        for (int q = 0; q < 4; ++q) {
            const int j = run + q;
            re[q] = acc[j], im[q] = acc[j + 4];
            for (int t = 0; t < terms; ++t) {
                const double xr = x[t][j], xi = x[t][j + 4], kr = k[t][j], ki = k[t][j + 4];
                re[q] += xr * kr - xi * ki;
                im[q] += xi * kr + xr * ki;
            }
        }
        for (int q = 0; q < 4; ++q) {
            acc[run + (packed ? macLayoutIndex(q) : q)] = re[q];
            acc[run + (packed ? macLayoutIndex(q + 4) : q + 4)] = im[q];
        }
    }
}

template <bool packed>
void sse2(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    for (int run = 0; run < 2 * half; run += 8) {
        __m128d re[2], im[2];
        for (int h = 0; h < 2; ++h) {
            const int j = run + 2 * h;
            re[h] = _mm_load_pd(acc + j), im[h] = _mm_load_pd(acc + j + 4);
            for (int t = 0; t < terms; ++t) {
                const __m128d xr = _mm_load_pd(x[t] + j), xi = _mm_load_pd(x[t] + j + 4);
                const __m128d kr = _mm_load_pd(k[t] + j), ki = _mm_load_pd(k[t] + j + 4);
                re[h] = _mm_add_pd(re[h], _mm_sub_pd(_mm_mul_pd(xr, kr), _mm_mul_pd(xi, ki)));
                im[h] = _mm_add_pd(im[h], _mm_add_pd(_mm_mul_pd(xi, kr), _mm_mul_pd(xr, ki)));
            }
        }
        if (packed) {
            // re[0] = (r0, r2), re[1] = (r1, r3), and so on.
            _mm_store_pd(acc + run, _mm_unpacklo_pd(re[0], im[0]));
            _mm_store_pd(acc + run + 2, _mm_unpacklo_pd(re[1], im[1]));
            _mm_store_pd(acc + run + 4, _mm_unpackhi_pd(re[0], im[0]));
            _mm_store_pd(acc + run + 6, _mm_unpackhi_pd(re[1], im[1]));
        } else {
            for (int h = 0; h < 2; ++h) {
                _mm_store_pd(acc + run + 2 * h, re[h]);
                _mm_store_pd(acc + run + 2 * h + 4, im[h]);
            }
        }
    }
}

template void plain<false>(double*, const double* const*, const double* const*, int, int);
template void plain<true>(double*, const double* const*, const double* const*, int, int);
template void sse2<false>(double*, const double* const*, const double* const*, int, int);
template void sse2<true>(double*, const double* const*, const double* const*, int, int);

}  // namespace mac
}  // namespace dsp
