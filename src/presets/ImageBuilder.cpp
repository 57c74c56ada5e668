#include "presets/ImageBuilder.h"

#include <new>

#include "presets/CPresetSystemEffect.h"
#include "presets/RecordImage.h"

namespace presets {

size_t ImageBuilder::buildBank(std::vector<uint8_t>& out) { return build(out, true); }

size_t ImageBuilder::buildPreset(std::vector<uint8_t>& out) { return build(out, false); }

size_t ImageBuilder::build(std::vector<uint8_t>& out, bool wholeBank) {
    using namespace image;
    out.clear();
    const PresetRecord* bank = effect_.bankRecords();
    if (!bank) return 0;

    uint32_t savedSlots[kPresetSlots];
    int savedCount = 0;
    for (int slot = 0; slot < kPresetSlots; ++slot)
        if (!effect_.isExcludedFromSave(slot)) savedSlots[savedCount++] = static_cast<uint32_t>(slot);

    const int presetCount = wholeBank ? kPresetCount : 1;
    const size_t presetBytes = kNameRecordBytes + static_cast<size_t>(savedCount) * kValueRecordBytes;
    const size_t payload = presetBytes * static_cast<size_t>(presetCount);
    try {
        out.resize(kHeaderBytes + payload);
    } catch (const std::bad_alloc&) {
        out.clear();
        return 0;
    }

    // Allocated above, filled under the bank lock.
    CPresetSystemEffect::BankScope lock(effect_);
    if (!lock) {
        out.clear();
        return 0;
    }
    const int current = effect_.getCurrentPreset();
    const int firstPreset = wholeBank ? 0 : current;
    writeHeader(out.data(), effect_.getUniqueID(), wholeBank ? kTypeBank : kTypePreset, kPresetSlots,
                presetCount * (1 + savedCount), wholeBank ? current : 0, static_cast<uint32_t>(payload));
    uint8_t* at = out.data() + kHeaderBytes;
    for (int p = 0; p < presetCount; ++p) {
        const PresetRecord& preset = bank[firstPreset + p];
        const int32_t index = wholeBank ? p : 0;
        writeNameRecord(at, index, preset.name, kNameField);
        at += kNameRecordBytes;
        for (int s = 0; s < savedCount; ++s) {
            writeValueRecord(at, index, savedSlots[s], preset.values[savedSlots[s]]);
            at += kValueRecordBytes;
        }
    }
    return out.size();
}

}  // namespace presets
