// Where the stretches of a text are in its sound, while the sound is still being made.
//
// The producer appends, the listener's thread reads and tells how far it is, the GUI thread asks:
// every operation is safe from any thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "foundation/threads/signal_object.h"
#include "speech/spoken_times.h"

// A stretch of the user's text (bytes) and its sound (frames).
struct SpokenStretch {
    std::size_t sourceBegin = 0;
    std::size_t sourceEnd = 0;
    int firstFrame = 0;
    int endFrame = 0;
    int voice = -1;  // who speaks it, an index into the voice table; -1: several, or nobody knows
};

// What is marked at a moment, and until when.
struct HeardWord {
    // Bytes of the user's text; equal before the first word of a stretch.
    std::size_t sourceBegin = 0;
    std::size_t sourceEnd = 0;
    int endFrame = 0;  // where another word or stretch begins
};

class SpeechTrack {
public:
    // A stretch is a sentence or some very short ones.
    // The producer's: frames of sound for the stretch are in the file behind those before.
    // Its words (frames counted from its own first) are kept while they are no more than anybody
    // hears.
    void Append(int frames, std::size_t sourceBegin, std::size_t sourceEnd, int voice = -1,
                const std::vector<SpokenWord>& words = {});
    void Complete();  // no more will come

    int Frames() const;         // that are in the file by now
    bool IsComplete() const;    // Frames() is the end
    SpokenStretch All() const;  // of the text and its sound, by now; empty before the first

    // Where the sound begins of the stretch that the byte of the text is in, or that comes behind
    // it; nothing outside of what is spoken.
    std::optional<int> FrameOf(std::size_t source) const;

    // The stretch that is spoken at the frame, nothing outside the sound.
    std::optional<SpokenStretch> StretchAt(int frame) const;
    // The word of that stretch; nothing where the engine told no times.
    std::optional<HeardWord> WordAt(int frame) const;
    // First frames of sentences, for a listener who is at `frame`. The next one is Frames() at the
    // last; the previous one is the first at the beginning.
    int SentenceStart(int frame) const;
    int PreviousSentence(int frame) const;
    int NextSentence(int frame) const;

    // The listener's: where it reads, and a wait until there are frames beyond that or none will
    // come; false when the time passed first.
    void SetListener(int frame);
    bool WaitBeyond(int frame, int milliseconds) const;

    // For the producer: how much has not been listened to.
    int FramesAhead() const;
    int StretchesAhead() const;
    LSignalObjectRef ListenerMoved() const { return listenerMoved_.Ref(); }
    void ForgetListenerMoves() { listenerMoved_.Reset(); }

private:
    struct Entry {
        int firstFrame;
        std::size_t sourceBegin;
        std::size_t sourceEnd;
        int voice;
        std::size_t words;  // in words_, up to the next one's
    };
    // In half the room of a SpokenWord.
    struct Word {
        int firstFrame;
        std::uint32_t begin;  // counted from the stretch's
        std::uint32_t size;
    };

    std::size_t IndexAt(int frame) const;  // of the stretch; entries_ is not empty, mutex_ held
    int StartOf(std::size_t index) const;  // mutex_ held

    mutable std::mutex mutex_;
    mutable std::condition_variable grown_;
    std::vector<Entry> entries_;
    std::vector<Word> words_;
    int frames_ = 0;
    int listener_ = 0;
    bool isComplete_ = false;
    LSignalObject listenerMoved_;
};
