// MP3 output through the encoder component "mp3el".
#pragma once

#include <cstddef>

#include "formats/mp3_settings.h"
#include "sound/sound_sink.h"

// Holds the longest path of a file, each byte of it behind a backslash.
constexpr std::size_t kMp3CommandLineSize = 9216;

// One that is joined with others keeps the rate that the encoder is fed, where it would choose a
// lower one with few kilobits. Frames still borrow bits of those before them: without, speech has
// echoes before its beginnings.
enum class Mp3Part { kWhole, kToBeJoined };

// What sound of that rate is encoded at.
int Mp3EncodedRate(const LMp3EncodeSettings& settings, int inRate);

// Builds the encoder's command line into commandLine (kMp3CommandLineSize bytes) and chooses what
// the encoder is to be fed. False when the component is not installed, or the line would not fit.
bool Mp3CreateEncoderCommandLine(char* commandLine, int& outRate, unsigned char& outChannels,
                                 const char* outputPath, LMp3EncodeSettings& settings, int inRate,
                                 unsigned char channelsIn);

// An LPipe16Sink at the rate and channel count chosen, which the caller converts to; an error sink
// when there is no command line.
LSoundSink OpenMp3Sink(const char* outputPath, LMp3EncodeSettings& settings, int inRate,
                       unsigned char channelsIn, Mp3Part part = Mp3Part::kWhole);
