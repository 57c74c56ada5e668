#include "dsp/Fft.h"

#include "dsp/FftFamilies.h"
#include "platform/CpuFeatures.h"

namespace dsp {

const FftRoutines& fftRoutines(FftFamily family) {
    switch (family) {
        case FftFamily::Sse2: return fft::sse2Routines();
        case FftFamily::Avx2: return fft::avx2Routines();
        default: return fft::scalarRoutines();
    }
}

bool fftFamilyUsable(FftFamily family) {
    switch (family) {
        case FftFamily::Sse2: return platform::cpuFeatures().usable(platform::kCpuSse2);
        case FftFamily::Avx2: return platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2);
        default: return true;
    }
}

// AVX2 where the machine has it (its transforms take about two thirds of the SSE2 family's
// time, bench/bench_fft), else SSE2, which every x86-64 processor has.
FftFamily preferredFftFamily() {
    if (fftFamilyUsable(FftFamily::Avx2)) return FftFamily::Avx2;
    return fftFamilyUsable(FftFamily::Sse2) ? FftFamily::Sse2 : FftFamily::Scalar;
}

const char* fftFamilyName(FftFamily family) {
    switch (family) {
        case FftFamily::Sse2: return "sse2";
        case FftFamily::Avx2: return "avx2";
        default: return "scalar";
    }
}

Fft::Fft(FftFamily family)
    : family_(fftFamilyUsable(family) ? family : FftFamily::Scalar), routines_(&fftRoutines(family_)) {
    fft::ensureRotationTables();
}

}  // namespace dsp
