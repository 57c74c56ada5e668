// The editor's value controls: the header above the plot, the jog and the edit knobs; where
// they sit, how parameter values reach them and what their callbacks do.

#include "gui/Editor.h"

#include <optional>

#include "gui/EditorEffect.h"
#include "gui/controls/CHeader.h"
#include "gui/controls/CJog.h"
#include "gui/controls/CMyEditKnob.h"
#include "gui/toolkit/CBitmap.h"
#include "presets/Parameters.h"
#include "vst/AudioEffect.h"

namespace {

constexpr int kFontBitmap = 129;

constexpr CRect kHeaderPlace(85, 164, 510, 184);

struct JogPlace {
    CRect rect;
    int background, indicator, ring;
};
constexpr JogPlace kJogPlace{CRect(580, 30, 709, 152), 162, 131, 132};

// One row of band knobs: the left edge of each band's knob, the row's top, the film strip of
// each band and where the row's value is typed (over its text in the header).
constexpr double kKnobWidth = 37, kKnobHeight = 36;
constexpr int kStripGroups = 3;
struct KnobRow {
    valuetext::Kind kind;
    int firstTag;
    double left[params::kBands];
    double top;
    int strips[kStripGroups];  // bands 1-3, 4-5, 6-8
    CRect textPlace;
};
constexpr KnobRow kFrequencyRow{valuetext::kFrequency, params::kFreq,
                                {80, 149, 218, 287, 356, 424, 493, 562}, 301, {135, 136, 137},
                                CRect(260, 165, 302, 175)};
constexpr KnobRow kGainRow{valuetext::kGain, params::kGain,
                           {79, 148, 217, 286, 355, 424, 493, 562}, 358, {138, 139, 140},
                           CRect(340, 165, 382, 175)};
constexpr KnobRow kQRow{valuetext::kQ, params::kQ,
                        {80, 149, 218, 286, 355, 424, 493, 562}, 416, {141, 142, 143},
                        CRect(400, 165, 450, 175)};
int stripGroup(int band) { return band < 3 ? 0 : band < 5 ? 1 : 2; }

struct OutputPlace {
    CRect rect;
    int strip;
    CRect textPlace;
};
constexpr OutputPlace kOutputPlace{CRect(646, 370, 700, 424), 144, CRect(479, 165, 508, 175)};

// The band parameters, from the left type on: type, type R, frequency, frequency R, Q, Q R,
// gain, gain R, each eight bands long.
struct BandParameter {
    int firstIndex;  // of the left side
    int band;
    bool rightSide;
};
std::optional<BandParameter> bandParameter(int index) {
    if (index < params::kType || index >= params::kPlotRange) return std::nullopt;
    const int group = (index - params::kType) / params::kBands;
    return BandParameter{params::kType + (group / 2) * 2 * params::kBands, (index - params::kType) % params::kBands,
                         group % 2 == 1};
}

bool bypassedOnBothSides(float left, float right) {
    return params::quantize(left, params::kBandTypeSteps) >= params::kFirstBypassType &&
           params::quantize(right, params::kBandTypeSteps) >= params::kFirstBypassType;
}

}  // namespace

void Editor::buildValueControls(CFrame* frame) {
    auto* font = new CBitmap(kFontBitmap);
    header = new CHeader(kHeaderPlace, this, params::kOutput, font);
    font->forget();
    frame->addView(header);

    auto* indicator = new CBitmap(kJogPlace.indicator);
    auto* ring = new CBitmap(kJogPlace.ring);
    auto* face = new CBitmap(kJogPlace.background);
    jog = new CJog(kJogPlace.rect, this, params::kPlotRange, face, indicator, ring);
    for (CBitmap* b : {indicator, ring, face}) b->forget();
    jog->setLocked(isMonoInput());
    frame->addView(jog);

    auto addRow = [&](const KnobRow& row, CMyEditKnob** knobs) {
        CBitmap* strips[kStripGroups];
        for (int i = 0; i < kStripGroups; ++i) strips[i] = new CBitmap(row.strips[i]);
        for (int b = 0; b < params::kBands; ++b) {
            const CRect place(row.left[b], row.top, row.left[b] + kKnobWidth, row.top + kKnobHeight);
            knobs[b] = new CMyEditKnob(place, this, row.firstTag + b, row.kind, strips[stripGroup(b)], row.textPlace);
            frame->addView(knobs[b]);
        }
        for (CBitmap* strip : strips) strip->forget();
    };
    addRow(kFrequencyRow, frequencyKnobs);
    addRow(kGainRow, gainKnobs);
    addRow(kQRow, qKnobs);
    auto* strip = new CBitmap(kOutputPlace.strip);
    outputKnob = new CMyEditKnob(kOutputPlace.rect, this, params::kOutput, valuetext::kOutput, strip,
                                 kOutputPlace.textPlace);
    strip->forget();
    frame->addView(outputKnob);
    hoveredBand = -1;
}

