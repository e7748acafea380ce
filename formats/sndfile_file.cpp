#include "formats/sndfile_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

#include "formats/frame_file.h"
#include "formats/sample_formats.h"
#include "foundation/files/file_io.h"

namespace {

constexpr int kIntFraction = 12;  // bits of the library's integers below those of a sample
constexpr int kFullScale = 524288;
constexpr int kLargestFloat = kPeakOf<LSFF32>;

bool IsDecodedToFloat(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_FLOAT:
        case SF_FORMAT_DOUBLE:
        case SF_FORMAT_VORBIS:
        case SF_FORMAT_OPUS:
            return true;
        default:
            return false;
    }
}

bool HoldsMoreThan16Bits(int format) {
    const int kind = format & SF_FORMAT_SUBMASK;
    return kind == SF_FORMAT_PCM_24 || kind == SF_FORMAT_PCM_32 || kind == SF_FORMAT_ALAC_20 ||
           kind == SF_FORMAT_ALAC_24 || kind == SF_FORMAT_ALAC_32;
}

int PeakOf(int format) {
    if (IsDecodedToFloat(format))
        return kLargestFloat;
    return HoldsMoreThan16Bits(format) ? kFullScale : kMaxPcm16Peak;
}

class FlacFileSink final : public LSoundSinkBase {
public:
    FlacFileSink(const char* path, int rate, unsigned char channels)
        : LSoundSinkBase(rate, channels) {
        SF_INFO info = {};
        info.samplerate = rate;
        info.channels = Channels();
        info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
        errno = 0;
        file_.reset(sf_open(path, SFM_WRITE, &info));
        if (file_ == nullptr) {
            status_ |= 1;
            NoteWriteError(errno);
        }
    }
    ~FlacFileSink() override { FlacFileSink::Complete(); }

    void Write(const int* buffer, int frames) override {
        framesWritten_ = AddFrames(framesWritten_, frames);
        if (file_ == nullptr || WriteError() != 0)
            return;
        const int samples = frames * Channels();
        block_.resize(static_cast<std::size_t>(samples));
        std::transform(buffer, buffer + samples, block_.begin(),
                       [](int sample) { return static_cast<short>((sample + 8) >> 4); });
        errno = 0;
        if (sf_writef_short(file_.get(), block_.data(), frames) != frames)
            NoteWriteError(errno != 0 ? errno : EIO);
    }
    bool KeepsSixteenBits() const override { return true; }

protected:
    void Complete() override {
        errno = 0;
        if (file_ != nullptr && sf_close(file_.release()) != 0)
            NoteWriteError(errno != 0 ? errno : EIO);
    }

private:
    SndfileHandle file_;
    std::vector<short> block_;
};

}  // namespace

LSndfileSource::LSndfileSource(SndfileHandle file, const SF_INFO& info)
    : LSoundSourceBase(info.samplerate, static_cast<unsigned char>(info.channels),
                       PeakOf(info.format)),
      file_(std::move(file)),
      format_(info.format),
      isFloat_(IsDecodedToFloat(info.format)),
      end_(static_cast<int>(
          std::clamp<sf_count_t>(info.frames, 0, std::numeric_limits<int>::max()))) {}

void LSndfileSource::Read(int* buffer, int frames) {
    sf_count_t got = 0;
    const auto samples = static_cast<std::ptrdiff_t>(frames) * Channels();
    if (isFloat_) {
        std::vector<float> decoded(static_cast<std::size_t>(samples));
        got = sf_readf_float(file_.get(), decoded.data(), frames);
        std::transform(decoded.begin(), decoded.begin() + got * Channels(), buffer,
                       [](float value) {
                           if (std::isnan(value))
                               return 0;
                           const float scaled = value * static_cast<float>(kFullScale);
                           constexpr auto kMost = static_cast<float>(kLargestFloat);
                           return static_cast<int>(std::lrint(std::clamp(scaled, -kMost, kMost)));
                       });
    } else {
        got = sf_readf_int(file_.get(), buffer, frames);
        std::transform(buffer, buffer + got * Channels(), buffer, [](int value) {
            return static_cast<int>((std::int64_t{value} + (1 << (kIntFraction - 1))) >>
                                    kIntFraction);
        });
    }
    got = std::max<sf_count_t>(got, 0);
    std::fill(buffer + got * Channels(), buffer + samples, 0);
    const int wanted = std::clamp(end_ - position_, 0, frames);
    if (got < wanted)
        missing_ = std::max(missing_, end_ - position_ - static_cast<int>(got));
    position_ = static_cast<int>(
        std::min<std::int64_t>(std::int64_t{position_} + frames, std::numeric_limits<int>::max()));
}

void LSndfileSource::Seek(int frame) {
    position_ = std::max(frame, 0);
    if (sf_seek(file_.get(), std::min(position_, end_), SEEK_SET) < 0)
        missing_ = std::max(missing_, end_ - position_);
}

std::string LSndfileSource::FormatName() const {
    std::string name;
    for (const int part : {format_ & SF_FORMAT_TYPEMASK, format_ & SF_FORMAT_SUBMASK}) {
        SF_FORMAT_INFO info = {};
        info.format = part;
        if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0)
            name.append(name.empty() ? "" : ", ").append(info.name);
    }
    return name;
}

LSoundSource OpenSndfileSource(const char* path) {
    UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    SF_INFO info = {};
    // It closes the descriptor, also when it fails.
    SndfileHandle handle(sf_open_fd(file.Release(), SFM_READ, &info, 1));
    if (handle == nullptr || info.channels < 1 || info.channels > 255 || info.samplerate < 1)
        return FailedSource(SoundStatus::kUnsupported);
    return LSoundSource(new LSndfileSource(std::move(handle), info));
}

LSoundSink OpenFlacSink(const char* path, int rate, unsigned char channels) {
    return LSoundSink(new FlacFileSink(path, rate, channels));
}

std::string ForeignSoundName(const char* path) {
    static constexpr struct {
        std::size_t at;
        std::string_view mark;
        const char* name;
    } kMarks[] = {
        {4, "ftyp", "MPEG-4 sound (AAC or ALAC)"},
        {0, "ID3", "MP3 sound"},
        {0, "\xff\xfb", "MP3 sound"},
        {0, "\xff\xf3", "MP3 sound"},
        {0, "\xff\xf2", "MP3 sound"},
        {0, "\xff\xf1", "AAC sound"},
        {0, "\xff\xf9", "AAC sound"},
        {0, "#!AMR", "AMR sound"},
        {0, "\x30\x26\xb2\x75", "Windows Media sound"},
        {0, "\x1a\x45\xdf\xa3", "Matroska or WebM sound"},
        {0, "MAC ", "Monkey's Audio sound"},
        {0, "wvpk", "WavPack sound"},
        {0, "fLaC", "FLAC sound"},
        {0, "OggS", "Ogg sound"},
        {0, "RIFF", "RIFF data"},
        {0, "RF64", "RF64 sound"},
        {0, "FORM", "AIFF sound"},
        {0, ".snd", "Au sound"},
        {0, "%PDF", "a PDF document"},
        {0, "PK\x03\x04", "a ZIP archive or a document"},
        {0, "<", "HTML or XML text"},
    };
    const UniqueFd file = OpenFileForReading(path);
    char start[12] = {};
    if (!file.IsOpen())
        return "";
    const std::string_view bytes(start, ReadFully(file.Get(), start, sizeof start));
    for (const auto& [at, mark, name] : kMarks)
        if (bytes.size() >= at && bytes.substr(at).starts_with(mark))
            return name;
    return "";
}
