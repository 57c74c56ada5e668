// Preset and bank images written byte by byte, loaded through the editor's image entry points
// and the effect's chunk calls; the bank checked field by field afterwards.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "ImageBytes.h"
#include "PresetTestEffect.h"

using imagebytes::Bytes;
using imagebytes::handValue;
using imagebytes::presetImage;
using imagebytes::SlotValues;
using presets::kPresetCount;
using presets::kPresetSlots;

namespace {

constexpr int kSavedSlots = 85;

SlotValues savedSlotsOf(int p) {
    SlotValues v;
    for (int s = 0; s < kSavedSlots; ++s) v.emplace_back(s, handValue(p, s));
    return v;
}

uint32_t le32(const std::vector<unsigned char>& b, size_t at) {
    return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<uint32_t>(b[at + 3]) << 24;
}

// A bank image of 21 hand-made presets "Bank 0".."Bank 20", every saved slot filled.
Bytes handBank(bool big, int32_t current, const std::vector<std::pair<int, std::pair<int, float>>>& overrides = {}) {
    Bytes b(big);
    const int records = kPresetCount * (1 + kSavedSlots);
    b.header(0x38, records, current, records * 32 + kPresetCount * (168 - 32));
    for (int p = 0; p < kPresetCount; ++p) {
        b.nameRecord(p, "Bank " + std::to_string(p));
        for (int s = 0; s < kSavedSlots; ++s) {
            float v = handValue(p, s);
            for (const auto& [op, sv] : overrides)
                if (op == p && sv.first == s) v = sv.second;
            b.valueRecord(p, s, v);
        }
    }
    return b;
}

// A legacy block: a 24-byte name and count floats from slot 0.
void legacyBlock(Bytes& b, const std::string& name, int count, int p, int badSlot = -1, float bad = 0) {
    b.text(name);
    for (int s = 0; s < count; ++s) b.f32(s == badSlot ? bad : handValue(p, s));
}

class RecordImages : public ::testing::Test {
protected:
    void SetUp() override { fresh(); }
    void fresh() {
        fx = std::make_unique<PresetTestEffect>();
        fx->selectPreset(4);
        fx->selections.clear();
        fx->ed().forgetDisplay();
    }
    void expectNothingHappened(const std::vector<presets::PresetRecord>& before) {
        EXPECT_TRUE(sameBank(fx->bankCopy(), before));
        EXPECT_EQ(fx->getCurrentPreset(), 4);
        EXPECT_TRUE(fx->selections.empty());
        EXPECT_TRUE(fx->ed().shownNames.empty());
        EXPECT_TRUE(fx->ed().menuTitles.empty());
    }

    ScopedStoreFolder folder;
    std::unique_ptr<PresetTestEffect> fx;
};

}  // namespace

TEST_F(RecordImages, PresetImageLandsInTheCurrentPresetInEitherByteOrder) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        const auto before = fx->bankCopy();
        // The records say preset 9: a preset image always lands in the current preset.
        const Bytes image = presetImage(big, "Hand Made", savedSlotsOf(0), 9);
        ASSERT_EQ(image.size(), 41u + 168 + 85 * 32);
        ASSERT_TRUE(fx->ed().loadPresetImage(image.ptr(), image.size()));

        const auto& p = fx->preset(4);
        EXPECT_EQ(nameOf(p), "Hand Made");
        for (int s = 0; s < kSavedSlots; ++s) EXPECT_EQ(p.values[s], handValue(0, s)) << s;
        for (int s = kSavedSlots; s < kPresetSlots; ++s) EXPECT_EQ(p.values[s], fx->getTemplate().values[s]) << s;
        for (int i = 0; i < kPresetCount; ++i) {
            if (i != 4) {
                EXPECT_EQ(std::memcmp(&fx->preset(i), &before[i], sizeof before[i]), 0) << i;
            }
        }
        EXPECT_EQ(fx->selections, std::vector<int>{4});
        EXPECT_EQ(fx->getParameter(7), handValue(0, 7));
        ASSERT_FALSE(fx->ed().shownNames.empty());
        EXPECT_EQ(fx->ed().shownNames.back(), "Hand Made");
        EXPECT_EQ(fx->ed().menuTitles[4], "Hand Made");
    }
}

