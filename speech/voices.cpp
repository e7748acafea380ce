#include "speech/voices.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <thread>

#include "foundation/files/text_buffer.h"
#include "foundation/processes/pipes.h"
#include "speech/engine_input.h"
#include "speech/festival_voices.h"
#include "speech/voice_table.h"

namespace {

constexpr std::string_view kPrompt = "festival>";
constexpr int kMaxPolls = 11;
constexpr std::chrono::milliseconds kPollInterval(100);

int WaitingBytes(int fd) {
    int waiting = 0;
    return ::ioctl(fd, FIONREAD, &waiting) == 0 ? waiting : 0;
}

// An answer that is no whole list is read by the old rules, which make up to ten names of it.
void KeepFestivalVoices(const std::string& reply) {
    std::vector<std::string> names = FestivalVoiceNames(reply);
    if (names.empty())
        names = ParseVoiceList(reply);
    std::vector<Voice> voices;
    std::ranges::transform(names, std::back_inserter(voices), FestivalVoice);
    AddVoices(voices);
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
        // Of many voices each but the last has its line's end before the blank.
        const std::string_view name = reply.substr(at, end - at);
        const std::size_t length = std::min(name.find('\n'), name.size());
        names.emplace_back(name.substr(0, std::min(length, kMaxVoiceName)));
        at = end;
    }
    return names;
}

int TTSGetNumSpeakers() {
    // The shell would tell of a missing program only on its standard error; looking first saves the
    // wait for a reply.
    if (CountVoices() > 0 || !IsProgramInstalled("festival"))
        return std::min(CountVoices(), kMaxVoices);
    LPipeInOut engine;
    if (!engine._Open("festival -i"))
        return 0;
    WriteToEngine(engine.WriteFd(), kVoiceListCommand);
    const int size = AwaitReply(engine.ReadFd());
    // An engine that answers leaves at the end of its input; one that hangs would stay.
    if (size > 0)
        KeepFestivalVoices(ReadExactly(engine.ReadFd(), size));
    else
        engine.Kill();
    return std::min(CountVoices(), kMaxVoices);
}

void TTSGetDictSpeakerName(int index, char* out) {
    const int count = TTSGetNumSpeakers();
    const std::string name = AskedVoiceAt(std::min(index, std::max(count - 1, 0))).name;
    CopyText(out, kTextBufferSize, std::string_view(name).substr(0, kMaxVoiceName));
}

Voice AskedVoiceAt(int index) {
    if (TTSGetNumSpeakers() < 1)
        return {"festival", "No Voices Found", "No Voices Found", "", VoiceCharset::kAscii};
    return VoiceAt(index);
}
