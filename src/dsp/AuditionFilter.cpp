#include "dsp/AuditionFilter.h"

#include <cmath>
#include <numbers>

namespace dsp {
namespace {

double flushed(double v) { return (v + 1e-30) - 1e-30; }

// At or above Nyquist sin(w) turns negative and the band-pass unstable; as the bands do there,
// the audition is then held just below Nyquist, at the highest frequency it can act on.
constexpr double kHighestAuditionFraction = 0.4995;

}  // namespace

AuditionSection AuditionSection::design(double frequencyHz, double width, double level, double hostRate) {
    const double q = std::pow(20.0, 0.5 * width + 0.5);
    double w = 2.0 * std::numbers::pi * frequencyHz / hostRate;
    if (!(w > 0.0) || !std::isfinite(w) || !std::isfinite(q) || !std::isfinite(level)) return off();
    if (w >= std::numbers::pi) w = 2.0 * std::numbers::pi * kHighestAuditionFraction;
    const double alpha = std::sin(w) / (2.0 * q);
    const double a0 = 1.0 + alpha;
    AuditionSection s;
    s.b0 = flushed(std::pow(2.0, 4.0 * level) * alpha / a0);
    s.b1 = flushed(-s.b0);
    s.a1 = flushed(-2.0 * std::cos(w) / a0);
    s.a2 = flushed((1.0 - alpha) / a0);
    s.active = true;
    return s;
}

}  // namespace dsp
