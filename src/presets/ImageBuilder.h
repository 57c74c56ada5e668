#pragma once
// Writes the bank, or the preset being edited, as a record image: a name record per preset,
// then a value record for every slot the plug-in saves, in ascending slot order.

#include <cstddef>
#include <cstdint>
#include <vector>

class CPresetSystemEffect;

namespace presets {

class ImageBuilder {
public:
    explicit ImageBuilder(CPresetSystemEffect& effect) : effect_(effect) {}

    // The image's length, with the image in out; 0 (and out empty) when the effect has no bank
    // or memory runs out.
    size_t buildBank(std::vector<uint8_t>& out);
    // The current preset as preset 0 of a preset image.
    size_t buildPreset(std::vector<uint8_t>& out);

private:
    size_t build(std::vector<uint8_t>& out, bool wholeBank);

    CPresetSystemEffect& effect_;
};

}  // namespace presets
