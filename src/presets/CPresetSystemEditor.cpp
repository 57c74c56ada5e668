#include "presets/CPresetSystemEditor.h"

#include <algorithm>
#include <climits>

#include "gui/toolkit/CControl.h"
#include "platform/AtomicFile.h"
#include "presets/CPresetSystemEffect.h"
#include "presets/ImageBuilder.h"
#include "presets/ImageLoader.h"
#include "presets/StoredValues.h"

using namespace presets::image;
namespace stored = presets::stored;

namespace {

constexpr int kLegacyBankPresets = presets::kPresetCount;
constexpr size_t kFloatBytes = 4;

int clampedCount(size_t n) { return static_cast<int>(std::min<size_t>(n, INT_MAX)); }

bool isParameter(AudioEffect* effect, int32_t tag) {
    return effect && tag >= 0 && tag < effect->getAeffect()->numParams;
}

}  // namespace

void CPresetSystemEditor::controlBeginEdit(CControl* control) {
    if (isParameter(effect, control->getTag())) beginEdit(control->getTag());
}

void CPresetSystemEditor::controlEndEdit(CControl* control) {
    if (isParameter(effect, control->getTag())) endEdit(control->getTag());
}

CPresetSystemEditor::CPresetSystemEditor(AudioEffect* effect)
    : AEffGUIEditor(effect), store(platform::UserStore::forCurrentUser()) {}

CPresetSystemEditor::~CPresetSystemEditor() {
    if (paths.changed) storePaths();
}

CPresetSystemEffect* CPresetSystemEditor::presetEffect() const { return dynamic_cast<CPresetSystemEffect*>(effect); }

void CPresetSystemEditor::restoreStartupDefaults() {
    restoreDefaultBank();
    if (CPresetSystemEffect* fx = presetEffect()) fx->selectPreset(0);
    restoreDefaultPreset();
    restorePaths();
}

// ---------------------------------------------------------------------------------------------
// Images

bool CPresetSystemEditor::loadBankLegacy(const uint8_t* data, size_t size, bool swapped, int presetCount,
                                         int floatsPerPreset) {
    CPresetSystemEffect* fx = presetEffect();
    return fx && presets::ImageLoader(*fx, this).loadBankLegacy(data, size, swapped, presetCount, floatsPerPreset);
}

bool CPresetSystemEditor::loadBankRecords(const uint8_t* records, size_t size, const ImageHeader& header,
                                          bool swapped) {
    CPresetSystemEffect* fx = presetEffect();
    return fx && presets::ImageLoader(*fx, this).loadBankRecords(records, size, header, swapped);
}

size_t CPresetSystemEditor::buildBankBlob(std::vector<uint8_t>& out) {
    out.clear();
    CPresetSystemEffect* fx = presetEffect();
    return fx ? presets::ImageBuilder(*fx).buildBank(out) : 0;
}

bool CPresetSystemEditor::loadPresetLegacy(const uint8_t* data, size_t size, bool swapped, int floatCount) {
    CPresetSystemEffect* fx = presetEffect();
    return fx && presets::ImageLoader(*fx, this).loadPresetLegacy(data, size, swapped, floatCount);
}

bool CPresetSystemEditor::loadPresetRecords(const uint8_t* records, size_t size, const ImageHeader& header,
                                            bool swapped) {
    CPresetSystemEffect* fx = presetEffect();
    return fx && presets::ImageLoader(*fx, this).loadPresetRecords(records, size, header, swapped);
}

size_t CPresetSystemEditor::buildPresetBlob(std::vector<uint8_t>& out) {
    out.clear();
    CPresetSystemEffect* fx = presetEffect();
    return fx ? presets::ImageBuilder(*fx).buildPreset(out) : 0;
}

bool CPresetSystemEditor::loadPresetImage(const uint8_t* bytes, size_t size, bool endianReversed) {
    CPresetSystemEffect* fx = presetEffect();
    Recognised image;
    if (!fx || !recognise(bytes, size, fx->getUniqueID(), endianReversed, image)) return false;
    const uint8_t* data = bytes + kRecognisedBytes;
    const size_t dataSize = size - kRecognisedBytes;
    switch (image.type) {
        case kTypeLegacyPreset:
            // A name, then as many floats as the rest holds.
            if (dataSize < kLegacyNameBytes) return false;
            return loadPresetLegacy(data, dataSize, image.swapped,
                                    clampedCount((dataSize - kLegacyNameBytes) / kFloatBytes));
        case kTypePreset:
            if (size < kHeaderBytes) return false;
            return loadPresetRecords(bytes + kHeaderBytes, size - kHeaderBytes, readHeader(bytes, image.swapped),
                                     image.swapped);
        default:
            return false;
    }
}