TEST_F(RecordImages, UnknownRecordsAndSlotsBeyondThePresetAreSkipped) {
    Bytes b;
    b.header(0x22, 7, 0, 0);
    b.nameRecord(0, "Newer Writer");
    b.valueRecord(0, 94, 1.5f);  // a slot this bank does not have: skipped before its value counts
    b.record(2, 0, std::vector<uint8_t>(40, 0xff));
    b.record(77, 0, {});
    b.valueRecord(0, 1000, 0.9f);
    b.valueRecord(0, 5, 0.125f);
    b.valueRecord(0, 0xffffffffu, 0.9f);
    ASSERT_TRUE(fx->ed().loadPresetImage(b.ptr(), b.size()));
    const auto& p = fx->preset(4);
    EXPECT_EQ(nameOf(p), "Newer Writer");
    for (int s = 0; s < kPresetSlots; ++s)
        EXPECT_EQ(p.values[s], s == 5 ? 0.125f : fx->getTemplate().values[s]) << s;
}

TEST_F(RecordImages, ValueOutsideTheRangeLeavesThePresetExactlyAsItWas) {
    // Make the current preset differ from the template, name field left-overs included.
    char longName[] = "A rather long preset nam";
    fx->setProgramName(longName);
    char shortName[] = "Mine";
    fx->setProgramName(shortName);
    fx->setParameter(3, 0.333f);
    fx->ed().forgetDisplay();
    const auto before = fx->bankCopy();
    for (float bad : {1.5f, -0.001f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                      std::nextafter(1.0f, 2.0f)}) {
        SCOPED_TRACE(bad);
        for (bool big : {false, true}) {
            const Bytes image = presetImage(big, "Bad", {{0, 0.3f}, {10, bad}, {11, 0.4f}});
            EXPECT_FALSE(fx->ed().loadPresetImage(image.ptr(), image.size()));
            expectNothingHappened(before);
        }
    }
    // The bounds themselves belong to the range.
    const Bytes edges = presetImage(false, "Edges", {{0, 0.0f}, {1, 1.0f}, {2, -0.0f}});
    ASSERT_TRUE(fx->ed().loadPresetImage(edges.ptr(), edges.size()));
    EXPECT_EQ(fx->preset(4).values[0], 0.0f);
    EXPECT_EQ(fx->preset(4).values[1], 1.0f);
}