void Editor::releaseValueControls() {
    // A band auditioned from its knob is not left playing once the window has gone.
    setFocusBand(-1);
    header = nullptr;
    analyzerHintShown = false;
    jog = nullptr;
    for (int b = 0; b < params::kBands; ++b) frequencyKnobs[b] = gainKnobs[b] = qKnobs[b] = nullptr;
    outputKnob = nullptr;
}

int Editor::shownSide() const { return params::quantize(parameter(params::kChannel), 3) == kRightStep ? 1 : 0; }

void Editor::showValueControlsParameter(int index, float value) {
    if (!header) return;
    switch (index) {
        case params::kOutput:
            outputKnob->setValue(value);
            header->setOutput(value);
            return;
        case params::kPlotRange:
            if (params::quantize(parameter(params::kAutoZoom), 2) == 0) jog->setValue(value);
            return;
        case params::kChannel:
            jog->setChannelMode(params::quantize(value, 3) + 1);
            reloadBandControls();
            return;
        case params::kSpan: jog->setAnalyzerOn(params::quantize(value, 2) == 1); return;
        case params::kLrMs: jog->setMidSide(params::quantize(value, 2) == 1); return;
        case params::kListen: jog->setListenMode(params::quantize(value, 3)); return;
        default: break;
    }
    const std::optional<BandParameter> p = bandParameter(index);
    if (!p) return;
    const int channel = params::quantize(parameter(params::kChannel), 3);
    const int b = p->band;
    const bool headerShowsBand = header->getBand() == b;
    if (p->firstIndex == params::kType) {
        // In LINK both sides' types reach the same controls.
        if (p->rightSide ? channel == kLeftStep : channel == kRightStep) return;
        const int step = params::quantize(value, params::kBandTypeSteps);
        for (CMyEditKnob* knob : {frequencyKnobs[b], gainKnobs[b], qKnobs[b]}) knob->setTypeStep(step);
        if (headerShowsBand) header->setType(value);
        return;
    }
    if (p->rightSide != (channel == kRightStep)) return;
    switch (p->firstIndex) {
        case params::kFreq:
            frequencyKnobs[b]->setValue(value);
            if (headerShowsBand) header->setFrequency(value);
            break;
        case params::kGain:
            gainKnobs[b]->setValue(value);
            if (headerShowsBand) header->setGain(value);
            break;
        case params::kQ:
            qKnobs[b]->setValue(value);
            if (headerShowsBand) header->setQ(value);
            break;
        default: break;
    }
}

void Editor::reloadBandControls() {
    const int offset = shownSide() * params::kBands;
    for (int b = 0; b < params::kBands; ++b) {
        const int step = params::quantize(parameter(params::kType + offset + b), params::kBandTypeSteps);
        for (CMyEditKnob* knob : {frequencyKnobs[b], gainKnobs[b], qKnobs[b]}) knob->setTypeStep(step);
        frequencyKnobs[b]->setValue(parameter(params::kFreq + offset + b));
        gainKnobs[b]->setValue(parameter(params::kGain + offset + b));
        qKnobs[b]->setValue(parameter(params::kQ + offset + b));
    }
    showBandInHeader(header->getBand());
    updateEditPairings();
}

void Editor::updateEditPairings() {
    // The effect writes the sides Channel selects, and only the left one for a mono input.
    const int channel = params::quantize(parameter(params::kChannel), 3);
    int pairing = 0;
    if (channel != kRightStep || isMonoInput()) pairing |= CMyEditKnob::kOwnTag;
    if (channel != kLeftStep && !isMonoInput()) pairing |= CMyEditKnob::kTwinTag;
    for (int b = 0; b < params::kBands; ++b)
        for (CMyEditKnob* knob : {frequencyKnobs[b], gainKnobs[b], qKnobs[b]}) knob->setEditPairing(pairing);
}

