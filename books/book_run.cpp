#include "books/book_run.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "books/book_assembly.h"
#include "books/book_estimate.h"
#include "books/book_seam.h"
#include "books/book_sections.h"
#include "books/book_work.h"
#include "books/chapter_encoder.h"
#include "books/chapter_speech.h"
#include "formats/wave_file.h"
#include "formats/whole_file.h"
#include "speech/pronunciations.h"

namespace {

constexpr double kLeastRate = 16000;  // of voices

std::vector<int> SamplesOf(const LSoundSource& source) {
    std::vector<int> samples(static_cast<std::size_t>(source->ReadableFrames()));
    for (std::size_t at = 0; at < samples.size(); at += kMaxBlockFrames)
        source->Read(samples.data() + at,
                     static_cast<int>(std::min<std::size_t>(samples.size() - at, kMaxBlockFrames)));
    const auto missing = static_cast<std::size_t>(source->FramesMissing());  // it may be cut
    samples.resize(samples.size() - std::min(samples.size(), missing));
    return samples;
}

bool Exists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

class BookMaker {
public:
    BookMaker(const BookOrder& order, LProgress& progress)
        : order_(order),
          progress_(progress),
          work_(order),
          sections_(SectionsOf(order)),
          assembly_(order, work_, sections_) {}

    BookResult Make();

private:
    bool Fail(const std::string& problem) {
        if (result_.problem.empty())
            result_.problem = problem;
        return problem.empty();
    }
    bool IsFolder() const { return order_.target.back() == '/'; }
    bool IsFinished(std::size_t index) const;
    std::size_t FinishedChapters() const;
    bool SpeakSections(ChapterEncoder& encoder);
    bool SpeakSection(std::size_t index, ChapterEncoder& encoder);
    std::string NameOf(std::size_t chapter) const;  // for messages
    void TellRemarks(std::size_t chapter);
    bool Keep(std::size_t index, const ChapterSpeech& speech, ChapterToEncode& job);
    std::string KeepLead(std::size_t index, const std::string& speech, SpokenSection& spoken,
                         const std::vector<LevelStretch>& levels);
    bool IsTooLong(std::size_t index, const SpokenSection& spoken) const;
    std::string KeepSpoken(std::size_t index, const SpokenSection& spoken);
    bool HasWholeLead(std::size_t index, std::size_t frames) const;
    bool MakeChapters();
    bool MakeBook();

    const BookOrder& order_;
    LProgress& progress_;
    BookWork work_;
    std::vector<BookSection> sections_;
    BookAssembly assembly_;
    ChapterRemarks remarks_;        // on the chapter that is being spoken
    std::size_t chaptersMade_ = 0;  // in files of their own
    BookResult result_;
};

bool BookMaker::IsFinished(std::size_t index) const {
    const std::size_t chapter = sections_[index].chapter;
    const bool isMade =
        order_.HasFileAChapter() && work_.IsMade(chapter) && Exists(assembly_.ChapterPath(chapter));
    return (isMade || Exists(work_.Path(index, "part"))) && work_.Spoken(index).rate > 0;
}

std::size_t BookMaker::FinishedChapters() const {
    std::size_t finished = 0;
    bool isWhole = true;
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        isWhole = isWhole && IsFinished(i);
        finished += isWhole && sections_[i].endsChapter ? 1 : 0;
        isWhole = isWhole || sections_[i].endsChapter;
    }
    return finished;
}

BookResult BookMaker::Make() {
    if (order_.plan.chapters.empty()) {
        Fail("there is nothing to read");
        return result_;
    }
    // Better now than when all is spoken.
    if (!IsFolder() &&
        LeastSeconds(order_) * kLeastRate > static_cast<double>(MostFrames(order_.type))) {
        Fail(order_.target + ": " + kBookTooLong);
        return result_;
    }
    if (const std::string problem = work_.Open(); !problem.empty()) {
        Fail(problem);
        return result_;
    }
    bool isSpoken = false;
    {
        ChapterEncoder encoder;
        isSpoken = SpeakSections(encoder) && encoder.Finish(progress_);
        if (!encoder.Problem().empty())
            Fail(encoder.Problem());
    }
    result_.isDone = isSpoken && result_.problem.empty() && MakeBook();
    if (result_.isDone) {
        work_.Remove();
        return result_;
    }
    result_.chaptersKept = FinishedChapters();
    return result_;
}

