// RIFF/WAVE files of uncompressed PCM: opening, and the questions one can ask about a file.
#pragma once

#include "formats/wave_format.h"
#include "foundation/threads/signal_object.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

class LWaveFile {
public:
    // A good source, or a placeholder with status 3 (malformed), 4 (cannot be opened) or 5 (not
    // PCM, or over 16 bits). A file still being written (size fields 0xFFFFFFFF) opens as a
    // streaming source, which follows it until its writer has finished or is gone.
    static LSoundSource OpenSource(const char* path);
    // The same; when interrupt, which outlives the source, is signalled, a wait for more data ends.
    static LSoundSource OpenFollowingSource(const char* path, LSignalObjectRef interrupt);

    // PCM only: every other tag, GSM 6.10 included, yields a placeholder, and the options dialog
    // relies on that to make saving in such a format fail.
    static LSoundSink OpenSink(const char* path, const LWaveFileFormat& format);

    // 1 to 8 bits are stored as unsigned bytes, 9 to 16 as 16-bit words, more yields a placeholder.
    // An existing file keeps its first startFrame frames. A file that cannot be opened gives
    // status 1.
    static LSoundSink OpenSinkPCM(const char* path, int rate, unsigned char channels,
                                  unsigned short bitsPerSample, int startFrame);

    // True when the file is a RIFF/WAVE file whose fmt chunk has tag 1.
    static bool TestPCM(const char* path);

    // Runs the "Wave Encoder Options" dialog on the record; true when the user pressed OK. Needs
    // GTK: its body is in the dialogs library. The title is ignored.
    static bool WaveFormatSelectDialog(LWaveFileFormat& format, unsigned char unused,
                                       const char* title);
};

// True when the file has a fmt chunk: *format is then a copy of it in new std::byte[...], at least
// sizeof(WAVEFORMATEX) long, which the caller gives to FreeWaveFormatEx.
bool LGetWaveFormatEx(const char* path, WAVEFORMATEX** format);
void FreeWaveFormatEx(WAVEFORMATEX* format);

// Copies the name of the file's codec, "Microsoft Unknown Wave Format" when it cannot be told. The
// buffer must hold kWaveCodecNameSize characters (wave_codec_names.h).
void LGetWaveFileCodecName(char* name, const char* path);
