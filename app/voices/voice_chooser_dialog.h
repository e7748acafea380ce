// "Choose a Voice": all voices that are installed, by language, found by typing; and how each of
// them speaks, which is kept with it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "app/voices/voice_sample.h"
#include "gui/windows/dialog.h"
#include "speech/voice_finder.h"
#include "speech/voice_manner.h"
#include "speech/voice_variants.h"

class VoiceChooserDlg final : public LDialog {
public:
    // voice: index into the voice table of the one that stands selected.
    explicit VoiceChooserDlg(int voice);

    bool Run(GtkWidget* parent);  // modal; true: OK
    int Chosen() const { return voice_; }
    // Whether the user has selected it, or pressed it: one that only stands selected is no choice.
    bool HasPicked() const { return hasPicked_; }
    // Whether OK has given any voice another pitch, volume or variant.
    bool HasKeptManners() const { return hasKeptManners_; }

    void InitDialog() override;
    void EnableControls() override;
    bool CmOk() override;
    void Command(int command) override;

private:
    static constexpr int kSearch = 101;
    static constexpr int kVoices = 103;
    static constexpr int kCount = 105;
    static constexpr int kHear = 106;
    static constexpr int kChosenByPress = 107;
    static constexpr int kVariant = 108;
    static constexpr int kPitch = 110;
    static constexpr int kVolume = 112;

    static void Generate(LDialogGenContext& context);
    static gboolean GCKeyInSearch(GtkWidget* entry, GdkEventKey* event, gpointer self);
    void FillList();
    void MoveSelection(int step);
    void NoteSelection();
    void ShowManner();
    VoiceManner ShownMannerOf(int voice) const;
    void TakeManner();
    void Hear();

    std::vector<ListedVoice> voices_;
    std::vector<std::size_t> shown_;  // of voices_, row by row
    int voice_;
    bool hasPicked_ = false;
    bool hasKeptManners_ = false;
    std::vector<VoiceVariant> variants_;  // of the selected voice's engine, as they are shown
    std::map<int, VoiceManner> changed_;  // of voices, for OK to keep
    VoiceSample sample_;
};

struct VoiceChosen {
    bool isTaken = false;          // else nothing has changed
    bool hasOtherManners = false;  // a voice, chosen or not, is to speak otherwise than before
};

// The user's choice, which is kept.
VoiceChosen ChooseVoice(GtkWidget* parent);
