// Preset and bank images and chunks written byte by byte, loaded through the editor and the
// effect and checked field by field; and the images the plug-in writes against hand-written bytes.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "PresetTestSupport.h"

using namespace imagebytes;
using presets::kPresetCount;
using presets::kPresetSlots;

namespace {

constexpr int kSavedSlots = 85, kLoadedLegacySlots = 72;

SlotValues savedSlotsOf(int p) {
    SlotValues v;
    for (int s = 0; s < kSavedSlots; ++s) v.emplace_back(s, handValue(p, s));
    return v;
}

std::string order(bool big) { return big ? "big-endian" : "little-endian"; }

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
    // Preset p named `name`, its first `slots` values at handValue(source, s), the rest the template's.
    void expectHandPreset(int p, const std::string& name, int source, int slots) {
        EXPECT_EQ(nameOf(fx->preset(p)), name);
        for (int s = 0; s < kPresetSlots; ++s)
            ASSERT_EQ(fx->preset(p).values[s], s < slots ? handValue(source, s) : templ(s)) << p << "/" << s;
    }
    void expectHandBank(const std::string& prefix, int slots) {
        for (int p = 0; p < kPresetCount; ++p) expectHandPreset(p, prefix + " " + std::to_string(p), p, slots);
    }
    bool setChunk(std::vector<uint8_t> bytes, VstInt32 size) { return fx->setChunk(bytes.data(), size) == 0; }

    ScopedStoreFolder folder;
    std::unique_ptr<PresetTestEffect> fx;
};

}  // namespace

TEST_F(RecordImages, PresetImageLandsInTheCurrentPresetInEitherByteOrder) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(order(big));
        fresh();
        const auto before = fx->bankCopy();
        const Bytes image = presetImage(big, "Hand Made", savedSlotsOf(0), 9);  // the records say preset 9
        ASSERT_TRUE(fx->ed().loadPresetImage(image.ptr(), image.size()));
        expectHandPreset(4, "Hand Made", 0, kSavedSlots);
        for (int i = 0; i < kPresetCount; ++i) EXPECT_TRUE(i == 4 || samePreset(fx->preset(i), before[i])) << i;
        EXPECT_EQ(fx->selections, std::vector<int>{4});
        EXPECT_EQ(fx->getParameter(7), handValue(0, 7));
        EXPECT_EQ(fx->ed().shownNames, std::vector<std::string>{"Hand Made"});
        EXPECT_EQ(fx->ed().menuTitles[4], "Hand Made");
    }
}

TEST_F(RecordImages, UnknownRecordsShortBodiesAndSlotsBeyondThePresetAreSkipped) {
    Bytes b;
    b.header(0x22, 9, 0, 0).nameRecord(0, "Newer Writer");
    b.valueRecord(0, 94, 1.5f);  // a slot this bank does not have: skipped before its value counts
    b.record(2, 0, std::vector<uint8_t>(40, 0xff)).record(77, 0, {});
    b.valueRecord(0, 1000, 0.9f).valueRecord(0, 5, 0.125f).valueRecord(0, 0xffffffffu, 0.9f);
    b.record(0, 0, std::vector<uint8_t>(10, 'x'));        // too short to hold a name
    b.record(1, 0, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});  // too short to hold a value
    ASSERT_TRUE(fx->ed().loadPresetImage(b.ptr(), b.size()));
    EXPECT_EQ(nameOf(fx->preset(4)), "Newer Writer");
    for (int s = 0; s < kPresetSlots; ++s) EXPECT_EQ(fx->preset(4).values[s], s == 5 ? 0.125f : templ(s)) << s;

    const Bytes edges = presetImage(false, "Edges", {{0, 0.0f}, {1, 1.0f}, {2, -0.0f}});  // the range's bounds
    ASSERT_TRUE(fx->ed().loadPresetImage(edges.ptr(), edges.size()));
    EXPECT_EQ(fx->preset(4).values[1], 1.0f);
}

