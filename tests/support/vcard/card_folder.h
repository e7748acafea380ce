// What a virtual card is and does, as its folder says. A test (or a person) writes `settings`
// there, at any time:
//
//   name Virtual Card 0      what the control interface answers
//   rates 22050 48000        the rates granted; none means every rate from 4000 to 192000
//   channels 2               the channel counts granted; none means 1 and 2
//   speed 8                  how many times faster than a real card's its clock runs, from now on
//   server 45                it is a sound server with that latency (milliseconds), as PulseAudio's
//                            plug-in shows one: asked for its delay it fails until it plays, then
//                            never says less than that; it never runs dry, and is not listed
//   element Master 0 87      a mixer element with its lowest and highest raw volume
//   fault busy               opening answers -EBUSY
//   fault vanish 22050       after 22050 frames played the card is gone: -ENODEV, later opens too
//   fault underrun 22050     the stream runs dry once: -EPIPE until it is prepared again
//   fault suspend 22050      the stream is suspended once: -ESTRPIPE until it is resumed, at once
//                            (ALSA hides a plug-in's refusal to resume from the player)
//   fault again 22050        one write answers -EAGAIN
//   fault stall 22050        the clock stands still there for as long as this line does
//   fault break 22050        from then on it tells of an error in place of room, and writes answer
//                            -EPIPE however often the stream is prepared; nothing else fails, as
//                            in PipeWire's plug-in when its server is gone
//   fault hang 22050         a write does not return for as long as this line stands
//   fault deaf               its mixer does not return from setting a volume while this line stands
//
// A card exists when its `settings` does. Frames of faults count from the opening of a stream.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

struct CardFault {
    enum class Kind { kBusy, kVanish, kUnderrun, kSuspend, kAgain, kStall, kBreak, kHang, kDeaf };
    Kind kind = Kind::kBusy;
    std::uint64_t frame = 0;

    bool operator==(const CardFault&) const = default;
};

struct CardElement {
    std::string name;
    long minimum = 0;
    long maximum = 0;
};

struct CardSettings {
    std::string name;
    std::vector<unsigned int> rates;
    std::vector<unsigned int> channels;
    double speed = 1.0;
    int serverMilliseconds = 0;  // 0: a card
    std::vector<CardElement> elements;
    std::vector<CardFault> faults;

    // The first of that kind, null when there is none.
    const CardFault* FindFault(CardFault::Kind kind) const;
};

CardSettings ParseCardSettings(const std::string& text);

// The folder of one card under $LECTORA_VCARD. One thread at a time.
class CardFolder {
public:
    explicit CardFolder(int card);

    bool Exists() const;
    const std::string& Path() const { return path_; }
    // As the file says now; read again only when it changed.
    const CardSettings& Settings();

private:
    std::string path_;
    CardSettings settings_;
    struct stat read_ = {};
};

// The whole file, "" when there is none.
std::string ReadSmallFile(const std::string& path);
