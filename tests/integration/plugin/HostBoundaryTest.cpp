// What a host sees of the plug-in: its record, its answers, its entry point, and the parameter
// set: names, labels, texts, properties, automation, and how values set are read back.

#include <dlfcn.h>

#include <cstring>

#include "EngineHost.h"

namespace {

// One step of a script: 's' sets `value` and reads the text back, 'p' previews `value`, 'd'
// reads the text of the stored value, 'g' reads the stored value.
struct Step { char kind; int index; float value; const char* text = ""; };

void play(vsthost::LoadedPlugin& plugin, std::initializer_list<Step> script) {
    for (const Step& s : script) {
        if (s.kind == 's') plugin.setParameter(s.index, s.value);
        if (s.kind == 'p') EXPECT_EQ(plugin.parameterPreview(s.index, s.value), s.text) << s.index << " at " << s.value;
        else if (s.kind == 'g') EXPECT_EQ(plugin.getParameter(s.index), s.value) << s.index;
        else EXPECT_EQ(plugin.parameterDisplay(s.index), s.text) << s.index << " after " << s.kind << " " << s.value;
    }
}

}  // namespace

using HostBoundary = LoadedPluginTest;

TEST_F(HostBoundary, PublishedRecord) {
    const AEffect* e = plugin->effect();
    // Magic, unique ID "TXvr", version, programs, parameters, inputs, outputs, flags.
    EXPECT_EQ((std::vector<VstInt32>{e->magic, e->uniqueID, e->version, e->numPrograms, e->numParams, e->numInputs,
                                     e->numOutputs, e->flags}),
              (std::vector<VstInt32>{0x56737450, 0x54587672, 2040, 1, 94, 2, 2, (1 << 0) | (1 << 4) | (1 << 5) | (1 << 12)}));
    EXPECT_EQ(e->ioRatio, 1.0f);
    EXPECT_EQ(e->resvd1 | e->resvd2, 0);
    EXPECT_EQ(std::count(std::begin(e->future), std::end(e->future), 0), 56);
}

