// A speech engine that says numbers, so that a test can hear what was spoken and in what order.
#pragma once

#include <string>
#include <vector>

#include "tests/speech/fake_engine.h"

constexpr int kFramesOfNumber = 400;  // at 16,000 Hz
constexpr int kSampleOfNumber = 16;   // times the number

// Every number in the text becomes kFramesOfNumber samples of its value. Some words are trouble:
//   die      half the sound behind a header that says there is none, then a segmentation fault
//   hang     the file "hanging", then nothing more
//   nothing  no sound file, and success all the same
//   once     the same, but only the first time
//   many     the numbers in three channels
//   rate     the numbers at 8,000 Hz
//   wait     not before the file "go" is there
// The line "text" is added to "said" when it begins; "running" holds the engines' process ids.
inline void SpeakNumbers(const FakeEngine& engine) {
    engine.Script("text2wave", R"(
exec /usr/bin/python3 -SE - "$here" "$@" <<'END'
import os, signal, struct, sys, time
here, text_path, output = sys.argv[1], sys.argv[4], sys.argv[6]
text = open(text_path).read()
with open(here + "/said", "a") as said:
    said.write(text.replace("\n", " ") + "\n")
with open(here + "/running", "a") as running:
    running.write("%d\n" % os.getpid())
words = text.replace(".", " ").split()
while "wait" in words and not os.path.exists(here + "/go"):
    time.sleep(0.01)
if "hang" in words:
    open(here + "/hanging", "w").close()
    time.sleep(1000)
once = "once" in words and not os.path.exists(here + "/once")
if once:
    open(here + "/once", "w").close()
if "nothing" in words or once:
    os.remove(output)
    sys.exit()
rate = 8000 if "rate" in words else 16000
channels = 3 if "many" in words else 1
samples = b"".join(
    struct.pack("<h", int(word)) * (400 * rate // 16000) for word in words if word.isdigit())
def header(size):
    return (b"RIFF" + struct.pack("<I", size + 36) + b"WAVEfmt " +
            struct.pack("<IHHIIHH", 16, 1, channels, rate, rate * 2 * channels, 2 * channels, 16) + b"data" + struct.pack("<I", size))
with open(output, "wb") as file:
    file.write(header(0) + samples[:len(samples) // 2] if "die" in words else header(len(samples)) + samples)
if "die" in words:
    os.kill(os.getpid(), signal.SIGSEGV)
END)");
}

// The numbers in the rest of a source, each once; -1 for a frame that belongs to none.
inline std::vector<int> HearNumbers(LSoundSourceBase& source) {
    std::vector<int> numbers;
    int block[kFramesOfNumber];
    while (source.GetPositionSample() < source.GetEndSample() || source.IsStreaming()) {
        if (source.GetEndSample() - source.GetPositionSample() < kFramesOfNumber &&
            source.IsStreaming()) {
            source.WaitForStreamingData(10000);
            continue;
        }
        source.Read(block, kFramesOfNumber);
        const bool isOne = std::all_of(block, block + kFramesOfNumber,
                                       [&](int sample) { return sample == block[0]; });
        numbers.push_back(isOne ? block[0] / kSampleOfNumber : -1);
    }
    return numbers;
}
