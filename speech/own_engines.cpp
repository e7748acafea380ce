#include "speech/own_engines.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>

#include "foundation/files/machine_root.h"
#include "foundation/files/unique_fd.h"
#include "foundation/log/log.h"
#include "sound/tempo.h"
#include "speech/shell_word.h"
#include "speech/voice_title.h"

namespace {

constexpr std::size_t kLargestFile = 1 << 20;
constexpr const char* kGroup = "Engine";

constexpr std::string_view kRate = "{rate}";
// Up to there the stretched sound is as clear as an engine's own, where that was measured.
constexpr int kRateFrom = 310;

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;

// Empty for a file that is not to be trusted.
std::string ReadTrusted(const std::string& path) {
    std::string text;
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status = {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return text;
    if ((status.st_uid != 0 && status.st_uid != ::geteuid()) ||
        (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        LOGWARNF("Speech: %s can be written by others and is passed over", path.c_str());
        return text;
    }
    char part[8192];
    while (text.size() < kLargestFile) {
        const ssize_t got = ::read(file.Get(), part, sizeof part);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        text.append(part, static_cast<std::size_t>(got));
    }
    return text;
}

std::string Value(GKeyFile* file, const char* key) {
    char* const value = g_key_file_get_string(file, kGroup, key, nullptr);
    std::string text = value == nullptr ? "" : value;
    g_free(value);
    return text;
}

std::vector<std::string> Values(GKeyFile* file, const char* key) {
    gsize count = 0;
    char** const values = g_key_file_get_string_list(file, kGroup, key, &count, nullptr);
    std::vector<std::string> texts(values, values + count);
    g_strfreev(values);
    std::erase(texts, "");
    return texts;
}

// "2.5" for 250 percent.
std::string Factor(int percent) {
    std::string factor =
        std::to_string(percent / 100) + "." + std::to_string(percent % 100 + 100).substr(1);
    factor.resize(factor.find_last_not_of('0') + 1);
    if (factor.back() == '.')
        factor.pop_back();
    return factor;
}

// What a place stands for, to be put where that quotation mark is open. A name that means something
// to a shell comes as a variable, whose value no quoting around the place makes a command of.
std::string InPlace(std::string_view variable, const std::string& value, char openQuote) {
    if (ShellWord(value) == value)
        return value;
    const std::string name = "${" + std::string(variable) + "}";
    return openQuote == '"' ? name : openQuote == '\'' ? "'\"" + name + "\"'" : "\"" + name + "\"";
}

// The words behind the first one's place stand for themselves, so that a voice called "{wav}" does
// not become a path.
std::string OwnCommand(const SpeechEngine& engine, const SpeechOrder& order) {
    struct Place {
        std::string_view written;
        std::string_view variable;
        std::string value;
    };
    const Place places[] = {{"{text}", "lectora_text", std::string(order.textPath)},
                            {"{wav}", "lectora_wav", std::string(order.soundPath)},
                            {"{voice}", "lectora_voice", order.voice.name},
                            {kRate, "lectora_rate", Factor(order.speed)}};
    std::string command;
    for (const Place& place : places)
        if (ShellWord(place.value) != place.value)
            command += std::string(place.variable) + "=" + ShellWord(place.value) + "; ";
    char openQuote = '\0';
    for (std::string_view rest = engine.ownCommand; !rest.empty();) {
        const auto* const place = std::ranges::find_if(
            places, [rest](const Place& one) { return rest.starts_with(one.written); });
        std::size_t size = 1;
        if (place != std::end(places)) {
            command += InPlace(place->variable, place->value, openQuote);
            size = place->written.size();
        } else {
            const char character = rest.front();
            const bool isQuote = character == '"' || character == '\'';
            if (isQuote && (openQuote == '\0' || openQuote == character))
                openQuote = openQuote == character ? '\0' : character;
            size =
                character == '\\' && openQuote != '\'' ? std::min<std::size_t>(2, rest.size()) : 1;
            command += rest.substr(0, size);
        }
        rest.remove_prefix(size);
    }
    return command;
}

std::optional<SpeechEngine> EngineIn(const std::string& path) {
    const std::string text = ReadTrusted(path);
    const KeyFile file(g_key_file_new(), g_key_file_unref);
    if (text.empty() ||
        !g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    SpeechEngine engine;
    engine.title = Value(file.get(), "Name");
    engine.ownCommand = Value(file.get(), "Command");
    if (engine.title.empty() || engine.ownCommand.find("{text}") == std::string::npos ||
        engine.ownCommand.find("{wav}") == std::string::npos) {
        LOGWARNF("Speech: %s needs a Name, and a Command with {text} and {wav}", path.c_str());
        return std::nullopt;
    }
    engine.name = "own:" + std::filesystem::path(path).stem().string();
    engine.program = engine.ownCommand.substr(0, engine.ownCommand.find_first_of(" \t"));
    engine.isOneProgram = false;
    engine.command = OwnCommand;
    if (engine.ownCommand.find(kRate) != std::string::npos) {
        const int from = std::atoi(Value(file.get(), "RateFrom").c_str());
        engine.speaksFasterFrom = from >= LTempo::kOwnPercent ? from : kRateFrom;
    }
    const std::string language = Value(file.get(), "Language");
    std::vector<std::string> voices = Values(file.get(), "Voices");
    if (voices.empty())
        voices.emplace_back(engine.title);
    for (const std::string& name : voices) {
        Voice voice{engine.name, name, "", language, VoiceCharset::kUnicode};
        NameVoice(voice,
                  {.given = name == engine.title ? "" : std::filesystem::path(name).stem().string(),
                   .engine = engine.title});
        engine.ownVoices.push_back(std::move(voice));
    }
    return engine;
}

}  // namespace

std::vector<SpeechEngine> OwnEngines() {
    std::vector<SpeechEngine> engines;
    for (const std::string& folder : {HomeFolder() + "/.quillon/lectora/engines",
                                      MachinePath("/opt/quillon/lectora/etc/engines")}) {
        std::vector<std::string> paths;
        std::error_code error;
        std::filesystem::directory_iterator files(folder, error);
        for (; !error && files != std::filesystem::directory_iterator(); files.increment(error))
            if (files->path().extension() == ".engine")
                paths.push_back(files->path().string());
        std::ranges::sort(paths);
        for (const std::string& path : paths) {
            std::optional<SpeechEngine> engine = EngineIn(path);
            // The user's goes before everybody's of its name, whose voices are kept by the same.
            if (engine &&
                std::ranges::find(engines, engine->name, &SpeechEngine::name) == engines.end())
                engines.push_back(std::move(*engine));
        }
    }
    return engines;
}
