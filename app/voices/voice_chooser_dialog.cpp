#include "app/voices/voice_chooser_dialog.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "speech/chosen_voice.h"
#include "speech/sample_sentence.h"

namespace {

constexpr LRows kVoicesHeight{12};
constexpr int kChooserWidth = 640;

}  // namespace

VoiceChooserDlg::VoiceChooserDlg(int voice) : voices_(VoicesToChooseFrom()), voice_(voice) {
    SetHelpPage("voices");
}

void VoiceChooserDlg::Generate(LDialogGenContext& context) {
    context.SetWidth(kChooserWidth);
    context.AddInput(kSearch, "&Search:");
    context.AddList(kVoices, kVoicesHeight, "Voices");
    context.AddStatic(kCount, "");
    context.AddPullDownList(kVariant, "Va&riant:");
    context.AddInputUpDown(kPitch, "&Pitch in percent:");
    context.AddInputUpDown(kVolume, "Vo&lume in percent:");
    context.AddSpecialOkCancelHelp(kHear, "Hear &It", kOkCancelHelp);
}

bool VoiceChooserDlg::Run(GtkWidget* parent) {
    if (!Open(parent, {"Choose a Voice", false, Generate}, true))
        return false;
    for (const auto& [index, manner] : changed_) {
        const Voice voice = VoiceAt(index);
        if (manner == MannerOf(voice))  // changed and changed back
            continue;
        KeepManner(voice, manner);
        hasKeptManners_ = true;
    }
    return true;
}

void VoiceChooserDlg::InitDialog() {
    static constexpr LListColumn kColumns[] = {{"Language", 0}, {"Voice", 0}, {"Engine", 0}};
    LVInit(kVoices, {LListColumns::kDynamic, kColumns});
    SetTooltip(kSearch, "A language, a name or an engine; the arrow keys choose in the list");
    HandleTextChange(kSearch);
    HandleLVSelChange(kVoices);
    HandleLVDoubleClick(kVoices, kChosenByPress);
    g_signal_connect(GetControlByID(kSearch), "key-press-event", G_CALLBACK(GCKeyInSearch), this);
    UDInit(kPitch, VoiceManner::kLeastPitch, VoiceManner::kMostPitch, VoiceManner().pitch);
    UDInit(kVolume, VoiceManner::kLeastVolume, VoiceManner().volume, VoiceManner().volume);
    SetTooltip(kVariant, "Another speaker that the engine makes of this voice");
    SetTooltip(kPitch, "Of the voice's own; more is higher. Kept with the voice, as its speed is");
    SetTooltip(kVolume, "Of the voice's own, to make loud voices as soft as others");
    FillList();
    ShowManner();
    FocusControl(kSearch);
}

// The list is walked through while the keyboard stays in the entry.
gboolean VoiceChooserDlg::GCKeyInSearch(GtkWidget*, GdkEventKey* event, gpointer self) {
    auto* const dialog = static_cast<VoiceChooserDlg*>(self);
    const int step = event->keyval == GDK_Down ? 1 : event->keyval == GDK_Up ? -1 : 0;
    if (step == 0)
        return FALSE;
    dialog->MoveSelection(step);
    return TRUE;
}

void VoiceChooserDlg::MoveSelection(int step) {
    const int last = static_cast<int>(shown_.size()) - 1;
    const int row = std::clamp(LVGetFirstSel(kVoices) + step, 0, std::max(last, 0));
    LVSetCurSel(kVoices, row);
    NoteSelection();
    if (last >= 0) {
        const Voice& voice = voices_[shown_[static_cast<std::size_t>(row)]].voice;
        TellScreenReader(GetControlByID(kSearch), voice.title.c_str());
    }
}

