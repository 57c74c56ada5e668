// The preset strip along the bottom of the editor: name field, preset menu, previous/next,
// preset and bank files, default bank and preset, memories A and B, keyboard focus, manual.

#include <cstring>
#include <memory>

#include "gui/toolkit/CBitmap.h"
#include "gui/toolkit/CFrame.h"
#include "gui/toolkit/CNewFileSelector.h"
#include "gui/toolkit/COptionMenu.h"
#include "gui/toolkit/CTextEdit.h"
#include "platform/ShellOpen.h"
#include "presets/CPresetSystemEditor.h"
#include "presets/CPresetSystemEffect.h"
#include "presets/PresetStripControls.h"

namespace {

enum StripTag : int32_t {
    kNameTag = 1000,
    kRockerTag = 1001,
    kLoadBankTag = 1002,
    kSaveBankTag = 1003,
    kLoadPresetTag = 1004,
    kSavePresetTag = 1005,
    kMenuTag = 1012,
    kDefaultBankTag = 1013,
    kDefaultPresetTag = 1014,
    kStoreMemoATag = 1015,
    kStoreMemoBTag = 1016,
    kRecallMemoATag = 1017,
    kRecallMemoBTag = 1018,
    kKeyboardFocusTag = 1019,
    kManualTag = 1020,
};

// Bitmaps of the strip and where each control's frames lie in them.
constexpr int kFileButtonsBitmap = 134;
constexpr int kDefaultButtonsBitmap = 154;
constexpr int kRockerBitmap = 155;
constexpr int kSmallButtonsBitmap = 156;
constexpr StripSprite kSaveSprite{kFileButtonsBitmap, 0, 15};
constexpr StripSprite kLoadSprite{kFileButtonsBitmap, 17, 15};
constexpr StripSprite kStoreMemoASprite{kFileButtonsBitmap, 34, 15};
constexpr StripSprite kRecallMemoASprite{kFileButtonsBitmap, 51, 15};
constexpr StripSprite kStoreMemoBSprite{kFileButtonsBitmap, 68, 15};
constexpr StripSprite kRecallMemoBSprite{kFileButtonsBitmap, 85, 15};
constexpr StripSprite kDefaultBankSprite{kDefaultButtonsBitmap, 0, 13};
constexpr StripSprite kDefaultPresetSprite{kDefaultButtonsBitmap, 32, 13};
constexpr StripSprite kRockerSprite{kRockerBitmap, 0, 13};
constexpr StripSprite kKeyboardFocusSprite{kSmallButtonsBitmap, 0, 12};
constexpr StripSprite kManualSprite{kSmallButtonsBitmap, 11, 12};
constexpr int kMenuButtonBitmap = kSmallButtonsBitmap;

// The name field: the editor's small font, light text on the dark panel.
constexpr double kNameFontPixels = 10;
constexpr CColor kNameLight{209, 227, 238, 255};
constexpr CColor kNameDark{36, 36, 32, 255};

struct FileDialog {
    const char* title;
    bool save;
    bool bank;
    bool endianReversed;
};
enum DialogKind { kLoadBank, kLoadBankReversed, kSaveBank, kLoadPreset, kLoadPresetReversed, kSavePreset };
constexpr FileDialog kFileDialogs[] = {
    {"Load bank", false, true, false},
    {"Load bank (endian-reversed)", false, true, true},
    {"Save bank", true, true, false},
    {"Load preset", false, false, false},
    {"Load preset (endian-reversed)", false, false, true},
    {"Save preset", true, false, false},
};
const CFileExtension kPresetFiles{"Tyx Preset", "tyx"};
const CFileExtension kBankFiles{"Tyx Bank", "tyb"};

constexpr float kRightClickValue = 0.5f;  // a load button's right click: the reversed dialog
constexpr float kStoreThreshold = 0.75f;  // default buttons: a plain double click stores

// Waits for the document opener behind the manual button, then says what went wrong, if
// anything, and lets the button go.
class ManualOpening : public FrameIdleTask {
public:
    ManualOpening(const std::string& path, CPSKickButton* button) : opener(path), button(button) {}
    bool idle(CFrame& frame) override {
        const auto result = opener.poll();
        if (result == platform::ShellOpen::Result::Pending) return true;
        if (result == platform::ShellOpen::Result::NoApplication)
            frame.showMessage("Make sure Acrobat Reader is installed", "Could not open manual file");
        else if (result == platform::ShellOpen::Result::Failed)
            frame.showMessage("Could not open user manual", "");
        if (frame.containsView(button)) button->release();
        return false;
    }

private:
    platform::ShellOpen opener;
    CPSKickButton* button;
};

}  // namespace

