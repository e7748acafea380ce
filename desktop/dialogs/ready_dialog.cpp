#include "desktop/dialogs/ready_dialog.h"

#include <string_view>

#include "desktop/dialogs/wizard.h"
#include "desktop/packages.h"
#include "desktop/root_prompt.h"
#include "desktop/watched_command.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"
#include "gui/windows/progress_dialog.h"

namespace {

constexpr const char* kReadyTitle = "Check This Computer";
constexpr int kState = 101;  // a list's scrolled window is the next number
constexpr int kAdvice = 103;
constexpr int kInstall = 104;
constexpr int kAgain = 105;
constexpr int kTest = 106;
constexpr int kVoices = 107;
constexpr int kInstallVoices = 109;

constexpr const char* kNoCardAdvice =
    "No sound card can be used. Is it plugged in and switched on? Newer laptops need the package "
    "firmware-sof-signed. Where other programs can be heard, you may lack the right to use the "
    "card: sudo adduser $USER audio, then log in again.";

void DlgGenReady(LDialogGenContext& context) {
    context.SetWidth(620);
    context.AddList(kState, LRows{5});
    AddPageText(context, kAdvice, "");
    context.StartHBox();
    context.AddButton(kInstall, "&Install What Is Missing");
    context.AddButton(kAgain, "Check &Again");
    context.AddButton(kTest, "&Read a Test Sentence");
    context.EndHBox();
    context.AddGroup(-1, "More voices");
    context.AddList(kVoices, LRows{4});
    context.AddButton(kInstallVoices, "Install Chosen &Voices");
    context.GroupEnd();
    context.AddOkCancelHelp(kOkButton, "&Close");
}

// The command under a progress dialog.
LProcessResult RunUnderDialog(GtkWidget* parent, LWatchedCommand& command) {
    LProcessDialog<LWatchedCommand> dialog("Installing", command);
    dialog.Open(parent);
    return dialog.Result();
}

}  // namespace

void LReadyDialog::Run(GtkWidget* parent) {
    Open(parent, {kReadyTitle, false, DlgGenReady}, true);
}

void LReadyDialog::InitDialog() {
    static constexpr LListColumn kStateColumns[] = {{"What is needed", 32}, {"State", 60}};
    LVInit(kState, {LListColumns::kPercent, kStateColumns});
    SetAccessibleName(GetControlByID(kState), "What is needed");
    for (const char* what : {"Speech engine", "Voices", "Sound card"})
        LVAddString(kState, what);
    for (const LHelperProgram& helper : machine_.Helpers())
        LVAddString(kState, helper.what);
    LVSetCurSel(kState, 0);
    static constexpr LListColumn kVoiceColumns[] = {
        {"Language", 27, LListSort::kText}, {"Speaker", 30}, {"Package", 43}};
    LVSetStyleCheck(kVoices);
    LVInit(kVoices, {LListColumns::kPercent, kVoiceColumns});
    SetAccessibleName(GetControlByID(kVoices), "More voices");
    if (begin_ == Part::kVoices)
        FocusControl(kVoices);
    Look();
}

void LReadyDialog::DestroyDialog() {
    machine_.Look({});
}

void LReadyDialog::Look() {
    machine_.Look([this] { Show(); });
    FillVoices();
    Show();
}

void LReadyDialog::FillVoices() {
    const bool isFirst = LVGetCount(kVoices) == 0;
    for (int index = 0; isFirst && index < static_cast<int>(VoicePackages().size()); ++index) {
        const LVoicePackage& voice = VoicePackages()[static_cast<std::size_t>(index)];
        LVAddRow(kVoices, {voice.language, voice.speaker, voice.package}, index);
    }
    if (isFirst)
        LVSetCurSel(kVoices, 0);
    // In place: the user's ticks and row stay.
    for (int row = 0; row < LVGetCount(kVoices); ++row) {
        const char* const package = PackageAt(row);
        const std::string note = IsPackageInstalled(package) ? " (installed)" : "";
        LVSetColumnString(kVoices, row, 2, (package + note).c_str());
    }
}

// The user may have sorted the rows.
const char* LReadyDialog::PackageAt(int row) const {
    return VoicePackages()[static_cast<std::size_t>(LVGetItemData(kVoices, row))].package;
}

