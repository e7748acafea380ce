#include "tools/say_options.h"

#include <getopt.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "documents/chosen_rules.h"
#include "tools/tool_texts.h"

namespace {

enum SayOption : int {
    kListVoices = 256,
    kSplit,
    kText,
    kWholePage,
    kByLanguage,
    kOneVoice,
    kAsWritten,
    kSkip,
    kKeep,
    kSayHelp,
    kSayVersion
};

const option kSayOptions[] = {{"voice", required_argument, nullptr, 'v'},
                              {"list-voices", no_argument, nullptr, kListVoices},
                              {"output", required_argument, nullptr, 'o'},
                              {"type", required_argument, nullptr, 't'},
                              {"force", no_argument, nullptr, 'f'},
                              {"progress", no_argument, nullptr, 'p'},
                              {"split", optional_argument, nullptr, kSplit},
                              {"text", optional_argument, nullptr, kText},
                              {"whole-page", no_argument, nullptr, kWholePage},
                              {"by-language", no_argument, nullptr, kByLanguage},
                              {"one-voice", no_argument, nullptr, kOneVoice},
                              {"as-written", no_argument, nullptr, kAsWritten},
                              {"skip", required_argument, nullptr, kSkip},
                              {"keep", required_argument, nullptr, kKeep},
                              {"audiobook", optional_argument, nullptr, kAudiobook},
                              {"bitrate", required_argument, nullptr, kBitRate},
                              {"subtitles", required_argument, nullptr, kSubtitles},
                              {"speed", required_argument, nullptr, kSpeed},
                              {"silence", required_argument, nullptr, kSilence},
                              {"own-level", no_argument, nullptr, kOwnLevel},
                              {"title", required_argument, nullptr, kTitle},
                              {"author", required_argument, nullptr, kAuthor},
                              {"cover", required_argument, nullptr, kCover},
                              {"plan", no_argument, nullptr, kPlan},
                              {"as-begun", no_argument, nullptr, kAsBegun},
                              {"help", no_argument, nullptr, kSayHelp},
                              {"version", no_argument, nullptr, kSayVersion},
                              {nullptr, 0, nullptr, 0}};

// What the command line says, before it is put together.
struct Words {
    std::string output;
    std::optional<SoundType> type;
    std::vector<std::string> files;
};

int ShowSayHelp() {
    std::printf(
        "Usage: %s [OPTION...] -o OUTPUT [FILE]\n"
        "       %s [OPTION...] -o - [FILE]\n"
        "       %s [OPTION...] -o FOLDER/ [-t TYPE] FILE...\n"
        "       %s --text[=FORM] [FILE...]\n"
        "       %s --list-voices\n"
        "Speaks a text (FILE; standard input for - or none) into a sound file, or each of many\n"
        "into one of its own.\n\n"
        "  -o, --output=OUTPUT  sound file, the folder for many, or - for WAV on standard output\n"
        "  -t, --type=TYPE      type of sound file; from OUTPUT's extension without it, in a "
        "folder wav:\n"
        "                       %s\n"
        "  -v, --voice=VOICE    name, title or number of a voice; the one chosen in\n"
        "                       Lectora without it\n"
        "      --by-language    each language in a voice of its own, the voice for the others; so "
        "without\n"
        "                       --voice, unless --one-voice\n"
        "      --list-voices    list the installed voices: number, name, engine, language,\n"
        "                       title\n"
        "  -f, --force          overwrite sound files\n"
        "  -p, --progress       show progress also beside sound on standard output\n"
        "      --split[=MINUTES]  write parts of that length, or of what a file can hold: "
        "OUTPUT-01, ...\n"
        "      --text[=FORM]    print the text that would be read: whole, by sentences, or as "
        "spoken "
        "by the voice\n"
        "      --whole-page     of a web page read menus and all else around its article too\n"
        "      --as-written     leave the pronunciation list aside\n"
        "      --skip=PARTS     leave out of documents: marks (that point to notes), notes, code,\n"
        "                       captions, heads (of pages), addresses (but for their site); "
        "several\n"
        "                       with commas between\n"
        "      --keep=PARTS     read them; without both, what the options of Lectora say\n"
        "%s"
        "      --help           show this text\n"
        "      --version        show the version\n",
        kSayProgram, kSayProgram, kSayProgram, kSayProgram, kSayProgram,
        AllSoundTypeNames().c_str(), kBookHelp);
    return kExitDone;
}

bool IsFolder(const std::string& path) {
    struct stat info;
    return path.back() == '/' || (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode));
}

