#include "dsp/MinimumPhaseCascade.h"

#include "platform/CpuFeatures.h"

namespace dsp {

bool cascadeAvx2Usable() { return platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2); }

}  // namespace dsp
