// Starting the program when a desktop session begins, for every account of the machine or for the
// present user. Nothing is reported to the user; any thread.
#pragma once

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

// Puts the start-up entry into the home folder of every account, or takes it out.
void SetAllUserRun(bool on);
// The same for the account that the environment variable USERNAME names. False when there is none,
// or its entry could not be placed or removed.
bool SetRunGUIUnderUser(bool on);

// --- The page of the options, without its controls.
enum class StartMode : int { kEveryUser = 0, kThisUser = 1 };
struct StartOnLoginPage {
    bool isOn;
    int mode;  // index in the list of modes
};
// In the order of the list.
inline constexpr const char* kStartModeTexts[] = {"Start when any user logs on.",
                                                  "Start when this user logs on only."};

StartOnLoginPage LoadStartOnLogin();
// A mode that the list does not have counts as off.
void ApplyStartOnLogin(const StartOnLoginPage& page);