TEST_F(RecordImages, TruncatedImagesEndAtTheLastWholeRecord) {
    SlotValues ten;
    for (int s = 0; s < 10; ++s) ten.emplace_back(s, 0.05f * (s + 1));
    const auto& p = fx->preset(4);

    // The last value record cut in half: the nine before it load.
    Bytes cut = presetImage(false, "Cut", ten);
    cut.data.resize(cut.size() - 16);
    ASSERT_TRUE(fx->ed().loadPresetImage(cut.ptr(), cut.size()));
    EXPECT_EQ(nameOf(p), "Cut");
    for (int s = 0; s < 9; ++s) EXPECT_EQ(p.values[s], 0.05f * (s + 1)) << s;
    EXPECT_EQ(p.values[9], fx->getTemplate().values[9]);

    // A header that promises more records than the bytes hold: the walk ends with the bytes.
    Bytes promising = presetImage(false, "Promising", ten);
    promising.data[13] = 200;  // record count, little-endian low byte
    ASSERT_TRUE(fx->ed().loadPresetImage(promising.ptr(), promising.size()));
    EXPECT_EQ(p.values[9], 0.05f * 10);

    // A body size that runs far past the end ends the image there.
    Bytes runaway(false);
    runaway.header(0x22, 4, 0, 0).nameRecord(0, "Runaway").valueRecord(0, 1, 0.25f);
    runaway.u32(1).u32(0xfffffff0u).i32(0).f32(0.75f);
    runaway.valueRecord(0, 2, 0.5f);
    ASSERT_TRUE(fx->ed().loadPresetImage(runaway.ptr(), runaway.size()));
    EXPECT_EQ(p.values[1], 0.25f);
    EXPECT_EQ(p.values[2], fx->getTemplate().values[2]);

    // Fewer records announced than present: the rest is not read, in either byte order.
    for (bool big : {false, true}) {
        Bytes fewer = presetImage(big, "Fewer", ten);
        fewer.data[big ? 16 : 13] = 3;
        ASSERT_TRUE(fx->ed().loadPresetImage(fewer.ptr(), fewer.size()));
        EXPECT_EQ(p.values[1], 0.05f * 2);
        EXPECT_EQ(p.values[2], fx->getTemplate().values[2]);
    }

    // A value record too short to hold its value is skipped, a name record too short to hold a
    // name likewise.
    Bytes shortBodies(false);
    shortBodies.header(0x22, 3, 0, 0).record(0, 0, std::vector<uint8_t>(10, 'x'));
    shortBodies.record(1, 0, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    shortBodies.valueRecord(0, 4, 0.625f);
    ASSERT_TRUE(fx->ed().loadPresetImage(shortBodies.ptr(), shortBodies.size()));
    EXPECT_EQ(nameOf(p), "Flat");
    EXPECT_EQ(p.values[3], fx->getTemplate().values[3]);
    EXPECT_EQ(p.values[4], 0.625f);
}

TEST_F(RecordImages, ShortForeignOrUnknownImagesChangeNothing) {
    const auto before = fx->bankCopy();
    const Bytes good = presetImage(false, "Good", {{0, 0.5f}});
    std::vector<std::vector<uint8_t>> refused = {
        {},
        {0x72, 0x76, 0x58, 0x54},                            // magic only
        std::vector<uint8_t>(good.data.begin(), good.data.begin() + 40),  // header cut short
        Bytes().header(0x23, 0, 0, 0).data,                 // unknown type
        Bytes().magic().u8(0x21).text("Short name", 20).data,  // legacy preset without a whole name
    };
    Bytes foreign = good;
    foreign.data[0] = 'A';
    refused.push_back(foreign.data);
    for (const auto& bytes : refused) {
        EXPECT_FALSE(fx->ed().loadPresetImage(bytes.data(), bytes.size())) << bytes.size();
        EXPECT_FALSE(fx->ed().loadBankImage(bytes.data(), bytes.size())) << bytes.size();
        expectNothingHappened(before);
    }
    // A bank is no preset and a preset no bank.
    const Bytes bank = Bytes().header(0x38, 0, 0, 0);
    EXPECT_FALSE(fx->ed().loadPresetImage(bank.ptr(), bank.size()));
    EXPECT_FALSE(fx->ed().loadBankImage(good.ptr(), good.size()));
    Bytes legacyPreset;
    legacyPreset.magic().u8(0x21).text("Legacy").f32(0.5f);
    EXPECT_FALSE(fx->ed().loadBankImage(legacyPreset.ptr(), legacyPreset.size()));
    expectNothingHappened(before);
    EXPECT_FALSE(fx->ed().loadPresetImage(nullptr, 100));
    expectNothingHappened(before);
}

TEST_F(RecordImages, LegacyPresetTakesNameAndFloatsButNotTheGlobalSlots) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        Bytes b(big);
        b.magic().u8(0x21);
        legacyBlock(b, "Old Style", 94, 3, 80, 7.0f);  // slot 80 is never read, so 7 does no harm
        ASSERT_TRUE(fx->ed().loadPresetImage(b.ptr(), b.size()));
        const auto& p = fx->preset(4);
        EXPECT_EQ(nameOf(p), "Old Style");
        for (int s = 0; s <= 71; ++s) EXPECT_EQ(p.values[s], handValue(3, s)) << s;
        for (int s = 72; s < kPresetSlots; ++s) EXPECT_EQ(p.values[s], fx->getTemplate().values[s]) << s;
        EXPECT_EQ(fx->selections, std::vector<int>{4});
    }

    // Fewer floats than slots: the rest keep the template's values.
    fresh();
    Bytes few;
    few.magic().u8(0x21);
    legacyBlock(few, "Few", 10, 2);
    ASSERT_TRUE(fx->ed().loadPresetImage(few.ptr(), few.size()));
    EXPECT_EQ(fx->preset(4).values[9], handValue(2, 9));
    EXPECT_EQ(fx->preset(4).values[10], fx->getTemplate().values[10]);

    // A value outside the range in a read slot undoes the load.
    fresh();
    const auto before = fx->bankCopy();
    Bytes bad;
    bad.magic().u8(0x21);
    legacyBlock(bad, "Bad", 94, 3, 10, 1.5f);
    EXPECT_FALSE(fx->ed().loadPresetImage(bad.ptr(), bad.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, BankImageReplacesEveryPresetInEitherByteOrder) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        Bytes b = handBank(big, 5);
        ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
        for (int p = 0; p < kPresetCount; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Bank " + std::to_string(p));
            EXPECT_EQ(fx->ed().menuTitles[p], "Bank " + std::to_string(p));
            for (int s = 0; s < kSavedSlots; ++s) EXPECT_EQ(fx->preset(p).values[s], handValue(p, s)) << p << "/" << s;
            for (int s = kSavedSlots; s < kPresetSlots; ++s)
                EXPECT_EQ(fx->preset(p).values[s], fx->getTemplate().values[s]) << p << "/" << s;
        }
        EXPECT_EQ(fx->selections, std::vector<int>{5});
        EXPECT_EQ(fx->getCurrentPreset(), 5);
        EXPECT_EQ(fx->ed().menuSelections, std::vector<int>{5});
        EXPECT_EQ(fx->ed().shownNames.back(), "Bank 5");
    }
}

