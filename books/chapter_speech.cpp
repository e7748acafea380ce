#include "books/chapter_speech.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "books/book_order.h"
#include "books/unseen_progress.h"
#include "formats/wave_file.h"
#include "sound/source_to_sink.h"
#include "speech/piece_runs.h"

namespace {

constexpr int kRateOfSilence = 22050;  // of a book without a word

class ChapterTaker final : public SpokenPieceTaker {
public:
    ChapterTaker(std::string_view text, const SpeechFile& file, LProgress& progress)
        : text_(text), file_(file), progress_(progress) {}

    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece& piece) override {
        if (!isOpen_)
            Open(file_.rate > 0 ? file_.rate : sound->SampleRate());
        const int first = Frames();
        if (std::string voice = KeyOf(VoiceAt(piece.voice));
            voices_.empty() || voices_.back().voice != voice)
            voices_.push_back({first, std::move(voice)});
        UnseenProgress unseen(progress_);  // a slow disk takes a minute for a long piece
        LPRSourceToSink request{"", sound, sink_};
        const LProcessResult written = Process(unseen, request);
        if (written != kProcessDone)
            return written == kProcessStopped ? SynthesisOutcome::kStopped
                                              : SynthesisOutcome::kCannotWrite;
        SpokenTimes times = piece.times;
        times.Stretch(sound->SampleRate(), sink_->SampleRate());
        AddLines(piece, times, first);
        return SynthesisOutcome::kSpoken;
    }

    bool IsOpen() const { return isOpen_; }
    void Open(int rate) {
        isOpen_ = true;
        sink_ = LWaveFile::OpenSinkPCM(file_.path.c_str(), rate, 1, 16, 0);
        Write(file_.lead);
    }
    // errno, 0 when all is written.
    int Finish(double secondsOfSilence) {
        Write(std::vector<int>(static_cast<std::size_t>(secondsOfSilence * sink_->SampleRate())));
        return sink_->Finish();
    }
    void Tell(ChapterSpeech& speech) {
        speech.lines = std::move(lines_);
        speech.voices = std::move(voices_);
        speech.rate = sink_->SampleRate();
        speech.frames = Frames();
    }

private:
    int Frames() const { return sink_->FramesWritten() - static_cast<int>(file_.lead.size()); }
    void Write(const std::vector<int>& samples) {
        for (std::size_t at = 0; at < samples.size(); at += kMaxBlockFrames)
            sink_->Write(samples.data() + at, static_cast<int>(std::min<std::size_t>(
                                                  samples.size() - at, kMaxBlockFrames)));
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
                                           : MillisecondsAt(Frames());
            lines_.push_back(std::move(line));
        }
    }
    long long MillisecondsAt(int frame) const { return frame * 1000LL / sink_->SampleRate(); }

    std::string_view text_;
    const SpeechFile& file_;
    LProgress& progress_;
    LSoundSink sink_;
    bool isOpen_ = false;
    std::vector<SubtitleLine> lines_;
    std::vector<VoiceTurn> voices_;
};

// Ends the reading with the first sound.
class RateTaker final : public SpokenPieceTaker {
public:
    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece&) override {
        rate_ = sound->SampleRate();
        return SynthesisOutcome::kCannotWrite;
    }
    int Rate() const { return rate_; }

private:
    int rate_ = kRateOfSilence;
};

// Of a book that begins with what cannot be said.
int RateBehind(const BookOrder& order, std::size_t begin, LProgress& progress) {
    RateTaker taker;
    PieceRuns runs(std::string_view(order.text).substr(begin), order.voice, order.engineFolder,
                   ReadingUse::kListening, taker, RulesFrom(order, begin));
    Process(progress, runs);
    return taker.Rate();
}

const BookChapter& ChapterWith(const BookOrder& order, std::size_t begin) {
    const std::vector<BookChapter>& chapters = order.plan.chapters;
    return *std::find_if(chapters.begin(), chapters.end() - 1,
                         [begin](const BookChapter& chapter) { return begin < chapter.end; });
}

ChapterRemarks RemarksOn(const PieceRuns& runs, const BookOrder& order,
                         const BookChapter& section) {
    ChapterRemarks remarks;
    remarks.isSilent = runs.Outcome() == SynthesisOutcome::kNothingToSay;
    remarks.isAnything = !runs.LeftOutMessage().empty();
    const std::size_t before = section.begin - ChapterWith(order, section.begin).begin;
    for (const LeftOutUnit& unit : runs.LeftOut())
        remarks.leftOut.push_back({before + unit.sourceBegin, before + unit.sourceEnd});
    remarks.voices = runs.InsteadMessage();
    return remarks;
}

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
                               const SpeechFile& file, LProgress& progress) {
    const std::string_view text =
        std::string_view(order.text).substr(chapter.begin, chapter.end - chapter.begin);
    const auto size = static_cast<double>(std::max<std::size_t>(order.text.size(), 1));
    ShareOfBook share(progress, static_cast<double>(chapter.begin) / size,
                      static_cast<double>(chapter.end) / size);
    const double behind = static_cast<double>(chapter.end) / size;
    ShareOfBook end(progress, behind, behind);
    ChapterTaker taker(text, file, progress);
    const ReadingUse use = order.NeedsTimes() ? ReadingUse::kSavingSentences : ReadingUse::kSaving;
    PieceRuns runs(text, order.voice, order.engineFolder, use, taker,
                   RulesFrom(order, chapter.begin));
    const LProcessResult result = Process(share, runs);
    ChapterSpeech speech;
    speech.isStopped = result == kProcessStopped || progress.IsToStop();
    if (speech.isStopped)
        return speech;
    speech.remarks = RemarksOn(runs, order, chapter);
    if (runs.Outcome() != SynthesisOutcome::kNothingToSay && result != kProcessDone)
        speech.problem = SynthesisMessage(runs.Outcome(), VoiceAt(order.voice));
    if (!taker.IsOpen())
        taker.Open(file.rate > 0 ? file.rate : RateBehind(order, chapter.end, end));
    speech.isStopped = progress.IsToStop();
    if (const int error = taker.Finish(silence); error != 0)
        speech.problem = std::strerror(error);
    taker.Tell(speech);
    return speech;
}
