// A sink that streams 16-bit little-endian samples into a command's standard input.
#pragma once

#include <memory>

#include "formats/sample_formats.h"
#include "foundation/processes/pipes.h"
#include "sound/sound_sink.h"

// The process must block or ignore SIGPIPE: a command that ends early then only shows in
// WriteError().
class LPipe16Sink final : public LSoundSinkBase {
public:
    // command is for the shell; status 1 when it cannot be started.
    LPipe16Sink(const char* command, int rate, unsigned char channels);
    ~LPipe16Sink() override;

    void Write(const int* buffer, int frames) override;
    bool KeepsSixteenBits() const override { return true; }
    void Write(const void* bytes, int length);  // as they are; not counted as frames

    // Kills the command with all that it started, so that a thread that waits for it in Write or
    // Finish goes on, with a write error. Any thread.
    void Interrupt();

protected:
    // Ends the command's input and blocks until it has ended, by which time its output is whole. A
    // command that fails is a write error of EIO.
    void Complete() override;

private:
    LPipeOut pipe_;
    UniqueFd process_;  // tells whether group_ is still the command's: ids are used again
    pid_t group_ = -1;
    std::unique_ptr<LSF16[]> block_;
    bool isFinished_ = false;
};
