// Preset and bank images written byte by byte, loaded through the editor's image entry points
// and the effect's chunk calls, the bank checked field by field afterwards; and the images the
// plug-in writes compared with bytes written here by hand.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "PresetTestSupport.h"

using namespace imagebytes;
using presets::kPresetCount;
using presets::kPresetSlots;

namespace {

constexpr int kSavedSlots = 85;

SlotValues savedSlotsOf(int p) {
    SlotValues v;
    for (int s = 0; s < kSavedSlots; ++s) v.emplace_back(s, handValue(p, s));
    return v;
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
    float templ(int slot) const { return fx->getTemplate().values[slot]; }
    void expectNothingHappened(const std::vector<presets::PresetRecord>& before) {
        EXPECT_TRUE(sameBank(fx->bankCopy(), before));
        EXPECT_EQ(fx->getCurrentPreset(), 4);
        EXPECT_TRUE(fx->selections.empty());
        EXPECT_TRUE(fx->ed().shownNames.empty());
        EXPECT_TRUE(fx->ed().menuTitles.empty());
    }
    // Every preset named "<prefix> p" with slots 0..84 at handValue and the rest at the template's.
    void expectHandBank(const std::string& prefix) {
        for (int p = 0; p < kPresetCount; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), prefix + " " + std::to_string(p));
            for (int s = 0; s < kPresetSlots; ++s)
                ASSERT_EQ(fx->preset(p).values[s], s < kSavedSlots ? handValue(p, s) : templ(s)) << p << "/" << s;
        }
    }
    bool setChunk(std::vector<uint8_t> bytes, VstInt32 size) { return fx->setChunk(bytes.data(), size) == 0; }

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

        EXPECT_EQ(nameOf(fx->preset(4)), "Hand Made");
        for (int s = 0; s < kPresetSlots; ++s)
            EXPECT_EQ(fx->preset(4).values[s], s < kSavedSlots ? handValue(0, s) : templ(s)) << s;
        for (int i = 0; i < kPresetCount; ++i)
            if (i != 4) {
                EXPECT_TRUE(samePreset(fx->preset(i), before[i])) << i;
            }
        EXPECT_EQ(fx->selections, std::vector<int>{4});
        EXPECT_EQ(fx->getParameter(7), handValue(0, 7));
        ASSERT_FALSE(fx->ed().shownNames.empty());
        EXPECT_EQ(fx->ed().shownNames.back(), "Hand Made");
        EXPECT_EQ(fx->ed().menuTitles[4], "Hand Made");
    }
}

TEST_F(RecordImages, UnknownRecordsShortBodiesAndSlotsBeyondThePresetAreSkipped) {
    Bytes b;
    b.header(0x22, 9, 0, 0).nameRecord(0, "Newer Writer");
    b.valueRecord(0, 94, 1.5f);  // a slot this bank does not have: skipped before its value counts
    b.record(2, 0, std::vector<uint8_t>(40, 0xff)).record(77, 0, {});
    b.valueRecord(0, 1000, 0.9f).valueRecord(0, 5, 0.125f).valueRecord(0, 0xffffffffu, 0.9f);
    b.record(0, 0, std::vector<uint8_t>(10, 'x'));               // too short to hold a name
    b.record(1, 0, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});         // too short to hold a value
    ASSERT_TRUE(fx->ed().loadPresetImage(b.ptr(), b.size()));
    EXPECT_EQ(nameOf(fx->preset(4)), "Newer Writer");
    for (int s = 0; s < kPresetSlots; ++s) EXPECT_EQ(fx->preset(4).values[s], s == 5 ? 0.125f : templ(s)) << s;
}

TEST_F(RecordImages, ValueOutsideTheRangeLeavesThePresetExactlyAsItWas) {
    // Make the current preset differ from the template, name field left-overs included.
    char longName[] = "A rather long preset nam", shortName[] = "Mine";
    fx->setProgramName(longName);
    fx->setProgramName(shortName);
    fx->setParameter(3, 0.333f);
    fx->ed().forgetDisplay();
    const auto before = fx->bankCopy();
    for (float bad : {1.5f, -0.001f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                      std::nextafter(1.0f, 2.0f)})
        for (bool big : {false, true}) {
            const Bytes image = presetImage(big, "Bad", {{0, 0.3f}, {10, bad}, {11, 0.4f}});
            EXPECT_FALSE(fx->ed().loadPresetImage(image.ptr(), image.size())) << bad;
            expectNothingHappened(before);
        }
    // The bounds themselves belong to the range.
    const Bytes edges = presetImage(false, "Edges", {{0, 0.0f}, {1, 1.0f}, {2, -0.0f}});
    ASSERT_TRUE(fx->ed().loadPresetImage(edges.ptr(), edges.size()));
    EXPECT_EQ(fx->preset(4).values[1], 1.0f);
}

