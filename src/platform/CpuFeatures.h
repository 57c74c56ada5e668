#pragma once
// What the processor offers and what the operating system lets us use of it. The engine
// and the analyzer pick their routine family once, at construction, from this record.

#include <cstdint>

namespace platform {

enum CpuFeatureBit : uint32_t {
    kCpuMmx = 1u << 0,
    kCpuSse = 1u << 1,
    kCpuSse2 = 1u << 2,
    kCpuAvx2 = 1u << 3,    // AVX2 together with FMA, and the OS saving the YMM state
    kCpuAvx512 = 1u << 4,  // AVX-512 Foundation, and the OS saving the ZMM and mask state
};

struct CpuFeatures {
    uint32_t processorMask = 0;  // what cpuid reports
    uint32_t osMask = 0;         // what the operating system also supports
    int family = 0;
    int model = 0;
    int stepping = 0;
    char vendor[13] = {};
    char name[64] = {};

    bool usable(uint32_t bits) const { return (processorMask & bits) == bits && (osMask & bits) == bits; }
};

// Fills the record and returns the processor feature mask.
uint32_t detectCpuFeatures(CpuFeatures& features);

// The record of this machine, detected once.
const CpuFeatures& cpuFeatures();

}  // namespace platform
