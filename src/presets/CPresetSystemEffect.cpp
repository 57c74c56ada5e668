#include "presets/CPresetSystemEffect.h"

#include <cstring>
#include <new>
#include <vector>

#include "presets/CPresetSystemEditor.h"
#include "presets/FactoryPresets.h"
#include "presets/ImageBuilder.h"
#include "presets/ImageLoader.h"
#include "presets/Parameters.h"
#include "presets/RecordImage.h"

using presets::kNameField;
using presets::kPresetCount;
using presets::kPresetSlots;
using presets::PresetRecord;

CPresetSystemEffect::CPresetSystemEffect(audioMasterCallback audioMaster)
    : AudioEffectX(audioMaster, 1, kPresetSlots) {
    programsAreChunks(true);
    bankHeaderBuffer.reset(new (std::nothrow) uint8_t[kBankHeaderBytes]());
    chunkBuffer.reset(new (std::nothrow) uint8_t[kChunkBufferBytes]());
    chunkBufferSize = chunkBuffer ? kChunkBufferBytes : 0;
    currentPreset = 0;
    presets.reset(new (std::nothrow) PresetRecord[kPresetCount]());
    loadFactoryPresets();
    if (presets) {
        presetTemplate = presets[0];  // no other thread can reach the effect yet
        presets::LoadingFlag::Scope loading(isLoading);
        for (int slot = 0; slot < kPresetSlots; ++slot)
            CPresetSystemEffect::setParameter(slot, presets[0].values[slot]);
    }
}

CPresetSystemEffect::~CPresetSystemEffect() = default;

CPresetSystemEffect::BankScope::~BankScope() {
    if (!owns_) return;
    effect_.settleBank();
    effect_.bankLock.unlock();
    effect_.applyPostedWrites();
}

void CPresetSystemEffect::settleBank() {
    PresetRecord* bank = presets.get();
    PresetRecord* current = bank ? &bank[currentPreset.load(std::memory_order_relaxed)] : nullptr;
    toCurrentPreset.drain([current](int slot, float value) {
        if (current) current->values[slot] = value;
    });
    // After the current preset's writes: a slot that goes into every preset is written into the
    // current one as well, except while a preset is being applied, and that write is the newer.
    toEveryPreset.drain([bank](int slot, float value) {
        if (bank)
            for (int p = 0; p < kPresetCount; ++p) bank[p].values[slot] = value;
    });
    if (current)
        for (int slot = 0; slot < kPresetSlots; ++slot)
            currentValues[slot].store(current->values[slot], std::memory_order_relaxed);
}

// Never waits. A holder that let the lock go looks again here, so a write posted while it held
// the lock is applied by it, or by the next holder, which will look again in turn.
void CPresetSystemEffect::applyPostedWrites() {
    while (writesPending()) {
        if (!bankLock.lock(0)) return;
        settleBank();
        bankLock.unlock();
    }
}

CPresetSystemEditor* CPresetSystemEffect::presetEditor() { return dynamic_cast<CPresetSystemEditor*>(editor); }

const PresetRecord* CPresetSystemEffect::getPreset(int index) const {
    if (!presets || index < 0 || index >= kPresetCount) return nullptr;
    return &presets[index];
}

bool CPresetSystemEffect::copyPreset(int index, PresetRecord& out) {
    if (!presets || index < 0 || index >= kPresetCount) return false;
    BankScope bank(*this);
    if (!bank) return false;
    out = presets[index];
    return true;
}

bool CPresetSystemEffect::copyPresetName(int index, char (&out)[kNameField]) {
    if (!presets || index < 0 || index >= kPresetCount) return false;
    BankScope bank(*this);
    if (!bank) return false;
    std::memcpy(out, presets[index].name, kNameField);
    out[kNameField - 1] = '\0';
    return true;
}

VstIntPtr CPresetSystemEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    if (opcode == effSetChunk && !ptr) return -1;
    return AudioEffectX::dispatcher(opcode, index, value, ptr, opt);
}

void CPresetSystemEffect::setParameter(VstInt32 index, float value) {
    if (!presets || index < 0 || index >= kPresetSlots) return;
    const auto v = params::admitted(value);
    if (!v) return;
    currentValues[index].store(*v, std::memory_order_relaxed);
    toCurrentPreset.post(index, *v);
    applyPostedWrites();
}

void CPresetSystemEffect::storeInEveryPreset(int slot, float value) {
    if (!presets || slot < 0 || slot >= kPresetSlots) return;
    currentValues[slot].store(value, std::memory_order_relaxed);
    toEveryPreset.post(slot, value);
    applyPostedWrites();
}

float CPresetSystemEffect::getParameter(VstInt32 index) {
    if (!presets || index < 0 || index >= kPresetSlots) return -1.0f;
    return currentValues[index].load(std::memory_order_relaxed);
}

void CPresetSystemEffect::getProgramName(char* text) {
    *text = 0;
    if (!presets) return;
    BankScope bank(*this);
    if (!bank) return;
    std::memcpy(text, presets[currentPreset].name, kNameField);
    text[kNameField] = 0;
}

