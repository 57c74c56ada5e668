#include "platform/CpuFeatures.h"

#include <cpuid.h>
#include <cstdio>
#include <cstring>

namespace platform {
namespace {

uint64_t readXcr0() {
    uint32_t eax = 0, edx = 0;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (static_cast<uint64_t>(edx) << 32) | eax;
}

struct NamedFamily {
    const char* vendor;
    int family;
    const char* name;
};

// Only for display: the engine never looks at the name.
constexpr NamedFamily kFamilyNames[] = {
    {"GenuineIntel", 6, "Intel Core/Xeon"},
    {"GenuineIntel", 15, "Intel Pentium 4"},
    {"AuthenticAMD", 15, "AMD K8"},
    {"AuthenticAMD", 16, "AMD K10"},
    {"AuthenticAMD", 21, "AMD Bulldozer"},
    {"AuthenticAMD", 23, "AMD Zen/Zen 2"},
    {"AuthenticAMD", 25, "AMD Zen 3/Zen 4"},
    {"AuthenticAMD", 26, "AMD Zen 5"},
};

}  // namespace

uint32_t detectCpuFeatures(CpuFeatures& f) {
    f = CpuFeatures{};
    unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (!__get_cpuid(0, &eax, &ebx, &ecx, &edx)) return 0;
    const unsigned int maxLeaf = eax;
    std::memcpy(f.vendor + 0, &ebx, 4);
    std::memcpy(f.vendor + 4, &edx, 4);
    std::memcpy(f.vendor + 8, &ecx, 4);

    if (maxLeaf >= 1 && __get_cpuid(1, &eax, &ebx, &ecx, &edx)) {
        f.stepping = static_cast<int>(eax & 0xF);
        f.model = static_cast<int>((eax >> 4) & 0xF);
        f.family = static_cast<int>((eax >> 8) & 0xF);
        if (f.family == 15) f.family += static_cast<int>((eax >> 20) & 0xFF);
        if (f.family == 6 || f.family >= 15) f.model |= static_cast<int>((eax >> 12) & 0xF0);
        if (edx & (1u << 23)) f.processorMask |= kCpuMmx;
        if (edx & (1u << 25)) f.processorMask |= kCpuSse;
        if (edx & (1u << 26)) f.processorMask |= kCpuSse2;
        // On x86-64 the operating system always saves the SSE state.
        f.osMask |= f.processorMask & (kCpuMmx | kCpuSse | kCpuSse2);

        const bool fma = ecx & (1u << 12);
        const bool osxsave = ecx & (1u << 27);
        const bool avx = ecx & (1u << 28);
        unsigned int b7 = 0, c7 = 0, d7 = 0, a7 = 0;
        const bool avx2 = maxLeaf >= 7 && __get_cpuid_count(7, 0, &a7, &b7, &c7, &d7) && (b7 & (1u << 5));
        if (avx && avx2 && fma) {
            f.processorMask |= kCpuAvx2;
            if (osxsave && (readXcr0() & 0x6) == 0x6) f.osMask |= kCpuAvx2;
        }
        if (avx && (b7 & (1u << 16))) {
            f.processorMask |= kCpuAvx512;
            // XMM, YMM, the mask registers and both halves of the ZMM registers.
            if (osxsave && (readXcr0() & 0xE6) == 0xE6) f.osMask |= kCpuAvx512;
        }
    }

    const char* name = "unknown processor";
    for (const auto& n : kFamilyNames)
        if (n.family == f.family && std::strcmp(n.vendor, f.vendor) == 0) name = n.name;
    std::snprintf(f.name, sizeof f.name, "%s (family %d, model %d, stepping %d)", name, f.family, f.model,
                  f.stepping);
    return f.processorMask;
}

const CpuFeatures& cpuFeatures() {
    static const CpuFeatures features = [] {
        CpuFeatures f;
        detectCpuFeatures(f);
        return f;
    }();
    return features;
}

}  // namespace platform