TEST_F(RecordImages, BankRecordsForOtherPresetsAndEarlyValuesAreDropped) {
    Bytes b;
    b.header(0x38, 8, 30, 0);
    b.valueRecord(3, 0, 0.125f);  // before preset 3's name record: the name record resets it
    b.nameRecord(3, "Three");
    b.valueRecord(3, 1, 0.25f);
    b.nameRecord(25, "Twenty-five");
    b.valueRecord(25, 1, 0.5f);
    b.nameRecord(-1, "Minus one");
    b.valueRecord(-1, 1, 0.5f);
    b.valueRecord(7, 2, 0.375f);  // a preset without a name record keeps the rest of its values
    const auto before = fx->bankCopy();
    ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
    EXPECT_EQ(nameOf(fx->preset(3)), "Three");
    EXPECT_EQ(fx->preset(3).values[0], fx->getTemplate().values[0]);
    EXPECT_EQ(fx->preset(3).values[1], 0.25f);
    EXPECT_EQ(nameOf(fx->preset(7)), nameOf(before[7]));
    EXPECT_EQ(fx->preset(7).values[2], 0.375f);
    EXPECT_EQ(fx->preset(7).values[3], before[7].values[3]);
    for (int p : {0, 1, 2, 4, 5, 6, 8, 20})
        EXPECT_EQ(std::memcmp(&fx->preset(p), &before[p], sizeof before[p]), 0) << p;
    EXPECT_EQ(fx->selections, std::vector<int>{0});  // current preset 30 is not in the bank

    Bytes negative;
    negative.header(0x38, 1, -3, 0).nameRecord(2, "Two");
    ASSERT_TRUE(fx->ed().loadBankImage(negative.ptr(), negative.size()));
    EXPECT_EQ(fx->selections.back(), 0);
}