TEST_F(RecordImages, TruncatedImagesEndAtTheLastWholeRecord) {
    SlotValues ten;
    for (int s = 0; s < 10; ++s) ten.emplace_back(s, 0.05f * (s + 1));
    const auto& p = fx->preset(4);

    Bytes cut = presetImage(false, "Cut", ten);  // the last value record cut in half
    cut.data.resize(cut.size() - 16);
    ASSERT_TRUE(fx->ed().loadPresetImage(cut.ptr(), cut.size()));
    EXPECT_EQ(nameOf(p), "Cut");
    EXPECT_EQ(p.values[8], 0.05f * 9);
    EXPECT_EQ(p.values[9], templ(9));

    Bytes runaway;  // a body size that runs far past the end ends the image there
    runaway.header(0x22, 4, 0, 0).nameRecord(0, "Runaway").valueRecord(0, 1, 0.25f);
    runaway.u32(1).u32(0xfffffff0u).i32(0).f32(0.75f).valueRecord(0, 2, 0.5f);
    ASSERT_TRUE(fx->ed().loadPresetImage(runaway.ptr(), runaway.size()));
    EXPECT_EQ(p.values[1], 0.25f);
    EXPECT_EQ(p.values[2], templ(2));

    Bytes fewer = presetImage(true, "Fewer", ten);  // fewer records announced than present: the rest is not read
    fewer.data[16] = 3;
    ASSERT_TRUE(fx->ed().loadPresetImage(fewer.ptr(), fewer.size()));
    EXPECT_EQ(p.values[1], 0.05f * 2);
    EXPECT_EQ(p.values[2], templ(2));
}

