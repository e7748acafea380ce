#include "books/book_assembly.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "books/book_seam.h"
#include "books/read_along.h"
#include "books/spoken_section.h"
#include "formats/aac_sink.h"
#include "formats/whole_file.h"
#include "speech/language_code.h"
#include "speech/voice_table.h"

// Of a file: the sections it is made of.
struct BookAssembly::Sound {
    std::size_t first = 0;
    std::vector<BookPart> parts;
    std::vector<long long> begins;  // milliseconds
    SoundLength length;

    long long Milliseconds() const { return length.frames * 1000 / length.rate; }
};

BookAssembly::Sound BookAssembly::SoundOf(std::size_t first, std::size_t end) const {
    Sound sound;
    sound.first = first;
    std::int64_t next = BookPart::kToTheEnd;  // the following section's first frame
    for (std::size_t i = end; i-- > first;) {
        const SpokenSection spoken = work_.Spoken(i);
        const int rate = std::max(spoken.rate, 1);
        sound.begins.insert(sound.begins.begin(), spoken.begin * 1000 / rate);
        if (i + 1 == end)
            sound.length = {spoken.End(), rate};
        if (spoken.frames == 0 && (i > first || !sound.parts.empty()))
            continue;
        const BookSeam seam(order_.type, order_.kilobits, rate);
        const std::int64_t from = seam.FirstFrame(spoken.begin);
        const std::int64_t before = seam.FramesBefore(spoken.begin);
        sound.parts.insert(sound.parts.begin(),
                           {work_.Path(i, "part"), from - before,
                            next == BookPart::kToTheEnd ? next : next - from, before});
        next = from;
    }
    return sound;
}

std::string BookAssembly::ChapterPath(std::size_t chapter) const {
    return order_.isReadAlong ? work_.Path(chapter, "chapter")
                              : order_.target + ChapterFileName(order_, chapter);
}

