#include "formats/pipe16_sink.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "formats/file_io.h"
#include "formats/frame_file.h"
#include "sound/sound_source.h"

LPipe16Sink::LPipe16Sink(const char* command, int rate, unsigned char channels)
    : LSoundSinkBase(rate, channels),
      block_(std::make_unique<LSF16[]>(static_cast<std::size_t>(kMaxBlockFrames) * Channels())) {
    if (!pipe_._Open(command))
        status_ |= 1;
    group_ = pipe_.Pid();
    process_.Reset(static_cast<int>(::syscall(SYS_pidfd_open, group_, 0)));
}

void LPipe16Sink::Interrupt() {
    pollfd ended{process_.Get(), POLLIN, 0};
    if (process_.IsOpen() && ::poll(&ended, 1, 0) == 0)
        ::kill(-group_, SIGKILL);
}

LPipe16Sink::~LPipe16Sink() {
    Complete();
}

void LPipe16Sink::Write(const int* buffer, int frames) {
    framesWritten_ = AddFrames(framesWritten_, frames);
    while (frames > 0 && !isFinished_) {
        const int part = std::min(frames, kMaxBlockFrames);
        const int samples = part * Channels();
        ConvertSamplesOut(buffer, block_.get(), samples);
        Write(block_.get(), samples * static_cast<int>(sizeof(LSF16)));
        buffer += samples;
        frames -= part;
    }
}

void LPipe16Sink::Write(const void* bytes, int length) {
    if (pipe_.IsOpen() && WriteError() == 0 && length > 0)
        NoteWriteError(WriteFully(pipe_.Fd(), bytes, static_cast<std::size_t>(length)));
}

void LPipe16Sink::Complete() {
    if (isFinished_)
        return;
    isFinished_ = true;
    block_.reset();
    if (pipe_.Close() != 0)
        NoteWriteError(EIO);
}
