// The coded parameters of one GSM 06.10 frame (20 ms, 260 bits) and their two byte packings.
//
// Normal: 33 bytes, most significant bit first, led by the four bits 0xD. Wave: two frames in 65
// bytes, least significant bit first, without a signature; the second frame starts at bit 4 of byte
// 32.
#pragma once

#include <cstddef>
#include <cstdint>

#include "formats/gsm_arithmetic.h"

constexpr std::size_t kGsmNormalBytes = 33;
constexpr std::size_t kGsmWaveBytes = 65;

class LGSMBitWriterMsb;
class LGSMBitReaderMsb;
class LGSMBitWriterLsb;
class LGSMBitReaderLsb;

// One 5 ms sub-frame. The standard's symbols stand behind each field, with its width in bits.
struct LGSMSubFrame {
    std::int16_t lag = 0;                    // Nc, 7: 40 to 120
    std::int16_t gain = 0;                   // bc, 2
    std::int16_t grid = 0;                   // Mc, 2
    std::int16_t blockAmplitude = 0;         // xmaxc, 6
    std::int16_t pulses[gsm::kPulses] = {};  // xMc, 3 each

    // Each moves the writer or reader on by 56 bits.
    void EncodeNormal(LGSMBitWriterMsb& out) const;
    void DecodeNormal(LGSMBitReaderMsb& in);
    void EncodeWave1(LGSMBitWriterLsb& out) const;
    void DecodeWave1(LGSMBitReaderLsb& in);
    void EncodeWave2(LGSMBitWriterLsb& out) const;
    void DecodeWave2(LGSMBitReaderLsb& in);
};

struct LGSMFrame {
    std::int16_t codedRatios[gsm::kOrder] = {};  // LARc; 6, 6, 5, 5, 4, 4, 3, 3 bits
    LGSMSubFrame subFrames[4];

    void EncodeNormal(unsigned char* out33) const;
    void DecodeNormal(const unsigned char* in33);  // the signature is not looked at
    // The wave forms take the start of the whole 65-byte pair. The first half is packed before the
    // second: they share byte 32.
    void EncodeWave1(unsigned char* out65) const;
    void DecodeWave1(const unsigned char* in65);
    void EncodeWave2(unsigned char* out65) const;
    void DecodeWave2(const unsigned char* in65);
};
