// How the dialog "Save as Audiobook" is laid out, and the numbers of its controls.
#pragma once

class LDialogGenContext;

namespace AudiobookControls {

constexpr int kDocuments = 101;  // a list's scrolled window is the next number
constexpr int kAddDocuments = 103;
constexpr int kRemoveDocument = 104;
constexpr int kDetails = 105;
constexpr int kBreakOff = 106;
constexpr int kMessage = 107;
constexpr int kBookFormat = 110;
constexpr int kBookQuality = 112;
constexpr int kBookFiles = 114;
constexpr int kBookVoice = 116;
constexpr int kBookSpeed = 118;
constexpr int kSilence = 120;
constexpr int kSubtitleForm = 122;
constexpr int kEvensLoudness = 124;
constexpr int kBookByLanguage = 125;
constexpr int kBookFolder = 126;
constexpr int kBrowse = 128;
constexpr int kEstimate = 129;
constexpr int kDone = 130;
constexpr int kPause = 132;

constexpr int kTitleColumn = 0;
constexpr int kLengthColumn = 1;
constexpr int kSizeColumn = 2;
constexpr int kBookStateColumn = 3;

}  // namespace AudiobookControls

void DlgGenAudiobook(LDialogGenContext& context);