void Editor::showBandInHeader(int band) {
    if (!header) return;
    header->setBand(band);
    if (band < 0) return;
    const int offset = shownSide() * params::kBands + band;
    header->setType(parameter(params::kType + offset));
    header->setFrequency(parameter(params::kFreq + offset));
    header->setGain(parameter(params::kGain + offset));
    header->setQ(parameter(params::kQ + offset));
}

void Editor::valueControlChanged(CControl* control) {
    if (control->getTag() == params::kPlotRange) setAutomated(params::kPlotRange, control->getValue());
}

void Editor::idleValueControls(uint32_t elapsedMs) {
    if (!header) return;
    header->advanceDriveShow(static_cast<int>(std::min<uint32_t>(elapsedMs, CHeader::kDriveShowMs)));
    if (params::quantize(parameter(params::kAutoZoom), 2) == 1) jog->setValue(shownPlotRange());
    // With a mono input there is no second channel to pick or to encode.
    jog->setLocked(isMonoInput());
    updateEditPairings();
}

void Editor::hoverBand(int band, int /*flag*/) {
    hoveredBand = band;
    showBandInHeader(band >= 0 ? band : selectedBand);
    plotHoverBand(band);
}

void Editor::selectBand(int band) {
    selectedBand = band;
    showBandInHeader(hoveredBand >= 0 ? hoveredBand : band);
    plotSelectBand(band);
}

// The effect auditions the focus band: it plays that band alone until the pointer leaves.
void Editor::setFocusBand(int band) {
    if (band == focusBand) return;
    focusBand = band;
    if (EditorEffect* e = editorEffect()) e->setAuditionBand(band);
}

void Editor::showDrive(float dB) {
    if (header) header->setDrive(dB);
}

void Editor::setListenMode(int mode) { setAutomated(params::kListen, params::stepCentre(mode, 3)); }

void Editor::setChannelMode(int mode) {
    if (mode == params::kChannelLink && effect) {
        // Linked sides: a band bypassed on both sides can no longer be heard alone.
        const unsigned before = static_cast<unsigned>(params::quantize(parameter(params::kSolo), 256));
        unsigned mask = before;
        for (int b = 0; b < params::kBands; ++b)
            if (bypassedOnBothSides(parameter(params::kType + b), parameter(params::kTypeR + b))) mask &= ~(1u << b);
        if (mask != before) effect->setParameter(params::kSolo, params::stepCentre(static_cast<int>(mask), 256));
    }
    setAutomated(params::kChannel, params::stepCentre(mode - 1, 3));
}

void Editor::toggleSwitch(int index) {
    beginEdit(index);
    setAutomated(index, params::stepCentre(1 - params::quantize(parameter(index), 2), 2));
    endEdit(index);
}

void Editor::toggleMidSide() { toggleSwitch(params::kLrMs); }

void Editor::toggleAnalyzer() { toggleSwitch(params::kSpan); }

void Editor::openSettingsPage() { showSettingsPage(); }

// While the pointer rests on the analyzer's ring button, the idle fades the band curves out so
// that the spectrum behind them shows clearly, and fades them back in when it leaves.
void Editor::showAnalyzerHint(bool shown) {
    analyzerHintShown = shown;
    if (header) header->setAnalyzerHint(shown);
}

void Editor::showBandValue(int firstIndex, int band) {
    const int index = firstIndex + shownSide() * params::kBands + band;
    showParameter(index, parameter(index));
}

void Editor::bandFrequencyChanged(int band, float value) {
    if (EditorEffect* e = editorEffect()) e->setBandFrequency(band, value);
    showBandValue(params::kFreq, band);
}

void Editor::bandGainChanged(int band, float value) {
    if (EditorEffect* e = editorEffect()) e->setBandGain(band, value);
    showBandValue(params::kGain, band);
}

void Editor::bandQChanged(int band, float value) {
    if (EditorEffect* e = editorEffect()) e->setBandQ(band, value);
    showBandValue(params::kQ, band);
}
