// The SSE2 family.

#include "dsp/FftFamilies.h"
#include "dsp/FftSse2Lane.h"

namespace dsp::fft {
namespace {

struct Sse2Lane : Sse2LaneOps<Sse2Lane>, StageLoops<Sse2Lane, Sse2Lane> {
    static constexpr int kWidth = 1;
};

}  // namespace

const FftRoutines& sse2Routines() { return FamilyRoutines<Sse2Lane>::kTable; }

}  // namespace dsp::fft
