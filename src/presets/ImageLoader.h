#pragma once
// Applies preset and bank images to the bank of the effect: the record images, the two older
// fixed layouts, and the legacy chunk.
//
// Every loader keeps a copy of what it may change and puts it back when the image holds a value
// outside 0..1, so such an image leaves the preset (or the whole bank) exactly as it was and
// nothing is shown or selected. Every loader stops at the end of the bytes it is given. All of
// them answer true when the image was applied and false when the bank was left untouched.
// Each holds the bank lock while it parses into the bank, and lets it go before the display is
// told and the preset is applied.

#include <cstddef>
#include <cstdint>

#include "presets/PresetRecord.h"
#include "presets/RecordImage.h"

class CPresetSystemEffect;
class CPresetSystemEditor;

namespace presets {

class ImageLoader {
public:
    // display, when given, is told the names and the selection (the preset strip follows them).
    ImageLoader(CPresetSystemEffect& effect, CPresetSystemEditor* display) : effect_(effect), display_(display) {}

    // A preset image into the current preset: slots the image does not carry take the
    // template's values; the records' preset indexes are ignored. Then the preset is selected.
    bool loadPresetRecords(const uint8_t* records, size_t size, const image::ImageHeader& header, bool swapped);

    // A bank image: each name record resets its preset to the template and names it, the value
    // records fill it; records for presets outside the bank are skipped. Then the header's
    // current preset (0 when it is not a preset of the bank) is selected.
    bool loadBankRecords(const uint8_t* records, size_t size, const image::ImageHeader& header, bool swapped);

    // A legacy preset (the bytes after magic and type): a 24-byte name and floats from slot 0;
    // slots the effect excludes from loading are skipped.
    bool loadPresetLegacy(const uint8_t* data, size_t size, bool swapped, int floatCount);

    // A legacy bank: presetCount blocks of a name and floatsPerPreset floats; the first 21 load.
    // Refused when the bytes cannot hold those blocks. Then preset 0 is selected.
    bool loadBankLegacy(const uint8_t* data, size_t size, bool swapped, int presetCount, int floatsPerPreset);

    // The legacy chunk, whole (from its version word). Its values are not range-checked but
    // admitted one by one (NaN ignored, the rest held to 0..1); refused when shorter than its header, when its preset count is not positive or
    // when the bytes cannot hold a name per preset.
    bool loadLegacyChunk(const uint8_t* chunk, size_t size, bool swapped);

private:
    // Reads count legacy floats into preset from slot 0. False at a value outside 0..1 when
    // checkRange is set (the preset is then partly written; the caller undoes it).
    bool readLegacyValues(PresetRecord& preset, const uint8_t* floats, int count, bool swapped, bool checkRange);
    // Loads presets 0.. from fixed blocks of a name and floatsPerPreset floats.
    bool loadLegacyBlocks(const uint8_t* data, size_t size, bool swapped, int presetCount, int floatsPerPreset,
                          bool checkRange);
    void storeName(PresetRecord& preset, const uint8_t* nameBytes);
    template <class Fill>
    bool loadCurrentPreset(Fill&& fill);
    void finishPresetLoad();
    void finishBankLoad(int current);

    CPresetSystemEffect& effect_;
    CPresetSystemEditor* display_;
};

}  // namespace presets
