#include "formats/opus_sink.h"

#include <opusenc.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include "formats/frame_file.h"
#include "formats/sample_formats.h"

namespace {

class OpusFileSink final : public LSoundSinkBase {
public:
    OpusFileSink(const char* path, unsigned char channels, int kilobits)
        : LSoundSinkBase(kOpusRate, channels), comments_(ope_comments_create()) {
        errno = 0;
        if (comments_ != nullptr)
            encoder_.reset(ope_encoder_create_file(path, comments_.get(), kOpusRate, Channels(),
                                                   Channels() > 2 ? 1 : 0, nullptr));
        if (encoder_ == nullptr) {
            status_ |= 1;
            NoteWriteError(errno != 0 ? errno : EINVAL);
        } else if (kilobits > 0) {
            ope_encoder_ctl(encoder_.get(), OPUS_SET_BITRATE(kilobits * 1000));
        }
    }
    ~OpusFileSink() override { OpusFileSink::Complete(); }

    void Write(const int* buffer, int frames) override {
        framesWritten_ = AddFrames(framesWritten_, frames);
        if (encoder_ == nullptr || WriteError() != 0)
            return;
        block_.resize(static_cast<std::size_t>(frames) * Channels());
        std::transform(buffer, buffer + block_.size(), block_.begin(),
                       [](int sample) { return static_cast<opus_int16>((sample + 8) >> 4); });
        Note(ope_encoder_write(encoder_.get(), block_.data(), frames));
        isEmpty_ = false;
    }
    bool KeepsSixteenBits() const override { return true; }

protected:
    void Complete() override {
        if (encoder_ == nullptr)
            return;
        // The library ends the program over a drain of no sound at all.
        if (isEmpty_) {
            block_.assign(Channels(), 0);
            Note(ope_encoder_write(encoder_.get(), block_.data(), 1));
        }
        Note(ope_encoder_drain(encoder_.get()));
        encoder_.reset();
    }

private:
    struct Deleter {
        void operator()(OggOpusEnc* encoder) const { ope_encoder_destroy(encoder); }
        void operator()(OggOpusComments* comments) const { ope_comments_destroy(comments); }
    };

    void Note(int result) {
        if (result != OPE_OK)
            NoteWriteError(result == OPE_WRITE_FAIL && errno != 0 ? errno : EIO);
    }

    std::unique_ptr<OggOpusComments, Deleter> comments_;
    std::unique_ptr<OggOpusEnc, Deleter> encoder_;
    std::vector<opus_int16> block_;
    bool isEmpty_ = true;
};

}  // namespace

LSoundSink OpenOpusSink(const char* path, unsigned char channels, int kilobits) {
    return LSoundSink(new OpusFileSink(path, channels, kilobits));
}
