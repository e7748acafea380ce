// Control ids and commands of the player panel.
#pragma once

namespace PlayerPanel {

constexpr int kTime = 103;
constexpr int kTimeCharacters = 24;  // wide
constexpr int kMeter = 104;
constexpr int kWave = 105;
constexpr int kPosition = 106;
constexpr int kDevice = 107;
constexpr int kVolume = 108;
constexpr int kPlay = 111;
constexpr int kScrub = 112;
constexpr int kStop = 113;
constexpr int kStart = 114;
constexpr int kRewind = 115;
constexpr int kForward = 116;
constexpr int kEnd = 117;
constexpr int kItem = 120;
constexpr int kPreviousSentence = 121;
constexpr int kRepeatSentence = 122;
constexpr int kNextSentence = 123;
constexpr int kTempo = 124;
constexpr int kNextTrack = 128;
constexpr int kRoute = 129;      // what keeps the sound from its card, as text
constexpr int kTempoTime = 126;  // what the slider of the tempo says, as text
constexpr int kTakeOut = 130;    // of the window that the player stands in
constexpr int kPutBack = 131;
constexpr int kUnfold = 132;  // shows volume and device
constexpr int kVolumeLabel = kVolume + 1;
constexpr int kDeviceLabel = 133;

constexpr int kPositionMoved = 1050;
constexpr int kDeviceChosen = 1070;
constexpr int kVolumeChanged = 1080;
constexpr int kTempoMoved = 1090;
constexpr int kRewindDown = 1150;
constexpr int kRewindUp = 1151;
constexpr int kForwardDown = 1160;
constexpr int kForwardUp = 1161;

}  // namespace PlayerPanel
