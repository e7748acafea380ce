#include "app/books/audiobook_controls.h"

#include "gui/windows/dialog_gen_context.h"

using namespace AudiobookControls;

namespace {

constexpr int kWidth = 720;
// Some voices have long names, which the list shows whole when it is open.
constexpr int kVoiceListWidth = 220;
constexpr LRows kDocumentRows{4};
constexpr LRows kMessageRows{2};

}  // namespace

void DlgGenAudiobook(LDialogGenContext& context) {
    context.SetWidth(kWidth);
    context.AddList(kDocuments, kDocumentRows, "Documents");
    context.StartHBox();
    context.AddButton(kAddDocuments, "&Add...");
    context.AddButton(kRemoveDocument, "&Remove");
    context.AddButton(kDetails, "&Title and Cover...");
    context.AddButton(kBreakOff, "&Break Off");
    context.EndHBox();
    context.AddEditReadOnly(kMessage, "", kMessageRows, "Details");
    context.StartHBox();
    context.AddGroup(-1, "What it becomes");
    context.AddPullDownList(kBookFormat, "&Format:");
    context.AddPullDownList(kBookQuality, "&Quality:");
    context.AddPullDownList(kBookFiles, "F&iles:");
    context.AddPullDownList(kSubtitleForm, "Te&xt in time:");
    context.GroupEnd();
    context.AddGroup(-1, "How it is spoken");
    context.AddPullDownList(kBookVoice, "&Voice:", kVoiceListWidth);
    context.AddPullDownList(kBookSpeed, "Sp&eed:");
    context.AddPullDownList(kSilence, "Sile&nce:");
    context.AddCheckBox(kEvensLoudness, "Voices and chapters equally lou&d");
    context.AddCheckBox(kBookByLanguage, "Each &language in a voice of its own");
    context.GroupEnd();
    context.EndHBox();
    context.AddInput(kBookFolder, "F&older:");
    context.AddButton(kBrowse, "Bro&wse...");
    context.AddStatic(kEstimate, "");
    context.AddProgressBar(kDone);
    context.AddSpecialOkCancelHelp(kPause, "&Pause", kOkButton | kCancelButton | kHelpButton,
                                   "&Start");
}
