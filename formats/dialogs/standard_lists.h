// The choices that the encoder dialogs share.
#pragma once

// As drop-down lists take them: up to a null pointer.
inline constexpr const char* kStandardRates[] = {"6000",  "8000",   "11025", "16000", "22050",
                                                 "32000", "44100",  "48000", "64000", "88200",
                                                 "96000", "196000", nullptr};
inline constexpr int kStandardRate44100 = 6;  // index of the default rate
inline constexpr const char* kMonoStereo[] = {"Mono", "Stereo", nullptr};
inline constexpr int kStereo = 1;  // index
