#pragma once
// Preset, bank and chunk images written byte by byte with the offsets spelled out, sharing no code
// with the plug-in's writer; a preset layer with the plug-in's identity and exclusions but no
// engine.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "presets/CPresetSystemEditor.h"
#include "presets/CPresetSystemEffect.h"
#include "support/TempStore.h"

namespace imagebytes {

constexpr uint32_t kUniqueId = 0x54587672;  // "TXvr"

// The value a hand-made bank gives preset p, slot s: distinct everywhere, inside 0..1.
inline float handValue(int p, int s) { return static_cast<float>((p * 94 + s) % 997) / 997.0f; }

class Bytes {
public:
    explicit Bytes(bool bigEndian = false) : big_(bigEndian) {}

    Bytes& u8(uint8_t v) { return data.push_back(v), *this; }
    Bytes& u32(uint32_t v) {
        for (int i = 0; i < 4; ++i) data.push_back(static_cast<uint8_t>(v >> (big_ ? 24 - 8 * i : 8 * i)));
        return *this;
    }
    Bytes& i32(int32_t v) { return u32(static_cast<uint32_t>(v)); }
    Bytes& f32(float v) { return u32(std::bit_cast<uint32_t>(v)); }
    Bytes& zeros(size_t n) { return data.insert(data.end(), n, 0), *this; }
    Bytes& text(std::string_view s, size_t field = 24) { return data.insert(data.end(), s.begin(), s.end()), zeros(field - s.size()); }
    Bytes& magic() { return u32(kUniqueId); }
    Bytes& append(const std::vector<uint8_t>& more) { return data.insert(data.end(), more.begin(), more.end()), *this; }
    // Header, 41 bytes: magic, type, version, slots, records, current, payload, 16 zeros.
    Bytes& header(uint8_t type, int32_t records, int32_t current, uint32_t payload, int32_t slots = 94) {
        return magic().u8(type).u32(0x02000000).i32(slots).i32(records).i32(current).u32(payload).zeros(16);
    }
    // Name record: type 0, body 156 (the name in 24 bytes, 132 zeros). Value record: type 1, body
    // 20 (slot, 0, 0, value, 0).
    Bytes& nameRecord(int32_t preset, std::string_view name) { return u32(0).u32(156).i32(preset).text(name).zeros(132); }
    Bytes& valueRecord(int32_t preset, uint32_t slot, float value) {
        return u32(1).u32(20).i32(preset).u32(slot).u32(0).u32(0).f32(value).u32(0);
    }
    Bytes& record(uint32_t type, int32_t preset, const std::vector<uint8_t>& body) {
        return u32(type).u32(static_cast<uint32_t>(body.size())).i32(preset).append(body);
    }
    // A legacy block: a 24-byte name and `count` floats from slot 0, one of them optionally replaced.
    Bytes& legacyBlock(std::string_view name, int count, int preset, int badSlot = -1, float bad = 0) {
        text(name);
        for (int s = 0; s < count; ++s) f32(s == badSlot ? bad : handValue(preset, s));
        return *this;
    }

    size_t size() const { return data.size(); }
    const uint8_t* ptr() const { return data.data(); }

    std::vector<uint8_t> data;

private:
    bool big_;
};

using SlotValues = std::vector<std::pair<uint32_t, float>>;

// A preset image: one name record, then the given value records.
inline Bytes presetImage(bool big, std::string_view name, const SlotValues& values, int32_t recordIndex = 0) {
    Bytes b(big);
    b.header(0x22, static_cast<int32_t>(1 + values.size()), 0, 168 + 32 * static_cast<uint32_t>(values.size()));
    b.nameRecord(recordIndex, name);
    for (const auto& [slot, v] : values) b.valueRecord(recordIndex, slot, v);
    return b;
}

// A bank image of 21 presets "<prefix> 0".."<prefix> 20", slots 0..84 at handValue, one value
// optionally replaced.
inline Bytes handBank(bool big, int32_t current, const std::string& prefix = "Bank", int badPreset = -1,
                      int badSlot = -1, float bad = 0) {
    Bytes b(big);
    b.header(0x38, 21 * 86, current, 21 * (168 + 85 * 32));
    for (int p = 0; p < 21; ++p) {
        b.nameRecord(p, prefix + " " + std::to_string(p));
        for (int s = 0; s < 85; ++s) b.valueRecord(p, s, p == badPreset && s == badSlot ? bad : handValue(p, s));
    }
    return b;
}

// The same bank as a host chunk: version 2 and the magic before the image.
inline std::vector<uint8_t> handChunk(bool big, int32_t current, const std::string& prefix = "Bank",
                                      int badPreset = -1, int badSlot = -1, float bad = 0) {
    return Bytes(big).u32(0x02000000).magic().append(handBank(big, current, prefix, badPreset, badSlot, bad).data).data;
}

}  // namespace imagebytes

// Its editor records what the preset strip would be told.
class PresetTestEditor : public CPresetSystemEditor {
public:
    using CPresetSystemEditor::CPresetSystemEditor;
    void showPresetName(const char* name) override { shownNames.emplace_back(name, strnlen(name, 24)); }
    void setPresetMenuTitle(int index, const char* name) override { menuTitles[index] = std::string(name, strnlen(name, 24)); }
    void selectPresetMenuEntry(int index) override { menuSelections.push_back(index); }
    void forgetDisplay() { shownNames.clear(), menuTitles.clear(), menuSelections.clear(); }

    std::vector<std::string> shownNames;
    std::map<int, std::string> menuTitles;
    std::vector<int> menuSelections;
};

class PresetTestEffect : public CPresetSystemEffect {
public:
    PresetTestEffect() : CPresetSystemEffect(&hostCallback) {
        setUniqueID(fourCharCode('T', 'X', 'v', 'r'));
        setEditor(testEditor = new PresetTestEditor(this));
    }

    bool isExcludedFromSave(int index) override { return index > 84; }
    bool isExcludedFromLoad(int index) override { return index > 71; }
    void processReplacing(float**, float**, VstInt32) override {}
    void selectPreset(int index) override {
        selections.push_back(index);
        CPresetSystemEffect::selectPreset(index);
    }

    PresetTestEditor& ed() { return *testEditor; }
    std::vector<presets::PresetRecord> bankCopy() const {
        return std::vector<presets::PresetRecord>(bankRecords(), bankRecords() + presets::kPresetCount);
    }
    presets::PresetRecord& preset(int i) { return bankRecords()[i]; }

    std::vector<int> selections;

    static VstIntPtr hostCallback(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
        return opcode == audioMasterVersion ? kVstVersion : 0;
    }

private:
    PresetTestEditor* testEditor = nullptr;
};

// Byte-for-byte equality (names with what follows their NUL, values as bits).
inline bool samePreset(const presets::PresetRecord& a, const presets::PresetRecord& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline bool sameBank(const std::vector<presets::PresetRecord>& a, const std::vector<presets::PresetRecord>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), sizeof(presets::PresetRecord) * a.size()) == 0;
}

inline std::string nameOf(const presets::PresetRecord& r) { return std::string(r.name, strnlen(r.name, 24)); }
