// The application's one main window: text, voice, and the commands that read or save speech.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "app/commands/command_places.h"
#include "app/hotkeys/hot_key_offer.h"
#include "app/hotkeys/hot_keys.h"
#include "app/read_aloud.h"
#include "app/selection_watch.h"
#include "app/text/text_pane.h"
#include "app/voice_choice.h"
#include "app/window/first_moments.h"
#include "app/window/keyboard_wait.h"
#include "app/window/presence.h"
#include "desktop/desktop_shortcut.h"
#include "gui/gui_timer.h"
#include "gui/main_window.h"

struct LayoutPlace;

// Lives for the whole run. GUI thread.
class MainDialog final : public LMainWindow, private ReadAloudListener {
public:
    MainDialog();
    ~MainDialog() override;

    // Builds and shows the window, processes this process's own arguments, and runs the main loop
    // until the user ends it.
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
    // From what is selected in any program, else from the clipboard; nothing when neither holds
    // text.
    void CmCopyFromClipboard();
    void CmOpenFile();
    void CmOptions();
    void CmShowCommandBar();  // or hides it

    // Names the program that was in front before this window, in the labels that speak of it.
    void EvActiveWindowChanged(const char* program);
    void EvNotifyIconContextMenu() { places_.PopupTrayMenu(); }

private:
    void CheckActiveWindowChange();
    void EvReadingStarted() override;
    void EvReadingTime(LSoundTime position, LSoundTime length) override;
    void EvReadingStretch(std::size_t begin, std::size_t end) override;
    void EvReadingRoute(const std::string& text) override { TellStatusText(text.c_str()); }
    void EvReadingWaits() override;
    void EvReadingEnded(const std::string& note, bool inTrouble) override;
    bool HasNextReading() const override { return !waitingFiles_.empty(); }
    void EvNextReading() override;
    void EvReadingStopped() override { waitingFiles_.clear(); }
    bool EvReadingKey(unsigned int key) override { return EvKeyDown(key); }

    void EvHotKey(int storedCommand);
    static std::string SelectedText();

    // In the status bar while there is nothing else to tell.
    static constexpr const char* kBanner = "Lectora v 1.05";

    using SpeakFunction = void (MainDialog::*)(const std::string& text, int voice);

    // Runs speak on text of the text box and the chosen voice, unless there is none or such a run
    // is under way (its progress dialog pumps events, and a second start may hand a file over
    // meanwhile).
    void Speak(SpeakFunction speak, TextPane::Extent extent);
    void ReadText(const std::string& text, int voice);
    void SaveText(const std::string& text, int voice);
    void ReadWaitingFiles();      // the next one, when nothing is being read
    void ReadWaitingFilesSoon();  // from the main loop
    static int ReadNextFile(void* self);
    void StopReading();  // and forgets the files that wait

    // False: unreadable, which is told, or cancelled; the text stays.
    enum class FileFrom { kUser, kArguments };
    bool LoadFile(const char* path, FileFrom from);

    void AddCommands();
    CommandNeeds Available();
    void CreateControls();
    void OfferButton(int number);
    void Place(int control, const LayoutPlace& place);
    void CmReadOrStop();
    void CmReadFromFile();
    void CmReadFromSelection();
    void CmReadSelectionOrStop();
    void CmSaveFromFile();
    void CmSaveFromSelection();
    void EvVoiceChosen() { voices_.NoteChange(); }
    void OpenRecentFile(std::size_t number);
    void ListRecentFilesSoon();
    void EvFilesDropped(const std::vector<std::string>& paths);
    static bool ShowsCommandBar();
    void KeepFocus();
    void Minimise();
    bool IsEntrysKey(LKeyCode key) const;
    int AwaitVoice();  // below 0: none, and the user has been told or wants none
    void EvVoicesAnswered();
    void EvTextChanged();
    void ShowNoSpeechEngine();

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
    ReadAloud reading_;
    bool speaking_ = false;
    bool hadKeyboard_ = false;  // when the speaking began
    bool loading_ = false;      // its dialog handles events
    bool settingWaitingFile_ = false;
    bool waitIsTold_ = false;  // of this reading; every further one would be talked over
    KeyboardWait firstKeyboard_;
    unsigned int nextFile_ = 0;  // idle source that goes on with the waiting files; 0 when none
    std::deque<std::string>
        waitingFiles_;  // from the command line or another start, to be read in order
};
