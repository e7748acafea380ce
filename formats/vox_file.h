// Headerless mono files of Dialogic ADPCM; the rate is the caller's.
#pragma once

#include <memory>

#include "formats/vox_codec.h"
#include "foundation/files/unique_fd.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

class LSRCVOX final : public LSoundSourceBase, private LVox {
public:
    LSRCVOX(UniqueFd file, int rate);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override;  // two for each byte the file has now
    // Leaves the codec state as it is: what follows a seek settles within a few hundred samples.
    void Seek(int frame) override;

private:
    void ReadBlock(int* buffer, int frames);
    int TakeHeldNibble(int* buffer);

    UniqueFd file_;
    int position_ = 0;
    bool holding_ = false;  // held_ has a low nibble still to decode
    std::uint8_t held_ = 0;
    std::unique_ptr<std::uint8_t[]> bytes_;
};

class LSNKVOX final : public LSoundSinkBase, private LVox {
public:
    // Creates or empties the file. A failed open gives status 1.
    LSNKVOX(const char* path, int rate);
    ~LSNKVOX() override;

    // Whole bytes go out; an odd sample waits for the next call, and is lost when there is none.
    void Write(const int* buffer, int frames) override;

protected:
    void Complete() override;

private:
    void WriteBlock(const int* buffer, int frames);

    UniqueFd file_;
    bool holding_ = false;  // held_ has a high nibble
    std::uint8_t held_ = 0;
    std::unique_ptr<std::uint8_t[]> bytes_;
};