void CPresetSystemEffect::setProgramName(char* text) {
    if (!presets) return;
    char name[kNameField];
    presets::takeNameField(name, text);
    char stored[kNameField];
    {
        BankScope bank(*this);
        if (!bank) return;
        presets::storePresetName(presets[currentPreset].name, name);
        std::memcpy(stored, presets[currentPreset].name, kNameField);
    }
    if (CPresetSystemEditor* e = presetEditor()) e->showPresetName(stored);
}

bool CPresetSystemEffect::getProgramNameIndexed(VstInt32 /*category*/, VstInt32 index, char* text) {
    if (!presets || index < 0 || index >= kPresetCount) return false;
    BankScope bank(*this);
    if (!bank) return false;
    std::memcpy(text, presets[index].name, kNameField);
    text[kNameField] = 0;
    return true;
}

// The preset's values are copied under the bank lock and applied after it: the application
// redesigns bands and writes parameters, which is not work to hold the bank for.
void CPresetSystemEffect::selectPreset(int index) {
    if (!presets) return;
    if (index < 0 || index >= kPresetCount) index = 0;
    presets::LoadingFlag::Scope loading(isLoading);
    PresetRecord chosen;
    {
        BankScope bank(*this);
        if (!bank) return;
        curProgram = 0;
        currentPreset = index;
        chosen = presets[index];
    }
    for (int slot = 0; slot < kPresetSlots; ++slot) setParameter(slot, chosen.values[slot]);
    updateDisplay();
    beginEdit(0);
    endEdit(0);
}

void CPresetSystemEffect::setPresetName(const char* name) {
    if (name && presets) {
        char field[kNameField];
        presets::takeNameField(field, name);
        BankScope bank(*this);
        if (bank) presets::storePresetName(presets[currentPreset].name, field);
    }
    updateDisplay();
}

void CPresetSystemEffect::resetPresetToTemplate(int index) {
    if (!presets || index < 0 || index >= kPresetCount) return;
    BankScope bank(*this);
    if (bank) presets[index] = presetTemplate;
}

void CPresetSystemEffect::restoreStartupState() {
    if (presets) {
        BankScope bank(*this);
        if (bank) presetTemplate = presets[0];
    }
    if (CPresetSystemEditor* e = presetEditor()) e->restoreStartupDefaults();
}

void CPresetSystemEffect::loadFactoryPresets() {
    if (!presets) return;
    BankScope bank(*this);
    if (bank) presets::loadFactoryBank(presets.get());
}

VstInt32 CPresetSystemEffect::getChunk(void** data, bool /*isPreset*/) {
    using namespace presets::image;
    if (!data || !chunkBuffer || !presets) return 0;
    std::vector<uint8_t> image;
    CPresetSystemEditor* e = presetEditor();
    const size_t size = e ? e->buildBankBlob(image) : presets::ImageBuilder(*this).buildBank(image);
    const size_t capacity = static_cast<size_t>(chunkBufferSize);
    if (size == 0 || size != image.size() || size > capacity - kChunkPrefixBytes) return 0;

    uint8_t* chunk = chunkBuffer.get();
    std::memset(chunk, 0, capacity);
    writeWord(chunk + kChunkVersionOffset, kFormatVersion);
    writeWord(chunk + kChunkMagicOffset, static_cast<uint32_t>(getUniqueID()));
    std::memcpy(chunk + kChunkPrefixBytes, image.data(), size);
    *data = chunk;
    return static_cast<VstInt32>(kChunkPrefixBytes + size);
}

VstInt32 CPresetSystemEffect::setChunk(void* data, VstInt32 byteSize, bool /*isPreset*/) {
    using namespace presets::image;
    if (!presets || !bankHeaderBuffer || !chunkBuffer || !data) return -1;
    if (byteSize < static_cast<VstInt32>(kChunkPrefixBytes)) return -1;
    const auto* chunk = static_cast<const uint8_t*>(data);
    const size_t size = static_cast<size_t>(byteSize);

    const ByteOrder order = detectByteOrder(chunk + kChunkMagicOffset, getUniqueID());
    if (order == ByteOrder::kForeign) return -1;
    const bool swapped = order == ByteOrder::kReversed;
    const uint32_t version = readWord(chunk + kChunkVersionOffset, swapped);
    CPresetSystemEditor* e = presetEditor();

    if (version == kLegacyChunkVersion)
        return presets::ImageLoader(*this, e).loadLegacyChunk(chunk, size, swapped) ? 0 : -1;
    if (version != kFormatVersion) return -1;

    // The image's own magic and type are not examined: the chunk's prefix vouched for it.
    if (size < kChunkPrefixBytes + kHeaderBytes) return -1;
    const uint8_t* image = chunk + kChunkPrefixBytes;
    const ImageHeader header = readHeader(image, swapped);
    const uint8_t* records = image + kHeaderBytes;
    const size_t recordBytes = size - kChunkPrefixBytes - kHeaderBytes;
    if (e) e->loadBankRecords(records, recordBytes, header, swapped);
    else presets::ImageLoader(*this, nullptr).loadBankRecords(records, recordBytes, header, swapped);
    return 0;
}
