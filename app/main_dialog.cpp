#include "app/main_dialog.h"

#include "app/commands/command_numbers.h"
#include "app/help/help_links.h"
#include "app/help/machine_check.h"
#include "app/hotkeys/hot_key_store.h"
#include "app/options/options_dialog.h"
#include "app/process_arguments.h"
#include "app/reading/speech_file.h"
#include "app/settings_keys.h"
#include "app/text/recent_files.h"
#include "app/window/window_layout.h"
#include "gui/accessible.h"
#include "gui/controls/control_factory.h"

namespace {

// What the control would take; afterwards its size is to be set again.
int NaturalHeight(GtkWidget* control) {
    GtkRequisition size{};
    gtk_widget_set_size_request(control, -1, -1);
    gtk_widget_size_request(control, &size);
    return size.height;
}

int TextWidth(GtkWidget* label) {
    const auto layout = GObjectRef<PangoLayout>::Adopt(
        gtk_widget_create_pango_layout(label, gtk_label_get_text(GTK_LABEL(label))));
    int width = 0;
    pango_layout_get_pixel_size(layout.Get(), &width, nullptr);
    return width;
}

}  // namespace

MainDialog::MainDialog()
    : text_({[this](const char* text) { TellStatusText(text); },
             [this] { Layout(); },
             [this](const auto& paths) { EvFilesDropped(paths); },
             [this] { read_.ShowStart(); },
             {[this](const auto& place) { return read_.GoOnAt(place); },
              [this](const auto& place) { read_.ReadFromPlace(place); }},
             [this](GtkWidget* menu) { places_.AddToTextMenu(menu); }}),
      commands_([this] { return Available(); }, [this](const char* text) { TellStatusText(text); }),
      places_(*this, commands_),
      selection_([this] { EnableControls(); }),
      hotKeys_([this](int storedCommand) { EvHotKey(storedCommand); }),
      presence_(*this, kTextBox,
                {[this] { LMainWindow::CmClose(); }, [this] { Minimise(); },
                 [this] { EvNotifyIconContextMenu(); }}),
      voices_(*this, kVoiceList, [this] { EvVoicesAnswered(); }),
      narrator_(SpeechFilePath()),
      player_(narrator_, [this](unsigned int key) { return EvKeyDown(key); }),
      waitBox_(narrator_, [this] { return player_.BoxParent(); }),
      troubles_(narrator_, {.parent = [this] { return player_.BoxParent(); },
                            .noVoice = [this] { TellNoSpeechEngine(Widget()); },
                            .cannotPlay = RunMachineCheckWithoutCard}),
      playback_(narrator_, commands_,
                {.read = [this] { read_.Read(); },
                 .tell = [this](const char* text) { TellStatusText(text); }}),
      readingStatus_(narrator_,
                     {.show = [this](const char* text) { SetStatusText(text); },
                      .tell = [this](const char* text) { TellStatusText(text); }},
                     kBanner),
      read_({*this, text_, narrator_, voices_, player_, commands_,
             [this] { return saving_ || loading_; },
             [this](const char* text) { TellStatusText(text); }}),
      keeper_({text_, narrator_, read_, [this](const char* text) { TellStatusText(text); },
               [this] { Layout(); }}),
      control_(narrator_, ControlWays()),
      reading_(narrator_.News(), [this](const ReadingNews& news) { EvReading(news); }) {
    AddCommands();
    CheckActiveWindowChange();
}

void MainDialog::Run() {
    LMainWindow::Run("Lectora", gargv, gargc);
}

void MainDialog::CreateControls() {
    const LEditWidgets edit = text_.NewTextBox();
    AddControl(edit.textView, kTextBox, edit.scrolledWindow);
    text_.Highlight().Follow(narrator_);
    SetTooltip(kTextBox, "Enter your text here or click on the Update Text button");

    GtkWidget* label = gtk_label_new("Choose Voice: ");
    gtk_widget_set_size_request(label, 40, 20);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    AddControl(label, kVoiceLabel);
    GtkWidget* voices = NewComboBox();
    AddControl(voices, kVoiceList);
    LabelWidget(label, voices);

    AddControl(gtk_toggle_button_new(), kReadButton);
    OfferButton(kReadButton);
    SetCoolButtonUp(kReadButton);
    AddControl(gtk_toggle_button_new(), kSaveButton);
    OfferButton(kSaveButton);
    AddControl(places_.NewCommandBar(), kCommandBar);
    AddControl(text_.NewFindBar(commands_), kFindBar);
    AddControl(keeper_.Offer().Create(), kPlaceOffer);
    text_.TakeDrops(Widget());
    static constexpr int kFocusOrder[] = {kCommandBar, kTextBox,    kPlaceOffer, kFindBar,
                                          kVoiceList,  kReadButton, kSaveButton};
    SetFocusOrder(kFocusOrder);
}

