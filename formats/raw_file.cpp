#include "formats/raw_file.h"

#include "formats/file_io.h"
#include "formats/raw_file_data.h"
#include "formats/vox_file.h"

namespace {

template <typename Stored>
LSoundSource RawSourceOf(const char* path, const LRawSettings& settings) {
    UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    return LSoundSource(new LRawFileDataSoundSource<Stored>(std::move(file), settings.sampleRate,
                                                            settings.channels));
}

template <typename Stored>
LSoundSink RawSinkOf(const char* path, const LRawSettings& settings) {
    return LSoundSink(new LRawFileDataSoundSink<Stored>(path, settings.sampleRate,
                                                        settings.channels, 0, WriteHeaderRAW));
}

}  // namespace

LSoundSource LRawFile::OpenSource(const char* path, const LRawSettings& settings) {
    switch (settings.codec) {
        case kRawDialogicAdpcm:
            return OpenSourceADPCM(path, settings.sampleRate, settings.channels);
        case kRawMuLaw:
            return RawSourceOf<LSFULAW>(path, settings);
        case kRawALaw:
            return RawSourceOf<LSFALAW>(path, settings);
        case kRawPcm16:
            return RawSourceOf<LSF16>(path, settings);
        case kRawUnsigned8:
            return RawSourceOf<LSFU8>(path, settings);
        case kRawSigned8:
            return RawSourceOf<LSFS8>(path, settings);
        case kRawPcm16BigEndian:
            return RawSourceOf<LSFBE16>(path, settings);
        case kRawFloat:
            return RawSourceOf<LSFF32>(path, settings);
        case kRawFloatBigEndian:
            return RawSourceOf<LSFFRE32>(path, settings);
        default:
            return LSoundSource();
    }
}

LSoundSink LRawFile::OpenSink(const char* path, const LRawSettings& settings) {
    switch (settings.codec) {
        case kRawDialogicAdpcm:
            return OpenSinkADPCM(path, settings.sampleRate, settings.channels);
        case kRawMuLaw:
            return RawSinkOf<LSFULAW>(path, settings);
        case kRawALaw:
            return RawSinkOf<LSFALAW>(path, settings);
        case kRawPcm16:
            return RawSinkOf<LSF16>(path, settings);
        case kRawUnsigned8:
            return RawSinkOf<LSFU8>(path, settings);
        case kRawSigned8:
            return RawSinkOf<LSFS8>(path, settings);
        case kRawPcm16BigEndian:
            return RawSinkOf<LSFBE16>(path, settings);
        case kRawFloat:
            return RawSinkOf<LSFF32>(path, settings);
        case kRawFloatBigEndian:
            return RawSinkOf<LSFFRE32>(path, settings);
        default:
            return LSoundSink();
    }
}

LSoundSource LRawFile::OpenSourceADPCM(const char* path, int rate, unsigned char) {
    UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    return LSoundSource(new LSRCVOX(std::move(file), rate));
}

LSoundSink LRawFile::OpenSinkADPCM(const char* path, int rate, unsigned char) {
    return LSoundSink(new LSNKVOX(path, rate));
}
