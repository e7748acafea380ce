// AAC through the program ffmpeg, where it is installed.
#pragma once

#include <string>

#include "sound/sound_sink.h"

bool HasFfmpeg();

// Runs ffmpeg silently with the words behind its options, each as the shell takes it; true when it
// succeeded.
bool RunFfmpeg(const std::string& words);
std::string FfmpegFile(const std::string& path);  // a path as one such word, whatever it holds

enum class AacContainer { kMp4, kAdts };

// An LPipe16Sink; an error sink without ffmpeg.
LSoundSink OpenAacSink(const char* path, int rate, unsigned char channels, int kilobits,
                       AacContainer container);