void MainDialog::OfferButton(int number) {
    const CommandFacts& facts = commands_.Facts(number);
    CoolButtonInit(number, facts.icon, facts.name);
    SetTooltip(number, commands_.Tip(number).c_str());
    commands_.AddProxy(number, GetControlByID(number), LAction::WhenOff::kGrey);
}

void MainDialog::InitDialog() {
    CreateControls();
    SetStatusText(kBanner);
    places_.CreateMenus();
    commands_.Check(kShowCommandBar, ShowsCommandBar());
    AddStandardMenuItems(true);
    LHelpLinks::SetUp(*this);
    ListRecentFiles();
    SetKeyMap(commands_.Keys());
    hotKeys_.Init();
    hotKeys_.Start();
    voices_.Ask();
    HandlePDLSelChange(kVoiceList);
    HandleEditTextChange(kTextBox, kTextChanged);
    EnableControls();
    FocusControl(kTextBox);
}

void MainDialog::EvShown() {
    presence_.Begin();
    control_.OfferSoon();
    ShowTitle();
    if (narrator_.QueueLength() == 0) {
        keeper_.TextCame();
        firstMoments_.Begin(*this,
                            [this] { hotKeyOffer_.AskSoon(*this, [this] { hotKeys_.Start(); }); });
        return;
    }
    // No question is in the way of a reading that is about to begin.
    firstMoments_.Begin(*this, nullptr);
    firstKeyboard_.Start(Widget(), [this] { narrator_.ContinueQueueSoon(); });
}

void MainDialog::DestroyDialog() {
    text_.KeepNow();
    selection_.DropFetch();
    firstMoments_.End();
    presence_.End();
    hotKeys_.Stop();
    narrator_.ForgetQueue();
    narrator_.Forget();
    player_.Close();
    voices_.Store();
}

void MainDialog::EvVoicesAnswered() {
    // Whoever waits for the voices right now tells of it.
    if (narrator_.State() == ReadingState::kWaitingForVoice)
        narrator_.SetVoice(voices_.Chosen());
    else if (!voices_.IsKnown() && !saving_)
        TellNoSpeechEngine(Widget());
}

int MainDialog::AwaitVoice() {
    // The engine may be slow to wake up, or have been installed since the program was started.
    if (voices_.Chosen() < 0 && voices_.Await(Widget()) == kProcessFailed)
        TellNoSpeechEngine(Widget());
    return voices_.Chosen();
}

void MainDialog::EnableControls() {
    voices_.Update();
    commands_.Refresh();
    control_.Update();
    KeepFocus();
}

void MainDialog::CmClose() {
    firstMoments_.EndSplash();
    presence_.Close();
}

void MainDialog::Minimise() {
    StorePlacement();
    gtk_window_iconify(GTK_WINDOW(Widget()));
}

void MainDialog::CmOptions() {
    hotKeys_.Stop();
    OptDlg(Widget());
    // The window may have been closed meanwhile.
    if (IsOpen())
        hotKeys_.Start();
}

// A dialog of the last command still waits for its answer, perhaps behind other windows.
void MainDialog::PresentWaitingDialog() {
    if (GtkWidget* waiting = gtk_grab_get_current())
        gtk_window_present(GTK_WINDOW(gtk_widget_get_toplevel(waiting)));
}

void MainDialog::EvHotKey(int storedCommand) {
    // By the stored number. What is being read goes on while a dialog is up, and obeys.
    static constexpr int kCommands[kHotKeyCommands] = {kUpdateFromSelection,
                                                       kReadSelectionOrPause,
                                                       kSaveFromSelection,
                                                       kPlayOrPause,
                                                       kStopReading,
                                                       kPreviousSentence,
                                                       kNextSentence,
                                                       kFaster,
                                                       kSlower};
    if ((saving_ || loading_) && storedCommand <= kHotKeySave)
        PresentWaitingDialog();
    else if (storedCommand >= 0 && storedCommand < kHotKeyCommands)
        WMCommand(kCommands[storedCommand]);
}

