#include "formats/raw_file.h"

#include "formats/file_io.h"
#include "formats/raw_file_data.h"
#include "formats/vox_file.h"

namespace {

template <typename Stored>
LSoundSource SourceOf(const char* path, const LRawSettings& settings) {
    UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return FailedSource(SoundStatus::kCannotOpen);
    return LSoundSource(new LRawFileDataSoundSource<Stored>(std::move(file), settings.sampleRate,
                                                            settings.channels));
}

template <typename Stored>
LSoundSink SinkOf(const char* path, const LRawSettings& settings) {
    return LSoundSink(new LRawFileDataSoundSink<Stored>(path, settings.sampleRate,
                                                        settings.channels, 0, WriteHeaderRAW));
}

}  // namespace

LSoundSource LRawFile::OpenSource(const char* path, const LRawSettings& settings) {
    switch (settings.codec) {
        case kRawDialogicAdpcm:
            return OpenSourceADPCM(path, settings.sampleRate, settings.channels);
        case kRawMuLaw:
            return SourceOf<LSFULAW>(path, settings);
        case kRawALaw:
            return SourceOf<LSFALAW>(path, settings);
        case kRawPcm16:
            return SourceOf<LSF16>(path, settings);
        case kRawUnsigned8:
            return SourceOf<LSFU8>(path, settings);
        case kRawSigned8:
            return SourceOf<LSFS8>(path, settings);
        case kRawPcm16BigEndian:
            return SourceOf<LSFBE16>(path, settings);
        case kRawFloat:
            return SourceOf<LSFF32>(path, settings);
        case kRawFloatBigEndian:
            return SourceOf<LSFFRE32>(path, settings);
        default:
            return LSoundSource();
    }
}

LSoundSink LRawFile::OpenSink(const char* path, const LRawSettings& settings) {
    switch (settings.codec) {
        case kRawDialogicAdpcm:
            return OpenSinkADPCM(path, settings.sampleRate, settings.channels);
        case kRawMuLaw:
            return SinkOf<LSFULAW>(path, settings);
        case kRawALaw:
            return SinkOf<LSFALAW>(path, settings);
        case kRawPcm16:
            return SinkOf<LSF16>(path, settings);
        case kRawUnsigned8:
            return SinkOf<LSFU8>(path, settings);
        case kRawSigned8:
            return SinkOf<LSFS8>(path, settings);
        case kRawPcm16BigEndian:
            return SinkOf<LSFBE16>(path, settings);
        case kRawFloat:
            return SinkOf<LSFF32>(path, settings);
        case kRawFloatBigEndian:
            return SinkOf<LSFFRE32>(path, settings);
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