std::string SoundNameFor(const std::string& textPath, const char* ending) {
    std::string file = textPath.substr(textPath.rfind('/') + 1);
    if (file.empty())
        file = "page";  // an address may name a site alone
    const std::size_t dot = file.rfind('.');
    return (dot == 0 ? file : file.substr(0, dot)) + "." + ending;
}

std::optional<int> PlanFolder(const Words& words, SayOptions& options) {
    if (words.files.empty())
        return UsageError(kSayProgram, "a folder as output needs files as input");
    const std::string folder = words.output.back() == '/' ? words.output : words.output + "/";
    std::set<std::string> taken;
    for (const std::string& file : words.files) {
        const SoundType type =
            words.type.value_or(options.book ? SoundType::kMp3 : SoundType::kWav);
        const bool isReadAlong = options.book && options.book->isReadAlong;
        SayJob job{file, folder + SoundNameFor(file, isReadAlong ? kReadAlongName : NameOf(type)),
                   type};
        if (options.book && options.book->inChapters)
            job.sound =
                words.files.size() == 1 ? folder : job.sound.substr(0, job.sound.rfind('.')) + "/";
        if (!taken.insert(job.sound).second)
            return UsageError(kSayProgram, job.sound + ": two of the files would be written there");
        options.jobs.push_back(job);
    }
    return std::nullopt;
}

std::optional<int> PlanStream(const Words& words, SayOptions& options) {
    if (words.files.size() > 1)
        return UsageError(kSayProgram, "standard output takes one text");
    if (words.type.value_or(SoundType::kWav) != SoundType::kWav || options.splitMinutes)
        return UsageError(kSayProgram, "standard output is one stream of WAV");
    if (::isatty(STDOUT_FILENO) == 1)
        return UsageError(kSayProgram, "sound is not written to a terminal");
    options.jobs.push_back(
        {words.files.empty() ? "" : words.files[0], kStandardOutput, SoundType::kWav});
    return std::nullopt;
}

bool ParseSplit(const char* minutes, SayOptions& options) {
    constexpr int kLeastMinutes = 15;  // longer than what the engine speaks in one run
    constexpr int kMostMinutes = 24 * 60;
    int number = 0;
    if (minutes != nullptr && !ParseNumber(minutes, kLeastMinutes, kMostMinutes, number))
        return false;
    options.splitMinutes = number;
    return true;
}

bool ParseTextForm(const char* form, SayOptions& options) {
    constexpr std::pair<const char*, TextForm> kForms[] = {{"whole", TextForm::kWhole},
                                                           {"sentences", TextForm::kSentences},
                                                           {"spoken", TextForm::kSpoken}};
    for (const auto& [name, value] : kForms)
        if (std::strcmp(form, name) == 0)
            options.printsText = value;
    return options.printsText.has_value();
}

// "notes,code"; false when one of them is not known.
bool ParseParts(std::string_view parts, bool isRead, SayOptions& options) {
    constexpr std::pair<std::string_view, bool DocumentRules::*> kParts[] = {
        {"marks", &DocumentRules::referenceMarks},
        {"notes", &DocumentRules::notes},
        {"code", &DocumentRules::code},
        {"captions", &DocumentRules::captions},
        {"heads", &DocumentRules::pageHeads}};
    for (;;) {
        const std::size_t end = std::min(parts.find(','), parts.size());
        const std::string_view name = parts.substr(0, end);
        const auto* known = std::find_if(std::begin(kParts), std::end(kParts),
                                         [&](const auto& part) { return part.first == name; });
        if (name == "addresses")
            options.speaking.saysHosts = !isRead;
        else if (known == std::end(kParts))
            return false;
        else
            options.rules.*known->second = isRead;
        if (end == parts.size())
            return true;
        parts.remove_prefix(end + 1);
    }
}