BookTags BookAssembly::TagsOf(std::size_t chapter) const {
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

// What the encoder was given.
SoundLength BookAssembly::TaggedLength(const SoundLength& length) const {
    if (order_.type != SoundType::kM4b)
        return length;
    const int rate = EncodedRate(order_.type, order_.kilobits, length.rate);
    return {length.frames * rate / length.rate, rate};
}

BookJoint BookAssembly::MakeFile(const Sound& sound, BookTags tags, const std::string& path,
                                 LProgress& progress) const {
    const bool isM4b = order_.type == SoundType::kM4b;
    const std::string joined = isM4b ? work_.Path(0, "aac") : path;
    BookJoint joint = JoinBook(order_.type, sound.parts, sound.length, joined, progress);
    if (joint.isStopped || !joint.problem.empty())
        return joint;
    tags.sound = TaggedLength(sound.length);
    if (isM4b)
        joint.problem = AddChapters(joined, tags, path, progress);
    joint.isStopped = progress.IsToStop();
    if (joint.problem.empty() && !joint.isStopped)
        joint.problem = WriteBookTags(path, order_.type, tags);
    return joint;
}

BookAssembly::Sound BookAssembly::SoundOfChapter(std::size_t chapter) const {
    std::size_t first = 0;
    while (sections_[first].chapter < chapter)
        ++first;
    std::size_t end = first;
    while (end < sections_.size() && sections_[end].chapter == chapter)
        ++end;
    return SoundOf(first, end);
}

// Its sections are gone: a copy takes the place of what is there.
std::string BookAssembly::TagAnew(std::size_t chapter) const {
    const std::string path = ChapterPath(chapter);
    WholeFile file(path, WholeFile::Existing::kReplace);
    std::string problem = file.Problem();
    std::error_code error;
    if (problem.empty() &&
        !std::filesystem::copy_file(path, file.WritePath(),
                                    std::filesystem::copy_options::overwrite_existing, error))
        problem = error.message();
    BookTags tags = TagsOf(chapter);
    tags.sound = TaggedLength(SoundOfChapter(chapter).length);
    if (problem.empty())
        problem = WriteBookTags(file.WritePath(), order_.type, tags);
    if (problem.empty())
        problem = file.Commit();
    if (problem.empty())
        problem = work_.NoteMade(chapter, path);
    return problem.empty() ? "" : path + ": " + problem;
}

BookJoint BookAssembly::MakeChapter(std::size_t chapter, LProgress& progress) const {
    const std::string path = ChapterPath(chapter);
    const Sound sound = SoundOfChapter(chapter);
    WholeFile file(path, WholeFile::Existing::kReplace);
    BookJoint joint;
    joint.problem = file.Problem();
    if (joint.problem.empty())
        joint = MakeFile(sound, order_.isReadAlong ? BookTags{} : TagsOf(chapter), file.WritePath(),
                         progress);
    if (joint.problem.empty() && !joint.isStopped)
        joint.problem = Publish(file, sound, path, WholeFile::Existing::kReplace);
    if (joint.problem.empty() && !joint.isStopped)
        joint.problem = work_.NoteMade(chapter, path);
    if (!joint.problem.empty())
        joint.problem = path + ": " + joint.problem;
    else if (!joint.isStopped)
        for (const BookPart& part : sound.parts)
            ::unlink(part.path.c_str());
    return joint;
}

BookJoint BookAssembly::MakeBook(LProgress& progress) const {
    const auto existing =
        order_.overwrites ? WholeFile::Existing::kReplace : WholeFile::Existing::kRefuse;
    WholeFile file(order_.target, existing);
    BookJoint joint;
    joint.problem = file.Problem();
    if (joint.problem.empty() && order_.isReadAlong) {
        joint.problem = WriteWithText(file.WritePath(), progress);
        joint.isStopped = progress.IsToStop();
        if (joint.isStopped)
            joint.problem.clear();
        else if (joint.problem.empty())
            joint.problem = Commit(file);
    } else if (joint.problem.empty()) {
        const Sound sound = SoundOf(0, sections_.size());
        BookTags tags = TagsOf(0);
        tags.title = order_.plan.title;
        tags.track = 0;
        for (std::size_t i = 0; i < sections_.size(); ++i) {
            if (!tags.chapters.empty())
                tags.chapters.back().end = sound.begins[i];
            if (i == 0 || sections_[i - 1].endsChapter)
                tags.chapters.push_back(
                    {sound.begins[i], 0, order_.plan.chapters[sections_[i].chapter].title});
        }
        tags.chapters.back().end = sound.Milliseconds();
        joint = MakeFile(sound, std::move(tags), file.WritePath(), progress);
        if (joint.problem.empty() && !joint.isStopped)
            joint.problem = Publish(file, sound, order_.target, existing);
    }
    if (!joint.problem.empty())
        joint.problem = order_.target + ": " + joint.problem;
    return joint;
}

// The encoder's first frame stands before the sound.
std::string BookAssembly::AddChapters(const std::string& joined, const BookTags& tags,
                                      const std::string& path, LProgress& progress) const {
    const std::string metadata = work_.Path(0, "chapters");
    std::string problem = work_.Write(metadata, ChapterMetadata(tags.chapters));
    if (!problem.empty())
        return problem;
    const std::string code = ThreeLetterLanguage(order_.plan.language);
    const std::string language = code.empty() ? "" : " -metadata:s:a:0 language=" + code;
    char early[40];
    std::snprintf(early, sizeof early, "-itsoffset -%lldus ", 1024 * 1000000LL / tags.sound.rate);
    const bool isDone =
        RunFfmpeg(early + std::string("-f aac -i ") + FfmpegFile(joined) + " -f ffmetadata -i " +
                      FfmpegFile(metadata) + " -map 0:a -map_metadata 1 -map_chapters 1 -c copy" +
                      language + " -f ipod",
                  path, progress);
    ::unlink(joined.c_str());
    return isDone || progress.IsToStop() ? ""
                                         : "the program ffmpeg could not put the chapters into it";
}

// With its subtitles, which replace none before the sound is there.
std::string BookAssembly::Publish(WholeFile& file, const Sound& sound, const std::string& path,
                                  WholeFile::Existing existing) const {
    if (!order_.subtitles)
        return Commit(file);
    std::vector<SubtitleLine> all;
    for (std::size_t i = 0; i < sound.begins.size(); ++i) {
        for (SubtitleLine line : LoadSubtitles(ContentOf(work_.Path(sound.first + i, "lines")))) {
            Delay(line, sound.begins[i]);
            all.push_back(std::move(line));
        }
    }
    const std::string beside = SubtitlesPath(path, *order_.subtitles);
    WholeFile subtitles(beside, existing);
    std::string problem = WriteInto(subtitles, SubtitleText(*order_.subtitles, all));
    if (problem.empty()) {
        problem = Commit(file);
        if (!problem.empty())
            return problem;
        problem = subtitles.Commit();
    }
    return problem.empty() ? "" : "its subtitles " + beside + ": " + problem;
}

// Noted before, so that whoever finds both knows the book for done.
std::string BookAssembly::Commit(WholeFile& file) const {
    const std::string problem = order_.target.back() == '/' ? "" : work_.NoteDone(file.WritePath());
    return problem.empty() ? file.Commit() : problem;
}

std::string BookAssembly::WriteWithText(const std::string& path, LProgress& progress) const {
    std::vector<ReadAlongChapter> chapters;
    for (std::size_t i = 0; i < order_.plan.chapters.size(); ++i)
        chapters.push_back({ChapterPath(i), {}});
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        const SpokenSection spoken = work_.Spoken(i);
        const long long begin = spoken.begin * 1000 / std::max(spoken.rate, 1);
        const std::size_t chapter = sections_[i].chapter;
        const std::size_t behind = sections_[i].begin - order_.plan.chapters[chapter].begin;
        for (SubtitleLine line : LoadSubtitles(ContentOf(work_.Path(i, "lines")))) {
            Delay(line, begin);
            line.sourceBegin += behind;
            line.sourceEnd += behind;
            chapters[chapter].lines.push_back(std::move(line));
        }
    }
    return WriteReadAlong(path, order_.plan, order_.text, VoiceAt(order_.voice).language, chapters,
                          progress);
}
