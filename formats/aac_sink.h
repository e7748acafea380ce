// AAC through the program ffmpeg, where it is installed.
#pragma once

#include <string>

#include "foundation/threads/progress.h"
#include "sound/sound_sink.h"

bool HasFfmpeg();

// Runs ffmpeg silently with the words behind its options, each as the shell takes it, and the file
// that they make; true when it succeeded. It is ended when the progress object stops it, and when
// the file has not grown for three minutes.
bool RunFfmpeg(const std::string& words, const std::string& path, LProgress& progress);
std::string FfmpegFile(const std::string& path);  // a path as one such word, whatever it holds

enum class AacContainer { kMp4, kAdts };

// An LPipe16Sink; an error sink without ffmpeg.
LSoundSink OpenAacSink(const char* path, int rate, unsigned char channels, int kilobits,
                       AacContainer container);
