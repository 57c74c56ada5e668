#pragma once
// The engine's frame size N, partition length (twice the hop, at the internal rate) and the
// convolution hop (hop·2^j, PathConvolver.h), kept in one atomic word. The audio thread
// derives the compensation delay from them at the start of every block; read as separate
// values, a block could see N from one reconfiguration and the partition from another and
// pad the path by a wrong amount. Written under the engine lock.

#include <atomic>
#include <bit>
#include <cstdint>

struct EngineFrame {
    int frameSize;
    int partition;
    int convolutionHop;

    int hop() const { return partition / 2; }
    bool operator==(const EngineFrame&) const = default;
};

class PublishedEngineFrame {
public:
    explicit PublishedEngineFrame(EngineFrame f) : packed_(pack(f)) {}

    EngineFrame load() const {
        const uint64_t v = packed_.load(std::memory_order_relaxed);
        const int partition = static_cast<int>(v & 0xffffffffu);
        const int shift = static_cast<int>(v >> 56);
        return {static_cast<int>((v >> 32) & 0xffffffu), partition, (partition / 2) << shift};
    }
    void store(EngineFrame f) { packed_.store(pack(f), std::memory_order_relaxed); }

private:
    // The partition in the low 32 bits, N in the next 24, log2(convolution hop / hop) on top.
    static uint64_t pack(EngineFrame f) {
        const int hop = f.partition / 2 > 0 ? f.partition / 2 : 1;
        const unsigned ratio = static_cast<unsigned>(f.convolutionHop > hop ? f.convolutionHop / hop : 1);
        const uint64_t shift = static_cast<uint64_t>(std::bit_width(ratio) - 1);
        return (shift << 56) | (static_cast<uint64_t>(static_cast<uint32_t>(f.frameSize) & 0xffffffu) << 32) |
               static_cast<uint32_t>(f.partition);
    }
    std::atomic<uint64_t> packed_;
};