bool MainDialog::ShowsCommandBar() {
    return kShowCommandBarSetting.Get() != "0";
}

void MainDialog::CmShowCommandBar() {
    kShowCommandBarSetting.Set(ShowsCommandBar() ? "0" : "1");
    commands_.Check(kShowCommandBar, ShowsCommandBar());
    Layout();
}

void MainDialog::LayoutControls(int width, int height) {
    LayoutSizes sizes{.width = width, .height = height, .wantsCommandBar = ShowsCommandBar()};
    sizes.isLow = !HasRoomForToolBar(height);
    ShowToolBar(!sizes.isLow);
    LayoutBase(sizes.left, sizes.top, sizes.width, sizes.height);
    ShowControl(kFindBar, text_.IsFindOpen());  // what is hidden has no size
    ShowControl(kPlaceOffer, keeper_.Offer().IsOpen());
    const int findHeight = text_.IsFindOpen() ? NaturalHeight(GetControlByID(kFindBar)) : 0;
    const int offerHeight =
        keeper_.Offer().IsOpen() ? NaturalHeight(GetControlByID(kPlaceOffer)) : 0;
    sizes.findHeight = findHeight + offerHeight;
    sizes.labelWidth = TextWidth(GetControlByID(kVoiceLabel)) + 4;
    sizes.labelHeight = NaturalHeight(GetControlByID(kVoiceLabel));
    sizes.listHeight = NaturalHeight(GetControlByID(kVoiceList));
    const WindowLayout layout = LayOut(sizes);
    Place(kCommandBar, layout.commandBar);
    Place(kTextBox, layout.text);
    LayoutPlace bar = layout.findBar;
    bar.height = offerHeight;
    bar.isShown = layout.findBar.isShown && keeper_.Offer().IsOpen();
    Place(kPlaceOffer, bar);
    bar.y += offerHeight;
    bar.height = layout.findBar.height - offerHeight;
    bar.isShown = layout.findBar.isShown && text_.IsFindOpen();
    Place(kFindBar, bar);
    Place(kVoiceLabel, layout.voiceLabel);
    Place(kVoiceList, layout.voiceList);
    Place(kReadButton, layout.readButton);
    Place(kSaveButton, layout.saveButton);
    KeepFocus();
}

void MainDialog::Place(int control, const LayoutPlace& place) {
    ShowControl(control, place.isShown);
    if (place.isShown)
        MoveControl(control, place.x, place.y, place.width, place.height);
}

// The keyboard is never lost with a control that was hidden or disabled.
void MainDialog::KeepFocus() {
    if (IsOpen() && gtk_window_get_focus(GTK_WINDOW(Widget())) == nullptr)
        FocusControl(kTextBox);
}

CommandNeeds MainDialog::Available() {
    return text_.Available() | (selection_.HasText() ? kNeedsSelection : 0) |
           playback_.Available(!text_.IsEmpty());
}

void MainDialog::Command(int command) {
    firstMoments_.EndSplash();
    commands_.Run(command);
}

void MainDialog::EvActiveWindowChanged(const char* program) {
    places_.NameActiveWindow(program);
}

// X does not tell a program which window was in front before its own; where a desktop does, this is
// the place to ask it and to pass the name on to EvActiveWindowChanged.
void MainDialog::CheckActiveWindowChange() {}

void MainDialog::EvTextChanged() {
    // What the user writes is not replaced by a file that still waits.
    if (!settingWaitingFile_)
        narrator_.ForgetQueue();
    selection_.DropFetch();
    keeper_.TextChanged();
    EnableControls();
}

// What is read, else the document in the window.
void MainDialog::ShowTitle() {
    const std::string name = narrator_.IsReading() ? narrator_.Now().title : text_.Title();
    gtk_window_set_title(GTK_WINDOW(Widget()),
                         name.empty() ? "Lectora" : (name + " - Lectora").c_str());
}

bool MainDialog::EvKeyDown(unsigned int key) {
    firstMoments_.EndSplash();
    if (text_.EvKeyDown(key))
        return true;
    return !commands_.LeavesKey(key) && LMainWindow::EvKeyDown(key);
}