bool CPresetSystemEditor::open(void* parentWindow) {
    systemWindow = parentWindow;
    if (frame) openStrip();
    return frame != nullptr;
}

void CPresetSystemEditor::openStrip() {
    CPresetSystemEffect* fx = presetEffect();
    const int current = fx ? fx->getCurrentPreset() : 0;

    presetNameDisplay = new CTextEdit(CRect(194, 494, 318, 508), this, kNameTag);
    presetNameDisplay->setMaxLength(presets::kNameField - 1);
    presetNameDisplay->setFont("DejaVu Sans", kNameFontPixels);
    presetNameDisplay->setFontColor(kNameLight);
    presetNameDisplay->setBackColor(kNameDark);
    presetNameDisplay->setFrameColor(kNameDark);
    char name[presets::kNameField];
    if (fx && fx->copyPresetName(current, name)) presetNameDisplay->setText(name);
    frame->addView(presetNameDisplay);

    auto* menuButton = new CBitmap(kMenuButtonBitmap);
    presetMenu = new COptionMenu(CRect(320, 495, 333, 507), this, kMenuTag, menuButton);
    menuButton->forget();
    for (int p = 0; p < presets::kPresetCount; ++p) {
        const bool named = fx && fx->copyPresetName(p, name);
        presetMenu->addEntry(named ? name : "");
    }
    presetMenu->setCurrent(current);
    frame->addView(presetMenu);

    frame->addView(new CPSRockerSwitch(CRect(340, 494, 370, 507), this, kRockerTag, kRockerSprite));
    frame->addView(new CSaveLoadButton(CRect(22, 494, 39, 509), this, kSaveBankTag, kSaveSprite));
    frame->addView(new CPSKickButton(CRect(39, 494, 71, 507), this, kDefaultBankTag, kDefaultBankSprite, true));
    frame->addView(new CSaveLoadButton(CRect(72, 494, 89, 509), this, kLoadBankTag, kLoadSprite));
    frame->addView(new CSaveLoadButton(CRect(104, 494, 121, 509), this, kSavePresetTag, kSaveSprite));
    frame->addView(new CPSKickButton(CRect(122, 494, 166, 507), this, kDefaultPresetTag, kDefaultPresetSprite, true));
    frame->addView(new CSaveLoadButton(CRect(166, 494, 183, 509), this, kLoadPresetTag, kLoadSprite));
    frame->addView(new CPSKickButton(CRect(388, 494, 405, 509), this, kStoreMemoATag, kStoreMemoASprite));
    frame->addView(new CPSKickButton(CRect(421, 494, 438, 509), this, kRecallMemoATag, kRecallMemoASprite));
    frame->addView(new CPSKickButton(CRect(452, 494, 469, 509), this, kStoreMemoBTag, kStoreMemoBSprite));
    frame->addView(new CPSKickButton(CRect(486, 494, 503, 509), this, kRecallMemoBTag, kRecallMemoBSprite));

    auto* focusButton = new CPSOnOffButton(CRect(710, 497, 721, 504), this, kKeyboardFocusTag, kKeyboardFocusSprite);
    focusButton->setValue(readKeyboardFocus() ? 1.0f : 0.0f);
    frame->addView(focusButton);
    manualButton = new CPSKickButton(CRect(729, 496, 740, 505), this, kManualTag, kManualSprite);
    frame->addView(manualButton);
}

void CPresetSystemEditor::close() {
    presetNameDisplay = nullptr;
    presetMenu = nullptr;
    manualButton = nullptr;
    systemWindow = nullptr;
}

void CPresetSystemEditor::showPresetName(const char* name) {
    if (!name) return;
    if (presetNameDisplay) presetNameDisplay->setText(name);
    if (presetMenu) setPresetMenuTitle(presetMenu->getCurrent(), name);
}

void CPresetSystemEditor::setPresetMenuTitle(int index, const char* name) {
    if (!presetMenu || !name) return;
    if (CMenuItem* entry = presetMenu->getEntry(index)) entry->setTitle(name);
    presetMenu->invalid();
}

void CPresetSystemEditor::selectPresetMenuEntry(int index) {
    if (presetMenu) presetMenu->setCurrent(index);
}

