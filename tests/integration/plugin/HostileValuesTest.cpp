// Values no parameter may hold, as hosts, controllers and old sessions do send them: through the
// entry point, one by one on every index and inside a chunk. Set one by one, a value that is not
// a number changes nothing and a finite one is held to 0..1; inside a chunk either undoes the
// load. Nothing out of range ever reads back or is saved.

#include <cmath>
#include <limits>

#include "EngineHost.h"
#include "unit/presets/PresetTestSupport.h"

namespace {

constexpr int kSlots = 94, kPresets = 21, kSavedSlots = 85;
constexpr float kInf = std::numeric_limits<float>::infinity();

struct Hostile {
    float sent;
    bool ignored;  // true: the parameter keeps its value; false: it reads `held`
    float held;
};
constexpr Hostile kHostile[] = {{std::numeric_limits<float>::quiet_NaN(), true, 0}, {kInf, true, 0}, {-kInf, true, 0},
                                {-0.5f, false, 0.0f}, {1.5f, false, 1.0f}};

// Every value record of a chunk the library wrote, read at its offsets: 8 bytes of prefix, the
// 41-byte image header, then per preset a 168-byte name record and 85 value records of 32 bytes
// whose value lies at byte 24.
std::vector<float> chunkValues(const std::vector<unsigned char>& chunk) {
    std::vector<float> values;
    for (int p = 0; p < kPresets; ++p)
        for (int s = 0; s < kSavedSlots; ++s) {
            const size_t at = 8 + 41 + static_cast<size_t>(p) * (168 + kSavedSlots * 32) + 168 + s * 32 + 24;
            float v;
            std::memcpy(&v, chunk.data() + at, 4);
            values.push_back(v);
        }
    return values;
}

void expectEveryValueInRange(vsthost::LoadedPlugin& plugin) {
    for (int i = 0; i < kSlots; ++i) {
        const float v = plugin.getParameter(i);
        EXPECT_TRUE(v >= 0.0f && v <= 1.0f) << "parameter " << i << " reads " << v;
    }
    const auto chunk = plugin.getChunk();
    ASSERT_EQ(chunk.size(), 60697u);
    for (float v : chunkValues(chunk)) ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << v;
}

}  // namespace

using HostileValues = LoadedPluginTest;

TEST_F(HostileValues, OnEveryIndexAreIgnoredOrHeldToTheRange) {
    plugin->resume();
    for (const Hostile& h : kHostile)
        for (int i = 0; i < kSlots; ++i) {
            const float before = plugin->getParameter(i);
            plugin->setParameter(i, h.sent);
            EXPECT_EQ(plugin->getParameter(i), h.ignored ? before : h.held) << "index " << i << " sent " << h.sent;
        }
    expectEveryValueInRange(*plugin);

    // Output set to a value that is not a number must not reach the gain.
    plugin->setParameter(params::kOutput, std::nanf(""));
    std::vector<float> in(4096, 0.25f), outL, outR;
    enginehost::run(*plugin, in, in, outL, outR, 512);
    for (size_t k = 0; k < outL.size(); ++k) ASSERT_TRUE(std::isfinite(outL[k]) && std::isfinite(outR[k])) << k;
}

TEST_F(HostileValues, InAChunkUndoTheLoad) {
    // A chunk holding a value no parameter may take leaves the bank and every value as they were.
    const int slots[] = {params::kOutput, params::kFreq + 3, params::kChannel};
    for (const Hostile& h : kHostile)
        for (int slot : slots) {
            const float before = plugin->getParameter(slot);
            const auto chunk = imagebytes::handChunk(false, 2, "Bad", 2, slot, h.sent);
            ASSERT_EQ(plugin->setChunk(chunk.data(), chunk.size()), 0);
            EXPECT_EQ(plugin->getParameter(slot), before) << "slot " << slot << " sent " << h.sent;
            expectEveryValueInRange(*plugin);
        }
}
