#include "dsp/FftTwiddles.h"

#include <cmath>
#include <mutex>
#include <utility>

namespace dsp::fft {

alignas(64) double gComplexFirst[kComplexTableDoubles];
alignas(64) double gComplexThird[kComplexTableDoubles];
alignas(64) double gRealSplit[kRealTableDoubles];

namespace {

// exp(−2πi·j/S) for any j ≥ 0. The angle is folded into the first octant and the result
// unfolded by exact swaps and sign changes, so the value is exact where the rotation is a
// multiple of a quarter turn, and exactly mirrored across π/4.
void unitRoot(long j, int stage, double& re, double& im) {
    const long double pi = 3.141592653589793238462643383279502884L;
    const long quarter = stage / 4;
    j %= stage;
    const long quadrant = j / quarter;
    long r = j % quarter;
    const bool mirrored = 2 * r > quarter;  // past π/4 within the quadrant
    if (mirrored) r = quarter - r;
    const long double angle = 2.0L * pi * static_cast<long double>(r) / static_cast<long double>(stage);
    double c = r == 0 ? 1.0 : static_cast<double>(std::cos(angle));
    double s = r == 0 ? 0.0 : static_cast<double>(std::sin(angle));
    if (mirrored) std::swap(c, s);
    for (long q = 0; q < quadrant; ++q) {  // turn by whole quarter turns
        const double turned = -s;
        s = c;
        c = turned;
    }
    re = c;
    im = -s;  // the transforms turn clockwise: exp(−i·angle)
}

enum class Form { Complex, RealSplit };

void fill(double* table, int stage, int multiple, Form form) {
    for (int t = 0; t < stage / 4; ++t) {
        double wr, wi;
        unitRoot(static_cast<long>(multiple) * t, stage, wr, wi);
        double* a = table + rotationEntry(t);
        double* b = a + 4;
        if (form == Form::Complex) {
            a[0] = wr, a[1] = wr, b[0] = -wi, b[1] = wi;
        } else {
            a[0] = wr, a[1] = -wr, b[0] = wi, b[1] = wi;
        }
    }
}

void fillAll() {
    for (int s = 8; s <= kMaxComplexStage; s *= 2) {
        fill(gComplexFirst + stageOffset(s), s, 1, Form::Complex);
        fill(gComplexThird + stageOffset(s), s, 3, Form::Complex);
    }
    for (int s = 4; s <= kMaxRealStage; s *= 2) fill(gRealSplit + stageOffset(s), s, 1, Form::RealSplit);
}

// Loading the library fills the tables, so no transform ever finds them empty.
const bool gFilledAtLoad = (ensureRotationTables(), true);

}  // namespace

void ensureRotationTables() {
    static std::once_flag filled;
    std::call_once(filled, fillAll);
}

}  // namespace dsp::fft