TEST_F(RecordImages, TruncatedImagesEndAtTheLastWholeRecord) {
    SlotValues ten;
    for (int s = 0; s < 10; ++s) ten.emplace_back(s, 0.05f * (s + 1));
    Bytes cut = presetImage(false, "Cut", ten), runaway, fewer = presetImage(true, "Fewer", ten);
    cut.data.resize(cut.size() - 16);  // the last value record cut in half
    runaway.header(0x22, 4, 0, 0).nameRecord(0, "Runaway").valueRecord(0, 1, 0.25f);  // a body size far past the end
    runaway.u32(1).u32(0xfffffff0u).i32(0).f32(0.75f).valueRecord(0, 2, 0.5f);
    fewer.data[16] = 3;  // fewer records announced than present
    const struct {
        const Bytes& image;
        int lastSlot;
        float last;
    } cases[] = {{cut, 8, 0.05f * 9}, {runaway, 1, 0.25f}, {fewer, 1, 0.05f * 2}};
    for (const auto& c : cases) {
        fresh();
        ASSERT_TRUE(fx->ed().loadPresetImage(c.image.ptr(), c.image.size())) << c.lastSlot;
        EXPECT_EQ(fx->preset(4).values[c.lastSlot], c.last);
        EXPECT_EQ(fx->preset(4).values[c.lastSlot + 1], templ(c.lastSlot + 1));
    }
    const std::string ninth = nameOf(fx->preset(9));
    const auto bad = handChunk(false, 0, "Bank", 9, 40, 1.5f);  // nothing read past the size the host gives
    ASSERT_TRUE(setChunk(bad, 8 + 41 + 9 * (168 + 85 * 32)));
    EXPECT_EQ(nameOf(fx->preset(8)), "Bank 8");
    EXPECT_EQ(nameOf(fx->preset(9)), ninth);
}

TEST_F(RecordImages, DamagedForeignOrMisdirectedInputIsRefusedWithNothingStoredLost) {
    char longName[] = "A rather long preset nam", shortName[] = "Mine";  // name left-overs must survive
    fx->setProgramName(longName);
    fx->setProgramName(shortName);
    fx->setParameter(3, 0.333f);
    fx->ed().forgetDisplay();
    const auto before = fx->bankCopy();

    enum Into { Preset, Bank, Either, Chunk };
    struct Refused {
        std::string what;
        Into into;
        std::vector<uint8_t> bytes;
        VstInt32 size = -1, taken = -1;  // size −1: all the bytes; taken: what setChunk answers
    };
    const Bytes good = presetImage(false, "Good", {{0, 0.5f}});
    Bytes foreign = good;
    foreign.data[0] = 'A';
    const auto chunk = handChunk(false, 0);
    auto foreignChunk = chunk, version3 = chunk;
    foreignChunk[5] = 'Y';
    version3[3] = 3;
    std::vector<Refused> cases = {
        {"empty", Either, {}},
        {"header cut short", Either, {good.data.begin(), good.data.begin() + 40}},
        {"unknown type", Either, Bytes().header(0x23, 0, 0, 0).data},
        {"legacy preset without a whole name", Either, Bytes().magic().u8(0x21).text("Short name", 20).data},
        {"foreign magic", Either, foreign.data},
        {"null", Preset, {}, 100},
        {"bank as preset", Preset, Bytes().header(0x38, 0, 0, 0).data},
        {"preset as bank", Bank, good.data},
        {"legacy preset as bank", Bank, Bytes().magic().u8(0x21).text("Legacy").f32(0.5f).data},
        {"negative record count", Bank, Bytes().header(0x38, -1, 0, 0).nameRecord(0, "Never").data},
        {"legacy chunk of no presets", Chunk, Bytes().u32(0x01000000).magic().i32(0).i32(0).zeros(16).text("Never").zeros(94 * 4).data},
        {"legacy chunk thinner than its names", Chunk, Bytes().u32(0x01000000).magic().i32(3).i32(0).zeros(16).zeros(3 * 23).data},
        {"legacy chunk shorter than its header", Chunk, Bytes().u32(0x01000000).magic().i32(1).data, 12},
        {"null chunk", Chunk, {}, 100},
        {"version only", Chunk, Bytes().u32(0x02000000).data},
        {"negative size", Chunk, chunk, -5},
        {"no whole image header", Chunk, chunk, 8 + 40},
        {"foreign chunk", Chunk, foreignChunk},
        {"version 3", Chunk, version3},
    };
    for (const Refused& c : cases) {
        SCOPED_TRACE(c.what);
        const uint8_t* data = c.bytes.empty() ? nullptr : c.bytes.data();
        const size_t size = c.size == -1 ? c.bytes.size() : static_cast<size_t>(c.size);
        if (c.into == Preset || c.into == Either) { EXPECT_FALSE(fx->ed().loadPresetImage(data, size)); }
        if (c.into == Bank || c.into == Either) { EXPECT_FALSE(fx->ed().loadBankImage(data, size)); }
        if (c.into == Chunk) { EXPECT_EQ(fx->setChunk(const_cast<uint8_t*>(data), static_cast<VstInt32>(size)), c.taken); }
        expectNothingHappened(before);
    }
}

