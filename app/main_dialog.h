// The application's one main window: text, voice, and the commands that read or save speech.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/commands/command_places.h"
#include "app/control/remote_control.h"
#include "app/hotkeys/hot_key_offer.h"
#include "app/hotkeys/hot_keys.h"
#include "app/place_keeper.h"
#include "app/read_aloud.h"
#include "app/reading/dialogs/reading_status.h"
#include "app/reading/dialogs/reading_troubles.h"
#include "app/reading/dialogs/reading_wait_box.h"
#include "app/text/selection_watch.h"
#include "app/window/first_moments.h"
#include "app/window/keyboard_wait.h"
#include "app/window/playback_commands.h"
#include "app/window/presence.h"
#include "desktop/desktop_shortcut.h"
#include "gui/gui_timer.h"
#include "gui/main_window/main_window.h"

struct LayoutPlace;

// Lives for the whole run. GUI thread.
class MainDialog final : public LMainWindow {
public:
    MainDialog();

    // Builds and shows the window, runs this process's own arguments, and the main loop to its end.
    void Run();

    // arguments[0] is the program; every other argument but "-logon" and "-block" is a text file to
    // load and read. A file that cannot be loaded is skipped.
    void EvRunArguments(const char* const* arguments, int count) override;

    void OnFirstRun() override { CreateDesktopShortcut(); }
    void InitDialog() override;
    void DestroyDialog() override;
    void LayoutControls(int width, int height) override;
    void EnableControls() override;
    void EvShown() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    void CmClose() override;
    bool CmCancel() override { return presence_.AskToEnd(); }

    void CmRead();
    void CmSave();
    // What was selected or copied last in any program; nothing when there is no text.
    void CmCopyFromClipboard();
    void CmOpenFile();
    void CmOptions();
    void CmShowCommandBar();  // or hides it

    // What a second start asks for, or this one.
    RemoteControl& Control() { return control_; }

    // Names the program that was in front before this window, in the labels that speak of it.
    void EvActiveWindowChanged(const char* program);
    void EvNotifyIconContextMenu() { places_.PopupTrayMenu(); }

private:
    void CheckActiveWindowChange();
    void EvReading(const ReadingNews& news);
    void EvHotKey(int storedCommand);
    static void PresentWaitingDialog();

    // In the status bar while there is nothing else to tell.
    static constexpr const char* kBanner = "Lectora v 1.05";

    void SaveText(const std::string& text, int voice);
    QueuedText::Begun ReadWaitingFile(const std::string& path);

    // False: unreadable, which is told, or cancelled; the text stays.
    enum class FileFrom { kUser, kArguments };
    bool LoadFile(const std::string& path, FileFrom from, bool isWholePage = false);
    bool OpenFile();  // likewise, after a chooser
    void TellUnreadable(const std::string& path, const std::string& problem, FileFrom from);
    // Then runs from the main loop, once the text is there or there is none, unless the text was
    // changed meanwhile. One at a time.
    void FetchText(std::function<void(const std::string& text)> then,
                   SelectionWatch::From from = SelectionWatch::From::kNewest);
    void UpdateThen(void (MainDialog::*command)());

    struct Rows;  // of its commands
    void AddCommands();
    CommandNeeds Available();
    void CreateControls();
    void OfferButton(int number);
    void Place(int control, const LayoutPlace& place);
    void CmReadFromFile();
    void CmReadFromSelection();
    void CmReadSelectionOrPause();
    void CmSaveFromFile();
    void CmSaveFromSelection();
    void CmSaveTextAs();
    void CmWholePage();
    void CmSayDifferently();
    void CmCheckComputer();
    void CmMoreVoices();
    void EvVoiceChosen() { voices_.NoteChange(); }
    void OpenRecentFile(std::size_t number);
    void ListRecentFiles();
    void ListRecentFilesSoon();
    void ShowTitle();
    void ReadFiles(const std::vector<std::string>& files);
    struct Outside;  // what is done for who asks from there
    ControlledWindow ControlWays();
    void DoAtStart(const VerbFacts& verb, const std::string& operand);
    void TellOutside(const char* summary, const std::string& note);
    void EvFilesDropped(const std::vector<std::string>& paths);
    static bool ShowsCommandBar();
    void KeepFocus();
    void Minimise();
    int AwaitVoice();  // below 0: none, and the user has been told or wants none
    void EvVoicesAnswered();
    void EvTextChanged();

    TextPane text_;
    CommandSet commands_;
    CommandPlaces places_;
    SelectionWatch selection_;
    LGuiTimer recentTimer_;
    LGuiTimer dropTimer_;
    HotKeys hotKeys_;
    HotKeyOffer hotKeyOffer_;
    Presence presence_;
    FirstMoments firstMoments_;
    VoiceChoice voices_;
    Narrator narrator_;
    ReadingPlayer player_;
    ReadingWaitBox waitBox_;
    ReadingTroubles troubles_;
    PlaybackCommands playback_;
    ReadingStatus readingStatus_;
    ReadAloud read_;
    PlaceKeeper keeper_;
    RemoteControl control_;
    Narrator::Subscription reading_;
    bool saving_ = false;   // its dialogs handle events
    bool loading_ = false;  // likewise
    bool settingWaitingFile_ = false;
    bool unreadableIsTold_ = false;  // in the status bar
    KeyboardWait firstKeyboard_;
};
