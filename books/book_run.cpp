#include "books/book_run.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "books/book_estimate.h"
#include "books/book_joint.h"
#include "books/book_sections.h"
#include "books/book_work.h"
#include "books/chapter_encoder.h"
#include "books/chapter_speech.h"
#include "books/read_along.h"
#include "formats/aac_sink.h"
#include "formats/whole_file.h"
#include "foundation/files/path_text.h"
#include "speech/language_code.h"
#include "speech/pronunciations.h"
#include "speech/voice_table.h"

namespace {

constexpr double kLeastRate = 16000;  // of voices

class BookMaker {
public:
    BookMaker(const BookOrder& order, LProgress& progress)
        : order_(order), progress_(progress), work_(order), sections_(SectionsOf(order)) {}

    BookResult Make();

private:
    bool Fail(const std::string& problem) {
        if (result_.problem.empty())
            result_.problem = problem;
        return false;
    }
    bool IsFolder() const { return order_.target.back() == '/'; }
    // By the number of a section.
    std::string FinishedPath(std::size_t index) const;
    bool IsFinished(std::size_t index) const {
        return ::access(FinishedPath(index).c_str(), F_OK) == 0;
    }
    std::size_t FinishedChapters() const;
    std::string SubtitlePath(std::size_t index) const { return work_.Path(index, "lines"); }
    BookTags TagsOf(std::size_t chapter) const;
    bool SpeakSections(ChapterEncoder& encoder);
    bool SpeakSection(std::size_t index, ChapterEncoder& encoder);
    bool KeepTimes(std::size_t index, const ChapterSpeech& speech);
    bool Join();
    std::string WriteWithText(const std::string& path);
    bool JoinInto(const std::string& path, std::vector<ChapterMark>& marks);
    bool AddChapters(const std::string& joined, const std::vector<ChapterMark>& marks,
                     const std::string& path);
    bool WriteSubtitles();
    bool WriteFile(const std::string& path, const std::string& content);

