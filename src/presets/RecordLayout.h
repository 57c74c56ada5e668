#pragma once
// The record image's byte layout: where every field of presets and banks lies in files,
// stored defaults and memories, and (behind an 8-byte prefix) in the host's chunk.
//
//   header (41 bytes, packed)                 record head (12 bytes)      body
//   0  magic = the plug-in's unique id        0 type: 0 name, 1 value     name:  24-byte name, 132 zero
//   4  image type (1 byte)                    4 body size                 value: slot, 0, 0, value, 0
//   5  format version 0x02000000              8 preset index (signed)
//   9  slot count    13 record count    17 current preset    21 payload size    25..40 zero
//
// 32-bit fields are in the writer's byte order; a reader tells the order from the magic.
// Needs the standard library only, so that programs outside the plug-in (the offline host,
// tests that write images byte by byte) share these numbers without linking any of it.

#include <cstddef>
#include <cstdint>

#include "presets/PresetRecord.h"

namespace presets::image {

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

constexpr size_t kNameRecordBytes = kRecordHeadBytes + kNameBodyBytes;
constexpr size_t kValueRecordBytes = kRecordHeadBytes + kValueBodyBytes;

}  // namespace presets::image
