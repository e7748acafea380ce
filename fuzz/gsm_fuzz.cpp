// GSM reader, both packings of its frames, and the encoder on whatever samples the bytes make.
#include <cstring>

#include "formats/gsm_file.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ExerciseSource(FuzzFile(data, size), size, LGSMFile::OpenSource);
    int samples[2 * gsm::kFrameSamples] = {};
    LGSMDecoder decoder;
    for (std::size_t at = 0; at + kGsmWaveBytes <= size; at += kGsmWaveBytes)
        decoder.DecodeFrameWave(data + at, samples);
    LGSMEncoder encoder;
    unsigned char coded[kGsmWaveBytes];
    for (std::size_t at = 0; at + sizeof samples <= size; at += sizeof samples) {
        std::memcpy(samples, data + at, sizeof samples);
        encoder.EncodeWave(samples, coded);
    }
    return 0;
}
