#pragma once
// The editor side of the preset system: the preset strip's owner, the images of presets and
// banks, the preset and bank files, and what the user keeps in the per-user store (default
// bank and preset, memories A and B, the dialogs' paths, the keyboard-focus option).
//
// The editor object lives as long as the effect; none of these operations needs its window.
// They reach the bank through the effect and report failures by their answers only.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gui/toolkit/CControlListener.h"
#include "platform/UserStore.h"
#include "presets/RecordImage.h"
#include "presets/RememberedPaths.h"
#include "vst/AEffGUIEditor.h"

class CPresetSystemEffect;
class CPSKickButton;
class COptionMenu;
class CTextEdit;

class CPresetSystemEditor : public AEffGUIEditor, public CControlListener {
public:
    // The store is the current user's, located when the editor object is made.
    explicit CPresetSystemEditor(AudioEffect* effect);
    // Keeps the dialogs' paths for the next session when a file operation changed them.
    ~CPresetSystemEditor() override;

    // The preset strip: open() adds its controls to the frame that the editor has just built,
    // close() forgets them (the frame deletes them); valueChanged() answers the strip's tags.
    bool open(void* parentWindow) override;
    void close() override;
    void valueChanged(CControl* control) override;
    // The frame takes the keys (at once and on later mouse use) while this is on.
    virtual void setKeyboardFocus(bool /*on*/) {}
    // A control's gesture on a parameter (its tag) is an edit the host hears about; the tags of
    // commands and of the preset strip are not parameters and stay here.
    void controlBeginEdit(CControl* control) override;
    void controlEndEdit(CControl* control) override;

    // What the preset strip shows (nothing while the editor is closed).
    // The current preset was renamed or replaced: the name field and the menu entry follow.
    virtual void showPresetName(const char* name);
    virtual void setPresetMenuTitle(int index, const char* name);
    virtual void selectPresetMenuEntry(int index);

    // The preset strip's dialogs, run by the desktop's dialog program; the file is read or
    // written when the user has chosen it. endianReversed inverts the byte order the file's
    // magic implies.
    void loadBankDialog(bool endianReversed);
    void saveBankDialog();
    void loadPresetDialog(bool endianReversed);
    void savePresetDialog();

    // Called once while the plug-in is constructed, after its editor object exists: the stored
    // default bank, then preset 0 selected, then the stored default preset into it, then the
    // remembered paths.
    virtual void restoreStartupDefaults();

    // --- Images ------------------------------------------------------------------------------
    // data / records point behind the recognised part (magic and type for the legacy layouts,
    // the 41-byte header for record images) and size counts the bytes from there to the end of
    // what was read; header is already in the machine's order. True when the image was applied.
    virtual bool loadBankLegacy(const uint8_t* data, size_t size, bool swapped, int presetCount, int floatsPerPreset);
    virtual bool loadBankRecords(const uint8_t* records, size_t size, const presets::image::ImageHeader& header,
                                 bool swapped);
    // The whole bank as an image in out; answers its length (0 when none could be built).
    virtual size_t buildBankBlob(std::vector<uint8_t>& out);
    virtual bool loadPresetLegacy(const uint8_t* data, size_t size, bool swapped, int floatCount);
    virtual bool loadPresetRecords(const uint8_t* records, size_t size, const presets::image::ImageHeader& header,
                                   bool swapped);
    // The current preset as an image in out; answers its length (0 when none could be built).
    virtual size_t buildPresetBlob(std::vector<uint8_t>& out);

    // A whole preset or bank image as files and stored values hold it: the byte order is
    // settled from the magic (and inverted for the endian-reversed loads), the type byte picks
    // the layout. Short data, a foreign magic or an unknown type change nothing.
    bool loadPresetImage(const uint8_t* bytes, size_t size, bool endianReversed = false);
    bool loadBankImage(const uint8_t* bytes, size_t size, bool endianReversed = false);

    // --- Files ("tyx" presets, "tyb" banks), for the dialogs of the preset strip --------------
    // Each remembers the chosen folder and file name first. A save replaces the file in one
    // step and leaves the old file whole when it fails. A bank file that loads ends with
    // preset 0 selected, whatever the image's current preset said.
    virtual bool savePresetFile(const std::string& path);
    virtual bool loadPresetFile(const std::string& path, bool endianReversed = false);
    virtual bool saveBankFile(const std::string& path);
    virtual bool loadBankFile(const std::string& path, bool endianReversed = false);

    // --- Stored defaults and memories ---------------------------------------------------------
    virtual bool storeDefaultBank();
    virtual bool clearDefaultBank();
    virtual bool restoreDefaultBank();
    virtual bool storeDefaultPreset();
    virtual bool clearDefaultPreset();
    virtual bool restoreDefaultPreset();
    // A memory holds a preset image; recalling it replaces the preset being edited (which keeps
    // its place in the bank and takes the memory's name).
    virtual bool storeMemoA();
    virtual bool storeMemoB();
    virtual bool recallMemoA();
    virtual bool recallMemoB();
    virtual bool clearDefaultMidi();
    virtual bool storePaths();
    virtual void restorePaths();

    bool storeKeyboardFocus(bool on);
    // True when the stored option exists and is non-zero.
    bool readKeyboardFocus() const;
    // The user manual's path; empty when none is stored.
    std::string readManualPath() const;

    const presets::RememberedPaths& rememberedPaths() const { return paths; }
    const platform::UserStore& userStore() const { return store; }

protected:
    // The effect as the preset system sees it (null when the editor has none).
    CPresetSystemEffect* presetEffect() const;

    bool storeImage(std::string_view name, bool wholeBank);
    bool recallPresetImage(std::string_view name);

    presets::RememberedPaths paths;
    platform::UserStore store;

private:
    void openStrip();
    void stepPreset(float direction);
    void choosePresetFromMenu();
    void renamePreset();
    void openManual();
    void runFileDialog(int kind);

    // The strip's controls, owned by the frame; null while the editor is closed.
    CTextEdit* presetNameDisplay = nullptr;
    COptionMenu* presetMenu = nullptr;
    CPSKickButton* manualButton = nullptr;
};
