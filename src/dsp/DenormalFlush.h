#pragma once
// Denormal results flushed to zero and denormal operands read as zero (the MXCSR's FTZ and DAZ
// bits) for as long as an object of this class lives, and the caller's mode back afterwards.
// A decaying filter tail would otherwise crawl through the denormal range, where every
// operation on it costs many times its normal price; with the flush it simply reaches zero.
// Elsewhere than on x86 it does nothing.

#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>
#endif

namespace dsp {

class DenormalFlush {
public:
#if defined(__x86_64__) || defined(__i386__)
    static constexpr unsigned kFlushBits = 0x8040;  // FTZ (bit 15) | DAZ (bit 6)

    DenormalFlush() : saved_(_mm_getcsr()) { _mm_setcsr(saved_ | kFlushBits); }
    ~DenormalFlush() { _mm_setcsr(saved_); }

private:
    const unsigned saved_;
#else
    DenormalFlush() {}
#endif
public:
    DenormalFlush(const DenormalFlush&) = delete;
    DenormalFlush& operator=(const DenormalFlush&) = delete;
};

}  // namespace dsp