bool BookMaker::SpeakSections(ChapterEncoder& encoder) {
    const std::size_t count = order_.plan.chapters.size();
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        const std::size_t chapter = sections_[i].chapter;
        const std::string label = "Chapter " + std::to_string(chapter + 1) + " of " +
                                  std::to_string(count) + ": " +
                                  order_.plan.chapters[chapter].title;
        progress_.SetFirstLabel(label.c_str());
        if (IsFinished(i)) {
            remarks_.Add(
                LoadRemarks(ContentOf(work_.Path(i, "remarks")), order_.plan.chapters[chapter]));
            if (sections_[i].endsChapter)
                TellRemarks(chapter);
        } else if (!SpeakSection(i, encoder)) {
            return false;
        }
        if (!MakeChapters())
            return false;
        progress_.SetFraction(static_cast<double>(sections_[i].end) /
                              static_cast<double>(std::max<std::size_t>(order_.text.size(), 1)));
    }
    return true;
}

bool BookMaker::SpeakSection(std::size_t index, ChapterEncoder& encoder) {
    const BookSection& section = sections_[index];
    const BookChapter& chapter = order_.plan.chapters[section.chapter];
    ChapterToEncode job;
    job.speech = work_.Path(index, "wav");
    job.path = work_.Path(index, "part");
    job.name = NameOf(section.chapter);
    job.type = order_.type;
    job.kilobits = order_.kilobits;
    SpeechFile file;
    file.path = job.speech;
    if (index > 0)
        file.rate = work_.Spoken(index - 1).rate;
    if (!section.beginsFile)
        file.lead = SamplesOf(LWaveFile::OpenSource(work_.Path(index, "lead").c_str()));
    if (!section.beginsFile && !HasWholeLead(index, file.lead.size()))
        return Fail(work_.Path(index, "lead") + ": is damaged, and is made anew the next time");
    const ChapterSpeech speech =
        SpeakBookChapter(order_, {chapter.title, section.begin, section.end},
                         section.endsChapter ? order_.secondsBetween : 0, file, progress_);
    remarks_.Add(speech.remarks);
    if (!speech.isStopped && !speech.problem.empty())
        Fail(job.name + ": " + speech.problem);
    if (section.endsChapter && !speech.isStopped)
        TellRemarks(section.chapter);
    const bool isTaken = !speech.isStopped && speech.problem.empty() && Keep(index, speech, job) &&
                         encoder.Add(std::move(job), progress_);
    if (!isTaken)
        ::unlink(file.path.c_str());
    return isTaken;
}

// Where a failing disk has cut it, the section before it is spoken once more.
bool BookMaker::HasWholeLead(std::size_t index, std::size_t frames) const {
    const SpokenSection before = work_.Spoken(index - 1);
    const BookSeam seam(order_.type, order_.kilobits, before.rate);
    if (static_cast<std::int64_t>(frames) == seam.Lead(before.End()))
        return true;
    ::unlink(work_.Path(index - 1, "part").c_str());
    return false;
}

std::string BookMaker::NameOf(std::size_t chapter) const {
    return "chapter " + std::to_string(chapter + 1) + " (" + order_.plan.chapters[chapter].title +
           ")";
}

void BookMaker::TellRemarks(std::size_t chapter) {
    const std::string told =
        TextOf(std::exchange(remarks_, {}), order_, order_.plan.chapters[chapter]);
    if (!told.empty())
        result_.remarks.push_back(NameOf(chapter) + ": " + told);
}

// What the sections behind it and the files need of it.
bool BookMaker::Keep(std::size_t index, const ChapterSpeech& speech, ChapterToEncode& job) {
    SpokenSection spoken;
    SpokenSection before;
    if (index > 0)
        before = work_.Spoken(index - 1);
    spoken.rate = speech.rate;
    spoken.begin = sections_[index].beginsFile ? 0 : before.End();
    spoken.frames = speech.frames;
    if (IsTooLong(index, spoken))
        return Fail(order_.target + ": " + kBookTooLong);
    spoken.levels = std::move(before.levels);
    if (order_.evensLoudness) {
        const LSoundSource source = LWaveFile::OpenSource(job.speech.c_str());
        const int lead = source->GetEndSample() - speech.frames;
        source->Seek(lead);
        spoken.levels.Measure(source, speech.voices);
        if (lead > 0)
            job.levels = std::move(before.leadLevels);
        for (LevelStretch level : spoken.levels.LevelsOf(speech.voices)) {
            level.first += job.levels.empty() ? 0 : lead;
            job.levels.push_back(level);
        }
    }
    std::string problem = KeepLead(index + 1, job.speech, spoken, job.levels);
    if (problem.empty() && order_.NeedsTimes())
        problem = work_.Write(work_.Path(index, "lines"), StoreSubtitles(speech.lines));
    if (problem.empty())
        problem = work_.Write(work_.Path(index, "remarks"), StoreRemarks(speech.remarks));
    if (problem.empty())
        problem = KeepSpoken(index, spoken);
    return Fail(problem);
}

