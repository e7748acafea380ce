#include "tests/support/vcard/received_sound.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

constexpr std::size_t kHeaderBytes = 44;

struct WavHeader {
    std::array<unsigned char, kHeaderBytes> bytes{};

    void Tag(std::size_t at, const char* tag) { std::memcpy(bytes.data() + at, tag, 4); }
    void Number(std::size_t at, std::size_t width, std::uint32_t value) {
        for (std::size_t index = 0; index < width; ++index)
            bytes[at + index] = static_cast<unsigned char>(value >> (8 * index));
    }
};

}  // namespace

void ReceivedSound::Begin(const std::string& folder, unsigned int rate, unsigned int channels) {
    rate_ = rate;
    channels_ = channels;
    bytes_ = 0;
    for (int number = 1; number < 1000; ++number) {
        std::array<char, 32> name{};
        std::snprintf(name.data(), name.size(), "/stream-%03d", number);
        const std::string path = folder + name.data();
        const int fd = ::open((path + ".wav").c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd < 0)
            continue;
        wav_.Reset(fd);
        log_.Reset(::open((path + ".log").c_str(),
                          O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644));
        WriteHeader();
        return;
    }
}

void ReceivedSound::Add(const void* frames, std::size_t bytes) {
    if (!wav_.IsOpen())
        return;
    const ssize_t written =
        ::pwrite(wav_.Get(), frames, bytes, static_cast<off_t>(kHeaderBytes + bytes_));
    bytes_ += static_cast<std::uint64_t>(std::max<ssize_t>(written, 0));
    WriteHeader();
}

void ReceivedSound::WriteHeader() {
    const std::uint32_t frameBytes = channels_ * 2;
    const auto dataBytes = static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes_, 0x7fffff00));
    WavHeader header;
    header.Tag(0, "RIFF");
    header.Number(4, 4, dataBytes + kHeaderBytes - 8);
    header.Tag(8, "WAVE");
    header.Tag(12, "fmt ");
    header.Number(16, 4, 16);
    header.Number(20, 2, 1);
    header.Number(22, 2, channels_);
    header.Number(24, 4, rate_);
    header.Number(28, 4, rate_ * frameBytes);
    header.Number(32, 2, frameBytes);
    header.Number(34, 2, 16);
    header.Tag(36, "data");
    header.Number(40, 4, dataBytes);
    [[maybe_unused]] const ssize_t written =
        ::pwrite(wav_.Get(), header.bytes.data(), header.bytes.size(), 0);
}

void ReceivedSound::Log(const char* event, std::uint64_t received, std::uint64_t played,
                        const std::string& more) {
    if (!log_.IsOpen())
        return;
    const std::string line = std::to_string(MonotonicMicroseconds()) + " " + event + " " +
                             std::to_string(received) + " " + std::to_string(played) +
                             (more.empty() ? "" : " " + more) + "\n";
    [[maybe_unused]] const ssize_t written = ::write(log_.Get(), line.data(), line.size());
}

std::int64_t MonotonicMicroseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}
