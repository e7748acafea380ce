// The numbers of the main window's controls, and of what its user can ask for. The toolkit's own
// commands are in gui/windows/window.h.
#pragma once

// Controls; a button's number is its command too.
enum ControlNumber {
    kCommandBar = 85,
    kFindBar = 86,
    kPlaceOffer = 87,
    kTextBox = 101,
    kVoiceLabel = 402,
    kVoiceList = 500,
    kReadButton = 510,
    kSaveButton = 511,
};

// Where one action has several numbers, each place that offers it has its own. "Selection" is what
// is selected in any program, "window" the program that was in front before this one.
enum CommandNumber {
    kUpdateFromSelection = 1000,
    kUpdateAllOfWindow = 1002,
    kUpdateSelectionOfWindow = 1003,
    kLoadFile = 1005,
    kReadAllOfWindow = 1006,
    kReadSelectionOfWindow = 1007,
    kReadFromFileMenu = 1008,
    kReadFromSelection = 1009,
    kReadCurrent = 1011,
    kSaveCurrent = 1012,
    kSaveAllOfWindow = 1013,
    kSaveFromFileMenu = 1014,
    kSaveFromSelection = 1015,
    kReadFromFile = 1019,
    kOptions = 1021,
    kSaveFromFile = 1063,
    kSaveAsAudiobook = 1064,
    kTextChanged = 1111,
    kSaveSelectionOfWindow = 1222,
    kReadSelectionOrPause = 1301,  // the hotkey's
    kReadFromHere = 1302,
    kPlayOrPause = 1311,
    kStopReading = 1312,
    kPreviousSentence = 1313,
    kRepeatSentence = 1314,
    kNextSentence = 1315,
    kFaster = 1316,
    kSlower = 1317,
    kPreviousParagraph = 1321,
    kNextParagraph = 1322,
    kPreviousHeading = 1323,
    kNextHeading = 1324,
    kSetBookmark = 1325,
    kBookmarks = 1326,
    kSleepNever = 1331,
    kSleepIn15 = 1332,
    kSleepIn30 = 1333,
    kSleepIn60 = 1334,
    kSleepAtChapter = 1335,
    kSleepNext = 1336,
    kUndo = 1401,
    kRedo = 1402,
    kFind = 1403,
    kFindNext = 1404,
    kLargerText = 1405,
    kSmallerText = 1406,
    kNormalText = 1407,
    kSaveTextAs = 1408,
    kWholePage = 1409,
    kSayDifferently = 1410,
    kRecentFile = 1451,  // the newest; the others follow
    kLastRecentFile = 1458,
    kShowCommandBar = 2001,
    kOpenWindow = 4001,
    kCheckComputer = 9031,
    kMoreVoices = 9032,
    kUpdateDropDown = 8000,  // the tool bar's arrows
    kReadDropDown = 8011,
    kSaveDropDown = 8012,
};
