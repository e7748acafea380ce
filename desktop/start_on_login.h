// Starting the program when a desktop session begins, for every account of the machine or for the
// present user. Any thread.
#pragma once

#include <string>

// The choice as it is kept, and its two ways of being carried out.
class LAutoRun {
public:
    static bool IsRun();      // for every user; on where nothing was chosen
    static bool IsRunUser();  // for this user; off where nothing was chosen
    static void SetRun();
    static void RemRun();
    // Record the choice only when it could be carried out.
    static void SetRunUser();
    static void RemRunUser();
};

// Puts the start-up entry into the home folder of every account, or takes it out; as far as this
// process may act as these accounts.
void SetAllUserRun(bool on);
// The same for the account that the environment variable USERNAME names, without it for whoever
// runs this. False when there is none, or its entry could not be placed or removed.
bool SetRunGUIUnderUser(bool on);

// --- The page of the options, without its controls.
enum class StartMode : int { kEveryUser = 0, kThisUser = 1 };
struct StartOnLoginPage {
    bool isOn;
    int mode;  // index in the list of modes
    bool operator==(const StartOnLoginPage&) const = default;
};
// In the order of the list.
inline constexpr const char* kStartModeTexts[] = {"Start when any user logs on.",
                                                  "Start when this user logs on only."};

StartOnLoginPage LoadStartOnLogin();  // on when this user's entry is there
// A page that says what holds already changes nothing. A mode that the list does not have counts as
// off. Empty, or a sentence for the user about what could not be done.
std::string ApplyStartOnLogin(const StartOnLoginPage& page);
