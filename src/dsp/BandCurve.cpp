#include "dsp/BandCurve.h"

#include <emmintrin.h>

#include <cmath>

namespace dsp {
namespace {

// From the power ratio, already rounded to float, to the curve value.
inline float decibelsOfPowerRatio(float ratio) {
    const float lg = static_cast<float>(std::log10(static_cast<double>(ratio)));
    return 20.0f * lg;
}

// |N|²/|D|² at one grid point. The SSE2 routine repeats these operations in this order.
inline float powerRatio(const BiquadCoefficients& s, double sinW, double cosW, double sin2W, double cos2W) {
    const double nr = s.b0 + s.b1 * cosW + s.b2 * cos2W;
    const double ni = s.b1 * sinW + s.b2 * sin2W;
    const double dr = 1.0 + s.a1 * cosW + s.a2 * cos2W;
    const double di = s.a1 * sinW + s.a2 * sin2W;
    return static_cast<float>((nr * nr + ni * ni) / (dr * dr + di * di));
}

}  // namespace

void computeBandCurvePlain(const BiquadCoefficients& section, const BandGridTable& grid, Curve& curve) {
    for (int i = 0; i < kPlotPoints; ++i)
        curve[i] = decibelsOfPowerRatio(
            powerRatio(section, grid.sinW[i], grid.cosW[i], grid.sin2W[i], grid.cos2W[i]));
}

void computeBandCurveSse2(const BiquadCoefficients& section, const BandGridTable& grid, Curve& curve) {
    const __m128d b0 = _mm_set1_pd(section.b0);
    const __m128d b1 = _mm_set1_pd(section.b1);
    const __m128d b2 = _mm_set1_pd(section.b2);
    const __m128d a1 = _mm_set1_pd(section.a1);
    const __m128d a2 = _mm_set1_pd(section.a2);
    const __m128d one = _mm_set1_pd(1.0);

    int i = 0;
    for (; i + 2 <= kPlotPoints; i += 2) {
        const __m128d sinW = _mm_load_pd(grid.sinW + i);
        const __m128d cosW = _mm_load_pd(grid.cosW + i);
        const __m128d sin2W = _mm_load_pd(grid.sin2W + i);
        const __m128d cos2W = _mm_load_pd(grid.cos2W + i);
        const __m128d nr = _mm_add_pd(_mm_add_pd(b0, _mm_mul_pd(b1, cosW)), _mm_mul_pd(b2, cos2W));
        const __m128d ni = _mm_add_pd(_mm_mul_pd(b1, sinW), _mm_mul_pd(b2, sin2W));
        const __m128d dr = _mm_add_pd(_mm_add_pd(one, _mm_mul_pd(a1, cosW)), _mm_mul_pd(a2, cos2W));
        const __m128d di = _mm_add_pd(_mm_mul_pd(a1, sinW), _mm_mul_pd(a2, sin2W));
        const __m128d num = _mm_add_pd(_mm_mul_pd(nr, nr), _mm_mul_pd(ni, ni));
        const __m128d den = _mm_add_pd(_mm_mul_pd(dr, dr), _mm_mul_pd(di, di));
        alignas(16) float ratio[4];
        _mm_store_ps(ratio, _mm_cvtpd_ps(_mm_div_pd(num, den)));  // rounds as a scalar cast does
        curve[i] = decibelsOfPowerRatio(ratio[0]);
        curve[i + 1] = decibelsOfPowerRatio(ratio[1]);
    }
    for (; i < kPlotPoints; ++i)  // the grid has an odd number of points
        curve[i] = decibelsOfPowerRatio(
            powerRatio(section, grid.sinW[i], grid.cosW[i], grid.sin2W[i], grid.cos2W[i]));
}

}  // namespace dsp