// A loader that can undo puts the preset (or bank) back as it was; the legacy chunk, which has
// no range check to undo with, holds a finite value to 0..1 and leaves the slot at the
// template's value otherwise. (The current chunk is checked through the built library.)
TEST_F(RecordImages, HostileValuesUndoTheLoadOrAreAdmittedByTheLegacyChunk) {
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        float bad;
        bool kept;  // legacy chunk: true, the slot keeps the template's value; false: it holds `held`
        float held;
    } values[] = {{1.5f, false, 1.0f}, {-0.5f, false, 0.0f}, {std::nextafter(1.0f, 2.0f), false, 1.0f},
                  {std::numeric_limits<float>::quiet_NaN(), true, 0}, {inf, true, 0}, {-inf, true, 0}};
    enum Loader { PresetRecords, BankRecords, LegacyPreset, LegacyBank, LegacyChunk };
    constexpr int kSlot = 10, kPreset = 3;
    const bool big = true;  // byte order is decoded before any value is looked at
    for (const auto& v : values)
        for (Loader loader : {PresetRecords, BankRecords, LegacyPreset, LegacyBank, LegacyChunk}) {
            SCOPED_TRACE("loader " + std::to_string(loader) + " value " + std::to_string(v.bad));
            fresh();
            int target = kPreset;
            bool loaded = false;
            const float before[2] = {fx->preset(kPreset).values[kSlot], fx->preset(4).values[kSlot]};
            switch (loader) {
                case PresetRecords: {
                    const Bytes b = presetImage(big, "Bad", {{0, 0.3f}, {kSlot, v.bad}, {11, 0.4f}});
                    loaded = fx->ed().loadPresetImage(b.ptr(), b.size());
                    target = 4;
                    break;
                }
                case BankRecords: {
                    const Bytes b = handBank(big, 5, "Bank", kPreset, kSlot, v.bad);
                    loaded = fx->ed().loadBankImage(b.ptr(), b.size());
                    break;
                }
                case LegacyPreset: {
                    const Bytes b = Bytes(big).magic().u8(0x21).legacyBlock("Bad", 94, kPreset, kSlot, v.bad);
                    loaded = fx->ed().loadPresetImage(b.ptr(), b.size());
                    target = 4;
                    break;
                }
                case LegacyBank:
                case LegacyChunk: {
                    Bytes b(big);
                    if (loader == LegacyBank) b.magic().u8(0x37);
                    else b.u32(0x01000000).magic().i32(kPresetCount).i32(0).zeros(16);
                    for (int p = 0; p < kPresetCount; ++p) b.legacyBlock("Bad", 94, p, p == kPreset ? kSlot : -1, v.bad);
                    loaded = loader == LegacyBank ? fx->ed().loadBankImage(b.ptr(), b.size())
                                                  : setChunk(b.data, static_cast<VstInt32>(b.size()));
                    break;
                }
            }
            if (loader == LegacyChunk) {
                ASSERT_TRUE(loaded);
                EXPECT_EQ(fx->preset(target).values[kSlot], v.kept ? templ(kSlot) : v.held);
            } else {
                EXPECT_FALSE(loaded);
                EXPECT_EQ(fx->preset(target).values[kSlot], before[target == kPreset ? 0 : 1]);
            }
        }
}

TEST_F(RecordImages, BankImagesAndChunksReplaceEveryPresetInEitherByteOrder) {
    for (bool big : {false, true})
        for (bool asChunk : {false, true}) {
            SCOPED_TRACE(order(big) + (asChunk ? " chunk" : " image"));
            fresh();
            if (asChunk) {
                const auto chunk = handChunk(big, 11);
                ASSERT_TRUE(setChunk(chunk, static_cast<VstInt32>(chunk.size())));
            } else {
                const Bytes b = handBank(big, 11);
                ASSERT_TRUE(fx->ed().loadBankImage(b.ptr(), b.size()));
            }
            expectHandBank("Bank", kSavedSlots);
            for (int p = 0; p < kPresetCount; ++p) EXPECT_EQ(fx->ed().menuTitles[p], "Bank " + std::to_string(p));
            EXPECT_EQ(fx->selections, std::vector<int>{11});
            EXPECT_EQ(fx->ed().menuSelections, std::vector<int>{11});
            EXPECT_EQ(fx->ed().shownNames.back(), "Bank 11");
        }
}

