#include "presets/ImageLoader.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>

#include "presets/CPresetSystemEditor.h"
#include "presets/CPresetSystemEffect.h"
#include "presets/Parameters.h"

namespace presets {

using namespace image;

namespace {

using BankCopy = std::array<PresetRecord, kPresetCount>;

void copyBank(BankCopy& to, const PresetRecord* bank) { std::copy(bank, bank + kPresetCount, to.begin()); }
void putBack(PresetRecord* bank, const BankCopy& from) { std::copy(from.begin(), from.end(), bank); }

int presetOrFirst(int32_t index) { return index >= 0 && index < kPresetCount ? index : 0; }

constexpr size_t kFloatBytes = 4;

}  // namespace

void ImageLoader::storeName(PresetRecord& preset, const uint8_t* nameBytes) {
    char field[kNameField];
    // The stored field need not end in a NUL: take at most its 24 bytes.
    char raw[kNameField + 1] = {};
    std::memcpy(raw, nameBytes, kNameField);
    takeNameField(field, raw);
    storePresetName(preset.name, field);
}

bool ImageLoader::readLegacyValues(PresetRecord& preset, const uint8_t* floats, int count, bool swapped,
                                   bool checkRange) {
    const int used = std::min(count, kPresetSlots);
    for (int slot = 0; slot < used; ++slot) {
        if (effect_.isExcludedFromLoad(slot)) continue;
        const float v = readFloat(floats + kFloatBytes * static_cast<size_t>(slot), swapped);
        if (checkRange) {
            if (!isNormalized(v)) return false;
            preset.values[slot] = v;
        } else if (const auto admittedValue = params::admitted(v)) {
            // The legacy chunk has no range check to undo it: a value that is not a number
            // leaves the slot as the template set it, one outside 0..1 is held to it.
            preset.values[slot] = *admittedValue;
        }
    }
    return true;
}

// The display and the preset's application come after the bank lock, from copies.
void ImageLoader::finishPresetLoad() {
    const int current = effect_.getCurrentPreset();
    PresetRecord loaded{};
    effect_.copyPreset(current, loaded);
    if (display_) {
        display_->showPresetName(loaded.name);
        display_->setPresetMenuTitle(current, loaded.name);
    }
    effect_.setPresetName(loaded.name);
    effect_.selectPreset(current);
}

void ImageLoader::finishBankLoad(int current) {
    if (display_) {
        BankCopy loaded{};
        if (CPresetSystemEffect::BankScope lock{effect_}) copyBank(loaded, effect_.bankRecords());
        for (int p = 0; p < kPresetCount; ++p) display_->setPresetMenuTitle(p, loaded[p].name);
        display_->selectPresetMenuEntry(current);
        display_->showPresetName(loaded[current].name);
    }
    effect_.selectPreset(current);
}

// Under the bank lock the current preset starts from the template and fill writes into it;
// when fill answers false the preset is put back as it was. Then the display and the preset follow.
template <class Fill>
bool ImageLoader::loadCurrentPreset(Fill&& fill) {
    PresetRecord* bank = effect_.bankRecords();
    if (!bank) return false;
    {
        CPresetSystemEffect::BankScope lock(effect_);
        if (!lock) return false;
        const int current = effect_.getCurrentPreset();
        const PresetRecord kept = bank[current];
        effect_.resetPresetToTemplate(current);
        if (!fill(bank[current])) {
            bank[current] = kept;
            return false;
        }
    }
    finishPresetLoad();
    return true;
}

bool ImageLoader::loadPresetRecords(const uint8_t* records, size_t size, const ImageHeader& header, bool swapped) {
    return loadCurrentPreset([&](PresetRecord& preset) {
        RecordCursor cursor(records, size, swapped);
        Record record;
        for (int32_t i = 0; i < header.recordCount && cursor.next(record); ++i) {
            if (record.type == kRecordName) {
                if (const uint8_t* name = nameOf(record)) storeName(preset, name);
            } else if (record.type == kRecordValue) {
                uint32_t slot;
                float value;
                if (!valueOf(record, swapped, slot, value) || slot >= static_cast<uint32_t>(kPresetSlots)) continue;
                if (!isNormalized(value)) return false;
                preset.values[slot] = value;
            }
            // Records of other types belong to newer writers and are skipped.
        }
        return true;
    });
}

bool ImageLoader::loadBankRecords(const uint8_t* records, size_t size, const ImageHeader& header, bool swapped) {
    PresetRecord* bank = effect_.bankRecords();
    if (!bank || header.recordCount < 0) return false;
    const int current = presetOrFirst(header.currentPreset);
    {
        CPresetSystemEffect::BankScope lock(effect_);
        if (!lock) return false;
        BankCopy kept;
        copyBank(kept, bank);

        RecordCursor cursor(records, size, swapped);
        Record record;
        for (int32_t i = 0; i < header.recordCount && cursor.next(record); ++i) {
            if (record.presetIndex < 0 || record.presetIndex >= kPresetCount) continue;
            PresetRecord& preset = bank[record.presetIndex];
            if (record.type == kRecordName) {
                const uint8_t* name = nameOf(record);
                if (!name) continue;
                effect_.resetPresetToTemplate(record.presetIndex);
                storeName(preset, name);
            } else if (record.type == kRecordValue) {
                uint32_t slot;
                float value;
                if (!valueOf(record, swapped, slot, value) || slot >= static_cast<uint32_t>(kPresetSlots)) continue;
                if (!isNormalized(value)) {
                    putBack(bank, kept);
                    return false;
                }
                preset.values[slot] = value;
            }
        }
    }
    finishBankLoad(current);
    return true;
}

bool ImageLoader::loadPresetLegacy(const uint8_t* data, size_t size, bool swapped, int floatCount) {
    if (!data || size < kLegacyNameBytes || floatCount < 0) return false;
    const size_t available = (size - kLegacyNameBytes) / kFloatBytes;
    const int count = static_cast<int>(std::min<size_t>(static_cast<size_t>(floatCount), available));
    return loadCurrentPreset([&](PresetRecord& preset) {
        storeName(preset, data);
        return readLegacyValues(preset, data + kLegacyNameBytes, count, swapped, true);
    });
}

bool ImageLoader::loadLegacyBlocks(const uint8_t* data, size_t size, bool swapped, int presetCount,
                                   int floatsPerPreset, bool checkRange) {
    PresetRecord* bank = effect_.bankRecords();
    if (!bank || !data || presetCount <= 0 || floatsPerPreset < 0) return false;
    const size_t stride = kLegacyNameBytes + kFloatBytes * static_cast<size_t>(floatsPerPreset);
    const int loaded = std::min(presetCount, kPresetCount);
    if (stride > size / static_cast<size_t>(loaded)) return false;  // the blocks would run past the end

    CPresetSystemEffect::BankScope lock(effect_);
    if (!lock) return false;
    BankCopy kept;
    copyBank(kept, bank);
    for (int p = 0; p < loaded; ++p) {
        const uint8_t* block = data + stride * static_cast<size_t>(p);
        effect_.resetPresetToTemplate(p);
        storeName(bank[p], block);
        if (!readLegacyValues(bank[p], block + kLegacyNameBytes, floatsPerPreset, swapped, checkRange)) {
            putBack(bank, kept);
            return false;
        }
    }
    return true;
}

bool ImageLoader::loadBankLegacy(const uint8_t* data, size_t size, bool swapped, int presetCount,
                                 int floatsPerPreset) {
    if (!loadLegacyBlocks(data, size, swapped, presetCount, floatsPerPreset, true)) return false;
    finishBankLoad(0);
    return true;
}

bool ImageLoader::loadLegacyChunk(const uint8_t* chunk, size_t size, bool swapped) {
    if (!effect_.bankRecords() || !chunk || size < kLegacyChunkHeaderBytes) return false;
    const int32_t presetCount = readSigned(chunk + kLegacyChunkPresetCountOffset, swapped);
    const int32_t current = readSigned(chunk + kLegacyChunkCurrentOffset, swapped);
    if (presetCount <= 0) return false;  // cannot be divided into presets
    const size_t blockBytes = (size - kLegacyChunkHeaderBytes) / static_cast<size_t>(presetCount);
    if (blockBytes < kLegacyNameBytes) return false;
    const size_t floats = (blockBytes - kLegacyNameBytes) / kFloatBytes;
    const int floatsPerPreset = static_cast<int>(std::min<size_t>(floats, INT_MAX));
    if (!loadLegacyBlocks(chunk + kLegacyChunkHeaderBytes, size - kLegacyChunkHeaderBytes, swapped, presetCount,
                          floatsPerPreset, false))
        return false;
    finishBankLoad(presetOrFirst(current));
    return true;
}

}  // namespace presets