TEST_F(RecordImages, DamagedBankImagesLeaveTheWholeBankAsItWas) {
    const auto before = fx->bankCopy();
    for (bool big : {false, true}) {
        const Bytes late = handBank(big, 5, {{20, {84, 1.5f}}});  // the very last value
        EXPECT_FALSE(fx->ed().loadBankImage(late.ptr(), late.size()));
        expectNothingHappened(before);
    }
    Bytes negative;
    negative.header(0x38, -1, 0, 0).nameRecord(0, "Never");
    EXPECT_FALSE(fx->ed().loadBankImage(negative.ptr(), negative.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, LegacyBankFillsTheBankAndSelectsTheFirstPreset) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        Bytes b(big);
        b.magic().u8(0x37);
        for (int p = 0; p < kPresetCount; ++p) legacyBlock(b, "Legacy " + std::to_string(p), 94, p);
        ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
        for (int p = 0; p < kPresetCount; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Legacy " + std::to_string(p));
            for (int s = 0; s < kPresetSlots; ++s) {
                const float want = s <= 71 ? handValue(p, s) : fx->getTemplate().values[s];
                EXPECT_EQ(fx->preset(p).values[s], want) << p << "/" << s;
            }
        }
        EXPECT_EQ(fx->selections, std::vector<int>{0});
    }

    fresh();
    const auto before = fx->bankCopy();
    Bytes shortBank;
    shortBank.magic().u8(0x37).zeros(21 * 24 - 1);  // not even a name per preset
    EXPECT_FALSE(fx->ed().loadBankImage(shortBank.ptr(), shortBank.size()));
    expectNothingHappened(before);

    Bytes bad;
    bad.magic().u8(0x37);
    for (int p = 0; p < kPresetCount; ++p) legacyBlock(bad, "Bad", 94, p, p == 12 ? 3 : -1, 1.5f);
    EXPECT_FALSE(fx->ed().loadBankImage(bad.ptr(), bad.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, EndianReversedLoadServesImagesWithMixedByteOrder) {
    // Magic in the machine's order, everything else reversed.
    Bytes mixed = presetImage(true, "Mixed", savedSlotsOf(6));
    const uint8_t nativeMagic[4] = {0x72, 0x76, 0x58, 0x54};
    std::memcpy(mixed.data.data(), nativeMagic, 4);

    ASSERT_TRUE(fx->ed().loadPresetImage(mixed.ptr(), mixed.size(), true));
    EXPECT_EQ(nameOf(fx->preset(4)), "Mixed");
    for (int s = 0; s < kSavedSlots; ++s) EXPECT_EQ(fx->preset(4).values[s], handValue(6, s)) << s;

    fresh();
    fx->ed().loadPresetImage(mixed.ptr(), mixed.size(), false);
    EXPECT_NE(nameOf(fx->preset(4)), "Mixed");
    EXPECT_NE(fx->preset(4).values[5], handValue(6, 5));

    // A big-endian image needs no help, and the reversed load turns it into a mixed one.
    fresh();
    const Bytes big = presetImage(true, "Big", savedSlotsOf(6));
    ASSERT_TRUE(fx->ed().loadPresetImage(big.ptr(), big.size(), false));
    EXPECT_EQ(nameOf(fx->preset(4)), "Big");
}

TEST_F(RecordImages, ChunkOfTheBankReadByHand) {
    void* data = nullptr;
    const VstInt32 size = fx->getChunk(&data);
    ASSERT_EQ(size, 60697);
    const auto* raw = static_cast<const unsigned char*>(data);
    const std::vector<unsigned char> c(raw, raw + size);

    const std::vector<unsigned char> prefix = {0, 0, 0, 2, 0x72, 0x76, 0x58, 0x54};
    EXPECT_TRUE(std::equal(prefix.begin(), prefix.end(), c.begin()));
    EXPECT_EQ(le32(c, 8), 0x54587672u);  // the image's own magic
    EXPECT_EQ(c[12], 0x38);
    EXPECT_EQ(le32(c, 13), 0x02000000u);
    EXPECT_EQ(le32(c, 17), 94u);
    EXPECT_EQ(le32(c, 21), 1806u);
    EXPECT_EQ(le32(c, 25), 4u);  // current preset
    EXPECT_EQ(le32(c, 29), 60648u);
    for (int i = 33; i < 49; ++i) EXPECT_EQ(c[i], 0) << i;

    for (int p = 0; p < kPresetCount; ++p) {
        const size_t at = 49 + static_cast<size_t>(p) * (168 + 85 * 32);
        EXPECT_EQ(le32(c, at), 0u);
        EXPECT_EQ(le32(c, at + 4), 156u);
        EXPECT_EQ(le32(c, at + 8), static_cast<uint32_t>(p));
        const std::string name(reinterpret_cast<const char*>(&c[at + 12]));
        EXPECT_EQ(name, nameOf(fx->preset(p)));
        for (size_t i = at + 12 + name.size(); i < at + 168; ++i) EXPECT_EQ(c[i], 0) << p << "/" << i;
        for (int s = 0; s < kSavedSlots; ++s) {
            const size_t v = at + 168 + static_cast<size_t>(s) * 32;
            EXPECT_EQ(le32(c, v), 1u);
            EXPECT_EQ(le32(c, v + 4), 20u);
            EXPECT_EQ(le32(c, v + 8), static_cast<uint32_t>(p));
            EXPECT_EQ(le32(c, v + 12), static_cast<uint32_t>(s));
            EXPECT_EQ(le32(c, v + 16) | le32(c, v + 20) | le32(c, v + 28), 0u);
            EXPECT_EQ(std::bit_cast<float>(le32(c, v + 24)), fx->preset(p).values[s]) << p << "/" << s;
        }
    }

    void* again = nullptr;
    ASSERT_EQ(fx->getChunk(&again), size);
    EXPECT_EQ(std::memcmp(again, c.data(), c.size()), 0);
}

TEST_F(RecordImages, PresetImageBuiltByTheEditorReadByHand) {
    fx->setParameter(5, 0.625f);
    std::vector<uint8_t> image;
    ASSERT_EQ(fx->ed().buildPresetBlob(image), 2929u);
    ASSERT_EQ(image.size(), 2929u);
    const std::vector<unsigned char> c(image.begin(), image.end());
    EXPECT_EQ(le32(c, 0), 0x54587672u);
    EXPECT_EQ(c[4], 0x22);
    EXPECT_EQ(le32(c, 5), 0x02000000u);
    EXPECT_EQ(le32(c, 9), 94u);
    EXPECT_EQ(le32(c, 13), 86u);
    EXPECT_EQ(le32(c, 17), 0u);
    EXPECT_EQ(le32(c, 21), 2888u);
    EXPECT_EQ(le32(c, 41 + 8), 0u);                        // preset index 0, though preset 4 is current
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&c[53])), nameOf(fx->preset(4)));
    EXPECT_EQ(std::bit_cast<float>(le32(c, 41 + 168 + 5 * 32 + 24)), 0.625f);
}

