#pragma once
// The engine's frame size N and partition length (twice the hop, at the internal rate), kept
// in one atomic word. The audio thread derives the compensation delay from both at the start
// of every block; read as two values, a block could see N from one reconfiguration and the
// partition from another and pad the path by a wrong amount. Written under the engine lock.

#include <atomic>
#include <cstdint>

struct EngineFrame {
    int frameSize;
    int partition;
};

class PublishedEngineFrame {
public:
    explicit PublishedEngineFrame(EngineFrame f) : packed_(pack(f)) {}

    EngineFrame load() const {
        const uint64_t v = packed_.load(std::memory_order_relaxed);
        return {static_cast<int>(v >> 32), static_cast<int>(v & 0xffffffffu)};
    }
    void store(EngineFrame f) { packed_.store(pack(f), std::memory_order_relaxed); }

private:
    static uint64_t pack(EngineFrame f) {
        return (static_cast<uint64_t>(static_cast<uint32_t>(f.frameSize)) << 32) | static_cast<uint32_t>(f.partition);
    }
    std::atomic<uint64_t> packed_;
};