    const BookOrder& order_;
    LProgress& progress_;
    BookWork work_;
    std::vector<BookSection> sections_;
    std::vector<long long> begins_;  // of the sections in the book, milliseconds
    BookResult result_;
};

std::string BookMaker::FinishedPath(std::size_t index) const {
    return IsFolder() ? order_.target + ChapterFileName(order_, sections_[index].chapter)
                      : work_.Path(index, "part");
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

BookTags BookMaker::TagsOf(std::size_t chapter) const {
    const BookPlan& plan = order_.plan;
    BookTags tags;
    tags.title = plan.chapters[chapter].title;
    tags.author = plan.author;
    tags.album = plan.title;
    tags.language = plan.language;
    tags.track = static_cast<int>(chapter) + 1;
    tags.tracks = static_cast<int>(plan.chapters.size());
    tags.cover = plan.cover;
    return tags;
}

BookResult BookMaker::Make() {
    if (order_.plan.chapters.empty()) {
        Fail("there is nothing to read");
        return result_;
    }
    // Better now than when all is spoken.
    if (!IsFolder() && EstimateBook(order_.plan, order_).seconds * kLeastRate >
                           static_cast<double>(MostFrames(order_.type))) {
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
    result_.isDone = isSpoken && result_.problem.empty() && Join();
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
        if (!IsFinished(i) && !SpeakSection(i, encoder))
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
    job.path = FinishedPath(index);
    job.name = "chapter " + std::to_string(section.chapter + 1) + " (" + chapter.title + ")";
    job.type = order_.type;
    job.isPart = !IsFolder();
    job.kilobits = order_.kilobits;
    job.evensLoudness = order_.evensLoudness;
    if (IsFolder())
        job.tags = TagsOf(section.chapter);
    const std::string spoken = job.speech;
    const ChapterSpeech speech =
        SpeakBookChapter(order_, {chapter.title, section.begin, section.end},
                         section.endsChapter ? order_.secondsBetween : 0, spoken, progress_);
    if (!speech.isStopped && !speech.problem.empty())
        Fail(job.name + ": " + speech.problem);
    if (!speech.remark.empty())
        result_.remarks.push_back(job.name + ": " + speech.remark);
    const bool isTaken = !speech.isStopped && speech.problem.empty() && KeepTimes(index, speech) &&
                         encoder.Add(std::move(job), progress_);
    if (!isTaken)
        ::unlink(spoken.c_str());
    return isTaken;
}

// Beside the chapter, or until all chapters are joined.
bool BookMaker::KeepTimes(std::size_t index, const ChapterSpeech& speech) {
    if (!order_.NeedsTimes())
        return true;
    if (!IsFolder())
        return WriteFile(SubtitlePath(index), StoreSubtitles(speech.lines));
    const std::string path = FinishedPath(index);
    return WriteFile(path.substr(0, path.rfind('.') + 1) + EndingOf(*order_.subtitles),
                     SubtitleText(*order_.subtitles, speech.lines));
}

bool BookMaker::WriteFile(const std::string& path, const std::string& content) {
    WholeFile file(path, WholeFile::Existing::kReplace);
    std::string problem = file.Problem();
    if (problem.empty()) {
        errno = 0;
        std::FILE* const out = std::fopen(file.WritePath().c_str(), "wbe");
        const bool isWritten =
            out != nullptr && std::fwrite(content.data(), 1, content.size(), out) == content.size();
        if ((out != nullptr && std::fclose(out) != 0) || !isWritten)
            problem = std::strerror(errno);
        else
            problem = file.Commit();
    }
    return problem.empty() || Fail(path + ": " + problem);
}

bool BookMaker::Join() {
    if (IsFolder())
        return true;
    progress_.SetFirstLabel("Joining the chapters");
    WholeFile file(order_.target, order_.overwrites ? WholeFile::Existing::kReplace
                                                    : WholeFile::Existing::kRefuse);
    if (!file.Problem().empty())
        return Fail(order_.target + ": " + file.Problem());
    if (order_.isReadAlong) {
        std::string problem = WriteWithText(file.WritePath());
        if (problem.empty())
            problem = file.Commit();
        return problem.empty() || Fail(order_.target + ": " + problem);
    }
    std::vector<ChapterMark> marks;
    if (!JoinInto(file.WritePath(), marks))
        return false;
    BookTags tags = TagsOf(0);
    tags.title = order_.plan.title;
    tags.track = 0;
    tags.chapters = marks;
    if (!WriteBookTags(file.WritePath(), order_.type, tags))
        return Fail(order_.target + ": titles and chapters cannot be written");
    if (order_.type == SoundType::kWav && marks.size() > 1)
        result_.remarks.emplace_back("WAV files hold no titles and chapters.");
    if (order_.subtitles && !WriteSubtitles())
        return false;
    const std::string problem = file.Commit();
    return problem.empty() || Fail(order_.target + ": " + problem);
}

std::string BookMaker::WriteWithText(const std::string& path) {
    std::vector<ReadAlongChapter> chapters;
    chapters.reserve(order_.plan.chapters.size());
    for (std::size_t i = 0; i < order_.plan.chapters.size(); ++i)
        chapters.push_back({FinishedPath(i), LoadSubtitles(ContentOf(SubtitlePath(i)))});
    return WriteReadAlong(path, order_.plan, order_.text, VoiceAt(order_.voice).language, chapters);
}

bool BookMaker::JoinInto(const std::string& path, std::vector<ChapterMark>& marks) {
    std::vector<std::string> parts;
    parts.reserve(sections_.size());
    for (std::size_t i = 0; i < sections_.size(); ++i)
        parts.push_back(FinishedPath(i));
    const bool isM4b = order_.type == SoundType::kM4b;
    const std::string joined = isM4b ? work_.Path(0, "aac") : path;
    const BookJoint joint = JoinBook(order_.type, parts, joined, progress_);
    if (joint.isStopped)
        return false;
    if (!joint.problem.empty())
        return Fail(order_.target + ": " + joint.problem);
    std::int64_t frames = 0;
    long long chapter = 0;  // when it begins
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        begins_.push_back(frames * 1000 / joint.rate);
        frames += joint.frames[i];
        if (!sections_[i].endsChapter)
            continue;
        const long long end = frames * 1000 / joint.rate;
        marks.push_back({chapter, end, order_.plan.chapters[sections_[i].chapter].title});
        chapter = end;
    }
    return !isM4b || AddChapters(joined, marks, path);
}

bool BookMaker::AddChapters(const std::string& joined, const std::vector<ChapterMark>& marks,
                            const std::string& path) {
    const std::string metadata = work_.Path(0, "chapters");
    if (!WriteFile(metadata, ChapterMetadata(marks)))
        return false;
    const std::string code = ThreeLetterLanguage(order_.plan.language);
    const std::string language = code.empty() ? "" : " -metadata:s:a:0 language=" + code;
    const bool isDone =
        RunFfmpeg("-f aac -i " + FfmpegFile(joined) + " -f ffmetadata -i " + FfmpegFile(metadata) +
                  " -map 0:a -map_metadata 1 -map_chapters 1 -c copy" + language + " -f ipod " +
                  FfmpegFile(path));
    return isDone ||
           Fail(order_.target + ": the program ffmpeg could not put the chapters into it");
}

bool BookMaker::WriteSubtitles() {
    std::vector<SubtitleLine> all;
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        for (SubtitleLine line : LoadSubtitles(ContentOf(SubtitlePath(i)))) {
            Delay(line, begins_[i]);
            all.push_back(std::move(line));
        }
    }
    const std::size_t slash = order_.target.rfind('/');
    const std::size_t dot = order_.target.rfind('.');
    const bool hasEnding =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return WriteFile(order_.target.substr(0, hasEnding ? dot : std::string::npos) + "." +
                         EndingOf(*order_.subtitles),
                     SubtitleText(*order_.subtitles, all));
}

}  // namespace

BookResult MakeBook(BookOrder order, LProgress& progress) {
    if (order.rules.saysDifferently)
        order.rules.pronunciations = CurrentPronunciations();
    return BookMaker(order, progress).Make();
}