TEST_F(RecordImages, BankRecordsForOtherPresetsAndEarlyValuesAreDropped) {
    Bytes b;
    b.header(0x38, 8, 30, 0);
    b.valueRecord(3, 0, 0.125f);  // before preset 3's name record, which resets it
    b.nameRecord(3, "Three").valueRecord(3, 1, 0.25f);
    b.nameRecord(25, "Twenty-five").valueRecord(25, 1, 0.5f);
    b.nameRecord(-1, "Minus one").valueRecord(-1, 1, 0.5f);
    b.valueRecord(7, 2, 0.375f);  // a preset without a name record keeps the rest of itself
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

TEST_F(RecordImages, LegacyPresetsBanksAndChunksTakeNamesAndFloatsButNotTheGlobalSlots) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(order(big));
        fresh();
        const Bytes preset = Bytes(big).magic().u8(0x21).legacyBlock("Old Style", 94, 3, 80, 7.0f);  // slot 80 unread
        ASSERT_TRUE(fx->ed().loadPresetImage(preset.ptr(), preset.size()));
        expectHandPreset(4, "Old Style", 3, kLoadedLegacySlots);
        EXPECT_EQ(fx->selections, std::vector<int>{4});
        Bytes bank(big);
        bank.magic().u8(0x37);
        for (int p = 0; p < kPresetCount; ++p) bank.legacyBlock("Legacy " + std::to_string(p), 94, p);
        ASSERT_TRUE(fx->ed().loadBankImage(bank.ptr(), bank.size()));
        expectHandBank("Legacy", kLoadedLegacySlots);
        EXPECT_EQ(fx->selections.back(), 0);

        // A legacy chunk of more presets than the bank holds: the first 21 load; a current
        // preset outside them gives 0.
        fresh();
        Bytes chunk(big);
        chunk.u32(0x01000000).magic().i32(30).i32(25).zeros(16);
        for (int p = 0; p < 30; ++p) chunk.legacyBlock("Chunk " + std::to_string(p), 94, p);
        ASSERT_TRUE(setChunk(chunk.data, static_cast<VstInt32>(chunk.size())));
        expectHandBank("Chunk", kLoadedLegacySlots);
        EXPECT_EQ(fx->selections, std::vector<int>{0});
    }
    const auto before = fx->bankCopy();  // fewer presets than the bank holds: the rest stay
    Bytes chunk;
    chunk.u32(0x01000000).magic().i32(3).i32(2).zeros(16);
    for (int p = 0; p < 3; ++p) chunk.legacyBlock("Short " + std::to_string(p), 2, p);
    fx->selections.clear();
    ASSERT_TRUE(setChunk(chunk.data, static_cast<VstInt32>(chunk.size())));
    EXPECT_EQ(nameOf(fx->preset(2)), "Short 2");
    EXPECT_EQ(fx->preset(2).values[1], handValue(2, 1));
    for (int p = 3; p < kPresetCount; ++p) EXPECT_TRUE(samePreset(fx->preset(p), before[p])) << p;
    EXPECT_EQ(fx->selections, std::vector<int>{2});
}

TEST_F(RecordImages, WrittenChunkAndPresetImageAreTheHandWrittenBytes) {
    fx->setParameter(5, 0.625f);
    Bytes chunk;
    chunk.u32(0x02000000).magic().header(0x38, 21 * 86, 4, 60648);
    for (int p = 0; p < kPresetCount; ++p) {
        chunk.nameRecord(p, nameOf(fx->preset(p)));
        for (int s = 0; s < kSavedSlots; ++s) chunk.valueRecord(p, s, fx->preset(p).values[s]);
    }
    void* data = nullptr;
    const VstInt32 size = fx->getChunk(&data);
    ASSERT_EQ(size, 60697);
    EXPECT_EQ(std::vector<uint8_t>(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size), chunk.data);

    SlotValues current;  // a preset image carries preset index 0 in its records, though preset 4 is current
    for (int s = 0; s < kSavedSlots; ++s) current.emplace_back(s, fx->preset(4).values[s]);
    std::vector<uint8_t> image;
    ASSERT_EQ(fx->ed().buildPresetBlob(image), 2929u);
    EXPECT_EQ(image, presetImage(false, nameOf(fx->preset(4)), current).data);
}
