#pragma once
// The record image: the one binary layout of presets and banks, used for preset and bank
// files, stored defaults and memories, and (behind an 8-byte prefix) the host's chunk.
// Two older fixed layouts are read as well (a name and a run of floats per preset), and the
// chunk has a legacy form of its own. The byte layout is in RecordLayout.h; this header holds
// the byte-level helpers, and the loaders and builders that apply images to the bank are
// ImageLoader and ImageBuilder.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "presets/RecordLayout.h"

namespace presets::image {

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

// Fills exactly kHeaderBytes / kNameRecordBytes / kValueRecordBytes at out.
void writeHeader(uint8_t* out, int32_t uniqueId, uint8_t type, int32_t slotCount, int32_t recordCount,
                 int32_t currentPreset, uint32_t payloadSize);
void writeNameRecord(uint8_t* out, int32_t presetIndex, const char* name, size_t nameField);
void writeValueRecord(uint8_t* out, int32_t presetIndex, uint32_t slot, float value);

// Values outside 0..1 (and NaN) undo a load.
inline bool isNormalized(float v) { return v >= 0.0f && v <= 1.0f; }

}  // namespace presets::image
