#include "app/save_speech.h"

#include <strings.h>
#include <unistd.h>

#include <string>

#include "app/read_aloud.h"
#include "formats/mp3_settings.h"
#include "formats/mp3_sink.h"
#include "formats/wave_file.h"
#include "formats/wave_format.h"
#include "foundation/file.h"
#include "foundation/settings.h"
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
    target.askFormat = LUserSettingGet("Settings", "SaveDefaultFormat").starts_with('0');
    const bool mp3ByDefault = !target.askFormat && LUserSettingGet("Settings", "SaveFormat") == "0";
    char path[kTextBufferSize] = "";
    char folder[kTextBufferSize];
    _LUserSettingGetString("Settings", "SaveFileDir", "", folder);
    if (!LFile::BrowseSaveFilePath(parent, path, "Save File as", folder,
                                   mp3ByDefault ? kMp3Filter : kWavFilter))
        return false;
    LUserSettingSetString("Settings", "SaveFileDir", folder);
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

LProcessResult Synthesize(GtkWidget* parent, LTTS& request) {
    LProcessDialog<LTTS> dialog("Synthesize Voice", request);
    dialog.Open(parent);
    return dialog.Result();
}

LSoundSink OpenTarget(const Target& target) {
    if (target.mp3) {
        LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
        return OpenMp3Sink(target.path.c_str(), settings, 44100, 2);
    }
    LWaveFileFormat format(44100, 1, "PCM");
    if (target.askFormat)
        LWaveFile::WaveFormatSelectDialog(
            format, 0, "Select Wave File Format");  // Cancel keeps the format shown
    else
        LoadDefaultWaveFormat(format);
    return LWaveFile::OpenSink(target.path.c_str(), format);
}

void ShowError(GtkWidget* parent, const char* title, const char* text,
               const std::string& detail = "") {
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, title, text, detail.c_str());
}

// Copies the speech into the sink; the file is complete once the sink is closed.
void CopySpeech(GtkWidget* parent, const LSoundSource& source, LSoundSink& sink) {
    LPRSourceToSink request{"Saving File", source, sink};
    LProcessDialog<LPRSourceToSink> dialog("Saving File", request);
    dialog.Open(parent);
    const int error = sink->Finish();
    request.sink.Close();
    sink.Close();
    if (error != 0 || dialog.Result() == kProcessFailed)
        ShowError(parent, "Save Error", "Cannot save the file. Please try again.",
                  error != 0 ? g_strerror(error) : "");
}

}  // namespace

void SaveSpeech(GtkWidget* parent, const char* text, int voice) {
    Target target;
    if (!ChooseTarget(parent, target))
        return;
    const std::string speechPath = ReadAloud::SpeechFilePath();
    LTTS request;
    request.text = text;
    request.outputPath = speechPath.c_str();
    request.voice = voice;
    if (Synthesize(parent, request) == kProcessFailed) {
        ShowError(parent, "Lectora", "Unable to save the file. Please try again.",
                  SynthesisMessage(request.outcome));
        return;
    }
    // A cancelled synthesis goes on: it saves what the speech file holds.
    LSoundSource source = LWaveFile::OpenSource(speechPath.c_str());
    if (source->Status() != SoundStatus::kGood) {
        ShowError(parent, "Source Error", "Cannot open the source. Please try again.");
        return;
    }
    LSoundSink sink = OpenTarget(target);
    if (sink->Status() != 0) {
        ShowError(parent, "Save Error", "Cannot save the file. Please try again.");
        return;
    }
    CopySpeech(parent, source, sink);
    source.Close();
    ::unlink(speechPath.c_str());
}
