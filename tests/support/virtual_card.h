// Virtual sound cards for a test program: while this object lives, "hw:N" is one of its cards and
// no card of the machine can be reached. What a card can be told stands at the head of
// vcard/card_folder.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct CardEvent {
    std::int64_t microseconds = 0;  // CLOCK_MONOTONIC
    std::string name;  // "params", "prepare", "first", "start", "underrun", "stop", "close", ...
    std::uint64_t received = 0;  // frames since the stream was opened
    std::uint64_t played = 0;
};

// One at a time in a process: it sets the environment and drops ALSA's cached configuration.
class VirtualCards {
public:
    VirtualCards();
    ~VirtualCards();
    VirtualCards(const VirtualCards&) = delete;
    VirtualCards& operator=(const VirtualCards&) = delete;

    // Puts a card in, or changes the one that is there, also while it plays.
    void Insert(int card, const std::string& settings);

    // Streams count from 1 in the order in which they were opened.
    int Streams(int card) const;
    std::vector<std::int16_t> Received(int card, int stream = 1) const;  // interleaved
    // What of that was heard: without what a stop, an underrun or a close threw away.
    std::vector<std::int16_t> Played(int card, int stream = 1) const;
    std::vector<CardEvent> Events(int card, int stream = 1) const;
    // Lines "element left right" of what a mixer set.
    std::string Mixer(int card) const;

private:
    std::string Folder(int card) const;
    std::string StreamPath(int card, int stream, const char* extension) const;

    std::string folder_;
};
