#include "app/main_dialog.h"

#include <strings.h>

#include <string>
#include <vector>

#include "app/commands/command_numbers.h"
#include "app/help/help_links.h"
#include "app/help/machine_check.h"
#include "app/process_arguments.h"
#include "app/reading/speech_file.h"
#include "desktop/desktop_shortcut.h"

namespace {

// What is to be read of a start's arguments: what stands behind the verb that reads a file, else
// each that is no option.
std::vector<std::string> FilesOf(const char* const* arguments, int count, const VerbFacts* verb) {
    if (verb != nullptr)
        return {count > 2 ? arguments[2] : ""};
    std::vector<std::string> files;
    for (int index = 1; index < count; ++index) {
        const char* argument = arguments[index];
        if (strcasecmp(argument, "-logon") != 0 && strcasecmp(argument, "-block") != 0)
            files.emplace_back(argument);
    }
    return files;
}

std::string Joined(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : "; ") + second;
}

}  // namespace

MainDialog::MainDialog()
    : text_({.tell = [this](const char* text) { TellStatusText(text); },
             .reshaped = [this] { Layout(); },
             .dropped = [this](const auto& files) { requests_.TakeDropped(files); },
             .changed =
                 [this] {
                     sources_.EvTextChanged();
                     keeper_.TextChanged();
                 },
             .renamed =
                 [this] {
                     presence_.ShowTitle();
                     sources_.TellIfPart();
                     EnableControls();
                 },
             .startMoved = [this] { read_.ShowStart(); },
             .clicks = {.doubleClicked = [this](const auto& place) { return read_.GoOnAt(place); },
                        .readFrom = [this](const auto& place) { read_.ReadFromPlace(place); },
                        .addToMenu = [this](GtkWidget* menu) { places_.AddToTextMenu(menu); }}}),
      commands_([this] { return Available(); }, [this](const char* text) { TellStatusText(text); }),
      places_(*this, commands_),
      narrator_(SpeechFilePath()),
      turn_([this] { narrator_.ContinueQueueSoon(); }),
      voices_(*this, kVoiceList, narrator_, [this] { TellNoSpeechEngine(Widget()); }),
      voiceCommands_(*this, voices_, narrator_, commands_,
                     [this](const char* text) { TellStatusText(text); }),
      view_(*this, narrator_,
            {.keys = [this](unsigned int key) { return EvKeyDown(key); },
             .reshaped = [this] { Layout(); },
             .noVoice = [this] { TellNoSpeechEngine(Widget()); },
             .cannotPlay = RunMachineCheckWithoutCard,
             .statusMore = [this] { return Joined(queue_.Status(), playback_.Status()); }}),
      playback_(narrator_, commands_,
                {.read = [this] { read_.CmRead(); },
                 .tell = [this](const char* text) { TellStatusText(text); },
                 .changed = [this] { EnableControls(); }}),
      read_({*this, text_, narrator_, voices_, view_.Player(), commands_, turn_,
             [this] { return sources_.IsComing(); }}),
      keeper_({text_, narrator_, read_, [this](const char* text) { TellStatusText(text); },
               [this] { Layout(); }}),
      queue_(
          narrator_, commands_,
          {.parent = [this] { return Widget(); },
           .withProgress = [this](const std::string& path) { return keeper_.WithProgress(path); },
           .tell = [this](const char* text) { TellStatusText(text); },
           .changed = [this] { EnableControls(); }}),
      bookmarks_({text_, narrator_, commands_, [this] { return Widget(); },
                  [this](const auto& place) { return read_.GoOnAt(place); },
                  [this](const char* text) { TellStatusText(text); }}),
      contents_({.text = text_,
                 .narrator = narrator_,
                 .commands = commands_,
                 .goOnAt = [this](const auto& place) { return read_.GoOnAt(place); },
                 .readFrom = [this](const auto& place) { read_.ReadFromPlace(place); },
                 .isWhole = [this] { return read_.IsWhole(); },
                 .tell = [this](const char* text) { TellStatusText(text); },
                 .reshaped = [this] { Layout(); }}),
      sources_(*this, turn_, text_, narrator_, places_,
               {.changed = [this] { EnableControls(); },
                .filed = [this] { presence_.ShowTitle(); },
                .opened = [this] { keeper_.TextCame(); },
                .unreadable =
                    [this](const std::string& note) {
                        presence_.TellAnywhere("Cannot read the file.", note);
                    },
                .readable = [this] { view_.ShowStatus(); },
                .labelOf = [this](const auto& path) { return keeper_.WithProgress(path); },
                .grown =
                    [this](const auto& more, bool isAll) {
                        narrator_.Grow(more, isAll);
                        keeper_.TextGrew();
                    }}),
      presence_(*this, kTextBox, narrator_,
                {.popupMenu = [this] { places_.EvNotifyIconContextMenu(); },
                 .document = [this] { return text_.Title(); }}),
      requests_({*this, turn_, commands_, text_, sources_, narrator_, read_, keeper_,
                 [this](const char* summary, const std::string& note) {
                     presence_.TellAnywhere(summary, note);
                 }}),
      save_({*this, turn_, text_, sources_, voices_}),
      audiobooks_({*this, turn_, text_, voices_, [this] { return sources_.AwaitAll(); }}),
      hotKeys_(*this, turn_),
      tools_(*this, text_, hotKeys_, voiceCommands_),
      controls_(*this, commands_, places_),
      control_(narrator_, requests_.Ways()) {
    text_.AddCommands(commands_);
    places_.AddCommands();
    voiceCommands_.AddCommands();
    playback_.AddCommands();
    read_.AddCommands();
    queue_.AddCommands();
    bookmarks_.AddCommands();
    contents_.AddCommands();
    sources_.AddCommands(commands_);
    presence_.AddCommands(commands_);
    requests_.AddCommands();
    save_.AddCommands(commands_);
    audiobooks_.AddCommands(commands_);
    tools_.AddCommands(commands_);
    controls_.AddCommands();
}