TEST_F(RecordImages, ChunksOfEitherByteOrderReplaceTheBank) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        Bytes chunk(big);
        chunk.u32(0x02000000).magic().append(handBank(big, 11).data);
        ASSERT_EQ(fx->setChunk(chunk.data.data(), static_cast<VstInt32>(chunk.size())), 0);
        for (int p = 0; p < kPresetCount; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Bank " + std::to_string(p));
            for (int s = 0; s < kSavedSlots; ++s) EXPECT_EQ(fx->preset(p).values[s], handValue(p, s));
        }
        EXPECT_EQ(fx->selections, std::vector<int>{11});
    }
}

TEST_F(RecordImages, LegacyChunkLoadsWithoutRangeCheck) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        const auto before = fx->bankCopy();
        Bytes chunk(big);
        chunk.u32(0x01000000).magic().i32(3).i32(2).zeros(16);
        for (int p = 0; p < 3; ++p) legacyBlock(chunk, "Chunk " + std::to_string(p), 94, p, p == 1 ? 3 : -1, 1.5f);
        ASSERT_EQ(fx->setChunk(chunk.data.data(), static_cast<VstInt32>(chunk.size())), 0);
        for (int p = 0; p < 3; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Chunk " + std::to_string(p));
            for (int s = 0; s < kPresetSlots; ++s) {
                const float want = s > 71 ? fx->getTemplate().values[s] : (p == 1 && s == 3 ? 1.5f : handValue(p, s));
                EXPECT_EQ(fx->preset(p).values[s], want) << p << "/" << s;
            }
        }
        for (int p = 3; p < kPresetCount; ++p) EXPECT_EQ(std::memcmp(&fx->preset(p), &before[p], sizeof before[p]), 0);
        EXPECT_EQ(fx->selections, std::vector<int>{2});
    }

    // More presets than the bank holds: the first 21 load; a current preset outside it gives 0.
    fresh();
    Bytes many;
    many.u32(0x01000000).magic().i32(30).i32(25).zeros(16);
    for (int p = 0; p < 30; ++p) legacyBlock(many, "Many " + std::to_string(p), 2, p);
    ASSERT_EQ(fx->setChunk(many.data.data(), static_cast<VstInt32>(many.size())), 0);
    EXPECT_EQ(nameOf(fx->preset(20)), "Many 20");
    EXPECT_EQ(fx->preset(20).values[1], handValue(20, 1));
    EXPECT_EQ(fx->selections, std::vector<int>{0});
}