// The voice that was selected stays so where it is still shown, else the first one is.
void VoiceChooserDlg::FillList() {
    const std::string typed = GetText(kSearch);
    const int wanted = voice_;
    shown_.clear();
    LVClear(kVoices);
    int selected = 0;
    for (std::size_t i = 0; i < voices_.size(); ++i) {
        ListedVoice& listed = voices_[i];
        if (!IsFoundBy(listed, typed))
            continue;
        const int row = LVAddRow(kVoices, {listed.voice.languageTitle.c_str(),
                                           listed.voice.shortTitle.c_str(), listed.engine.c_str()});
        if (listed.index == wanted)
            selected = row;
        shown_.push_back(i);
    }
    LVSetCurSel(kVoices, selected);
    const std::string all = std::to_string(voices_.size());
    const std::string count = shown_.size() == voices_.size()
                                  ? all + " voices are installed."
                                  : std::to_string(shown_.size()) + " of " + all + " voices.";
    SetStaticText(kCount, count.c_str());
}

void VoiceChooserDlg::NoteSelection() {
    const int row = LVGetFirstSel(kVoices);
    if (row < 0 || static_cast<std::size_t>(row) >= shown_.size())
        return;
    const int voice = voices_[shown_[static_cast<std::size_t>(row)]].index;
    if (voice == voice_)
        return;
    TakeManner();
    voice_ = voice;
    hasPicked_ = true;
    ShowManner();
}

VoiceManner VoiceChooserDlg::ShownMannerOf(int voice) const {
    const auto changed = changed_.find(voice);
    return changed == changed_.end() ? MannerOf(VoiceAt(voice)) : changed->second;
}

void VoiceChooserDlg::ShowManner() {
    const Voice voice = VoiceAt(voice_);
    const VoiceManner manner = ShownMannerOf(voice_);
    variants_ = VariantsOf(voice.engine);
    PDLClear(kVariant);
    PDLAddString(kVariant, variants_.empty() ? "The engine has none" : "The voice's own");
    for (const VoiceVariant& variant : variants_)
        PDLAddString(kVariant, variant.title.c_str());
    const auto chosen = std::ranges::find(variants_, manner.variant, &VoiceVariant::name);
    PDLSetCurSel(kVariant,
                 chosen == variants_.end() ? 0 : static_cast<int>(chosen - variants_.begin()) + 1);
    EnableControl(kVariant, !variants_.empty());
    UDSetInt(kPitch, manner.pitch);
    UDSetInt(kVolume, manner.volume);
}

void VoiceChooserDlg::TakeManner() {
    const VoiceManner before = ShownMannerOf(voice_);
    VoiceManner manner{UDGetInt(kPitch), UDGetInt(kVolume), before.variant};
    const int variant = PDLGetCurSel(kVariant);
    if (!variants_.empty() && variant >= 0)
        manner.variant = variant == 0 ? "" : variants_[static_cast<std::size_t>(variant) - 1].name;
    if (manner != before)
        changed_[voice_] = manner;
}

bool VoiceChooserDlg::CmOk() {
    NoteSelection();
    TakeManner();
    return LVGetFirstSel(kVoices) >= 0;
}

void VoiceChooserDlg::EnableControls() {
    const bool hasSelection = LVGetFirstSel(kVoices) >= 0;
    EnableControl(kHear, hasSelection);
    EnableControl(kCommandOk, hasSelection);
}

void VoiceChooserDlg::Command(int command) {
    if (command == kSearch)
        FillList();
    else if (command == kVoices)
        NoteSelection();
    else if (command == kHear)
        Hear();
    else if (command == kChosenByPress) {
        hasPicked_ = true;
        DoOKButton();
    }
}

void VoiceChooserDlg::Hear() {
    NoteSelection();
    TakeManner();
    std::vector<VoiceManner> manners = MannersOfVoices();
    for (const auto& [index, manner] : changed_)
        if (static_cast<std::size_t>(index) < manners.size())
            manners[static_cast<std::size_t>(index)] = manner;
    sample_.Hear(Widget(), SampleSentence(VoiceAt(voice_).language), voice_, std::move(manners));
}

VoiceChosen ChooseVoice(GtkWidget* parent) {
    VoiceChooserDlg dialog(std::max(0, ChosenVoice()));
    if (!dialog.Run(parent))
        return {};
    // One that is missing now stays kept until another is picked.
    if (dialog.HasPicked() || !IsChosenVoiceMissing())
        KeepChosenVoice(dialog.Chosen());
    return {.isTaken = true, .hasOtherManners = dialog.HasKeptManners()};
}
