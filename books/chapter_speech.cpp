#include "books/chapter_speech.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "books/book_order.h"
#include "formats/wave_file.h"
#include "sound/source_to_sink.h"
#include "speech/piece_runs.h"

namespace {

constexpr int kRateOfSilence = 22050;  // of a book without a word

class ChapterTaker final : public SpokenPieceTaker {
public:
    ChapterTaker(const BookOrder& order, std::string_view text, std::string path)
        : order_(order), text_(text), path_(std::move(path)) {}

    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece& piece) override {
        if (!isOpen_)
            Open(sound->SampleRate());
        const int first = sink_->FramesWritten();
        LSilentProgress unseen;
        LPRSourceToSink request{"", sound, sink_};
        if (Process(unseen, request) != kProcessDone)
            return SynthesisOutcome::kCannotWrite;
        SpokenTimes times = piece.times;
        times.Stretch(sound->SampleRate(), sink_->SampleRate());
        AddLines(piece, times, first);
        return SynthesisOutcome::kSpoken;
    }

    // errno, 0 when all is written.
    int Finish(double secondsOfSilence) {
        if (!isOpen_)
            Open(kRateOfSilence);
        const std::vector<int> silence(kMaxBlockFrames);
        for (int left = static_cast<int>(secondsOfSilence * sink_->SampleRate()); left > 0;
             left -= kMaxBlockFrames)
            sink_->Write(silence.data(), std::min(left, kMaxBlockFrames));
        return sink_->Finish();
    }

    std::vector<SubtitleLine>& Lines() { return lines_; }

private:
    void Open(int rate) {
        isOpen_ = true;
        sink_ = LWaveFile::OpenSinkPCM(path_.c_str(), rate, 1, 16, 0);
    }
    // A line a sentence; without times the piece is one.
    void AddLines(const SpeechPiece& piece, const SpokenTimes& times, int first) {
        const std::vector<TextUnit>& units = piece.units;
        auto word = times.words.begin();
        for (std::size_t unit = 0, next = 0; unit < units.size(); unit = next) {
            next = unit + 1;
            while (next < units.size() && (times.unitFrames.empty() || !units[next].beginsSentence))
                ++next;
            const std::size_t end = units[next - 1].sourceEnd;
            std::vector<SubtitleWord> words;
            for (; word != times.words.end() && word->sourceBegin < end; ++word)
                words.push_back({MillisecondsAt(first + word->firstFrame), word->sourceBegin});
            SubtitleLine line =
                SubtitleLineOf(text_, units[unit].sourceBegin, end, std::move(words));
            line.begin =
                MillisecondsAt(first + (times.unitFrames.empty() ? 0 : times.unitFrames[unit]));
            line.end = next < units.size() ? MillisecondsAt(first + times.unitFrames[next])
                                           : MillisecondsAt(sink_->FramesWritten());
            lines_.push_back(std::move(line));
        }
    }
    long long MillisecondsAt(int frame) const { return frame * 1000LL / sink_->SampleRate(); }

    const BookOrder& order_;
    std::string_view text_;
    std::string path_;
    LSoundSink sink_;
    bool isOpen_ = false;
    std::vector<SubtitleLine> lines_;
};

// A chapter's share of the whole.
class ShareOfBook final : public LProgress {
public:
    ShareOfBook(LProgress& whole, double begin, double end)
        : whole_(whole), begin_(begin), end_(end) {}
    bool IsShown() const override { return whole_.IsShown(); }
    void SetFirstLabel(const char*) override {}
    void SetSecondLabel(const char*) override {}
    void SetFraction(double fraction) override {
        whole_.SetFraction(begin_ + fraction * (end_ - begin_));
    }
    bool IsToStop() override { return whole_.IsToStop(); }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        return whole_.ProcessWaitSignal(signal, milliseconds);
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override {
        return whole_.ProcessWait(milliseconds);
    }

private:
    LProgress& whole_;
    double begin_;
    double end_;
};

}  // namespace

ChapterSpeech SpeakBookChapter(const BookOrder& order, const BookChapter& chapter, double silence,
                               const std::string& path, LProgress& progress) {
    const std::string_view text =
        std::string_view(order.text).substr(chapter.begin, chapter.end - chapter.begin);
    const auto size = static_cast<double>(std::max<std::size_t>(order.text.size(), 1));
    ShareOfBook share(progress, static_cast<double>(chapter.begin) / size,
                      static_cast<double>(chapter.end) / size);
    ChapterTaker taker(order, text, path);
    SpeakingRules rules = order.rules;
    rules.marks = MarksFrom(rules.marks, chapter.begin);
    for (const DocumentHeading& heading : order.plan.headings)
        if (heading.begin >= chapter.begin)
            rules.headings.push_back(heading.begin - chapter.begin);
    const ReadingUse use = order.NeedsTimes() ? ReadingUse::kSavingSentences : ReadingUse::kSaving;
    PieceRuns runs(text, order.voice, order.engineFolder, use, taker, rules);
    const LProcessResult result = Process(share, runs);
    ChapterSpeech speech;
    speech.isStopped = result == kProcessStopped || progress.IsToStop();
    if (speech.isStopped)
        return speech;
    speech.remark = runs.LeftOutMessage();
    if (runs.Outcome() == SynthesisOutcome::kNothingToSay)
        speech.remark = "It holds nothing that can be said, and is silent.";
    else if (result != kProcessDone)
        speech.problem = SynthesisMessage(runs.Outcome(), VoiceAt(order.voice));
    if (const int error = taker.Finish(silence); error != 0)
        speech.problem = std::strerror(error);
    speech.lines = std::move(taker.Lines());
    return speech;
}
