// The application's one main window. Its parts, each with commands of its own, meet here.
#pragma once

#include "app/bookmarks/bookmarks.h"
#include "app/books/audiobooks.h"
#include "app/contents/contents_pane.h"
#include "app/control/remote_control.h"
#include "app/listening/read_requests.h"
#include "app/queue/queue_commands.h"
#include "app/reading/dialogs/reading_view.h"
#include "app/saving/save_commands.h"
#include "app/text/text_sources.h"
#include "app/tool_commands.h"
#include "app/voices/voice_commands.h"
#include "app/window/main_controls.h"
#include "app/window/playback_commands.h"
#include "app/window/presence.h"

// Lives for the whole run. GUI thread.
class MainDialog final : public LMainWindow {
public:
    MainDialog();

    // Builds and shows the window, runs this process's own arguments, and the main loop to its end.
    void Run();
    // arguments[0] is the program; every other argument but "-logon" and "-block" is a text file to
    // load and read. A file that cannot be loaded is skipped.
    void EvRunArguments(const char* const* arguments, int count) override;

    void OnFirstRun() override;
    void InitDialog() override;
    void DestroyDialog() override;
    void LayoutControls(int width, int height) override { controls_.LayOut(width, height); }
    void EnableControls() override;
    void EvShown() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    bool EvKeyUp(unsigned int key) override { return view_.Player().EvKeyUp(key); }
    void CmClose() override { presence_.Close(); }
    bool CmCancel() override { return presence_.AskToEnd(); }
    RemoteControl& Control() { return control_; }  // what a second start asks for, or this one

private:
    CommandNeeds Available() const;

    TextPane text_;
    CommandSet commands_;
    CommandPlaces places_;
    Narrator narrator_;
    CommandTurn turn_;
    VoiceChoice voices_;
    VoiceCommands voiceCommands_;
    ReadingView view_;
    PlaybackCommands playback_;
    ReadAloud read_;
    PlaceKeeper keeper_;
    QueueCommands queue_;
    Bookmarks bookmarks_;
    ContentsPane contents_;
    TextSources sources_;
    Presence presence_;
    ReadRequests requests_;
    SaveCommands save_;
    Audiobooks audiobooks_;
    HotKeyCommands hotKeys_;
    ToolCommands tools_;
    MainControls controls_;
    RemoteControl control_;
};
