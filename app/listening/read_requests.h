// What is asked to be read that is not in the window yet: files, the selection, the clipboard; by a
// command, by the arguments of a start, by a drop, or from outside the windows.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/commands/command_set.h"
#include "app/commands/command_turn.h"
#include "app/control/controlled_window.h"
#include "app/listening/place_keeper.h"
#include "app/listening/read_aloud.h"
#include "app/text/text_sources.h"
#include "app/window/keyboard_wait.h"

// GUI thread; all parts outlive this object.
class ReadRequests {
public:
    struct Parts {
        LMainWindow& window;
        CommandTurn& turn;
        CommandSet& commands;
        TextPane& text;
        TextSources& sources;
        Narrator& narrator;
        ReadAloud& read;
        PlaceKeeper& keeper;
        // To a user who may not see the window.
        std::function<void(const char* summary, const std::string& note)> tellAnywhere;
    };
    explicit ReadRequests(Parts parts);
    ReadRequests(const ReadRequests&) = delete;
    ReadRequests& operator=(const ReadRequests&) = delete;

    void AddCommands();

    // What was asked for last is heard at once, unless a progress dialog is up: then it waits for
    // that to end. Several files are read one after the other.
    void ReadFiles(const std::vector<std::string>& files);
    // From the main loop: loading may run a dialog, and the other program waits for the drop to
    // end. One file is there to be looked at.
    void TakeDropped(const std::vector<std::string>& files);
    // The turn of a file that waited.
    QueuedText::Begun ReadWaitingFile(const std::string& path);
    // The window, shown for the first time: what waits begins once it has the keyboard.
    void BeginWithKeyboard();

    // For who asks from outside; valid as long as this object.
    ControlledWindow Ways();

private:
    void CmReadFromFile();
    void CmReadFileLater();
    void Await(const std::string& path);
    void CmReadFromSelection();
    void CmReadSelectionOrPause();
    bool CanBegin() const;
    bool IsBusy(const VerbReplyRef& reply);
    void ReadFor(SelectionWatch::From from, const VerbReplyRef& reply);
    void ReadFileFor(const std::string& path, const VerbReplyRef& reply);

    const Parts parts_;
    KeyboardWait firstKeyboard_;
    LGuiTimer drop_;
    unsigned int offered_ = 0;  // by other programs, when the reading began
    Narrator::Subscription news_;
};
