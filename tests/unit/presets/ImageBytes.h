#pragma once
// Writes preset, bank and chunk images byte by byte, in either byte order, with the offsets and
// sizes spelled out as numbers. It shares no code with the plug-in's own image writer, so tests
// that load these bytes check the plug-in against an independent reading of the format.

#include <bit>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace imagebytes {

constexpr uint32_t kUniqueId = 0x54587672;  // "TXvr"

class Bytes {
public:
    explicit Bytes(bool bigEndian = false) : big_(bigEndian) {}

    Bytes& u8(uint8_t v) {
        data.push_back(v);
        return *this;
    }
    Bytes& u32(uint32_t v) {
        const uint8_t b[4] = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
        if (big_) data.insert(data.end(), {b[3], b[2], b[1], b[0]});
        else data.insert(data.end(), {b[0], b[1], b[2], b[3]});
        return *this;
    }
    Bytes& i32(int32_t v) { return u32(static_cast<uint32_t>(v)); }
    Bytes& f32(float v) { return u32(std::bit_cast<uint32_t>(v)); }
    Bytes& zeros(size_t n) {
        data.insert(data.end(), n, 0);
        return *this;
    }
    // text, then zeros up to field bytes
    Bytes& text(std::string_view s, size_t field = 24) {
        data.insert(data.end(), s.begin(), s.end());
        return zeros(field - s.size());
    }
    Bytes& magic() { return u32(kUniqueId); }
    Bytes& append(const std::vector<uint8_t>& more) {
        data.insert(data.end(), more.begin(), more.end());
        return *this;
    }

    // Record image: 41-byte header (magic, type, version 0x02000000, slots, records, current,
    // payload, 16 zero bytes).
    Bytes& header(uint8_t type, int32_t records, int32_t current, uint32_t payload, int32_t slots = 94) {
        return magic().u8(type).u32(0x02000000).i32(slots).i32(records).i32(current).u32(payload).zeros(16);
    }
    // Name record: type 0, body 156 (name in 24 bytes, then 4 + 128 zero bytes).
    Bytes& nameRecord(int32_t preset, std::string_view name) {
        return u32(0).u32(156).i32(preset).text(name).zeros(132);
    }
    // Value record: type 1, body 20 (slot, 0, 0, value, 0).
    Bytes& valueRecord(int32_t preset, uint32_t slot, float value) {
        return u32(1).u32(20).i32(preset).u32(slot).u32(0).u32(0).f32(value).u32(0);
    }
    Bytes& record(uint32_t type, int32_t preset, const std::vector<uint8_t>& body) {
        u32(type).u32(static_cast<uint32_t>(body.size())).i32(preset);
        return append(body);
    }

    size_t size() const { return data.size(); }
    const uint8_t* ptr() const { return data.data(); }

    std::vector<uint8_t> data;

private:
    bool big_;
};

using SlotValues = std::vector<std::pair<uint32_t, float>>;

constexpr uint32_t kNameRecordBytes = 168;
constexpr uint32_t kValueRecordBytes = 32;

// A whole preset image: one name record, then the given value records (preset index 0).
inline Bytes presetImage(bool big, std::string_view name, const SlotValues& values, int32_t recordIndex = 0) {
    Bytes b(big);
    b.header(0x22, static_cast<int32_t>(1 + values.size()), 0,
             kNameRecordBytes + kValueRecordBytes * static_cast<uint32_t>(values.size()));
    b.nameRecord(recordIndex, name);
    for (const auto& [slot, v] : values) b.valueRecord(recordIndex, slot, v);
    return b;
}

// The value a hand-made bank gives preset p, slot s: distinct everywhere, inside 0..1.
inline float handValue(int p, int s) { return static_cast<float>((p * 94 + s) % 997) / 997.0f; }

}  // namespace imagebytes