// Refuses what names no file.
std::optional<int> CheckSayFiles(const Words& words) {
    for (const std::string& file : words.files)
        if (file.empty() || file == "-")
            return UsageError(kSayProgram,
                              "'" + file + "' is no file; standard input is read alone");
    return std::nullopt;
}

std::optional<int> PlanPrinting(const Words& words, SayOptions& options) {
    if (!words.output.empty())
        return UsageError(kSayProgram, "--text prints to standard output, without -o");
    if (words.files.empty())
        options.jobs.emplace_back();
    for (const std::string& file : words.files)
        options.jobs.push_back({file, kStandardOutput, SoundType::kWav});
    return CheckSayFiles(words);
}

// What is wrong with what is asked for an audiobook; empty when nothing is.
std::string BookProblem(const Words& words, const SayOptions& options) {
    if (words.output == kStandardOutput || options.splitMinutes)
        return "an audiobook is one file, or a file for each chapter";
    if (options.book->isReadAlong && (options.book->inChapters || options.book->subtitles))
        return "an EPUB to read along is one file, and holds its text";
    if (options.book->inChapters && !IsFolder(words.output))
        return words.output + ": chapters go into a folder (" + words.output + "/)";
    const SoundType type =
        words.type.value_or(SoundTypeOfPath(words.output).value_or(SoundType::kMp3));
    for (const SoundType known :
         {SoundType::kMp3, SoundType::kOpus, SoundType::kM4b, SoundType::kFlac, SoundType::kWav})
        if (type == known)
            return "";
    return std::string("audiobooks are mp3, opus, m4b, flac or wav, not ") + NameOf(type);
}

std::optional<int> PlanJobs(const Words& words, SayOptions& options) {
    if (words.output.empty())
        return UsageError(kSayProgram, "-o names the sound file to write");
    if (const std::optional<int> status = CheckSayFiles(words))
        return status;
    if (options.book) {
        if (const std::string problem = BookProblem(words, options); !problem.empty())
            return UsageError(kSayProgram, problem);
    }
    if (words.output == kStandardOutput)
        return PlanStream(words, options);
    if (IsFolder(words.output))
        return PlanFolder(words, options);
    if (words.files.size() > 1)
        return UsageError(kSayProgram, words.output + ": many files need a folder as output");
    const std::optional<SoundType> type = words.type ? words.type : SoundTypeOfPath(words.output);
    if (!type)
        return UsageError(kSayProgram, words.output + ": no extension that names a type (" +
                                           AllSoundTypeNames() + "); -t names it");
    options.jobs.push_back({words.files.empty() ? "" : words.files[0], words.output, *type});
    return std::nullopt;
}

// False for what has a value, or ends the program.
bool TakeFlag(int option, SayOptions& options) {
    switch (option) {
        case 'f':
            return options.overwrite = true;
        case 'p':
            return options.showsProgress = true;
        case kWholePage:
            return options.rules.wholePage = true;
        case kListVoices:
            return options.listsVoices = true;
        case kAsWritten:
            options.speaking.saysDifferently = false;
            return true;
        case kByLanguage:
        case kOneVoice:
            options.byLanguage = option == kByLanguage;
            return true;
        default:
            return false;
    }
}

// How texts are read and written; the exit status when the option's value is none.
std::optional<int> ParseManner(int option, SayOptions& options) {
    const std::string value = optarg == nullptr ? "" : optarg;
    if (option == kSplit && !ParseSplit(optarg, options))
        return UsageError(kSayProgram, "no such length of parts: " + value);
    if (option == kText && !ParseTextForm(optarg == nullptr ? "whole" : optarg, options))
        return UsageError(kSayProgram, "no such form of text: " + value);
    if ((option == kSkip || option == kKeep) && !ParseParts(value, option == kKeep, options))
        return UsageError(kSayProgram, "no such part of documents: " + value);
    return std::nullopt;
}

