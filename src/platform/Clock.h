#pragma once
// A monotonic millisecond clock for the editor's timing (idle gates, double clicks, fades).
// It wraps around after about 49 days; callers take differences as unsigned 32-bit values.

#include <cstdint>

namespace platform {

uint32_t tickCountMs();

}  // namespace platform
