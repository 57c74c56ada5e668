// Writes the seed corpus: chunks, images and legacy layouts of either byte order, whole and
// small, as the plug-in writes them and as older or foreign writers might have.
// usage: make_seeds <corpus folder>   (creates <folder>/chunk and <folder>/images)

#include <bit>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FuzzEffect.h"

using Bytes = std::vector<uint8_t>;

namespace {

constexpr uint32_t kUniqueId = 0x54587672;  // "TXvr"
std::string corpus;

void put(const std::string& name, const Bytes& bytes) {
    std::ofstream(corpus + "/" + name, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void word(Bytes& b, uint32_t v, bool big) {
    for (int i = 0; i < 4; ++i) b.push_back(static_cast<uint8_t>(big ? v >> (24 - 8 * i) : v >> (8 * i)));
}
void real(Bytes& b, float v, bool big) { word(b, std::bit_cast<uint32_t>(v), big); }
void name(Bytes& b, const std::string& text) {
    b.insert(b.end(), text.begin(), text.end());
    b.insert(b.end(), 24 - text.size(), 0);
}

// A record image with a name and a few values for each of the given presets.
Bytes smallImage(uint8_t type, const std::vector<int>& presets, int current, bool big, float odd = 0.5f) {
    Bytes records;
    int count = 0;
    for (int p : presets) {
        word(records, 0, big), word(records, 156, big), word(records, static_cast<uint32_t>(p), big);
        name(records, "Seed " + std::to_string(p));
        records.insert(records.end(), 132, 0);
        ++count;
        for (uint32_t slot : {0u, 5u, 30u, 71u, 80u}) {
            word(records, 1, big), word(records, 20, big), word(records, static_cast<uint32_t>(p), big);
            word(records, slot, big), word(records, 0, big), word(records, 0, big);
            real(records, slot == 30 ? odd : 0.25f + 0.01f * static_cast<float>(slot), big), word(records, 0, big);
            ++count;
        }
    }
    Bytes b;
    word(b, kUniqueId, big);
    b.push_back(type);
    word(b, 0x02000000, big), word(b, 94, big), word(b, static_cast<uint32_t>(count), big);
    word(b, static_cast<uint32_t>(current), big), word(b, static_cast<uint32_t>(records.size()), big);
    b.insert(b.end(), 16, 0);
    b.insert(b.end(), records.begin(), records.end());
    return b;
}

Bytes chunkOf(const Bytes& bankImage, bool big) {
    Bytes b;
    word(b, 0x02000000, big), word(b, kUniqueId, big);
    b.insert(b.end(), bankImage.begin(), bankImage.end());
    return b;
}

Bytes legacyBlocks(int presets, int floats, bool big) {
    Bytes b;
    for (int p = 0; p < presets; ++p) {
        name(b, "Legacy " + std::to_string(p));
        for (int s = 0; s < floats; ++s) real(b, static_cast<float>((p * 7 + s) % 10) / 10.0f, big);
    }
    return b;
}

Bytes routed(uint8_t route, const Bytes& image) {
    Bytes b{route};
    b.insert(b.end(), image.begin(), image.end());
    return b;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    fuzzing::FuzzEffect fx;
    Bytes bank, preset;
    fx.ed().buildBankBlob(bank);
    fx.ed().buildPresetBlob(preset);

    corpus = std::string(argv[1]) + "/chunk";
    std::filesystem::create_directories(corpus);
    const Bytes fresh = chunkOf(bank, false);
    put("fresh-bank", fresh);
    put("fresh-bank-cut", Bytes(fresh.begin(), fresh.begin() + 1000));
    put("small-bank", chunkOf(smallImage(0x38, {0, 3, 20}, 3, false), false));
    put("small-bank-big-endian", chunkOf(smallImage(0x38, {1, 25, 2}, 30, true), true));
    put("small-bank-out-of-range", chunkOf(smallImage(0x38, {0, 1}, 1, false, 1.5f), false));
    for (bool big : {false, true}) {
        Bytes legacy;
        word(legacy, 0x01000000, big), word(legacy, kUniqueId, big);
        word(legacy, 3, big), word(legacy, 2, big);
        legacy.insert(legacy.end(), 16, 0);
        const Bytes blocks = legacyBlocks(3, 94, big);
        legacy.insert(legacy.end(), blocks.begin(), blocks.end());
        put(big ? "legacy-big-endian" : "legacy", legacy);
    }

    corpus = std::string(argv[1]) + "/images";
    std::filesystem::create_directories(corpus);
    put("preset-memory", routed(0x40, preset));
    put("small-preset-memory-big-endian", routed(0x00, smallImage(0x22, {0}, 0, true)));
    put("small-preset-memory-reversed", routed(0x08, smallImage(0x22, {0}, 0, true)));
    put("small-bank-memory", routed(0x01, smallImage(0x38, {0, 7, 20}, 7, false)));
    put("small-preset-file", routed(0x02, smallImage(0x22, {0}, 0, false)));
    put("small-bank-file-big-endian", routed(0x03, smallImage(0x38, {2, 4}, 4, true)));
    put("small-preset-stored", routed(0x54, smallImage(0x22, {0}, 0, false)));
    put("small-bank-stored", routed(0x05, smallImage(0x38, {0, 1, 2}, 1, false)));
    put("small-preset-memo-out-of-range", routed(0x06, smallImage(0x22, {0}, 0, false, -0.5f)));
    put("startup-bank", routed(0x07, smallImage(0x38, {0, 5}, 5, false)));
    put("startup-nothing-stored", Bytes{0x77});  // start-up with an empty store
    for (bool big : {false, true}) {
        Bytes legacyPreset;
        word(legacyPreset, kUniqueId, big);
        legacyPreset.push_back(0x21);
        const Bytes one = legacyBlocks(1, 40, big);
        legacyPreset.insert(legacyPreset.end(), one.begin(), one.end());
        put(big ? "legacy-preset-big-endian" : "legacy-preset", routed(0x00, legacyPreset));
        Bytes legacyBank;
        word(legacyBank, kUniqueId, big);
        legacyBank.push_back(0x37);
        const Bytes blocks = legacyBlocks(21, 8, big);
        legacyBank.insert(legacyBank.end(), blocks.begin(), blocks.end());
        put(big ? "legacy-bank-big-endian" : "legacy-bank", routed(0x01, legacyBank));
    }
    return 0;
}
