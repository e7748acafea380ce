#include "speech/voices.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>

#include "foundation/pipes.h"
#include "foundation/text_buffer.h"
#include "speech/engine_input.h"

namespace {

constexpr std::string_view kPrompt = "festival>";
constexpr int kMaxPolls = 11;
constexpr std::chrono::milliseconds kPollInterval(100);

std::mutex gTableMutex;

// gTableMutex held.
std::vector<std::string>& VoiceTable() {
    static std::vector<std::string> table;
    return table;
}
std::vector<std::string>& LatestAnswer() {
    static std::vector<std::string> names;
    return names;
}

int CountVoices() {
    const std::lock_guard<std::mutex> lock(gTableMutex);
    return static_cast<int>(VoiceTable().size());
}

int WaitingBytes(int fd) {
    int waiting = 0;
    return ::ioctl(fd, FIONREAD, &waiting) == 0 ? waiting : 0;
}

// The number of bytes once the engine's output has stopped growing for one interval, 0 when it
// never came.
int AwaitReply(int fd) {
    int before = WaitingBytes(fd);
    for (int poll = 0; poll < kMaxPolls; ++poll) {
        std::this_thread::sleep_for(kPollInterval);
        const int now = WaitingBytes(fd);
        if (now != 0 && now == before)
            return now;
        before = now;
    }
    return 0;
}

std::string ReadExactly(int fd, int size) {
    std::string reply(static_cast<std::size_t>(size), '\0');
    std::size_t filled = 0;
    while (filled < reply.size()) {
        const ssize_t got = ::read(fd, reply.data() + filled, reply.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    reply.resize(filled);
    return reply;
}

}  // namespace

std::vector<std::string> ParseVoiceList(std::string_view reply) {
    const std::size_t prompt = reply.find(kPrompt);
    std::size_t at = prompt == std::string_view::npos ? reply.size() : prompt + kPrompt.size();
    while (at < reply.size() && static_cast<unsigned char>(reply[at]) < 33)
        ++at;
    std::vector<std::string> names;
    // The end of the reply does not end the list: it is filled up with empty names.
    while (names.size() < kMaxVoices && (at >= reply.size() || reply[at] != ')')) {
        at = std::min(at + 1, reply.size());
        const std::size_t end = std::min(reply.find_first_of(" )", at), reply.size());
        names.emplace_back(reply.substr(at, std::min(end - at, kMaxVoiceName)));
        at = end;
    }
    return names;
}

void KeepVoices(std::vector<std::string> names) {
    const std::lock_guard<std::mutex> lock(gTableMutex);
    std::vector<std::string>& table = VoiceTable();
    const bool isFirst = table.empty();
    for (const std::string& name : names) {
        if (table.size() < kMaxVoices && (isFirst || std::ranges::find(table, name) == table.end()))
            table.push_back(name);
    }
    LatestAnswer() = std::move(names);
}

int IndexAtNextStart(int index) {
    const std::lock_guard<std::mutex> lock(gTableMutex);
    const std::vector<std::string>& table = VoiceTable();
    if (index < 0 || index >= static_cast<int>(table.size()))
        return index;
    const std::vector<std::string>& names = LatestAnswer();
    const auto at = std::ranges::find(names, table[static_cast<std::size_t>(index)]);
    return at == names.end() ? index : static_cast<int>(at - names.begin());
}

bool AreVoicesKnown() {
    return CountVoices() > 0;
}

int TTSGetNumSpeakers() {
    // The shell would tell of a missing program only on its standard error; looking first saves the
    // wait for a reply.
    if (AreVoicesKnown() || !IsProgramInstalled("festival"))
        return CountVoices();
    LPipeInOut engine;
    if (!engine._Open("festival -i"))
        return CountVoices();
    WriteToEngine(engine.WriteFd(), kVoiceListCommand);
    if (const int size = AwaitReply(engine.ReadFd()); size > 0)
        KeepVoices(ParseVoiceList(ReadExactly(engine.ReadFd(), size)));
    // An engine that answers leaves at the end of its input; one that hangs would stay.
    else
        engine.Kill();
    return CountVoices();
}

void TTSGetDictSpeakerName(int index, char* out) {
    const int count = TTSGetNumSpeakers();
    if (count < 1) {
        CopyText(out, kTextBufferSize, "No Voices Found");
        return;
    }
    const int clamped = std::clamp(index, 0, count - 1);
    const std::lock_guard<std::mutex> lock(gTableMutex);
    CopyText(out, kTextBufferSize, VoiceTable()[static_cast<std::size_t>(clamped)]);
}