TEST_F(HostBoundary, AnswersToAHost) {
    EXPECT_EQ(plugin->effectName(), "Tyx Vireo");
    EXPECT_EQ(plugin->productString(), "Linear-phase parametric equalizer");
    EXPECT_FALSE(plugin->vendorString().empty());
    EXPECT_LE(plugin->vendorString().size(), 63u);
    for (auto [op, value, answer] : {std::tuple{effGetVendorVersion, 0, 131076}, {effGetPlugCategory, 0, 4},
                                     {effGetVstVersion, 0, 2400}, {effGetTailSize, 0, 0},
                                     {effSetProcessPrecision, 0, 1}, {effSetProcessPrecision, 1, 1}})
        EXPECT_EQ(plugin->dispatch(op, 0, value), answer) << op << " " << value;
    for (auto [text, answer] : {std::pair{"receiveVstMidiEvent", 1}, {"receiveVstEvents", 0},
                                {"ReceiveVstMidiEvent", 0}, {"receiveVstMidiEvents", 0}, {"", 0}})
        EXPECT_EQ(plugin->canDo(text), answer) << text;

    // The host's own program list has one entry; the bank lives inside the plug-in.
    EXPECT_EQ(plugin->dispatch(effGetProgram), 0);
    plugin->dispatch(effSetProgram, 0, 5);
    EXPECT_EQ(plugin->dispatch(effGetProgram), 0);
    EXPECT_EQ(plugin->programName(), "Flat");

    // Keeps the 2-in/2-out layout whatever the host proposes; MIDI events are accepted and ignored.
    EXPECT_FALSE(plugin->setSpeakerArrangement(1, 1));
    EXPECT_FALSE(plugin->setSpeakerArrangement(2, 2));
    VstEvents events{};
    EXPECT_EQ(plugin->dispatch(effProcessEvents, 0, 0, &events), 0);

    // The editor reports its size but does not open yet.
    ERect* rect = nullptr;
    EXPECT_EQ(plugin->dispatch(effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ((std::vector<int>{rect->top, rect->left, rect->bottom, rect->right}), (std::vector<int>{0, 0, 509, 750}));
    EXPECT_EQ(plugin->dispatch(effEditOpen, 0, 0, nullptr), 0);
    plugin->dispatch(effEditIdle);
    plugin->dispatch(effEditClose);

    // Null buffers from a host are refused, not dereferenced.
    for (VstInt32 op : {effGetParamName, effGetParamDisplay, effGetParamLabel, effGetProgramName, effGetEffectName,
                        effGetVendorString, effGetProductString, effCanDo, effGetParameterProperties,
                        effGetChunk, effEditGetRect, effGetProgramNameIndexed})
        EXPECT_EQ(plugin->dispatch(op, 0, 0, nullptr), 0) << op;
}

TEST(EntryPoint, BothNamesAreOneFunctionAndAHostThatRefusesGetsNothing) {
    void* library = dlopen(TYX_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    using Entry = AEffect* (*)(audioMasterCallback);
    auto entry = reinterpret_cast<Entry>(dlsym(library, "VSTPluginMain"));
    auto legacy = reinterpret_cast<Entry>(dlsym(library, "main"));
    ASSERT_NE(entry, nullptr);
    ASSERT_NE(legacy, nullptr);

    auto refusingHost = [](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) -> VstIntPtr { return 0; };
    EXPECT_EQ(entry(refusingHost), nullptr);
    EXPECT_EQ(legacy(refusingHost), nullptr);
    AEffect* effect = legacy([](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) -> VstIntPtr {
        return opcode == audioMasterVersion ? 2400 : 0;
    });
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->uniqueID, 0x54587672);
    EXPECT_EQ(effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f), 1);
    dlclose(library);
}

using Parameters = LoadedPluginTest;

// What a first run shows, written out here rather than derived from the product's tables: the
// names in index order, and factory preset "Flat" (its values and texts) with the user's global
// settings of a first run (nothing stored) in the analyzer and zoom slots.
TEST_F(Parameters, NamesLabelsValuesAndTextsAtTheStart) {
    std::vector<std::string> names = {"Power", "FAT", "LR<>MS", "LinPhase", "Resolution", "Output"};
    std::vector<std::string> texts = {"ON", "OFF", "LR", "ON", "LOW", "0.000000"};
    std::vector<float> values = {1, 0, 0, 1, 0, 0.5f};
    const char* fields[8] = {"Type", "TypeR", "Freq", "Freq R", "Q", "Q R", "Gain", "Gain R"};
    const char* freq[8] = {"50", "100", "250", "500", "1000", "2000", "10000", "15000"};
    const char* q[8] = {"0.7", "0.7", "1.0", "1.0", "1.0", "1.0", "0.7", "0.7"};  // bands 3..6 peaking
    const double type[8] = {0.607143, 0.678571, 0.75, 0.75, 0.75, 0.75, 0.821429, 0.964286};
    const double frequency[8] = {0.132647, 0.23299, 0.365637, 0.46598, 0.566323, 0.666667, 0.899657, 0.958354};
    for (int f = 0; f < 8; ++f)
        for (int b = 0; b < 8; ++b) {
            names.push_back("FLT" + std::to_string(b + 1) + " " + fields[f]);
            texts.push_back(f < 2 ? "BYPASS" : f < 4 ? freq[b] : f < 6 ? q[b] : "0");
            values.push_back(static_cast<float>(f < 2 ? type[b] : f < 4 ? frequency[b] : 0.5));
        }
    names.insert(names.end(), {"PlotRange", "Channel", "SPAN", "SPANType", "SPANColor", "SPANSpeed", "SPANMode",
                               "SPANHold", "SPANResp", "Solo", "AutoZoom", "SPANDrive", "SPANWidth", "SPANFilter",
                               "Listen"});
    texts.insert(texts.end(), {"8.485281", "LINK", "", "1/3 OCT", "GREY", "FAST", "PEAK", "OFF", "FLAT", "---", "OFF",
                               "+12.0dB", "WIDE", "SELECT", "OFF"});
    for (double v : {0.5, 0.833333, 0.75, 1 / 32.0, 1 / 32.0, 1 / 32.0, 1 / 32.0, 1 / 32.0, 1 / 32.0, 0.0, 0.25,
                     0.666667, 1 / 32.0, 3 / 32.0, 0.0})
        values.push_back(static_cast<float>(v));
    names.resize(94, "dummy");
    texts.resize(94, "");
    values.resize(94, 0.0f);
    for (int i = 0; i < 94; ++i) {
        EXPECT_EQ(plugin->parameterName(i), names[i]) << i;
        const bool hz = i >= 22 && i <= 37, db = i == 5 || (i >= 54 && i <= 70);
        EXPECT_EQ(plugin->parameterLabel(i), hz ? "Hz" : db ? "dB" : "") << i;
        EXPECT_EQ(plugin->getParameter(i), values[i]) << i;
        EXPECT_EQ(plugin->parameterDisplay(i), texts[i]) << i;
    }
}

TEST_F(Parameters, PropertiesAndAutomation) {
    for (int i = 0; i < 94; ++i) {
        VstParameterProperties p;
        std::memset(&p, 0x5A, sizeof p);
        ASSERT_TRUE(plugin->parameterProperties(i, p)) << i;
        const int maxInteger = i <= 3 || i == 80 ? 1 : i == 4 || i == 71 ? 2 : i >= 6 && i <= 21 ? 13
                             : i == 72 || (i >= 74 && i <= 77) || i == 82 || i == 83 ? 15 : -1;
        EXPECT_EQ(p.flags, maxInteger >= 0 ? kVstParameterUsesIntStep : kVstParameterUsesFloatStep) << i;
        if (maxInteger >= 0) {
            EXPECT_EQ((std::vector<int>{p.minInteger, p.maxInteger, p.stepInteger, p.largeStepInteger}),
                      (std::vector<int>{0, maxInteger, 1, 1})) << i;
        } else {
            EXPECT_FLOAT_EQ(p.stepFloat, i == 5 ? 1.0f / 24 : 0.01f) << i;
            EXPECT_FLOAT_EQ(p.smallStepFloat, i == 5 ? 1.0f / 240 : 0.0001f) << i;
        }
        EXPECT_EQ(p.label[0], 0x5A) << "fields not named are left untouched";
        EXPECT_EQ(plugin->canBeAutomated(i), i == 0 || (i >= 5 && i <= 69)) << i;
    }
}

TEST_F(Parameters, StepsAtTheEdges) {
    struct Stepped { int index, steps; std::vector<std::string> texts; };  // texts by step, the last repeating
    const std::vector<Stepped> stepped = {
        {0, 2, {"OFF", "ON"}}, {2, 2, {"LR", "MS"}}, {4, 3, {"LOW", "MED", "HIGH"}},
        {6, 14, {"LOWCUT 12dB/oct", "LOWCUT 24dB/oct", "LOWSHELF", "PEAKING", "HIGHSHELF", "HICUT 12dB/oct",
                 "HICUT 24dB/oct", "BYPASS"}},
        {71, 3, {"LEFT", "RIGHT", "LINK"}}, {74, 16, {"GREY", "CYAN", "BROWN", "RAINBOW", "undef"}},
        {75, 16, {"FAST", "MEDIUM", "SLOW", "MED/FAST", "SLOW/MED", "undef"}},
        {77, 16, {"OFF", "500ms", "1000ms", "2000ms", "5000ms", "INFINITE", "undef"}},
        {78, 16, {"FLAT", "A-WGHTD", "C-WGHTD", "undef"}}, {82, 16, {"WIDE", "MEDIUM", "NARROW", "undef"}},
        {83, 16, {"RESP", "SELECT", "undef"}}, {84, 3, {"OFF", "L(M)", "R(S)"}},
    };
    for (const Stepped& s : stepped) {
        auto textOf = [&](int k) { return s.texts[std::min<size_t>(k, s.texts.size() - 1)].c_str(); };
        for (int k = 0; k < s.steps; ++k) play(*plugin, {{'s', s.index, (k + 0.5f) / s.steps, textOf(k)}});
        // The top value belongs to the last step.
        play(*plugin, {{'s', s.index, 0.0f, textOf(0)}, {'s', s.index, 1.0f, textOf(s.steps - 1)}, {'g', s.index, 1.0f}});
    }
    // Exact step boundaries where the value is representable (n = 2 and 16); a SPANColor value
    // of step 6 is kept and reads as undefined.
    play(*plugin, {{'s', 0, 0.5f, "ON"}, {'s', 0, 0.49f, "OFF"}, {'s', 74, 3.0f / 16, "RAINBOW"},
                   {'s', 74, std::nextafter(3.0f / 16, 0.0f), "BROWN"}, {'s', 74, 0.40625f, "undef"}});
}

TEST_F(Parameters, ValueTextsPreviewsAndLinkedSides) {
    play(*plugin, {
        {'s', 22, 0.5f, "632"}, {'p', 22, 1.5f, "20000"}, {'p', 22, 0.0f, "20"}, {'p', 22, 1.0f / 3, "200"},
        {'p', 54, 0.55f, "2.4"}, {'s', 54, 0.55f, "2"}, {'s', 54, 0.75f, "12"},
        // A switched-off peaking band keeps the peaking Q mapping.
        {'s', 6, 0.75f, "BYPASS"}, {'s', 38, 1.0f, "20.0"}, {'p', 38, 0.5f, "1.0"},
        {'s', 6, 1.5f / 14, "LOWCUT 24dB/oct"}, {'p', 38, 0.5f, "0.7"}, {'p', 6, 0.25f, "PEAKING"},
        {'p', 6, 0.75f, "BYPASS"}, {'p', 71, 0.3f, "LEFT"}, {'d', 71, 0.0f, "LINK"}, {'p', 4, 0.5f, "MED"},
        {'p', 2, 0.9f, "MS"}, {'p', 74, 0.40625f, "undef"}, {'p', 73, 0.5f, "n/a"}, {'s', 81, 0.0f, "-12.0dB"},
        {'s', 81, 1.0f, "+24.0dB"}, {'s', 81, 1.0f / 3, "+0.0dB"}, {'p', 81, -3.0f, "-12.0dB"},
        {'d', 5, 0.0f, "0.000000"}, {'p', 5, 0.0f, "-12.0000"}, {'s', 70, 0.0f, "24.00000"},
        {'p', 70, 1.0f, "3.000000"},
        // Listen and SPANFilter have no preview: the stored step answers.
        {'s', 84, 0.5f, "L(M)"}, {'p', 84, 0.0f, "L(M)"}, {'p', 83, 0.0f, "SELECT"}, {'p', 79, 0.9f, "---"},
        // LINK: the left/mid parameter drives both sides; the right/side one alone records its
        // value but changes nothing.
        {'s', 22, 0.5f, "632"}, {'g', 30, 0.5f}, {'d', 30, 0.0f, "632"}, {'s', 30, 0.0f, "632"}, {'g', 30, 0.0f},
        {'s', 6, 0.25f, "PEAKING"}, {'g', 14, 0.25f}, {'d', 14, 0.0f, "PEAKING"}, {'s', 14, 0.0f, "PEAKING"},
        // LEFT and RIGHT: each side is its own.
        {'s', 71, 0.0f, "LEFT"}, {'s', 62, 0.75f, "12"}, {'s', 54, 0.25f, "-12"}, {'d', 62, 0.0f, "12"},
        {'g', 62, 0.75f}, {'s', 71, 0.5f, "RIGHT"}, {'s', 30, 1.0f, "20000"}, {'d', 22, 0.0f, "632"},
    });
}

TEST_F(HostBoundary, ProgramNamesKeepTheFieldsRestAndChunkCallsWithoutDataAreRefused) {
    // A shorter name is copied with its NUL; the rest of the 24-byte field stays as it was and
    // travels in the chunk (name field of preset 0: prefix 8, header 41, record head 12).
    plugin->setProgramName("A rather long preset name");
    plugin->setProgramName("Hi");
    char raw[32];
    std::memset(raw, 'x', sizeof raw);
    plugin->dispatch(effGetProgramName, 0, 0, raw);
    EXPECT_EQ(std::string(raw, 26), std::string("Hi\0ather long preset na\0\0x", 26));
    const auto chunk = plugin->getChunk();
    ASSERT_GE(chunk.size(), 8u + 41 + 12 + 24);
    const std::string field(chunk.begin() + 61, chunk.begin() + 61 + 24);
    EXPECT_EQ(field, std::string("Hi\0ather long preset na\0", 24));

    EXPECT_EQ(plugin->dispatch(effSetChunk, 0, 100, nullptr), -1);
    EXPECT_EQ(plugin->dispatch(effSetChunk, 1, 100, nullptr), -1);
    EXPECT_EQ(plugin->getChunk(), chunk);
}
