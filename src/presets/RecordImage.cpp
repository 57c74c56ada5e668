#include "presets/RecordImage.h"

namespace presets::image {

ByteOrder detectByteOrder(const uint8_t* magic, int32_t uniqueId) {
    const uint32_t asItLies = readWord(magic, false);
    const uint32_t id = static_cast<uint32_t>(uniqueId);
    if (asItLies == reverseBytes(id)) return ByteOrder::kReversed;
    if (asItLies == id) return ByteOrder::kNative;
    return ByteOrder::kForeign;
}

ImageHeader readHeader(const uint8_t* image, bool swapped) {
    ImageHeader h;
    h.magic = readWord(image + kMagicOffset, false);
    h.type = image[kTypeOffset];
    h.version = readWord(image + kVersionOffset, swapped);
    h.slotCount = readSigned(image + kSlotCountOffset, swapped);
    h.recordCount = readSigned(image + kRecordCountOffset, swapped);
    h.currentPreset = readSigned(image + kCurrentPresetOffset, swapped);
    h.payloadSize = readWord(image + kPayloadSizeOffset, swapped);
    return h;
}

bool recognise(const uint8_t* bytes, size_t size, int32_t uniqueId, bool invertOrder, Recognised& out) {
    if (!bytes || size < kRecognisedBytes) return false;
    const ByteOrder order = detectByteOrder(bytes + kMagicOffset, uniqueId);
    if (order == ByteOrder::kForeign) return false;
    out.swapped = (order == ByteOrder::kReversed) != invertOrder;
    out.type = bytes[kTypeOffset];
    return true;
}

bool RecordCursor::next(Record& out) {
    if (left_ < kRecordHeadBytes) return false;
    const uint32_t bodySize = readWord(at_ + kRecordBodySizeOffset, swapped_);
    if (bodySize > left_ - kRecordHeadBytes) {
        left_ = 0;  // runs past the end: the image ends here
        return false;
    }
    out.type = readWord(at_ + kRecordTypeOffset, swapped_);
    out.bodySize = bodySize;
    out.presetIndex = readSigned(at_ + kRecordPresetOffset, swapped_);
    out.body = at_ + kRecordHeadBytes;
    const size_t length = kRecordHeadBytes + bodySize;
    at_ += length;
    left_ -= length;
    return true;
}

const uint8_t* nameOf(const Record& record) {
    return record.bodySize >= kNameOffset + kLegacyNameBytes ? record.body + kNameOffset : nullptr;
}

bool valueOf(const Record& record, bool swapped, uint32_t& slot, float& value) {
    if (record.bodySize < kValueReadBytes) return false;
    slot = readWord(record.body + kValueSlotOffset, swapped);
    value = readFloat(record.body + kValueOffset, swapped);
    return true;
}

void writeHeader(uint8_t* out, int32_t uniqueId, uint8_t type, int32_t slotCount, int32_t recordCount,
                 int32_t currentPreset, uint32_t payloadSize) {
    writeWord(out + kMagicOffset, static_cast<uint32_t>(uniqueId));
    out[kTypeOffset] = type;
    writeWord(out + kVersionOffset, kFormatVersion);
    writeWord(out + kSlotCountOffset, static_cast<uint32_t>(slotCount));
    writeWord(out + kRecordCountOffset, static_cast<uint32_t>(recordCount));
    writeWord(out + kCurrentPresetOffset, static_cast<uint32_t>(currentPreset));
    writeWord(out + kPayloadSizeOffset, payloadSize);
    std::memset(out + kReservedOffset, 0, kReservedBytes);
}

static void writeRecordHead(uint8_t* out, uint32_t type, uint32_t bodySize, int32_t presetIndex) {
    writeWord(out + kRecordTypeOffset, type);
    writeWord(out + kRecordBodySizeOffset, bodySize);
    writeWord(out + kRecordPresetOffset, static_cast<uint32_t>(presetIndex));
}

void writeNameRecord(uint8_t* out, int32_t presetIndex, const char* name, size_t nameField) {
    writeRecordHead(out, kRecordName, kNameBodyBytes, presetIndex);
    uint8_t* body = out + kRecordHeadBytes;
    std::memset(body, 0, kNameBodyBytes);
    // The whole field as it lies: a shorter name stored over a longer one leaves the longer one's
    // tail behind its NUL, and those bytes belong to the preset as much as the name does.
    std::memcpy(body + kNameOffset, name, nameField < kLegacyNameBytes ? nameField : kLegacyNameBytes);
}

void writeValueRecord(uint8_t* out, int32_t presetIndex, uint32_t slot, float value) {
    writeRecordHead(out, kRecordValue, kValueBodyBytes, presetIndex);
    uint8_t* body = out + kRecordHeadBytes;
    std::memset(body, 0, kValueBodyBytes);
    writeWord(body + kValueSlotOffset, slot);
    writeWord(body + kValueOffset, std::bit_cast<uint32_t>(value));
}

}  // namespace presets::image
