// The push side of the sound pipeline; see sound_source.h for samples, frames and block sizes.
#pragma once

#include <cstdint>

// Abstract sink. Counted by LSoundSink handles; not atomic, so one thread at a time.
class LSoundSinkBase {
public:
    // 0 channels become 1 with status 1; the rate is stored as given (sinks, unlike sources, do not
    // check it).
    LSoundSinkBase(int rate, unsigned char channels);
    virtual ~LSoundSinkBase();
    LSoundSinkBase(const LSoundSinkBase&) = delete;
    LSoundSinkBase& operator=(const LSoundSinkBase&) = delete;

    // Accepts frames * Channels() samples.
    virtual void Write(const int* buffer, int frames) = 0;
    virtual void Seek(int frame);

    int FramesWritten() const { return framesWritten_; }
    int SampleRate() const { return sampleRate_; }
    unsigned char Channels() const { return channels_; }
    // Write rounds to 16 bits, so that what holds more is better dithered before.
    virtual bool KeepsSixteenBits() const { return false; }

    std::uint8_t Status() const { return status_; }  // 0 good, 1 placeholder or invalid format

    // Completes the output (header rewritten, file closed, command ended) and tells whether it is
    // whole: 0, or the errno of the first thing that went wrong since the sink was opened. Whatever
    // is not finished so is completed by the destructor, which can report nothing. Later calls give
    // the same, later writes go nowhere.
    int Finish();

    // errno of the first write that the system refused or cut short, 0 when there was none. Write
    // itself reports nothing.
    int WriteError() const { return writeError_; }

protected:
    // What Finish does for this kind of sink, problems through NoteWriteError. Called once or more;
    // destructors of derived classes call it too.
    virtual void Complete() {}

    void NoteWriteError(int error) {
        if (writeError_ == 0)
            writeError_ = error;
    }

    std::int32_t framesWritten_ = 0;
    std::int32_t sampleRate_;
    std::uint8_t channels_;
    std::uint8_t status_ = 0;

private:
    friend class LSoundSink;
    std::uint16_t references_ = 0;
    int writeError_ = 0;
};

// Placeholder for a closed or failed sink: 44100 Hz mono, status 1, swallows everything.
class LSoundSinkError final : public LSoundSinkBase {
public:
    LSoundSinkError();
    void Write(const int* buffer, int frames) override;
};

// Counted reference to a sink; never null. A file is complete when its sink's last handle is closed
// or gone.
class LSoundSink {
public:
    LSoundSink();                                 // an error placeholder
    explicit LSoundSink(LSoundSinkBase* object);  // takes a reference; object is from new
    LSoundSink(const LSoundSink& other);
    LSoundSink& operator=(const LSoundSink& other);
    ~LSoundSink();

    void Close();

    LSoundSinkBase* operator->() const { return object_; }
    LSoundSinkBase& operator*() const { return *object_; }
    LSoundSinkBase* Get() const { return object_; }

private:
    static void Release(LSoundSinkBase* object);
    LSoundSinkBase* object_;
};