bool CPresetSystemEditor::loadBankImage(const uint8_t* bytes, size_t size, bool endianReversed) {
    CPresetSystemEffect* fx = presetEffect();
    Recognised image;
    if (!fx || !recognise(bytes, size, fx->getUniqueID(), endianReversed, image)) return false;
    const uint8_t* data = bytes + kRecognisedBytes;
    const size_t dataSize = size - kRecognisedBytes;
    switch (image.type) {
        case kTypeLegacyBank: {
            // 21 blocks of equal size, each a name and floats.
            const size_t block = dataSize / kLegacyBankPresets;
            if (block < kLegacyNameBytes) return false;
            return loadBankLegacy(data, dataSize, image.swapped, kLegacyBankPresets,
                                  clampedCount((block - kLegacyNameBytes) / kFloatBytes));
        }
        case kTypeBank:
            if (size < kHeaderBytes) return false;
            return loadBankRecords(bytes + kHeaderBytes, size - kHeaderBytes, readHeader(bytes, image.swapped),
                                   image.swapped);
        default:
            return false;
    }
}

// ---------------------------------------------------------------------------------------------
// Files

bool CPresetSystemEditor::savePresetFile(const std::string& path) {
    paths.rememberPresetFile(path);
    std::vector<uint8_t> image;
    return buildPresetBlob(image) > 0 && platform::writeFileAtomically(path, image.data(), image.size());
}

bool CPresetSystemEditor::loadPresetFile(const std::string& path, bool endianReversed) {
    paths.rememberPresetFile(path);
    const auto bytes = platform::readWholeFile(path, stored::kMaxImageBytes);
    return bytes && loadPresetImage(bytes->data(), bytes->size(), endianReversed);
}

bool CPresetSystemEditor::saveBankFile(const std::string& path) {
    paths.rememberBankFile(path);
    std::vector<uint8_t> image;
    return buildBankBlob(image) > 0 && platform::writeFileAtomically(path, image.data(), image.size());
}

bool CPresetSystemEditor::loadBankFile(const std::string& path, bool endianReversed) {
    paths.rememberBankFile(path);
    const auto bytes = platform::readWholeFile(path, stored::kMaxImageBytes);
    if (!bytes || !loadBankImage(bytes->data(), bytes->size(), endianReversed)) return false;
    // A bank from a file always opens at its first preset.
    CPresetSystemEffect* fx = presetEffect();
    presets::PresetRecord first;
    if (fx && fx->getCurrentPreset() != 0 && fx->copyPreset(0, first)) {
        selectPresetMenuEntry(0);
        showPresetName(first.name);
        fx->selectPreset(0);
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Stored defaults and memories

bool CPresetSystemEditor::storeImage(std::string_view name, bool wholeBank) {
    std::vector<uint8_t> image;
    const size_t size = wholeBank ? buildBankBlob(image) : buildPresetBlob(image);
    return size > 0 && store.writeBinary(name, image.data(), image.size());
}

bool CPresetSystemEditor::recallPresetImage(std::string_view name) {
    const auto bytes = store.readBinary(name, stored::kMaxImageBytes);
    return bytes && loadPresetImage(bytes->data(), bytes->size());
}

bool CPresetSystemEditor::storeDefaultBank() { return storeImage(stored::kDefaultBank, true); }
bool CPresetSystemEditor::clearDefaultBank() { return store.remove(stored::kDefaultBank); }

bool CPresetSystemEditor::restoreDefaultBank() {
    const auto bytes = store.readBinary(stored::kDefaultBank, stored::kMaxImageBytes);
    return bytes && loadBankImage(bytes->data(), bytes->size());
}

bool CPresetSystemEditor::storeDefaultPreset() { return storeImage(stored::kDefaultPreset, false); }
bool CPresetSystemEditor::clearDefaultPreset() { return store.remove(stored::kDefaultPreset); }
bool CPresetSystemEditor::restoreDefaultPreset() { return recallPresetImage(stored::kDefaultPreset); }

bool CPresetSystemEditor::storeMemoA() { return storeImage(stored::kMemoA, false); }
bool CPresetSystemEditor::storeMemoB() { return storeImage(stored::kMemoB, false); }
bool CPresetSystemEditor::recallMemoA() { return recallPresetImage(stored::kMemoA); }
bool CPresetSystemEditor::recallMemoB() { return recallPresetImage(stored::kMemoB); }

bool CPresetSystemEditor::clearDefaultMidi() { return store.remove(stored::kDefaultMidi); }

bool CPresetSystemEditor::storePaths() { return paths.store(store); }
void CPresetSystemEditor::restorePaths() { paths.restore(store); }

bool CPresetSystemEditor::storeKeyboardFocus(bool on) { return store.writeDword(stored::kKeyboardFocus, on ? 1 : 0); }

bool CPresetSystemEditor::readKeyboardFocus() const {
    const auto value = store.readDword(stored::kKeyboardFocus);
    return value && *value != 0;
}

std::string CPresetSystemEditor::readManualPath() const {
    return store.readString(stored::kManualPath, stored::kManualPathMaxBytes).value_or(std::string());
}
