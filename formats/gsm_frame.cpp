#include "formats/gsm_frame.h"

// Writers hold less than 8 pending bits between calls; Flush stores a last partial byte, the
// missing bits as 0.
class LGSMBitWriterMsb {
public:
    explicit LGSMBitWriterMsb(unsigned char* out) : out_(out) {}
    void Put(int value, int bits) {
        pending_ = (pending_ << bits) | static_cast<unsigned>(value);
        for (count_ += bits; count_ >= 8; count_ -= 8)
            *out_++ = static_cast<unsigned char>(pending_ >> (count_ - 8));
    }

private:
    unsigned char* out_;
    unsigned pending_ = 0;
    int count_ = 0;
};

class LGSMBitReaderMsb {
public:
    explicit LGSMBitReaderMsb(const unsigned char* in) : in_(in) {}
    std::int16_t Get(int bits) {
        for (; count_ < bits; count_ += 8)
            pending_ = (pending_ << 8) | *in_++;
        count_ -= bits;
        return static_cast<std::int16_t>((pending_ >> count_) & ((1u << bits) - 1));
    }

private:
    const unsigned char* in_;
    unsigned pending_ = 0;
    int count_ = 0;
};

class LGSMBitWriterLsb {
public:
    LGSMBitWriterLsb(unsigned char* out, unsigned pending, int count)
        : out_(out), pending_(pending), count_(count) {}
    void Put(int value, int bits) {
        pending_ |= static_cast<unsigned>(value) << count_;
        for (count_ += bits; count_ >= 8; count_ -= 8) {
            *out_++ = static_cast<unsigned char>(pending_);
            pending_ >>= 8;
        }
    }
    void Flush() {
        if (count_ > 0)
            *out_ = static_cast<unsigned char>(pending_);
    }

private:
    unsigned char* out_;
    unsigned pending_;
    int count_;
};

class LGSMBitReaderLsb {
public:
    explicit LGSMBitReaderLsb(const unsigned char* in) : in_(in) {}
    std::int16_t Get(int bits) {
        for (; count_ < bits; count_ += 8)
            pending_ |= static_cast<unsigned>(*in_++) << count_;
        const unsigned value = pending_ & ((1u << bits) - 1);
        pending_ >>= bits;
        count_ -= bits;
        return static_cast<std::int16_t>(value);
    }

private:
    const unsigned char* in_;
    unsigned pending_ = 0;
    int count_ = 0;
};

namespace {

constexpr int kRatioBits[gsm::kOrder] = {6, 6, 5, 5, 4, 4, 3, 3};
constexpr std::size_t kSharedByte =
    32;  // of a wave pair: low nibble first frame, high nibble second

template <typename Writer>
void Pack(const LGSMSubFrame& subFrame, Writer& out) {
    out.Put(subFrame.lag, 7);
    out.Put(subFrame.gain, 2);
    out.Put(subFrame.grid, 2);
    out.Put(subFrame.blockAmplitude, 6);
    for (const std::int16_t pulse : subFrame.pulses)
        out.Put(pulse, 3);
}

template <typename Reader>
void Unpack(LGSMSubFrame& subFrame, Reader& in) {
    subFrame.lag = in.Get(7);
    subFrame.gain = in.Get(2);
    subFrame.grid = in.Get(2);
    subFrame.blockAmplitude = in.Get(6);
    for (std::int16_t& pulse : subFrame.pulses)
        pulse = in.Get(3);
}

template <typename Writer>
void PackRatios(const LGSMFrame& frame, Writer& out) {
    for (int i = 0; i < gsm::kOrder; i++)
        out.Put(frame.codedRatios[i], kRatioBits[i]);
}

template <typename Reader>
void UnpackRatios(LGSMFrame& frame, Reader& in) {
    for (int i = 0; i < gsm::kOrder; i++)
        frame.codedRatios[i] = in.Get(kRatioBits[i]);
}

}  // namespace

void LGSMSubFrame::EncodeNormal(LGSMBitWriterMsb& out) const {
    Pack(*this, out);
}
void LGSMSubFrame::DecodeNormal(LGSMBitReaderMsb& in) {
    Unpack(*this, in);
}
void LGSMSubFrame::EncodeWave1(LGSMBitWriterLsb& out) const {
    Pack(*this, out);
}
void LGSMSubFrame::DecodeWave1(LGSMBitReaderLsb& in) {
    Unpack(*this, in);
}
void LGSMSubFrame::EncodeWave2(LGSMBitWriterLsb& out) const {
    Pack(*this, out);
}
void LGSMSubFrame::DecodeWave2(LGSMBitReaderLsb& in) {
    Unpack(*this, in);
}

void LGSMFrame::EncodeNormal(unsigned char* out33) const {
    LGSMBitWriterMsb out(out33);
    out.Put(0xD, 4);
    PackRatios(*this, out);
    for (const LGSMSubFrame& subFrame : subFrames)
        subFrame.EncodeNormal(out);
}

void LGSMFrame::DecodeNormal(const unsigned char* in33) {
    LGSMBitReaderMsb in(in33);
    in.Get(4);
    UnpackRatios(*this, in);
    for (LGSMSubFrame& subFrame : subFrames)
        subFrame.DecodeNormal(in);
}

void LGSMFrame::EncodeWave1(unsigned char* out65) const {
    LGSMBitWriterLsb out(out65, 0, 0);
    PackRatios(*this, out);
    for (const LGSMSubFrame& subFrame : subFrames)
        subFrame.EncodeWave1(out);
    out.Flush();
}

void LGSMFrame::DecodeWave1(const unsigned char* in65) {
    LGSMBitReaderLsb in(in65);
    UnpackRatios(*this, in);
    for (LGSMSubFrame& subFrame : subFrames)
        subFrame.DecodeWave1(in);
}

void LGSMFrame::EncodeWave2(unsigned char* out65) const {
    LGSMBitWriterLsb out(out65 + kSharedByte, out65[kSharedByte] & 15u, 4);
    PackRatios(*this, out);
    for (const LGSMSubFrame& subFrame : subFrames)
        subFrame.EncodeWave2(out);
}

void LGSMFrame::DecodeWave2(const unsigned char* in65) {
    LGSMBitReaderLsb in(in65 + kSharedByte);
    in.Get(4);
    UnpackRatios(*this, in);
    for (LGSMSubFrame& subFrame : subFrames)
        subFrame.DecodeWave2(in);
}
