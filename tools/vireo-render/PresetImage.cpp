#include "PresetImage.h"

#include <algorithm>
#include <cstring>

#include "Errors.h"

namespace render {
namespace {

// The layout's numbers are shared with the plug-in; the reading and writing below are this
// tool's own, an independent check of what the plug-in accepts.
using namespace presets::image;
constexpr size_t kNameSize = presets::kNameField;
constexpr uint32_t kSlots = presets::kPresetSlots;
constexpr int kBankPresets = presets::kPresetCount;

// Reads 32-bit fields of an image whose byte order is known.
class FieldReader {
public:
    FieldReader(const Bytes& bytes, bool swapped) : bytes_(bytes), swapped_(swapped) {}

    uint32_t u32(size_t offset) const {
        uint32_t v;
        std::memcpy(&v, bytes_.data() + offset, 4);
        return swapped_ ? __builtin_bswap32(v) : v;
    }
    int32_t i32(size_t offset) const { return static_cast<int32_t>(u32(offset)); }
    float f32(size_t offset) const {
        const uint32_t bits = u32(offset);
        float v;
        std::memcpy(&v, &bits, 4);
        return v;
    }
    std::string name(size_t offset) const {
        const char* p = reinterpret_cast<const char*>(bytes_.data() + offset);
        return std::string(p, strnlen(p, kNameSize));
    }

private:
    const Bytes& bytes_;
    bool swapped_;
};

uint32_t raw32(const unsigned char* p) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

// Settles the byte order from the magic at `offset`.
bool isSwapped(const Bytes& bytes, size_t offset, int32_t uniqueId, const std::string& label) {
    const uint32_t magic = raw32(bytes.data() + offset);
    const auto id = static_cast<uint32_t>(uniqueId);
    if (magic == id) return false;
    if (magic == __builtin_bswap32(id)) return true;
    throw RunError(label + " was not written by this plug-in (foreign magic)");
}

void checkValue(float value, uint32_t slot, const std::string& label) {
    if (!(value >= 0.0f && value <= 1.0f))
        throw RunError(label + " holds the value " + std::to_string(value) + " for slot " + std::to_string(slot) +
                       ", outside 0..1; the plug-in would refuse the whole file");
}

// One preset of an older layout: a name, then one float per slot from slot 0.
void readLegacyPreset(const FieldReader& in, size_t offset, size_t floats, int32_t preset,
                      const std::string& label, PresetImage& out) {
    ImageRecord name;
    name.kind = ImageRecord::Name;
    name.preset = preset;
    name.name = in.name(offset);
    out.records.push_back(name);
    for (uint32_t slot = 0; slot < floats && slot < kSlots; ++slot) {
        ImageRecord value;
        value.kind = ImageRecord::Value;
        value.preset = preset;
        value.slot = slot;
        value.value = in.f32(offset + kLegacyNameBytes + 4 * slot);
        checkValue(value.value, slot, label);
        out.records.push_back(value);
    }
}

void readRecords(const Bytes& bytes, const FieldReader& in, const std::string& label, PresetImage& out) {
    if (bytes.size() < kHeaderBytes) throw RunError(label + " is too short to hold a preset or bank");
    const int32_t count = in.i32(kRecordCountOffset);
    if (count < 0) throw RunError(label + " declares a negative number of records");
    out.currentPreset = in.i32(kCurrentPresetOffset);
    size_t at = kHeaderBytes;
    for (int32_t i = 0; i < count; ++i) {
        if (bytes.size() - at < kRecordHeadBytes)
            throw RunError(label + " is truncated: it declares " + std::to_string(count) + " records but holds " +
                           std::to_string(i));
        const uint32_t type = in.u32(at);
        const uint32_t size = in.u32(at + kRecordBodySizeOffset);
        const int32_t preset = in.i32(at + kRecordPresetOffset);
        const size_t body = at + kRecordHeadBytes;
        if (bytes.size() - body < size)
            throw RunError(label + " is truncated: record " + std::to_string(i + 1) + " runs past its end");
        if (type == kRecordName && size >= kNameSize) {
            ImageRecord r;
            r.kind = ImageRecord::Name;
            r.preset = preset;
            r.name = in.name(body);
            out.records.push_back(r);
        } else if (type == kRecordValue && size >= kValueReadBytes) {
            ImageRecord r;
            r.kind = ImageRecord::Value;
            r.preset = preset;
            r.slot = in.u32(body);
            r.value = in.f32(body + kValueOffset);
            // Slots the plug-in does not have are skipped by it; they carry nothing here either.
            if (r.slot < kSlots) {
                checkValue(r.value, r.slot, label);
                out.records.push_back(r);
            }
        }
        // Records of other types are skipped, as the plug-in skips them.
        at = body + size;
    }
}

void put32(Bytes& out, uint32_t v) {
    const size_t at = out.size();
    out.resize(at + 4);
    std::memcpy(out.data() + at, &v, 4);
}

void putFloat(Bytes& out, float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    put32(out, bits);
}

}  // namespace

PresetImage parseImage(const Bytes& bytes, int32_t uniqueId, const std::string& label) {
    if (bytes.size() < kRecognisedBytes) throw RunError(label + " is too short to hold a preset or bank");
    const bool swapped = isSwapped(bytes, 0, uniqueId, label);
    const FieldReader in(bytes, swapped);
    PresetImage out;
    switch (bytes[kTypeOffset]) {
        case kTypePreset:
            readRecords(bytes, in, label, out);
            out.currentPreset = 0;
            break;
        case kTypeBank:
            out.bank = true;
            readRecords(bytes, in, label, out);
            break;
        case kTypeLegacyPreset:
            if (bytes.size() < kRecognisedBytes + kLegacyNameBytes) throw RunError(label + " is too short to hold a preset");
            readLegacyPreset(in, kRecognisedBytes, (bytes.size() - kRecognisedBytes - kLegacyNameBytes) / 4, 0, label, out);
            break;
        case kTypeLegacyBank: {
            out.bank = true;
            const size_t perPreset = (bytes.size() - kRecognisedBytes) / kBankPresets;
            if (perPreset < kLegacyNameBytes) throw RunError(label + " is too short to hold a bank");
            for (int p = 0; p < kBankPresets; ++p)
                readLegacyPreset(in, kRecognisedBytes + p * perPreset, (perPreset - kLegacyNameBytes) / 4, p, label, out);
            break;
        }
        default:
            throw RunError(label + " is neither a preset nor a bank of this plug-in (unknown type byte)");
    }
    return out;
}

Bytes buildImage(const PresetImage& image, int32_t uniqueId) {
    uint32_t payload = 0;
    for (const ImageRecord& r : image.records)
        payload += static_cast<uint32_t>(kRecordHeadBytes) + (r.kind == ImageRecord::Name ? kNameBodyBytes : kValueBodyBytes);
    Bytes out;
    out.reserve(kHeaderBytes + payload);
    put32(out, static_cast<uint32_t>(uniqueId));
    out.push_back(image.bank ? kTypeBank : kTypePreset);
    put32(out, kFormatVersion);
    put32(out, kSlots);
    put32(out, static_cast<uint32_t>(image.records.size()));
    put32(out, static_cast<uint32_t>(image.currentPreset));
    put32(out, payload);
    out.resize(kHeaderBytes, 0);
    for (const ImageRecord& r : image.records) {
        if (r.kind == ImageRecord::Name) {
            put32(out, kRecordName);
            put32(out, kNameBodyBytes);
            put32(out, static_cast<uint32_t>(r.preset));
            const size_t at = out.size();
            out.resize(at + kNameBodyBytes, 0);
            std::memcpy(out.data() + at, r.name.data(), std::min(r.name.size(), kNameSize));
        } else {
            put32(out, kRecordValue);
            put32(out, kValueBodyBytes);
            put32(out, static_cast<uint32_t>(r.preset));
            put32(out, r.slot);
            put32(out, 0);
            put32(out, 0);
            putFloat(out, r.value);
            put32(out, 0);
        }
    }
    return out;
}

Bytes buildChunk(const PresetImage& image, int32_t uniqueId) {
    const Bytes body = buildImage(image, uniqueId);
    Bytes out(kChunkPrefixBytes + body.size());
    const uint32_t prefix[2] = {kFormatVersion, static_cast<uint32_t>(uniqueId)};
    std::memcpy(out.data(), prefix, kChunkPrefixBytes);
    std::memcpy(out.data() + kChunkPrefixBytes, body.data(), body.size());
    return out;
}

namespace {

// The byte order of a chunk the plug-in gave, after checking that it is one we can edit.
bool chunkOrder(const Bytes& chunk, int32_t uniqueId) {
    const std::string label = "the plug-in's chunk";
    if (chunk.size() < kChunkPrefixBytes + kHeaderBytes) throw RunError(label + " is too short to hold a bank");
    const bool swapped = isSwapped(chunk, kChunkMagicOffset, uniqueId, label);
    const uint32_t version = swapped ? __builtin_bswap32(raw32(chunk.data())) : raw32(chunk.data());
    if (version != kFormatVersion) throw RunError(label + " has a layout this tool does not know");
    return swapped;
}

}  // namespace

int32_t chunkCurrentPreset(const Bytes& chunk, int32_t uniqueId) {
    const bool swapped = chunkOrder(chunk, uniqueId);
    return FieldReader(chunk, swapped).i32(kChunkPrefixBytes + kCurrentPresetOffset);
}

void setChunkCurrentPreset(Bytes& chunk, int32_t uniqueId, int32_t preset) {
    const bool swapped = chunkOrder(chunk, uniqueId);
    uint32_t v = static_cast<uint32_t>(preset);
    if (swapped) v = __builtin_bswap32(v);
    std::memcpy(chunk.data() + kChunkPrefixBytes + kCurrentPresetOffset, &v, 4);
}

}  // namespace render