TEST_F(RecordImages, ShortForeignOrUnknownImagesChangeNothing) {
    const auto before = fx->bankCopy();
    const Bytes good = presetImage(false, "Good", {{0, 0.5f}});
    Bytes foreign = good;
    foreign.data[0] = 'A';
    const std::vector<std::vector<uint8_t>> refused = {
        {},
        {0x72, 0x76, 0x58, 0x54},                                         // magic only
        std::vector<uint8_t>(good.data.begin(), good.data.begin() + 40),  // header cut short
        Bytes().header(0x23, 0, 0, 0).data,                               // unknown type
        Bytes().magic().u8(0x21).text("Short name", 20).data,             // legacy preset without a whole name
        foreign.data,
    };
    for (const auto& bytes : refused) {
        EXPECT_FALSE(fx->ed().loadPresetImage(bytes.data(), bytes.size())) << bytes.size();
        EXPECT_FALSE(fx->ed().loadBankImage(bytes.data(), bytes.size())) << bytes.size();
    }
    // A bank is no preset and a preset no bank.
    const Bytes bank = Bytes().header(0x38, 0, 0, 0);
    const Bytes legacyPreset = Bytes().magic().u8(0x21).text("Legacy").f32(0.5f);
    EXPECT_FALSE(fx->ed().loadPresetImage(bank.ptr(), bank.size()));
    EXPECT_FALSE(fx->ed().loadBankImage(good.ptr(), good.size()));
    EXPECT_FALSE(fx->ed().loadBankImage(legacyPreset.ptr(), legacyPreset.size()));
    EXPECT_FALSE(fx->ed().loadPresetImage(nullptr, 100));
    // A bank with its very last value outside the range, or a negative record count.
    for (bool big : {false, true}) {
        const Bytes late = handBank(big, 5, "Bank", 20, 84, 1.5f);
        EXPECT_FALSE(fx->ed().loadBankImage(late.ptr(), late.size()));
    }
    const Bytes negative = Bytes().header(0x38, -1, 0, 0).nameRecord(0, "Never");
    EXPECT_FALSE(fx->ed().loadBankImage(negative.ptr(), negative.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, LegacyPresetTakesNameAndFloatsButNotTheGlobalSlots) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        // Slot 80 is never read, so 7 does no harm.
        const Bytes b = Bytes(big).magic().u8(0x21).legacyBlock("Old Style", 94, 3, 80, 7.0f);
        ASSERT_TRUE(fx->ed().loadPresetImage(b.ptr(), b.size()));
        EXPECT_EQ(nameOf(fx->preset(4)), "Old Style");
        for (int s = 0; s < kPresetSlots; ++s) EXPECT_EQ(fx->preset(4).values[s], s <= 71 ? handValue(3, s) : templ(s)) << s;
        EXPECT_EQ(fx->selections, std::vector<int>{4});
    }
    fresh();  // a value outside the range in a read slot undoes the load
    const auto before = fx->bankCopy();
    const Bytes bad = Bytes().magic().u8(0x21).legacyBlock("Bad", 94, 3, 10, 1.5f);
    EXPECT_FALSE(fx->ed().loadPresetImage(bad.ptr(), bad.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, BankImagesAndChunksReplaceEveryPresetInEitherByteOrder) {
    for (bool big : {false, true})
        for (bool asChunk : {false, true}) {
            SCOPED_TRACE(std::string(big ? "big-endian" : "little-endian") + (asChunk ? " chunk" : " image"));
            fresh();
            if (asChunk) {
                const auto chunk = handChunk(big, 11);
                ASSERT_TRUE(setChunk(chunk, static_cast<VstInt32>(chunk.size())));
            } else {
                const Bytes b = handBank(big, 11);
                ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
            }
            expectHandBank("Bank");
            for (int p = 0; p < kPresetCount; ++p) EXPECT_EQ(fx->ed().menuTitles[p], "Bank " + std::to_string(p));
            EXPECT_EQ(fx->selections, std::vector<int>{11});
            EXPECT_EQ(fx->ed().menuSelections, std::vector<int>{11});
            EXPECT_EQ(fx->ed().shownNames.back(), "Bank 11");
        }
}

TEST_F(RecordImages, BankRecordsForOtherPresetsAndEarlyValuesAreDropped) {
    Bytes b;
    b.header(0x38, 8, 30, 0);
    b.valueRecord(3, 0, 0.125f);  // before preset 3's name record: the name record resets it
    b.nameRecord(3, "Three").valueRecord(3, 1, 0.25f);
    b.nameRecord(25, "Twenty-five").valueRecord(25, 1, 0.5f);
    b.nameRecord(-1, "Minus one").valueRecord(-1, 1, 0.5f);
    b.valueRecord(7, 2, 0.375f);  // a preset without a name record keeps the rest of its values
    const auto before = fx->bankCopy();
    ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
    EXPECT_EQ(nameOf(fx->preset(3)), "Three");
    EXPECT_EQ(fx->preset(3).values[0], templ(0));
    EXPECT_EQ(fx->preset(3).values[1], 0.25f);
    EXPECT_EQ(nameOf(fx->preset(7)), nameOf(before[7]));
    EXPECT_EQ(fx->preset(7).values[2], 0.375f);
    EXPECT_EQ(fx->preset(7).values[3], before[7].values[3]);
    for (int p : {0, 1, 2, 4, 5, 6, 8, 20}) EXPECT_TRUE(samePreset(fx->preset(p), before[p])) << p;
    EXPECT_EQ(fx->selections, std::vector<int>{0});  // current preset 30 is not in the bank

    const Bytes negative = Bytes().header(0x38, 1, -3, 0).nameRecord(2, "Two");
    ASSERT_TRUE(fx->ed().loadBankImage(negative.ptr(), negative.size()));
    EXPECT_EQ(fx->selections.back(), 0);
}

TEST_F(RecordImages, LegacyBankFillsTheBankAndSelectsTheFirstPreset) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        fresh();
        Bytes b(big);
        b.magic().u8(0x37);
        for (int p = 0; p < kPresetCount; ++p) b.legacyBlock("Legacy " + std::to_string(p), 94, p);
        ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
        for (int p = 0; p < kPresetCount; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Legacy " + std::to_string(p));
            for (int s = 0; s < kPresetSlots; ++s)
                ASSERT_EQ(fx->preset(p).values[s], s <= 71 ? handValue(p, s) : templ(s)) << p << "/" << s;
        }
        EXPECT_EQ(fx->selections, std::vector<int>{0});
    }
    fresh();
    const auto before = fx->bankCopy();
    Bytes bad;
    bad.magic().u8(0x37);
    for (int p = 0; p < kPresetCount; ++p) bad.legacyBlock("Bad", 94, p, p == 12 ? 3 : -1, 1.5f);
    EXPECT_FALSE(fx->ed().loadBankImage(bad.ptr(), bad.size()));
    expectNothingHappened(before);
}

