#include "app/saving/save_speech.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "app/reading/speech_file.h"
#include "app/saving/fetch_encoder.h"
#include "app/saving/save_target.h"
#include "app/saving/speech_copy.h"
#include "app/saving/speech_size.h"
#include "formats/whole_file.h"
#include "foundation/files/file.h"
#include "foundation/files/path_text.h"
#include "gui/windows/message_box.h"
#include "gui/windows/progress_dialog.h"
#include "speech/speech_estimate.h"
#include "speech/speech_reading.h"

namespace {

bool IsSameFile(const std::string& one, const std::string& other) {
    struct stat first = {};
    struct stat second = {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// A file of the speech itself, which the next reading or save writes anew.
bool IsSpeechFile(const std::string& path) {
    return std::ranges::any_of(
        std::initializer_list<std::string>{SpeechFilePath(), SavingFilePath()},
        [&path](const std::string& speech) {
            return IsSameFile(path, speech) ||
                   (FileOfPath(path) == FileOfPath(speech) &&
                    IsSameFile(FolderOfPath(path), FolderOfPath(speech)));
        });
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

// So many letters of English do fit (speech_estimate.h).
std::string TooLong(std::size_t letters, const std::string& text) {
    return "The speech of this text is longer than a sound file can hold. Please save it in parts "
           "of at most " +
           std::to_string(OwnLetters(letters, text)) + " letters.";
}

// What the speech is written to, as far as sizes go.
struct OutputFormat {
    int rate;
    int channels;
};

// Empty, or why speech of the text cannot be saved.
std::string ProblemOfSize(const std::string& text, OutputFormat format, bool isEncoded,
                          const std::string& path, const std::string& speechPath) {
    const SpeechSize size = EstimateSpeechSize(LettersIn(text), format.rate, format.channels);
    if (!size.fits)
        return TooLong(size.surelyFit, text);
    struct statvfs disk = {};
    const auto isTooSmall = [&disk](const std::string& file, long long bytes) {
        return ::statvfs(file.substr(0, file.rfind('/') + 1).c_str(), &disk) == 0 &&
               static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize) <
                   static_cast<double>(bytes);
    };
    if (isTooSmall(speechPath, size.speechBytes) ||
        isTooSmall(path, isEncoded ? size.speechBytes / 2 : size.fileBytes))
        return "There is not enough room on the disk for the speech of this text.";
    return "";
}

// The speech file of a save that is under way.
class SavingFile {
public:
    SavingFile() = default;
    ~SavingFile() { ::unlink(path_.c_str()); }
    SavingFile(const SavingFile&) = delete;
    SavingFile& operator=(const SavingFile&) = delete;
    const std::string& Path() const { return path_; }

private:
    const std::string path_ = SavingFilePath();
};

// One save, from the chosen target to its file.
class Saving {
public:
    Saving(GtkWidget* parent, SaveTarget target)
        : parent_(parent),
          target_(std::move(target)),
          // What has come into being there meanwhile is nobody's to replace.
          output_(target_.path, target_.replaces ? WholeFile::Existing::kReplace
                                                 : WholeFile::Existing::kRefuse) {}

    // What is to be told in the status bar.
    std::string Run(const std::string& text, int voice, SpeakingRules rules);

private:
    bool NeedsEncoder() const { return RowOf(target_.type).component != nullptr; }
    // The sink is then opened once the voice's rate is known, and an encoder has something to do.
    bool FollowsVoice() const { return RowOf(target_.type).takesAnyRate; }
    bool IsReady(const std::string& text);
    bool OpenSink(const LRawSettings& asked);
    bool Speak(SpeechReading& reading);
    bool Copy(const LSoundSource& source);
    bool Publish();
    std::string NothingSaved() const;
    // Before it is open: of what is encoded only the frames are counted, not their bytes.
    OutputFormat Format() const {
        return sink_->Status() != 0 ? OutputFormat{44100, 1}
                                    : OutputFormat{sink_->SampleRate(), sink_->Channels()};
    }

    GtkWidget* parent_;
    const SaveTarget target_;
    WholeFile output_;
    const SavingFile speech_;
    LSoundSink sink_;
    bool isBeginning_ = false;  // the user has cancelled the rest
};

// False: it cannot be opened, which the user has been told, or the user thought better of it.
bool Saving::OpenSink(const LRawSettings& asked) {
    std::optional<LSoundSink> sink = OpenTargetSink(parent_, target_, output_.WritePath(), asked);
    if (!sink)
        return false;
    sink_ = *sink;
    if (sink_->Status() != 0)
        ShowSaveError(parent_, "");
    return sink_->Status() == 0;
}

// Whatever can be known before is told before the engine speaks, which may take minutes.
bool Saving::IsReady(const std::string& text) {
    std::string problem;
    if (IsSpeechFile(target_.path))
        problem = target_.path +
                  " is Lectora's own file, which each reading writes anew. Please choose another "
                  "name or folder.";
    else if (!output_.Problem().empty())
        problem = SentenceOf(target_.path, output_.Problem());
    else if ((NeedsEncoder() && !FetchMp3Encoder(parent_)) || (!FollowsVoice() && !OpenSink({})))
        return false;
    else
        problem =
            ProblemOfSize(text, Format(), FollowsVoice(), output_.WritePath(), speech_.Path());
    if (!problem.empty())
        ShowSaveError(parent_, problem);
    return problem.empty();
}

// False: nothing of the speech is to be saved, which the user has been told or wants.
bool Saving::Speak(SpeechReading& reading) {
    reading.Start();
    LProcessDialog<SpeechReading> synthesis("Synthesize Voice", reading);
    synthesis.Open(parent_);
    if (synthesis.Result() == kProcessFailed)
        ShowError(parent_, "Lectora", "Unable to save the file. Please try again.",
                  reading.Message());
    isBeginning_ = synthesis.Result() == kProcessStopped;
    // A file that is there is not given up for a piece; where there is none, a piece is something.
    return synthesis.Result() != kProcessFailed && reading.HasSound() &&
           !(isBeginning_ && target_.replaces);
}

// False: the target is as it was.
bool Saving::Copy(const LSoundSource& source) {
    SpeechCopy copy(source, sink_);
    LProcessDialog<SpeechCopy> dialog("Saving File", copy);
    dialog.Open(parent_);
    if (dialog.Result() == kProcessDone)
        return Publish();
    if (dialog.Result() == kProcessFailed && NeedsEncoder()) {
        ShowSaveError(parent_,
                      "The MP3 encoder has ended too early. It needs the program LAME (package "
                      "\"lame\") and room on the disk.");
    } else if (dialog.Result() == kProcessFailed) {
        ShowSaveError(parent_, copy.Error() != 0 ? g_strerror(copy.Error()) : "");
    }
    return false;
}

bool Saving::Publish() {
    const std::string problem = output_.Commit();
    if (!problem.empty())
        ShowSaveError(parent_, SentenceOf(target_.path, problem));
    return problem.empty();
}

std::string Saving::NothingSaved() const {
    return target_.replaces ? "Nothing was saved: " + target_.path + " is as it was."
                            : "Nothing was saved.";
}

std::string Saving::Run(const std::string& text, int voice, SpeakingRules rules) {
    if (!IsReady(text))
        return "";
    SpeechReading reading(text, voice, speech_.Path(), ReadingUse::kSaving);
    reading.SpeakBy(std::move(rules));
    if (!Speak(reading))
        return NothingSaved();
    LSoundSource source = reading.OpenSource();
    if (source->Status() != SoundStatus::kGood) {
        ShowError(parent_, "Source Error", "Cannot open the source. Please try again.");
        return NothingSaved();
    }
    const double seconds = static_cast<double>(source->GetEndSample()) / source->SampleRate();
    const OutputFormat format = Format();
    if (!FitsIntoFile(seconds, format.rate, format.channels)) {  // a voice slower than expected
        ShowSaveError(parent_,
                      TooLong(EstimateSpeechSize(0, format.rate, format.channels).surelyFit, text));
        return NothingSaved();
    }
    const LRawSettings voiceFormat{source->SampleRate(), source->Channels(), 0};
    if ((FollowsVoice() && !OpenSink(voiceFormat)) || !Copy(source))
        return NothingSaved();
    const std::string saved =
        (isBeginning_ ? "Only the beginning was saved, as " : "Saved as ") + target_.path;
    // What was left out is told with it.
    return reading.Message().empty() ? saved : saved + ". " + reading.Message();
}

}  // namespace

std::string SaveSpeech(GtkWidget* parent, const ReadingText& text, int voice,
                       const std::string& suggestedName) {
    SpeakingRules rules = ChosenSpeakingRules();
    rules.marks = text.languages;
    rules.headings = text.headings;
    const std::optional<SaveTarget> target = ChooseSaveTarget(parent, suggestedName);
    return target ? Saving(parent, *target).Run(text.text, voice, std::move(rules)) : "";
}
