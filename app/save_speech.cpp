#include "app/save_speech.h"

#include <strings.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "app/settings_keys.h"
#include "app/speech_file.h"
#include "app/speech_size.h"
#include "formats/mp3_settings.h"
#include "formats/mp3_sink.h"
#include "formats/wave_file.h"
#include "formats/wave_format.h"
#include "formats/whole_file.h"
#include "foundation/file.h"
#include "gui/message_box.h"
#include "gui/progress_dialog.h"
#include "sound/source_to_sink.h"
#include "speech/speech_reading.h"

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

std::string TooLong(std::size_t bytes) {
    return "The speech of this text is longer than a sound file can hold. Please save it in parts "
           "of at most " +
           std::to_string(bytes) + " characters.";
}

// Empty, or why speech of a text of so many bytes cannot be saved.
std::string ProblemOfSize(std::size_t textBytes, const LSoundSinkBase& sink, bool mp3,
                          const std::string& path, const std::string& speechPath) {
    const SpeechSize size = EstimateSpeechSize(textBytes, sink.SampleRate(), sink.Channels());
    if (!size.fits)
        return TooLong(size.surelyFit);
    struct statvfs disk {};
    const auto isTooSmall = [&disk](const std::string& file, long long bytes) {
        return ::statvfs(file.substr(0, file.rfind('/') + 1).c_str(), &disk) == 0 &&
               static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize) <
                   static_cast<double>(bytes);
    };
    if (isTooSmall(speechPath, size.speechBytes) ||
        isTooSmall(path, mp3 ? size.speechBytes / 4 : size.fileBytes))
        return "There is not enough room on the disk for the speech of this text.";
    return "";
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

std::string SaveSpeech(GtkWidget* parent, const std::string& text, int voice) {
    Target target;
    if (!ChooseTarget(parent, target))
        return "";
    // Whatever can be known before is told before the engine speaks, which may take minutes.
    WholeFile output(target.path, WholeFile::Existing::kReplace);
    if (!output.Problem().empty()) {
        ShowSaveError(parent, output.Problem());
        return "";
    }
    std::optional<LSoundSink> sink = OpenTarget(target, output.WritePath());
    if (!sink)
        return "";
    if ((*sink)->Status() != 0) {
        ShowSaveError(parent, "");
        return "";
    }
    const std::string speechPath = SpeechFilePath();
    const std::string problem =
        ProblemOfSize(text.size(), **sink, target.mp3, output.WritePath(), speechPath);
    if (!problem.empty()) {
        ShowSaveError(parent, problem);
        return "";
    }
    SpeechReading reading(text, voice, speechPath, ReadingUse::kSaving);
    reading.Start();
    LProcessDialog<SpeechReading> synthesis("Synthesize Voice", reading);
    synthesis.Open(parent);
    if (synthesis.Result() == kProcessFailed) {
        ShowError(parent, "Lectora", "Unable to save the file. Please try again.",
                  reading.Message());
        return "";
    }
    // A cancelled synthesis goes on with what was spoken of this text.
    if (!reading.HasSound())
        return "";
    LSoundSource source = reading.OpenSource();
    if (source->Status() != SoundStatus::kGood) {
        ShowError(parent, "Source Error", "Cannot open the source. Please try again.");
        return "";
    }
    const int rate = (*sink)->SampleRate();
    const int channels = (*sink)->Channels();
    // A slow voice may have taken longer than expected.
    if (FitsIntoFile(static_cast<double>(source->GetEndSample()) / source->SampleRate(), rate,
                     channels))
        CopySpeech(parent, source, *sink, output);
    else
        ShowSaveError(parent, TooLong(EstimateSpeechSize(0, rate, channels).surelyFit));
    source.Close();
    ::unlink(speechPath.c_str());
    return reading.Message();
}
