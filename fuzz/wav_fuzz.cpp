// WAV reader, its probe, and the reader of its format record.
#include "formats/wave_codec_names.h"
#include "formats/wave_file.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    LWaveFile::TestPCM(file.Path());
    char name[kWaveCodecNameSize];
    LGetWaveFileCodecName(name, file.Path());
    WAVEFORMATEX* format = nullptr;
    if (LGetWaveFormatEx(file.Path(), &format))
        FreeWaveFormatEx(format);
    ExerciseSource(file, size, LWaveFile::OpenSource);
    return 0;
}
