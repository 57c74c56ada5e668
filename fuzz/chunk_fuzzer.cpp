// The host's chunk: any bytes handed to setChunk. A refused chunk leaves the bank exactly as
// it was; whatever was taken goes out again as a whole-bank chunk of 60697 bytes, and (when
// every value is a normalized one) comes back byte-identical through a second instance.

#include <climits>
#include <cstdint>
#include <memory>

#include "FuzzEffect.h"

using fuzzing::FuzzEffect;
using fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > INT_MAX) return 0;
    // A buffer of exactly the input's size, so that any read past it is caught.
    std::unique_ptr<uint8_t[]> chunk(new uint8_t[size ? size : 1]);
    if (size) std::memcpy(chunk.get(), data, size);

    auto fx = std::make_unique<FuzzEffect>();
    const FuzzEffect::State before = fx->state();
    const VstInt32 result = fx->setChunk(size ? chunk.get() : nullptr, static_cast<VstInt32>(size));
    require(result == 0 || result == -1, "setChunk answers 0 or -1");
    if (result == -1 || !fx->ed().lastBankLoadApplied) require(fx->state() == before, "a refused chunk changes nothing");
    fx->requireSound();

    void* out = nullptr;
    const VstInt32 outSize = fx->getChunk(&out);
    require(outSize == 60697 && out != nullptr, "the bank always goes out whole");
    if (fx->allValuesNormalized()) {
        auto second = std::make_unique<FuzzEffect>();
        require(second->setChunk(out, outSize) == 0 && second->ed().lastBankLoadApplied, "own chunk is taken");
        void* again = nullptr;
        require(second->getChunk(&again) == outSize && std::memcmp(again, out, static_cast<size_t>(outSize)) == 0,
                "chunk round trip is byte-identical");
    }
    return 0;
}
