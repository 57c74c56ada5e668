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

    // Not `engaged`: the mode stays as it is.
    explicit DenormalFlush(bool engaged = true) : saved_(_mm_getcsr()), engaged_(engaged) {
        if (engaged_) _mm_setcsr(saved_ | kFlushBits);
    }
    ~DenormalFlush() {
        if (engaged_) _mm_setcsr(saved_);
    }

private:
    const unsigned saved_;
    const bool engaged_;
#else
    explicit DenormalFlush(bool = true) {}
#endif
public:
    DenormalFlush(const DenormalFlush&) = delete;
    DenormalFlush& operator=(const DenormalFlush&) = delete;
};

}  // namespace dsp
