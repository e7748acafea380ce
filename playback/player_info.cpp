#include "playback/player_info.h"

#include "formats/wave_file.h"

void LPlayerInfoWav::OpenSource(LSoundSource& source) {
    source = LWaveFile::OpenSource(path_.c_str());
}