// Told as soon as it shows: the whole takes hours.
bool BookMaker::IsTooLong(std::size_t index, const SpokenSection& spoken) const {
    if (order_.HasFileAChapter())
        return false;
    const auto frames = static_cast<double>(spoken.End());
    return LeastFrames(order_, sections_[index].end, frames, spoken.rate) >
           static_cast<double>(MostFrames(order_.type));
}

// The end of that speech, for the section with that number.
std::string BookMaker::KeepLead(std::size_t index, const std::string& speech, SpokenSection& spoken,
                                const std::vector<LevelStretch>& levels) {
    if (index == sections_.size() || sections_[index].beginsFile)
        return "";
    const BookSeam seam(order_.type, order_.kilobits, spoken.rate);
    const LSoundSource source = LWaveFile::OpenSource(speech.c_str());
    const int begin = source->GetEndSample() - static_cast<int>(seam.Lead(spoken.End()));
    source->Seek(begin);
    for (const LevelStretch& level : levels) {
        if (level.first <= begin)
            spoken.leadLevels.clear();
        spoken.leadLevels.push_back({std::max(level.first - begin, 0), level.change});
    }
    const std::vector<int> samples = SamplesOf(source);
    WholeFile file(work_.Path(index, "lead"), WholeFile::Existing::kReplace,
                   WholeFile::Unfinished::kLeave);
    if (!file.Problem().empty())
        return file.Problem();
    const LSoundSink lead = LWaveFile::OpenSinkPCM(file.WritePath().c_str(), spoken.rate, 1, 16, 0);
    for (std::size_t at = 0; at < samples.size(); at += kMaxBlockFrames)
        lead->Write(samples.data() + at,
                    static_cast<int>(std::min<std::size_t>(samples.size() - at, kMaxBlockFrames)));
    const int error = lead->Finish();
    return error == 0 ? file.Commit() : work_.Path(index, "lead") + ": " + std::strerror(error);
}

// An engine may speak the same text otherwise the next time: what an earlier run has made of the
// sections behind it fits no more then.
std::string BookMaker::KeepSpoken(std::size_t index, const SpokenSection& spoken) {
    const std::string path = work_.Path(index, "spoken");
    const std::string stored = StoreSpoken(spoken);
    const std::string earlier = ContentOf(path);
    if (!earlier.empty() && earlier != stored)
        for (std::size_t i = index + 1; i < sections_.size(); ++i)
            ::unlink(work_.Path(i, "part").c_str());
    return work_.Write(path, stored);
}

// All that are encoded by now and wait for no earlier one.
bool BookMaker::MakeChapters() {
    if (!order_.HasFileAChapter())
        return true;
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        const std::size_t chapter = sections_[i].chapter;
        if (chapter < chaptersMade_)
            continue;
        if (!IsFinished(i))
            return true;
        if (!sections_[i].endsChapter)
            continue;
        const bool isMade = work_.IsMade(chapter) && Exists(assembly_.ChapterPath(chapter));
        BookJoint made;
        if (!isMade)
            made = assembly_.MakeChapter(chapter, progress_);
        else if (!order_.isReadAlong && !work_.HasTags(chapter))
            made.problem = assembly_.TagAnew(chapter);
        if (made.isStopped || !Fail(made.problem))
            return false;
        chaptersMade_ = chapter + 1;
    }
    return true;
}

bool BookMaker::MakeBook() {
    if (!MakeChapters())
        return false;
    if (order_.HasFileAChapter() && chaptersMade_ < order_.plan.chapters.size())
        return Fail("a finished chapter is gone");
    if (IsFolder())
        return true;
    progress_.SetFirstLabel("Joining the chapters");
    if (order_.type == SoundType::kWav && order_.plan.chapters.size() > 1)
        result_.remarks.emplace_back("WAV files hold no titles and chapters.");
    // Players look for names with three digits.
    constexpr std::size_t kMostNumbered = 1000;
    if (const std::size_t chapters = order_.plan.chapters.size();
        chapters > kMostNumbered &&
        (order_.type == SoundType::kOpus || order_.type == SoundType::kFlac))
        result_.remarks.push_back("Many players show only the first " +
                                  std::to_string(kMostNumbered) + " of the " +
                                  std::to_string(chapters) + " chapters of such a file.");
    const BookJoint made = assembly_.MakeBook(progress_);
    return !made.isStopped && Fail(made.problem);
}

}  // namespace

BookResult MakeBook(BookOrder order, LProgress& progress) {
    if (order.rules.saysDifferently && order.rules.pronunciations == nullptr)
        order.rules.pronunciations = CurrentPronunciations();
    return BookMaker(order, progress).Make();
}
