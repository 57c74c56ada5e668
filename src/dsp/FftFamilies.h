#pragma once
// Internal to the FFT: each family's routine table, and the glue that fills one from a lane
// policy. Every family's .cpp defines its lane policy in an anonymous namespace, so that the
// template code instantiated for it (compiled with that file's instruction set) can never be
// shared with, or substituted for, another family's.

#include "dsp/Fft.h"
#include "dsp/SplitRadix.h"

namespace dsp::fft {

const FftRoutines& scalarRoutines();
const FftRoutines& sse2Routines();
const FftRoutines& avx2Routines();

template <class P>
struct FamilyRoutines {
    template <int N>
    static void forward(double* x) { RealForward<P, N>::run(x); }
    template <int N>
    static void inverse(double* x) { RealInverse<P, N>::run(x); }
    template <int N>
    static void scale(double* x) { P::template scaleSpectrum<N>(x); }
    template <int N>
    static void multiply(double* data, const double* kernel) { P::template multiplySpectrum<N>(data, kernel); }

    static constexpr FftRoutines kTable = {
        {forward<4096>, forward<8192>, forward<16384>, forward<32768>},
        {inverse<4096>, inverse<8192>, inverse<16384>, inverse<32768>},
        {scale<4096>, scale<8192>, scale<16384>, scale<32768>},
        {multiply<4096>, multiply<8192>, multiply<16384>, multiply<32768>},
        {forward<1>, forward<2>, forward<4>, forward<8>, forward<16>, forward<32>, forward<64>, forward<128>,
         forward<256>, forward<512>, forward<1024>, forward<2048>, forward<4096>, forward<8192>, forward<16384>,
         forward<32768>},
        {inverse<1>, inverse<2>, inverse<4>, inverse<8>, inverse<16>, inverse<32>, inverse<64>, inverse<128>,
         inverse<256>, inverse<512>, inverse<1024>, inverse<2048>, inverse<4096>, inverse<8192>, inverse<16384>,
         inverse<32768>},
    };
};

}  // namespace dsp::fft