void CPresetSystemEditor::valueChanged(CControl* control) {
    if (!control || !presetEffect()) return;
    const float v = control->getValue();
    switch (control->getTag()) {
        case kNameTag: renamePreset(); break;
        case kRockerTag: stepPreset(v); break;
        case kLoadBankTag: runFileDialog(v == kRightClickValue ? kLoadBankReversed : kLoadBank); break;
        case kSaveBankTag: runFileDialog(kSaveBank); break;
        case kLoadPresetTag: runFileDialog(v == kRightClickValue ? kLoadPresetReversed : kLoadPreset); break;
        case kSavePresetTag: runFileDialog(kSavePreset); break;
        case kMenuTag: choosePresetFromMenu(); break;
        case kDefaultBankTag: v >= kStoreThreshold ? storeDefaultBank() : clearDefaultBank(); break;
        case kDefaultPresetTag: v >= kStoreThreshold ? storeDefaultPreset() : clearDefaultPreset(); break;
        case kStoreMemoATag: storeMemoA(); break;
        case kStoreMemoBTag: storeMemoB(); break;
        case kRecallMemoATag: recallMemoA(); break;
        case kRecallMemoBTag: recallMemoB(); break;
        case kKeyboardFocusTag:
            setKeyboardFocus(v != 0);
            storeKeyboardFocus(v != 0);
            break;
        case kManualTag: openManual(); break;
        default: break;
    }
}

void CPresetSystemEditor::renamePreset() {
    if (!presetNameDisplay) return;
    const std::string name = presetNameDisplay->getText();
    showPresetName(name.c_str());
    presetEffect()->setPresetName(name.c_str());
}

void CPresetSystemEditor::stepPreset(float direction) {
    if (direction == 0) return;
    CPresetSystemEffect* fx = presetEffect();
    int preset = fx->getCurrentPreset() + (direction > 0 ? 1 : -1);
    if (preset < 0) preset = 0;
    if (preset >= presets::kPresetCount) preset = presets::kPresetCount - 1;
    selectPresetMenuEntry(preset);
    char name[presets::kNameField];
    if (fx->copyPresetName(preset, name)) showPresetName(name);
    fx->selectPreset(preset);
}

void CPresetSystemEditor::choosePresetFromMenu() {
    if (!presetMenu) return;
    const int index = presetMenu->getCurrent();
    CMenuItem* entry = presetMenu->getEntry(index);
    if (!entry) return;
    const std::string title = entry->getTitle();
    CPresetSystemEffect* fx = presetEffect();
    fx->selectPreset(index);
    fx->setPresetName(title.c_str());
    if (presetNameDisplay) presetNameDisplay->setText(title.c_str());
}

void CPresetSystemEditor::openManual() {
    if (!frame || !manualButton) return;
    frame->addIdleTask(std::make_unique<ManualOpening>(readManualPath(), manualButton));
}

void CPresetSystemEditor::loadBankDialog(bool endianReversed) { runFileDialog(endianReversed ? kLoadBankReversed : kLoadBank); }
void CPresetSystemEditor::saveBankDialog() { runFileDialog(kSaveBank); }
void CPresetSystemEditor::loadPresetDialog(bool endianReversed) {
    runFileDialog(endianReversed ? kLoadPresetReversed : kLoadPreset);
}
void CPresetSystemEditor::savePresetDialog() { runFileDialog(kSavePreset); }

// The dialog returns later (the frame polls it); a cancelled dialog changes nothing.
void CPresetSystemEditor::runFileDialog(int kind) {
    if (!frame) return;
    const FileDialog& dialog = kFileDialogs[kind];
    CNewFileSelector selector(frame, dialog.save ? CNewFileSelector::kSelectSaveFile : CNewFileSelector::kSelectFile);
    selector.setTitle(dialog.title);
    selector.setInitialDirectory(paths.currentDirectory);
    selector.addFileExtension(dialog.bank ? kBankFiles : kPresetFiles);
    if (dialog.save) selector.setDefaultSaveName(dialog.bank ? paths.currentBankFile : paths.currentPresetFile);
    selector.run([this, kind](const char* path) {
        if (!path) return;
        const FileDialog& chosen = kFileDialogs[kind];
        if (chosen.save && chosen.bank) saveBankFile(path);
        else if (chosen.save) savePresetFile(path);
        else if (chosen.bank) loadBankFile(path, chosen.endianReversed);
        else loadPresetFile(path, chosen.endianReversed);
    });
}
