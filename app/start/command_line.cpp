#include "app/start/command_line.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string_view>

#include "app/control/verb.h"
#include "foundation/files/file_io.h"
#include "foundation/files/unique_fd.h"

namespace {

constexpr const char* kUsage =
    "Usage: lectora [FILE...]\n"
    "       lectora VERB\n"
    "       lectora -install | -uninstall | -check\n"
    "\n"
    "Opens Lectora, which reads texts aloud, and reads each FILE: plain text, HTML,\n"
    "EPUB, ODT, DOCX, PDF and others, or the address of a web page. \"-\" reads the\n"
    "standard input, a file:// address its file; behind \"--\" everything is a file.\n"
    "A Lectora that runs takes them over.\n"
    "\n"
    "  -install     place this copy on the machine\n"
    "  -uninstall   remove it\n"
    "  -check       tell what this computer lacks for reading aloud\n"
    "  --help       show this help and exit\n"
    "  --version    show the version and exit\n"
    "\n"
    "Verbs for the Lectora that runs; those that read start one where none does. The exit\n"
    "status is 0 once it is done, and 1 when it could not be:\n"
    "\n";

constexpr const char* kOwnWords[] = {"-logon", "-block", "-install", "-uninstall", "-check"};

constexpr std::string_view kSpoolStart = "/tmp/lectora-input-";
constexpr std::string_view kSpoolName = "/Standard input.txt";
constexpr std::size_t kMostInput = std::size_t{256} << 20;

void TellVerbs() {
    for (const VerbFacts& verb : AllVerbs()) {
        const std::string words = std::string(verb.word) + " " + verb.operand;
        std::printf("  %-20s %s\n", words.c_str(), verb.does);
    }
}

bool IsOwnWord(const std::string& argument) {
    return std::ranges::any_of(kOwnWords, [&](const char* word) {
        return g_ascii_strcasecmp(word, argument.c_str()) == 0;
    });
}

bool IsThere(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0;
}

// As the instance sees it; one that is not there as it was typed, so that the user can be told.
std::string WholePath(const std::string& name) {
    if (name.empty() || name[0] == '/' || !IsThere(name))
        return name;
    const std::unique_ptr<char, decltype(&std::free)> whole(::realpath(name.c_str(), nullptr),
                                                            &std::free);
    return whole ? whole.get() : name;
}

// An address on another machine stays one.
std::string PathOfAddress(const std::string& address) {
    char* host = nullptr;
    const std::unique_ptr<char, decltype(&g_free)> path(
        g_filename_from_uri(address.c_str(), &host, nullptr), &g_free);
    const std::unique_ptr<char, decltype(&g_free)> owner(host, &g_free);
    const bool isHere = host == nullptr || g_ascii_strcasecmp(host, "localhost") == 0 ||
                        g_ascii_strcasecmp(host, g_get_host_name()) == 0;
    return path && isHere ? path.get() : address;
}

bool CopyInput(int to) {
    char block[65536];
    std::size_t total = 0;
    for (;;) {
        int error = 0;
        const std::size_t got = ReadFully(STDIN_FILENO, block, sizeof block, &error);
        total += got;
        if (error != 0 || total > kMostInput || WriteFully(to, block, got) != 0)
            return false;
        if (got < sizeof block)
            return true;
    }
}

// Its file, for this user alone; empty when it could not be kept.
std::string SpoolInput() {
    std::string folder = std::string(kSpoolStart) + "XXXXXX";
    if (::mkdtemp(folder.data()) == nullptr)
        return std::string();
    std::string path = folder + std::string(kSpoolName);
    const UniqueFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (file.IsOpen() && CopyInput(file.Get()))
        return path;
    ::unlink(path.c_str());
    ::rmdir(folder.c_str());
    return std::string();
}

bool IsSpooled(const std::string& path) {
    return path.starts_with(kSpoolStart) && path.ends_with(kSpoolName) &&
           std::ranges::count(path, '/') == 3;
}

}  // namespace

std::optional<int> AnswerOnTerminal(int argc, const char* const* argv) {
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument == "--")
            break;
        if (argument == "--help" || argument == "-h") {
            std::fputs(kUsage, stdout);
            TellVerbs();
            return 0;
        }
        if (argument == "--version") {
            std::puts("Lectora 1.05");
            return 0;
        }
    }
    return std::nullopt;
}

std::vector<std::string> TakeCommandLine(int argc, const char* const* argv) {
    std::vector<std::string> taken(argv, argv + std::min(argc, 1));
    bool isFilesOnly = false;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        if (index == 1 && FindVerb(argument) != nullptr) {
            taken.push_back(argument);
        } else if (isFilesOnly) {
            // A file may be called as a word of the program's own.
            const std::string path = WholePath(argument);
            taken.push_back(path.starts_with('-') ? "./" + path : path);
        } else if (argument == "--") {
            isFilesOnly = true;
        } else if (argument == "-") {
            taken.push_back(SpoolInput());
            if (taken.back().empty()) {
                std::fputs("lectora: the standard input could not be read and kept.\n", stderr);
                return {};
            }
        } else if (argument.starts_with("file://")) {
            taken.push_back(PathOfAddress(argument));
        } else if (argument.starts_with('-') && !IsOwnWord(argument) && !IsThere(argument)) {
            std::fprintf(stderr, "lectora: there is no option \"%s\"; see lectora --help\n",
                         argument.c_str());
            return {};
        } else {
            taken.push_back(IsOwnWord(argument) ? argument : WholePath(argument));
        }
    }
    return taken;
}

SpooledInputs::~SpooledInputs() {
    for (const std::string& file : files_) {
        ::unlink(file.c_str());
        ::rmdir(file.substr(0, file.rfind('/')).c_str());
    }
}

void SpooledInputs::Note(const std::vector<std::string>& commandLine) {
    std::ranges::copy_if(commandLine, std::back_inserter(files_), IsSpooled);
}
