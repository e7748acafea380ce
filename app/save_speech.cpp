#include "app/save_speech.h"

#include <strings.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "app/settings_keys.h"
#include "app/speech_file.h"
#include "formats/mp3_settings.h"
#include "formats/mp3_sink.h"
#include "formats/wave_file.h"
#include "formats/wave_format.h"
#include "formats/whole_file.h"
#include "foundation/file.h"
#include "gui/message_box.h"
#include "gui/progress_dialog.h"
#include "sound/source_to_sink.h"
#include "speech/synthesis.h"

namespace {

struct Target {
    std::string path;
    bool mp3 = false;
    bool askFormat = false;
};

bool HasExtension(const std::string& path, const char* extension) {
    char found[kTextBufferSize];
    LFile::_GetFileExtensionFromPath(found, path.c_str());
    return strcasecmp(found, extension) == 0;
}

bool MayReplace(GtkWidget* parent, const std::string& path) {
    if (::access(path.c_str(), F_OK) != 0)
        return true;
    const std::string question = "The file " + path + " exists. Do you want to replace it?";
    return MessageBoxRun(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "Lectora",
                         question.c_str(), "") == GTK_RESPONSE_YES;
}

// False: the user thought better of it.
bool ChooseTarget(GtkWidget* parent, Target& target) {
    static constexpr char kWavFilter[] = "Wav Files\0*.wav;*.WAV\0";
    static constexpr char kMp3Filter[] = "Mp3 Files\0*.mp3;*.MP3\0";
    target.askFormat = kSaveByDefaultSetting.Get().starts_with('0');
    const bool mp3ByDefault = !target.askFormat && kSaveFormatSetting.Get() == "0";
    char path[kTextBufferSize] = "";
    char folder[kTextBufferSize];
    CopyText(folder, kSaveFolderSetting.Get());
    if (!LFile::BrowseSaveFilePath(parent, path, "Save File as", folder,
                                   mp3ByDefault ? kMp3Filter : kWavFilter))
        return false;
    kSaveFolderSetting.Set(folder);
    char extension[kTextBufferSize];
    LFile::_GetFileExtensionFromPath(extension, path);
    target.path = path;
    if (extension[0] == '\0') {
        target.path += mp3ByDefault ? ".mp3" : ".wav";
        // The chooser asked about the name without its extension.
        if (!MayReplace(parent, target.path))
            return false;
    }
    target.mp3 = target.askFormat ? HasExtension(target.path, ".mp3") : mp3ByDefault;
    return true;
}

// Empty: the user thought better of it.
std::optional<LSoundSink> OpenTarget(const Target& target, const std::string& path) {
    if (target.mp3) {
        LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
        return OpenMp3Sink(path.c_str(), settings, 44100, 2);
    }
    LWaveFileFormat format(44100, 1, "PCM");
    if (!target.askFormat)
        LoadDefaultWaveFormat(format);
    else if (!LWaveFile::WaveFormatSelectDialog(format, 0, "Select Wave File Format"))
        return std::nullopt;
    return LWaveFile::OpenSink(path.c_str(), format);
}

void ShowError(GtkWidget* parent, const char* title, const char* text,
               const std::string& detail = "") {
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, title, text, detail.c_str());
}

void ShowSaveError(GtkWidget* parent, const std::string& detail) {
    ShowError(parent, "Save Error", "Cannot save the file. Please try again.", detail);
}

// The whole speech, or an unchanged target file.
void CopySpeech(GtkWidget* parent, const LSoundSource& source, LSoundSink& sink,
                WholeFile& output) {
    LPRSourceToSink request{"Saving File", source, sink};
    LProcessDialog<LPRSourceToSink> dialog("Saving File", request);
    dialog.Open(parent);
    const int error = sink->Finish();
    if (error != 0 || dialog.Result() == kProcessFailed) {
        ShowSaveError(parent, error != 0 ? g_strerror(error) : "");
    } else if (dialog.Result() == kProcessDone) {
        const std::string problem = output.Commit();
        if (!problem.empty())
            ShowSaveError(parent, problem);
    }
}

}  // namespace

void SaveSpeech(GtkWidget* parent, const char* text, int voice) {
    Target target;
    if (!ChooseTarget(parent, target))
        return;
    // Before the engine speaks, which may take minutes.
    WholeFile output(target.path, WholeFile::Existing::kReplace);
    if (!output.Problem().empty()) {
        ShowSaveError(parent, output.Problem());
        return;
    }
    const std::string speechPath = SpeechFilePath();
    LTTS request;
    request.text = text;
    request.outputPath = speechPath.c_str();
    request.voice = voice;
    LProcessDialog<LTTS> synthesis("Synthesize Voice", request);
    synthesis.Open(parent);
    if (synthesis.Result() == kProcessStopped)
        return;
    if (synthesis.Result() == kProcessFailed) {
        ShowError(parent, "Lectora", "Unable to save the file. Please try again.",
                  SynthesisMessage(request.outcome));
        return;
    }
    LSoundSource source = LWaveFile::OpenSource(speechPath.c_str());
    if (source->Status() != SoundStatus::kGood) {
        ShowError(parent, "Source Error", "Cannot open the source. Please try again.");
        return;
    }
    std::optional<LSoundSink> sink = OpenTarget(target, output.WritePath());
    if (!sink)
        return;
    if ((*sink)->Status() != 0) {
        ShowSaveError(parent, "");
        return;
    }
    CopySpeech(parent, source, *sink, output);
    source.Close();
    ::unlink(speechPath.c_str());
}