void LReadyDialog::Show() {
    if (!IsOpen())
        return;
    using Engine = LReadiness::Engine;
    const Engine engine = machine_.EngineState();
    const std::vector<std::string> cards = machine_.Cards();
    missing_.clear();
    if (engine == Engine::kMissing)
        missing_.emplace_back(kEnginePackage);
    if (engine == Engine::kMissing || engine == Engine::kWithoutVoice)
        missing_.emplace_back(kFirstVoicePackage);
    for (const LHelperProgram& helper : machine_.Helpers())
        if (!helper.isThere)
            missing_.emplace_back(helper.package);

    const std::string asking = "asking the speech engine";
    const auto lacks = [](const char* package) {
        return std::string("missing: package ") + package;
    };
    // In place: a row that vanished would take the words of a screen reader with it.
    std::vector<std::string> states = {engine == Engine::kAsking    ? asking
                                       : engine == Engine::kMissing ? lacks(kEnginePackage)
                                       : engine == Engine::kSpeaks  ? machine_.Engines()
                                                                    : "found",
                                       engine == Engine::kAsking   ? asking
                                       : engine == Engine::kSpeaks ? machine_.Voices()
                                                                   : lacks(kFirstVoicePackage),
                                       cards.empty() ? "missing" : cards.front()};
    for (const LHelperProgram& helper : machine_.Helpers())
        states.push_back(helper.isThere ? "found" : lacks(helper.package));
    for (int row = 0; const std::string& state : states)
        LVSetColumnString(kState, row++, 1, state.c_str());

    std::string advice;
    if (!missing_.empty())
        advice = "In a terminal, this installs what is missing: " + InstallCommandToType(missing_);
    if (cards.empty())
        advice += (advice.empty() ? "" : "\n\n") + std::string(kNoCardAdvice);
    if (engine == Engine::kAsking)
        advice = "The speech engine is being asked. On a busy computer that takes a while.";
    if (advice.empty())
        advice = "Everything is there. Lectora can read to you.";
    SetStaticText(kAdvice, advice.c_str());
    if (!told_.empty() && told_ != advice)
        TellScreenReader(Widget(), advice.c_str());
    told_ = advice;
    EnableControls();
}

std::vector<std::string> LReadyDialog::ChosenVoices() const {
    std::vector<std::string> packages;
    // The package service fails where everything is installed already.
    for (int row = 0; row < LVGetCount(kVoices); ++row)
        if (LVGetCheck(kVoices, row) && !IsPackageInstalled(PackageAt(row)))
            packages.emplace_back(PackageAt(row));
    return packages;
}

void LReadyDialog::EnableControls() {
    const LReadiness::Engine engine = machine_.EngineState();
    EnableControl(kInstall, engine != LReadiness::Engine::kAsking && !missing_.empty() &&
                                !InstallCommandToRun(missing_).empty());
    EnableControl(kAgain, engine != LReadiness::Engine::kAsking);
    EnableControl(kTest, engine == LReadiness::Engine::kSpeaks && !machine_.Cards().empty());
}

void LReadyDialog::Command(int command) {
    switch (command) {
        case kInstall:
            Install(missing_);
            break;
        case kAgain:
            Look();
            break;
        case kTest:
            machine_.ReadTestSentence(Widget());
            break;
        case kInstallVoices:
            if (ChosenVoices().empty())
                SetControlInvalid(kVoices, "Please tick a voice that is not installed yet.",
                                  kReadyTitle);
            else
                Install(ChosenVoices());
            break;
        default:
            break;
    }
}

void LReadyDialog::Install(const std::vector<std::string>& packages) {
    const std::string byHand = "In a terminal, type: " + InstallCommandToType(packages);
    const std::string command = InstallCommandToRun(packages);
    LWatchedCommand run;
    if (command.empty() || !run.Start(command)) {
        MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, kReadyTitle,
                      "No program is here that could install it for you", byHand.c_str());
        return;
    }
    const LProcessResult result = RunUnderDialog(Widget(), run);
    if (result == kProcessFailed)
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kReadyTitle,
                      "It was not installed", (WhyFailed(run) + "\n\n" + byHand).c_str());
    else if (result == kProcessStopped)
        MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, kReadyTitle,
                      "The installation goes on without this window",
                      "It cannot be halted half-way. Press \"Check Again\" in a while.");
    Look();
}
