// What the numbered images of the share folder show.
#pragma once

enum LIconNumber {
    kAppIconNumber = 1,  // the program's own icon, worn by its windows and message boxes
    kTrayIcon = 2,
    kTrayReadingIcon = 3,
    kTrayPausedIcon = 4,

    kErrorIcon = 5,  // status log
    kWarningIcon = 6,
    kInformationIcon = 7,

    kReadButtonIcon = 12,  // the two large buttons
    kSaveButtonIcon = 13,

    kOptionsIcon = 22,  // tool bar and command bar
    kToolboxIcon = 23,
    kUpdateTextIcon = 24,
    kHelpIcon = 26,
    kSaveSpeechIcon = 27,
    kReadAloudIcon = 28,

    kPlayIcon = 111,  // the player's transport, by the numbers of its buttons
    kScrubIcon = 112,
    kStopIcon = 113,
    kGoToStartIcon = 114,
    kRewindIcon = 115,
    kForwardIcon = 116,
    kGoToEndIcon = 117,
    kPreviousSentenceIcon = 121,
    kRepeatSentenceIcon = 122,
    kNextSentenceIcon = 123,
    kNextTrackIcon = 128,
    kTakeOutIcon = 130,
    kPutBackIcon = 131,
    kUnfoldIcon = 132,

    kMenuIcon = 200,  // first entry of each menu
};