TEST_F(RecordImages, WrittenChunkAndPresetImageAreTheHandWrittenBytes) {
    fx->setParameter(5, 0.625f);
    Bytes chunk;
    chunk.u32(0x02000000).magic().header(0x38, 21 * 86, 4, 60648);
    for (int p = 0; p < kPresetCount; ++p) {
        chunk.nameRecord(p, nameOf(fx->preset(p)));
        for (int s = 0; s < kSavedSlots; ++s) chunk.valueRecord(p, s, fx->preset(p).values[s]);
    }
    ASSERT_EQ(chunk.size(), 60697u);
    void* data = nullptr;
    const VstInt32 size = fx->getChunk(&data);
    ASSERT_EQ(size, 60697);
    EXPECT_EQ(std::vector<uint8_t>(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size), chunk.data);

    // A preset image carries preset index 0 in its records, though preset 4 is current.
    SlotValues current;
    for (int s = 0; s < kSavedSlots; ++s) current.emplace_back(s, fx->preset(4).values[s]);
    std::vector<uint8_t> image;
    ASSERT_EQ(fx->ed().buildPresetBlob(image), 2929u);
    EXPECT_EQ(image, presetImage(false, nameOf(fx->preset(4)), current).data);
}

TEST_F(RecordImages, LegacyChunkLoadsWithoutRangeCheck) {
    {  // little-endian here; a big-endian one goes through the built library
        const auto before = fx->bankCopy();
        Bytes chunk;
        chunk.u32(0x01000000).magic().i32(3).i32(2).zeros(16);
        for (int p = 0; p < 3; ++p) chunk.legacyBlock("Chunk " + std::to_string(p), 94, p, p == 1 ? 3 : -1, 1.5f);
        ASSERT_TRUE(setChunk(chunk.data, static_cast<VstInt32>(chunk.size())));
        for (int p = 0; p < 3; ++p) {
            EXPECT_EQ(nameOf(fx->preset(p)), "Chunk " + std::to_string(p));
            for (int s = 0; s < kPresetSlots; ++s) {
                const float want = s > 71 ? templ(s) : (p == 1 && s == 3 ? 1.5f : handValue(p, s));
                ASSERT_EQ(fx->preset(p).values[s], want) << p << "/" << s;
            }
        }
        for (int p = 3; p < kPresetCount; ++p) EXPECT_TRUE(samePreset(fx->preset(p), before[p]));
        EXPECT_EQ(fx->selections, std::vector<int>{2});
    }
    // More presets than the bank holds: the first 21 load; a current preset outside it gives 0.
    fresh();
    Bytes many;
    many.u32(0x01000000).magic().i32(30).i32(25).zeros(16);
    for (int p = 0; p < 30; ++p) many.legacyBlock("Many " + std::to_string(p), 2, p);
    ASSERT_TRUE(setChunk(many.data, static_cast<VstInt32>(many.size())));
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
    auto whole = [](const std::vector<uint8_t>& b) { return static_cast<VstInt32>(b.size()); };
    const Bytes legacyZero = Bytes().u32(0x01000000).magic().i32(0).i32(0).zeros(16).text("Never").zeros(94 * 4);
    refuse(legacyZero.data, whole(legacyZero.data));
    // Three presets announced, room for less than a name each.
    const Bytes legacyThin = Bytes().u32(0x01000000).magic().i32(3).i32(0).zeros(16).zeros(3 * 23);
    refuse(legacyThin.data, whole(legacyThin.data));
    refuse(Bytes().u32(0x01000000).magic().i32(1).data, 12);  // shorter than its header
    refuse({}, 100);
    refuse(Bytes().u32(0x02000000).data, 4);

    const auto current = handChunk(false, 0);
    for (VstInt32 size : {7, -5, 8 + 40}) refuse(current, size);  // no whole image header
    auto foreign = current, version3 = current;
    foreign[5] = 'Y';
    version3[3] = 3;
    refuse(foreign, whole(foreign));
    refuse(version3, whole(version3));

    // A current chunk with a value outside the range is taken (0) but undone.
    const auto bad = handChunk(false, 0, "Bank", 9, 40, 1.5f);
    refuse(bad, whole(bad), 0);
    // Nothing is read past the size the host gives: the same chunk cut before the bad value.
    ASSERT_TRUE(setChunk(bad, 8 + 41 + 9 * (168 + 85 * 32)));
    EXPECT_EQ(nameOf(fx->preset(8)), "Bank 8");
    EXPECT_EQ(nameOf(fx->preset(9)), nameOf(before[9]));
}
