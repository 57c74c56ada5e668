#pragma once
// The plug-in's record image, read and written from the host side: the layout of its preset
// (.tyx) and bank (.tyb) files and, behind an 8-byte prefix, of the chunk it gives the host.
//
// The tool never hands a file to the plug-in as it lies. It reads the file here (either byte
// order, and the older fixed layouts too), checks it, and writes it again as a record image in
// this machine's byte order, so that the chunk the plug-in receives is always well formed and
// a broken file is reported instead of being silently ignored.

#include <cstdint>
#include <string>
#include <vector>

#include "presets/RecordLayout.h"

namespace render {

using Bytes = std::vector<unsigned char>;


struct ImageRecord {
    enum Kind { Name, Value } kind = Name;
    int32_t preset = 0;
    std::string name;   // Name records: at most 24 bytes
    uint32_t slot = 0;  // Value records
    float value = 0.0f;
};

struct PresetImage {
    bool bank = false;
    int32_t currentPreset = 0;
    std::vector<ImageRecord> records;
};

// Reads a preset or bank file's bytes. `uniqueId` is the plug-in's ID (the image's magic);
// `label` names the file in messages. Throws RunError on anything the plug-in would refuse or
// silently ignore: a foreign magic, an unknown type, a truncated image, a value outside 0..1.
PresetImage parseImage(const Bytes& bytes, int32_t uniqueId, const std::string& label);

// A record image in this machine's byte order.
Bytes buildImage(const PresetImage& image, int32_t uniqueId);

// The chunk form of an image: format version and magic, then the image.
Bytes buildChunk(const PresetImage& image, int32_t uniqueId);

// The current-preset field of a chunk the plug-in gave, in whatever byte order the chunk uses.
// Throw RunError when the bytes are not a chunk of this plug-in.
int32_t chunkCurrentPreset(const Bytes& chunk, int32_t uniqueId);
void setChunkCurrentPreset(Bytes& chunk, int32_t uniqueId, int32_t preset);

}  // namespace render
