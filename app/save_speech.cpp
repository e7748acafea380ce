#include "app/save_speech.h"

#include <strings.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "app/settings_keys.h"
#include "app/speech_copy.h"
#include "app/speech_file.h"
#include "app/speech_size.h"
#include "components/component_download.h"
#include "formats/mp3_component.h"
#include "formats/mp3_settings.h"
#include "formats/mp3_sink.h"
#include "formats/wave_file.h"
#include "formats/wave_format.h"
#include "formats/whole_file.h"
#include "foundation/file.h"
#include "gui/message_box.h"
#include "gui/progress_dialog.h"
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

// A folder is not asked about: it cannot be replaced, which is told later.
bool MayReplace(GtkWidget* parent, const std::string& path) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode))
        return true;
    const std::string question = "The file " + path + " exists. Do you want to replace it?";
    return MessageBoxRun(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "Lectora",
                         question.c_str(), "") == GTK_RESPONSE_YES;
}

// False: the user thought better of it.
bool ChooseTarget(GtkWidget* parent, Target& target) {
    static constexpr char kWavFilter[] = "Wav Files\0*.wav;*.WAV\0";
    static constexpr char kMp3Filter[] = "Mp3 Files\0*.mp3;*.MP3\0";
    target.askFormat = kSaveByDefaultSetting.Get() == "0";
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

bool IsSameFile(const std::string& one, const std::string& other) {
    struct stat first = {};
    struct stat second = {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// The file of the speech itself, which goes with the end of the save and with each reading.
bool IsSpeechFile(const std::string& path, const std::string& speechPath) {
    const std::size_t name = path.rfind('/') + 1;
    const std::size_t speechName = speechPath.rfind('/') + 1;
    return IsSameFile(path, speechPath) ||
           (path.substr(name) == speechPath.substr(speechName) &&
            IsSameFile(path.substr(0, name), speechPath.substr(0, speechName)));
}

void ShowError(GtkWidget* parent, const char* title, const char* text,
               const std::string& detail = "") {
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, title, text, detail.c_str());
}

void ShowSaveError(GtkWidget* parent, const std::string& detail) {
    ShowError(parent, "Save Error", "Cannot save the file. Please try again.", detail);
}

// Of a problem that is a message of the system, or goes on from the name.
std::string SentenceOf(const std::string& path, const std::string& problem) {
    return path + (g_ascii_islower(problem[0]) ? " " : ": ") + problem + ".";
}

std::string TooLong(std::size_t bytes) {
    return "The speech of this text is longer than a sound file can hold. Please save it in parts "
           "of at most " +
           std::to_string(bytes) + " characters.";
}

// False: it cannot be opened, which the user has been told, or the user thought better of it.
bool OpenWave(GtkWidget* parent, const Target& target, const std::string& path, LSoundSink& sink) {
    LWaveFileFormat format(44100, 1, "PCM");
    if (!target.askFormat)
        LoadDefaultWaveFormat(format);
    else if (!LWaveFile::WaveFormatSelectDialog(format, 0, "Select Wave File Format"))
        return false;
    sink = LWaveFile::OpenSink(path.c_str(), format);
    if (sink->Status() != 0)
        ShowSaveError(parent, "");
    return sink->Status() == 0;
}

// False: there is no encoder, which the user has been told, or does not want to wait for.
bool FetchEncoder(GtkWidget* parent) {
    LProcessGetComponentPath request;
    request.name = "mp3el";
    if (FindComponent(request.name, request.path)) {
        if (::access(request.path, X_OK) == 0)
            return true;
        // Left by an installer that was killed: as long as the folder stands, nothing is fetched.
        LFile::DeleteFolderAndFiles(
            std::string(request.path, std::strrchr(request.path, '/')).c_str());
    }
    LProcessDialog<LProcessGetComponentPath> dialog("Install-on-Demand", request);
    dialog.Open(parent);
    if (dialog.Result() == kProcessFailed) {
        if (!request.message.empty())
            request.message += "\n\n";
        ShowError(parent, "Install-on-Demand",
                  "Saving as MP3 needs an encoder, which could not be installed.",
                  request.message +
                      "Please see that this computer is connected to the internet and has the "
                      "program LAME (package \"lame\"), then save again. WAV files need nothing.");
    }
    return dialog.Result() == kProcessDone;
}

constexpr int kMp3Rate = 44100;

// What the speech is written to, as far as sizes go.
struct OutputFormat {
    int rate;
    int channels;
};

// Empty, or why speech of a text of so many bytes cannot be saved.
std::string ProblemOfSize(std::size_t textBytes, OutputFormat format, bool mp3,
                          const std::string& path, const std::string& speechPath) {
    const SpeechSize size = EstimateSpeechSize(textBytes, format.rate, format.channels);
    if (!size.fits)
        return TooLong(size.surelyFit);
    struct statvfs disk = {};
    const auto isTooSmall = [&disk](const std::string& file, long long bytes) {
        return ::statvfs(file.substr(0, file.rfind('/') + 1).c_str(), &disk) == 0 &&
               static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize) <
                   static_cast<double>(bytes);
    };
    if (isTooSmall(speechPath, size.speechBytes) ||
        isTooSmall(path, mp3 ? size.speechBytes / 2 : size.fileBytes))
        return "There is not enough room on the disk for the speech of this text.";
    return "";
}

// The whole speech, or an unchanged target file, which is false.
bool CopySpeech(GtkWidget* parent, const LSoundSource& source, const LSoundSink& sink, bool mp3,
                WholeFile& output, const std::string& path) {
    SpeechCopy copy(source, sink);
    LProcessDialog<SpeechCopy> dialog("Saving File", copy);
    dialog.Open(parent);
    if (dialog.Result() == kProcessDone) {
        const std::string problem = output.Commit();
        if (!problem.empty())
            ShowSaveError(parent, SentenceOf(path, problem));
        return problem.empty();
    }
    if (dialog.Result() == kProcessFailed && mp3) {
        ShowSaveError(parent,
                      "The MP3 encoder has ended too early. It needs the program LAME (package "
                      "\"lame\") and room on the disk.");
    } else if (dialog.Result() == kProcessFailed) {
        ShowSaveError(parent, copy.Error() != 0 ? g_strerror(copy.Error()) : "");
    }
    return false;
}

// False: nothing of the speech is there, which the user has been told, or it is not wanted.
bool Speak(GtkWidget* parent, SpeechReading& reading) {
    reading.Start();
    LProcessDialog<SpeechReading> synthesis("Synthesize Voice", reading);
    synthesis.Open(parent);
    if (synthesis.Result() == kProcessFailed)
        ShowError(parent, "Lectora", "Unable to save the file. Please try again.",
                  reading.Message());
    // A cancelled synthesis goes on with what was spoken of this text.
    return synthesis.Result() != kProcessFailed && reading.HasSound();
}

}  // namespace

