#pragma once
// The record image: the one binary layout of presets and banks, used for preset and bank
// files, stored defaults and memories, and (behind an 8-byte prefix) the host's chunk.
//
//   header (41 bytes, packed)                 record head (12 bytes)      body
//   0  magic = the plug-in's unique id        0 type: 0 name, 1 value     name:  24-byte name, 132 zero
//   4  image type (1 byte)                    4 body size                 value: slot, 0, 0, value, 0
//   5  format version 0x02000000              8 preset index (signed)
//   9  slot count    13 record count    17 current preset    21 payload size    25..40 zero
//
// 32-bit fields are in the writer's byte order; a reader tells the order from the magic.
// Two older fixed layouts are read as well (a name and a run of floats per preset), and the
// chunk has a legacy form of its own. This header holds the layout and the byte-level
// helpers; the loaders and builders that apply images to the bank are ImageLoader and
// ImageBuilder.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace presets::image {

// --- The layout, in one place -------------------------------------------------------------

// Image type bytes at offset 4.
constexpr uint8_t kTypeLegacyPreset = 0x21;  // '!'
constexpr uint8_t kTypePreset = 0x22;        // '"'
constexpr uint8_t kTypeLegacyBank = 0x37;    // '7'
constexpr uint8_t kTypeBank = 0x38;          // '8'

constexpr uint32_t kFormatVersion = 0x02000000;        // record images and the current chunk
constexpr uint32_t kLegacyChunkVersion = 0x01000000;   // the older chunk of fixed blocks

// Header.
constexpr size_t kMagicOffset = 0;
constexpr size_t kTypeOffset = 4;
constexpr size_t kRecognisedBytes = 5;   // magic and type: what every reader looks at first
constexpr size_t kVersionOffset = 5;
constexpr size_t kSlotCountOffset = 9;
constexpr size_t kRecordCountOffset = 13;
constexpr size_t kCurrentPresetOffset = 17;
constexpr size_t kPayloadSizeOffset = 21;
constexpr size_t kReservedOffset = 25;
constexpr size_t kReservedBytes = 16;
constexpr size_t kHeaderBytes = 41;
constexpr int kHeaderWords = 9;          // the 32-bit fields from offset 5 to 40

// Records.
constexpr uint32_t kRecordName = 0;
constexpr uint32_t kRecordValue = 1;
constexpr size_t kRecordHeadBytes = 12;
constexpr size_t kRecordTypeOffset = 0;
constexpr size_t kRecordBodySizeOffset = 4;
constexpr size_t kRecordPresetOffset = 8;
constexpr uint32_t kNameBodyBytes = 156;
constexpr size_t kNameOffset = 0;        // in the body; 24 bytes, then zeros
constexpr uint32_t kValueBodyBytes = 20;
constexpr size_t kValueSlotOffset = 0;   // in the body
constexpr size_t kValueOffset = 12;      // in the body; the other words are zero
constexpr size_t kValueReadBytes = 16;   // what a reader needs of a value body

// The chunk handed to the host: version, magic, then a bank image.
constexpr size_t kChunkVersionOffset = 0;
constexpr size_t kChunkMagicOffset = 4;
constexpr size_t kChunkPrefixBytes = 8;

// The legacy chunk: version, magic, preset count, current preset, four more words, then the
// presets as fixed blocks.
constexpr size_t kLegacyChunkPresetCountOffset = 8;
constexpr size_t kLegacyChunkCurrentOffset = 12;
constexpr size_t kLegacyChunkHeaderBytes = 32;

// Legacy preset and bank blocks: a name, then one float per slot from slot 0.
constexpr size_t kLegacyNameBytes = 24;

// --- Byte order ---------------------------------------------------------------------------

constexpr uint32_t reverseBytes(uint32_t v) {
    return (v >> 24) | ((v >> 8) & 0x0000ff00u) | ((v << 8) & 0x00ff0000u) | (v << 24);
}

// A 32-bit field as it lies in memory, reversed when swapped. The caller guarantees 4 bytes.
inline uint32_t readWord(const uint8_t* at, bool swapped) {
    uint32_t v;
    std::memcpy(&v, at, sizeof v);
    return swapped ? reverseBytes(v) : v;
}
inline int32_t readSigned(const uint8_t* at, bool swapped) { return static_cast<int32_t>(readWord(at, swapped)); }
inline float readFloat(const uint8_t* at, bool swapped) { return std::bit_cast<float>(readWord(at, swapped)); }

// In the machine's order, as every writer of this system writes.
inline void writeWord(uint8_t* at, uint32_t v) { std::memcpy(at, &v, sizeof v); }

enum class ByteOrder { kNative, kReversed, kForeign };

// Compares the 4 magic bytes with the plug-in's unique id, read as they lie.
ByteOrder detectByteOrder(const uint8_t* magic, int32_t uniqueId);

// --- Header --------------------------------------------------------------------------------

// The header's fields in the machine's order.
struct ImageHeader {
    uint32_t magic = 0;
    uint8_t type = 0;
    uint32_t version = 0;
    int32_t slotCount = 0;
    int32_t recordCount = 0;
    int32_t currentPreset = 0;
    uint32_t payloadSize = 0;
};

// Reads the header at image (kHeaderBytes available), reversing its 32-bit fields when swapped.
// The magic is kept as it lies.
ImageHeader readHeader(const uint8_t* image, bool swapped);

// --- Recognising a whole image ------------------------------------------------------------

struct Recognised {
    uint8_t type = 0;
    bool swapped = false;
};

// Settles the byte order of a file or stored value from its magic and reads its type byte.
// False for fewer than 5 bytes or a foreign magic. invertOrder serves files whose magic and
// values were written in different byte orders (the "endian-reversed" loads).
bool recognise(const uint8_t* bytes, size_t size, int32_t uniqueId, bool invertOrder, Recognised& out);

// --- Records -------------------------------------------------------------------------------

struct Record {
    uint32_t type = 0;
    uint32_t bodySize = 0;
    int32_t presetIndex = 0;
    const uint8_t* body = nullptr;
};

// Walks the records of an image. The image ends at the end of the bytes given: a record
// whose head or body would run past them is not returned, and neither is anything after it.
class RecordCursor {
public:
    RecordCursor(const uint8_t* records, size_t size, bool swapped)
        : at_(records), left_(records ? size : 0), swapped_(swapped) {}

    bool next(Record& out);

private:
    const uint8_t* at_;
    size_t left_;
    bool swapped_;
};

// The 24 name bytes of a name record, or null when its body is too short to hold them.
const uint8_t* nameOf(const Record& record);
// Slot and value of a value record; false when its body is too short to hold them.
bool valueOf(const Record& record, bool swapped, uint32_t& slot, float& value);

// --- Writing -------------------------------------------------------------------------------

constexpr size_t kNameRecordBytes = kRecordHeadBytes + kNameBodyBytes;
constexpr size_t kValueRecordBytes = kRecordHeadBytes + kValueBodyBytes;

// Fills exactly kHeaderBytes / kNameRecordBytes / kValueRecordBytes at out.
void writeHeader(uint8_t* out, int32_t uniqueId, uint8_t type, int32_t slotCount, int32_t recordCount,
                 int32_t currentPreset, uint32_t payloadSize);
void writeNameRecord(uint8_t* out, int32_t presetIndex, const char* name, size_t nameField);
void writeValueRecord(uint8_t* out, int32_t presetIndex, uint32_t slot, float value);

// Values outside 0..1 (and NaN) undo a load.
inline bool isNormalized(float v) { return v >= 0.0f && v <= 1.0f; }

}  // namespace presets::image