// What the user said of books, before it is known whether there is to be one.
struct BookWords {
    BookWish wish;
    bool hasOption = false;
};

bool TakeType(const char* name, Words& words, BookWish& wish) {
    words.type = SoundTypeFromName(name);
    wish.isReadAlong = std::strcmp(name, kReadAlongName) == 0;
    if (wish.isReadAlong)
        words.type = SoundType::kMp3;
    return words.type.has_value();
}

// An exit status when the program is to end.
std::optional<int> TakeSayOption(int option, Words& words, BookWords& book, SayOptions& options) {
    if (TakeFlag(option, options))
        return std::nullopt;
    if (option >= kAudiobook && option < kBookOptionsEnd) {
        book.hasOption = true;
        if (!TakeBookOption(option, optarg, book.wish))
            return UsageError(kSayProgram, std::string("not for an audiobook: ") + optarg);
        return std::nullopt;
    }
    switch (option) {
        case 'v':
            options.voice = optarg;
            return std::nullopt;
        case 'o':
            words.output = optarg;
            return std::nullopt;
        case 't':
            if (!TakeType(optarg, words, book.wish))
                return UsageError(kSayProgram, std::string("no such type: ") + optarg);
            return std::nullopt;
        case kSplit:
        case kSkip:
        case kKeep:
        case kText:
            return ParseManner(option, options);
        case kSayHelp:
            return ShowSayHelp();
        case kSayVersion:
            return ShowVersion(kSayProgram);
        default:  // getopt_long has told the rest
            std::fprintf(stderr, "Try '%s --help'.\n", kSayProgram);
            return kExitUsage;
    }
}

std::optional<int> SettleBook(Words& words, BookWords& book, SayOptions& options) {
    if (book.wish.isWanted && words.output.ends_with(".epub") && !words.type) {
        book.wish.isReadAlong = true;
        words.type = SoundType::kMp3;
    }
    if (book.wish.isWanted)
        options.book = book.wish;
    else if (book.wish.isReadAlong)
        return UsageError(kSayProgram, "epub is for --audiobook");
    else if (book.hasOption)
        return UsageError(kSayProgram,
                          "--bitrate, --speed, --silence, --own-level, --title, --author, --cover, "
                          "--subtitles and --plan belong to --audiobook");
    return std::nullopt;
}

std::optional<int> Plan(const Words& words, SayOptions& options) {
    if (options.listsVoices)
        return std::nullopt;
    if (options.printsText)
        return PlanPrinting(words, options);
    if (const std::optional<int> status = PlanJobs(words, options))
        return status;
    for (const SayJob& job : options.jobs)
        if (!RowOf(job.type).CanBeWritten())
            return UsageError(kSayProgram, job.sound + ": " + NameOf(job.type) +
                                               " files can be read but not written");
    return std::nullopt;
}

}  // namespace

std::optional<int> ParseSayOptions(int argc, char* const* argv, SayOptions& options) {
    Words words;
    BookWords book;
    options.rules = ChosenDocumentRules();
    options.speaking.saysHosts = ChosenSpeakingRules().saysHosts;
    optind = 1;
    for (int option = 0;
         (option = ::getopt_long(argc, argv, "v:o:t:fp", kSayOptions, nullptr)) != -1;) {
        if (const std::optional<int> status = TakeSayOption(option, words, book, options))
            return status;
    }
    options.speaking.byLanguage =
        options.byLanguage.value_or(!options.voice && ChosenSpeakingRules().byLanguage);
    options.speaking.choices = ChosenSpeakingChoices();
    words.files.assign(argv + optind, argv + argc);
    if (words.files == std::vector<std::string>{"-"})
        words.files.clear();  // standard input, as without files
    if (const std::optional<int> status = SettleBook(words, book, options))
        return status;
    return Plan(words, options);
}