std::string SaveSpeech(GtkWidget* parent, const std::string& text, int voice) {
    Target target;
    if (!ChooseTarget(parent, target))
        return "";
    // Whatever can be known before is told before the engine speaks, which may take minutes.
    const std::string speechPath = SpeechFilePath();
    if (IsSpeechFile(target.path, speechPath)) {
        ShowSaveError(parent, target.path +
                                  " is Lectora's own file, which each reading writes anew. Please "
                                  "choose another name or folder.");
        return "";
    }
    WholeFile output(target.path, WholeFile::Existing::kReplace);
    if (!output.Problem().empty()) {
        ShowSaveError(parent, SentenceOf(target.path, output.Problem()));
        return "";
    }
    LSoundSink sink;
    if (target.mp3 ? !FetchEncoder(parent) : !OpenWave(parent, target, output.WritePath(), sink))
        return "";
    // Of MP3 only the frames are counted, not their bytes, so that it is like mono.
    const OutputFormat format =
        target.mp3 ? OutputFormat{kMp3Rate, 1} : OutputFormat{sink->SampleRate(), sink->Channels()};
    const std::string problem =
        ProblemOfSize(text.size(), format, target.mp3, output.WritePath(), speechPath);
    if (!problem.empty()) {
        ShowSaveError(parent, problem);
        return "";
    }
    SpeechReading reading(text, voice, speechPath, ReadingUse::kSaving);
    if (!Speak(parent, reading))
        return "";
    LSoundSource source = reading.OpenSource();
    if (source->Status() != SoundStatus::kGood) {
        ShowError(parent, "Source Error", "Cannot open the source. Please try again.");
        return "";
    }
    // An encoder is started only now that there is something for it.
    if (target.mp3) {
        LMp3EncodeSettings settings = LoadMp3SettingsForSaving();
        sink = OpenMp3Sink(output.WritePath().c_str(), settings, kMp3Rate, 2);
    }
    const double seconds = static_cast<double>(source->GetEndSample()) / source->SampleRate();
    std::string trouble;
    if (!FitsIntoFile(seconds, format.rate, format.channels))  // a voice slower than expected
        trouble = TooLong(EstimateSpeechSize(0, format.rate, format.channels).surelyFit);
    if (sink->Status() != 0 || !trouble.empty()) {
        ShowSaveError(parent, trouble);
        return reading.Message();  // the speech stays, as after each stop before the copy
    }
    const bool isSaved = CopySpeech(parent, source, sink, target.mp3, output, target.path);
    source.Close();
    ::unlink(speechPath.c_str());
    return isSaved && reading.Message().empty() ? "Saved as " + target.path : reading.Message();
}
