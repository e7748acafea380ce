#include "sound/sound_sink.h"

LSoundSinkBase::LSoundSinkBase(int rate, unsigned char channels)
    : sampleRate_(rate), channels_(channels) {
    if (channels_ == 0) {
        channels_ = 1;
        status_ = 1;
    }
}

LSoundSinkBase::~LSoundSinkBase() = default;

void LSoundSinkBase::Seek(int) {}

int LSoundSinkBase::Finish() {
    Complete();
    return writeError_;
}

LSoundSinkError::LSoundSinkError() : LSoundSinkBase(44100, 1) {
    status_ = 1;
}

void LSoundSinkError::Write(const int*, int frames) {
    framesWritten_ += frames;
}

LSoundSink::LSoundSink() : LSoundSink(new LSoundSinkError) {}

LSoundSink::LSoundSink(LSoundSinkBase* object)
    : object_(object != nullptr ? object : new LSoundSinkError) {
    ++object_->references_;
}

LSoundSink::LSoundSink(const LSoundSink& other) : object_(other.object_) {
    ++object_->references_;
}

LSoundSink& LSoundSink::operator=(const LSoundSink& other) {
    LSoundSinkBase* const old = object_;
    ++other.object_->references_;
    object_ = other.object_;
    Release(old);
    return *this;
}

LSoundSink::~LSoundSink() {
    Release(object_);
}

void LSoundSink::Close() {
    *this = LSoundSink();
}

void LSoundSink::Release(LSoundSinkBase* object) {
    if (--object->references_ == 0)
        delete object;
}
