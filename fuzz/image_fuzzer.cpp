// Preset and bank images as files and stored values hold them. The first byte of an input
// picks the way in (memory, file, per-user store; preset or bank; endian-reversed or not), the
// rest is the image. A refused load leaves the bank and the current preset exactly as they were.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "FuzzEffect.h"
#include "platform/AtomicFile.h"
#include "platform/UserStore.h"

using fuzzing::FuzzEffect;
using fuzzing::require;

namespace {

std::string scratchFolder;

enum Route : uint8_t {
    kPresetMemory, kBankMemory, kPresetFile, kBankFile, kStoredPreset, kStoredBank, kMemo, kStartup,
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* base = std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp";
    std::string pattern = std::string(base) + "/tyx-image-fuzz-XXXXXX";
    if (!mkdtemp(pattern.data())) std::abort();
    scratchFolder = pattern;
    std::filesystem::create_directories(scratchFolder + "/store");
    setenv("TYX_VIREO_CONFIG_DIR", (scratchFolder + "/store").c_str(), 1);
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(scratchFolder, ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const auto route = static_cast<Route>(data[0] & 7);
    const bool reversed = (data[0] & 8) != 0;
    const size_t imageSize = size - 1;
    std::unique_ptr<uint8_t[]> image(new uint8_t[imageSize ? imageSize : 1]);
    if (imageSize) std::memcpy(image.get(), data + 1, imageSize);

    const platform::UserStore store(scratchFolder + "/store");
    const std::string file = scratchFolder + "/image";
    auto stage = [&](const std::string& path) {
        require(platform::writeFileAtomically(path, image.get(), imageSize), "input staged as a file");
    };
    switch (route) {
        case kPresetFile: case kBankFile: stage(file); break;
        case kStoredPreset: stage(store.folder() + "/DefaultPreset"); break;
        case kStoredBank: stage(store.folder() + "/DefaultBank"); break;
        case kMemo: stage(store.folder() + "/MemoB"); break;
        case kStartup:
            stage(store.folder() + "/DefaultBank");
            stage(store.folder() + "/DefaultPreset");
            break;
        default: break;
    }

    auto fx = std::make_unique<FuzzEffect>();
    fx->selectPreset(data[0] >> 4 > 20 ? 20 : data[0] >> 4);
    const FuzzEffect::State before = fx->state();
    CPresetSystemEditor& ed = fx->ed();
    bool applied = true;
    switch (route) {
        case kPresetMemory: applied = ed.loadPresetImage(image.get(), imageSize, reversed); break;
        case kBankMemory: applied = ed.loadBankImage(image.get(), imageSize, reversed); break;
        case kPresetFile: applied = ed.loadPresetFile(file, reversed); break;
        case kBankFile: applied = ed.loadBankFile(file, reversed); break;
        case kStoredPreset: applied = ed.restoreDefaultPreset(); break;
        case kStoredBank: applied = ed.restoreDefaultBank(); break;
        case kMemo: applied = ed.recallMemoB(); break;
        case kStartup: fx->restoreStartupState(); break;
    }
    if (!applied) require(fx->state() == before, "a refused image changes nothing");
    fx->requireSound();

    std::error_code ignored;
    for (const char* name : {"DefaultBank", "DefaultPreset", "MemoB"})
        std::filesystem::remove(store.folder() + "/" + name, ignored);
    return 0;
}
