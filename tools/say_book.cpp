#include "tools/say_book.h"

#include <sys/stat.h>

#include <cstdio>
#include <optional>
#include <utility>

#include "books/book_cover.h"
#include "books/book_estimate.h"
#include "books/book_run.h"
#include "books/subtitles.h"
#include "books/unfinished_book.h"
#include "formats/whole_file.h"
#include "playback/settings_keys.h"
#include "speech/voice_manner.h"
#include "speech/voice_table.h"
#include "tools/interruption.h"
#include "tools/say_document.h"
#include "tools/terminal_progress.h"
#include "tools/tool_texts.h"

namespace {

std::string Clock(double seconds) {
    const auto whole = static_cast<long long>(seconds);
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
    return text;
}

std::string StemOf(const std::string& path) {
    const std::string file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    return dot == 0 || dot == std::string::npos ? file : file.substr(0, dot);
}

// Columns between tabs, so that other programs can take them apart.
void PrintPlan(const BookOrder& order) {
    std::printf("%s\t%s\t%s\n", order.plan.title.c_str(),
                order.plan.author.empty() ? "-" : order.plan.author.c_str(),
                order.plan.language.empty() ? "-" : order.plan.language.c_str());
    const BookEstimate whole = EstimateBook(order.plan, order);
    std::printf("about %s\tabout %.1f MB\n", Clock(whole.seconds).c_str(),
                static_cast<double>(whole.bytes) / 1e6);
    std::size_t number = 0;
    for (const BookChapter& chapter : order.plan.chapters)
        std::printf("%zu\t%s\t%s\n", ++number, Clock(SecondsOfChapter(order, chapter)).c_str(),
                    chapter.title.c_str());
}

// Why it cannot be, or empty.
std::string FillOrder(const BookWish& wish, const Document& document, BookOrder& order) {
    for (const DocumentLanguage& language : document.languages)
        order.rules.marks.push_back({language.begin, language.tag});
    order.text = document.text;
    order.kilobits = wish.kilobits;
    order.evensLoudness = wish.evensLoudness;
    order.secondsBetween = wish.secondsBetween;
    order.rules.manners = MannersOfVoices();
    for (const Voice& voice : KnownVoices())
        order.rules.speeds.push_back(wish.speed ? *wish.speed
                                                : PlayerTempo(SettingsKeyOf(voice).c_str()).Get());
    order.subtitles = wish.subtitles;
    order.isReadAlong = wish.isReadAlong;
    BookPlan& plan = order.plan;
    if (wish.title)
        TitleBook(plan, AsTag(*wish.title));
    if (wish.author)
        plan.author = AsTag(*wish.author);
    std::string problem;
    if (wish.cover)
        plan.cover = wish.cover->empty() ? "" : ReadCover(*wish.cover, problem);
    return problem.empty() ? "" : *wish.cover + ": " + problem;
}

// What is lost of it is told before it is. Gives back why it cannot go on; "": it can.
std::string GoOnWith(const UnfinishedBook& unfinished, bool asBegun, const std::string& subject,
                     BookOrder& order) {
    if (asBegun && unfinished.asBegun) {
        const bool areWished = order.subtitles == unfinished.asBegun->subtitles;
        order = *unfinished.asBegun;
        // Leave to replace the book is none to replace what the command did not name.
        if (!areWished && order.subtitles && order.target.back() != '/') {
            struct stat info = {};
            const std::string beside = SubtitlesPath(order.target, *order.subtitles);
            if (::lstat(beside.c_str(), &info) == 0)
                return beside + ": " + WholeFile::kExists;
        }
        return "";
    }
    Complain(kSayProgram, subject + ": was begun with " + unfinished.difference + "; " +
                              std::to_string(unfinished.pieces) +
                              " finished chapters or parts are made anew" +
                              (unfinished.asBegun ? " (not so with --as-begun)" : ""));
    return "";
}

}  // namespace

int SayBook(const SayOptions& options, const SayJob& job, const Document& document, int voice,
            const std::string& workFolder) {
    const std::string subject = NameOfText(job.text);
    BookOrder order;
    order.plan = PlanBook(document, StemOf(subject));
    order.voice = voice;
    order.rules = options.speaking;
    order.type = job.type;
    order.target = job.sound;
    order.overwrites = options.overwrite;
    order.engineFolder = workFolder;
    if (const std::string problem = FillOrder(*options.book, document, order); !problem.empty()) {
        Complain(kSayProgram, problem);
        return kExitFailed;
    }
    if (options.book->isOnlyPlanned) {
        PrintPlan(order);
        return kExitDone;
    }
    if (!order.plan.remark.empty())
        Complain(kSayProgram, subject + ": " + order.plan.remark);
    if (const std::optional<UnfinishedBook> unfinished = FindUnfinished(order))
        if (const std::string problem =
                GoOnWith(*unfinished, options.book->asBegun, subject, order);
            !problem.empty()) {
            Complain(kSayProgram, subject + ": " + problem);
            return kExitFailed;
        }
    const std::size_t chapters = order.plan.chapters.size();
    BookResult result;
    {
        LTerminalProgress progress;
        result = MakeBook(std::move(order), progress);
    }
    for (const std::string& remark : result.remarks)
        Complain(kSayProgram, subject + ": " + remark);
    if (result.isDone)
        return kExitDone;
    std::string told =
        result.problem.empty() ? subject + ": stopped" : subject + ": " + result.problem;
    if (result.chaptersKept > 0)
        told += "; " + std::to_string(result.chaptersKept) + " of " + std::to_string(chapters) +
                " chapters are kept, and the same command goes on with the next";
    Complain(kSayProgram, told);
    return kExitFailed;
}