TEST_F(RecordImages, RefusedChunksLeaveTheBankAsItWas) {
    const auto before = fx->bankCopy();
    auto refuse = [&](std::vector<uint8_t> bytes, VstInt32 size, VstInt32 expected = -1) {
        EXPECT_EQ(fx->setChunk(bytes.empty() ? nullptr : bytes.data(), size), expected) << size;
        expectNothingHappened(before);
    };
    Bytes legacyZero;
    legacyZero.u32(0x01000000).magic().i32(0).i32(0).zeros(16);
    legacyZero.text("Never").zeros(94 * 4);
    refuse(legacyZero.data, static_cast<VstInt32>(legacyZero.size()));

    Bytes legacyNegative = legacyZero;
    std::fill(legacyNegative.data.begin() + 8, legacyNegative.data.begin() + 12, 0xff);  // count -1
    refuse(legacyNegative.data, static_cast<VstInt32>(legacyNegative.size()));

    Bytes legacyThin;  // three presets announced, room for less than a name each
    legacyThin.u32(0x01000000).magic().i32(3).i32(0).zeros(16).zeros(3 * 23);
    refuse(legacyThin.data, static_cast<VstInt32>(legacyThin.size()));

    refuse(Bytes().u32(0x01000000).magic().i32(1).data, 12);  // shorter than its header
    refuse({}, 100);
    refuse(Bytes().u32(0x02000000).data, 4);
    Bytes current;
    current.u32(0x02000000).magic().append(handBank(false, 0).data);
    refuse(current.data, 7);
    refuse(current.data, -5);
    refuse(current.data, 8 + 40);  // no whole image header
    Bytes foreign = current;
    foreign.data[5] = 'Y';
    refuse(foreign.data, static_cast<VstInt32>(foreign.size()));
    Bytes version3 = current;
    version3.data[3] = 3;
    refuse(version3.data, static_cast<VstInt32>(version3.size()));

    // A current chunk with a value outside the range is taken (0) but undone.
    Bytes bad;
    bad.u32(0x02000000).magic().append(handBank(false, 0, {{9, {40, 1.5f}}}).data);
    refuse(bad.data, static_cast<VstInt32>(bad.size()), 0);

    // Nothing is read past the size the host gives: the same chunk cut before the bad value.
    const VstInt32 beforeBad = 8 + 41 + 9 * (168 + 85 * 32);
    ASSERT_EQ(fx->setChunk(bad.data.data(), beforeBad), 0);
    EXPECT_EQ(nameOf(fx->preset(8)), "Bank 8");
    EXPECT_EQ(nameOf(fx->preset(9)), nameOf(before[9]));
}
