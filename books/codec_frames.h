// The frames of an MP3 or ADTS file, one after the other.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

// As its header tells it; no bytes when it is none.
struct CodecFrame {
    int bytes = 0;
    int samples = 0;
    int rate = 0;
};

CodecFrame Mp3Frame(const unsigned char* header);
constexpr std::size_t kMp3HeaderBytes = 4;
// Behind the header, without a checksum, and what a frame tells of itself: where its body begins.
std::size_t Mp3BodyAt(std::string_view frame);
CodecFrame AdtsFrame(const unsigned char* header);
// The next rate that there is in AAC.
int AacRate(int rate);

class CodecFrames {
public:
    using Header = CodecFrame (*)(const unsigned char*);

    // The file outlives this. Tags at its beginning are passed over.
    CodecFrames(std::FILE* file, Header header);

    bool Next();                           // false at the end, and at what is no whole frame
    bool IsCut() const { return isCut_; }  // the file ends within a frame
    const CodecFrame& Frame() const { return frame_; }
    const std::string& Bytes() const { return bytes_; }

private:
    std::FILE* file_;
    Header header_;
    CodecFrame frame_;
    std::string bytes_;
    bool isCut_ = false;
};
