#include "app/help/machine_check.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "app/reading/dialogs/reading_troubles.h"
#include "app/reading/dialogs/reading_wait_box.h"
#include "app/reading/narrator.h"
#include "app/reading/speech_file.h"
#include "desktop/dialogs/ready_dialog.h"
#include "desktop/packages.h"
#include "foundation/gdk/queued_notify.h"
#include "foundation/processes/browser.h"
#include "foundation/processes/child_process.h"
#include "foundation/settings/hosts.h"
#include "gui/windows/message_box.h"
#include "playback/play_device.h"
#include "playback/sound_server.h"
#include "speech/chosen_voice.h"
#include "speech/sample_sentence.h"
#include "speech/speech_engines.h"
#include "speech/text_language.h"
#include "speech/voice_list_query.h"
#include "speech/voice_table.h"

namespace {

constexpr int kMostCards = 32;  // as many as the kernel numbers

std::vector<std::string> SoundCards() {
    std::vector<std::string> names;
    for (int card = 0; card < kMostCards; ++card) {
        char name[kTextBufferSize];
        LSoundPlayDevice::GetListDeviceName(card, name);
        if (*name != '\0')
            names.emplace_back(name);
    }
    return names;
}

std::string EnginesThatSpeak() {
    const std::vector<Voice> voices = KnownVoices();
    std::string names;
    for (const SpeechEngine& engine : SpeechEngines())
        if (std::ranges::find(voices, engine.name, &Voice::engine) != voices.end())
            names += (names.empty() ? "" : ", ") + engine.title;
    return names;
}

std::string VoicesThatSpeak() {
    std::set<std::string_view> languages;
    const std::vector<Voice> voices = KnownVoices();
    for (const Voice& voice : voices)
        if (!voice.language.empty())
            languages.insert(LanguageOnly(voice.language));
    const std::string text = std::to_string(voices.size()) + " found";
    return languages.empty() ? text
                             : text + ", in " + std::to_string(languages.size()) +
                                   (languages.size() == 1 ? " language" : " languages");
}

class Machine : public LReadiness, private LThreadQueuedNotify {
public:
    Machine()
        : narrator_(SpeechFilePath()),
          waitBox_(narrator_, [this] { return parent_; }),
          troubles_(narrator_, {.parent = [this] { return parent_; }}),
          query_([this] { QueueNotify(); }) {}

    void Look(std::function<void()> changed) override {
        changed_ = std::move(changed);
        narrator_.Forget();
        cards_ = SoundCards();
        // As on a desktop whose sound goes over the air or the network.
        if (cards_.empty() && SoundServerAnswers())
            cards_.emplace_back(LSoundPlayDevice::kServerLabel);
        if (changed_)
            query_.AskAnew();
    }
    Engine EngineState() const override {
        switch (query_.State()) {
            case VoiceListState::kAsking:
                return Engine::kAsking;
            case VoiceListState::kNoEngine:
                return Engine::kMissing;
            case VoiceListState::kNoVoices:
                return Engine::kWithoutVoice;
            default:
                return Engine::kSpeaks;
        }
    }
    std::string Engines() const override { return EnginesThatSpeak(); }
    std::string Voices() const override { return VoicesThatSpeak(); }
    std::vector<std::string> Cards() const override { return cards_; }
    std::vector<LHelperProgram> Helpers() const override {
        return {{"MP3 encoder", kEncoderPackage, IsProgramInstalled("lame")},
                {"Text in pictures", kRecognitionPackage, IsProgramInstalled("tesseract")}};
    }
    void ReadTestSentence(GtkWidget* parent) override {
        parent_ = parent;
        const int voice = std::max(0, ChosenVoice());
        narrator_.Read(SampleSentence(VoiceAt(voice).language), voice, "");
    }

private:
    void EvNotify() override {
        if (changed_)
            changed_();
    }

    std::function<void()> changed_;
    std::vector<std::string> cards_;
    GtkWidget* parent_ = nullptr;  // of what is told of the test sentence
    Narrator narrator_;
    ReadingWaitBox waitBox_;
    ReadingTroubles troubles_;
    VoiceListQuery query_;  // last: its thread ends before what it notifies
};

}  // namespace

void RunMachineCheck(GtkWidget* parent) {
    Machine machine;
    LReadyDialog(machine).Run(parent);
}

void RunMachineCheckForVoices(GtkWidget* parent) {
    Machine machine;
    LReadyDialog(machine, LReadyDialog::Part::kVoices).Run(parent);
}

void TellNoSpeechEngine(GtkWidget* parent) {
    enum { kClose, kCheck, kVoices };
    static constexpr LBoxButton kButtons[] = {
        {"gtk-ok", kClose}, {"_Check This Computer", kCheck}, {"More _Voices", kVoices}};
    const bool hasPage = HasWebSite();
    const int answer = MessageBoxRun(
        parent, GTK_MESSAGE_INFO, kButtons, "No Speech Engine Found", "No Speech Engine Found",
        hasPage ? "No voice is installed on this computer. Please download the speech engine from "
                  "the speech web page, which opens when you close this message, or let \"Check "
                  "This Computer\" install it."
                : "No voice is installed on this computer. \"Check This Computer\" tells which "
                  "packages are missing and can install them.");
    if (answer == kCheck)
        RunMachineCheck(parent);
    else if (answer == kVoices)
        RunMachineCheckForVoices(parent);
    else if (hasPage && answer != GTK_RESPONSE_CANCEL)  // which nobody chose: the program ends
        OpenInBrowser(WebAddress("speech"));
}

void RunMachineCheckWithoutCard(GtkWidget* parent) {
    if (SoundCards().empty())
        RunMachineCheck(parent);
}