void MainDialog::Run() {
    LMainWindow::Run("Lectora", gargv, gargc);
}

void MainDialog::OnFirstRun() {
    CreateDesktopShortcut();
}

void MainDialog::InitDialog() {
    const LEditWidgets text = text_.NewTextBox();
    text_.Highlight().Follow(narrator_);
    GtkWidget* contents = contents_.Create();
    controls_.Create(
        text,
        {.control = kContents,
         .widget = contents_.Tree(),
         .isOpen = [this] { return contents_.IsWanted(); },
         .frame = contents},
        {{.control = kPlaceOffer,
          .widget = keeper_.Offer().Create(),
          .isOpen = [this] { return keeper_.Offer().IsOpen(); }},
         {.control = kFindBar,
          .widget = text_.NewFindBar(commands_),
          .isOpen = [this] { return text_.IsFindOpen(); }},
         {.control = kPlayerDock,
          .widget = view_.Player().CreateDock(),
          .isOpen = [this] { return view_.Player().IsDocked(); },
          .fit = [this](int width, bool isLow) { view_.Player().FitInto(width, isLow); }}});
    text_.TakeDrops(Widget());
    view_.ShowStatus();
    places_.CreateMenus();
    voiceCommands_.CreateIndicator();
    AddStandardMenuItems(true);
    LHelpLinks::SetUp(*this);
    sources_.ShowRecent();
    SetKeyMap(commands_.Keys());
    hotKeys_.Begin();
    voices_.Ask();
    EnableControls();
    FocusControl(kTextBox);
}

void MainDialog::EvRunArguments(const char* const* arguments, int count) {
    if (count < 2)
        CmOpen();
    EnableControls();
    const VerbFacts* verb = count > 1 ? FindVerb(arguments[1]) : nullptr;
    if (verb != nullptr && verb->verb != Verb::kReadFile) {
        control_.DoOnceReady(verb->verb, count > 2 ? arguments[2] : "");
        return;
    }
    const std::vector<std::string> files = FilesOf(arguments, count, verb);
    if (!files.empty())
        requests_.ReadFiles(files);
}

void MainDialog::EvShown() {
    control_.OfferSoon();
    if (narrator_.Waiting().IsEmpty()) {
        keeper_.TextCame();
        sources_.TellIfPart();
        presence_.Begin([this] { hotKeys_.OfferSoon(); });
    } else {
        // No question is in the way of a reading that is about to begin.
        presence_.Begin(nullptr);
        requests_.BeginWithKeyboard();
    }
    queue_.Kept().Begin([this](const auto& path) { return requests_.ReadWaitingFile(path); });
}

void MainDialog::DestroyDialog() {
    text_.KeepNow();
    sources_.DropFetch();
    presence_.End();
    hotKeys_.Stop();
    queue_.Kept().End();
    narrator_.Waiting().Clear();
    narrator_.Forget();
    view_.Player().Close();
    voices_.Store();
}

CommandNeeds MainDialog::Available() const {
    return text_.Available() | contents_.Available() | sources_.Available() |
           playback_.Available(!text_.IsEmpty()) | queue_.Available();
}

void MainDialog::EnableControls() {
    if (!IsOpen())
        return;
    voices_.Update();
    commands_.Refresh();
    control_.Update();
    controls_.KeepFocus();
}

void MainDialog::Command(int command) {
    presence_.EndSplash();
    commands_.Run(command);
}

bool MainDialog::EvKeyDown(unsigned int key) {
    presence_.EndSplash();
    if (text_.EvKeyDown(key) || contents_.EvKeyDown(key) || view_.Player().EvKeyDown(key))
        return true;
    return !commands_.LeavesKey(key) && LMainWindow::EvKeyDown(key);
}
