// A speech engine that says numbers, so that a test can hear what was spoken and in what order.
#pragma once

#include <string>
#include <vector>

#include "tests/speech/fake_engine.h"

constexpr int kFramesOfNumber = 400;  // at 16,000 Hz
constexpr int kSampleOfNumber = 16;   // times the number

// The engine's double of tests/support says the numbers of a text; the words of the same names are
// trouble there. "wait" is a text that is not spoken before LetGo.
class NumbersEngine : public FakeEngine {
public:
    NumbersEngine() {
        Tell("wait");
        std::filesystem::create_symlink(LECTORA_ENGINE_DOUBLE "/text2wave",
                                        *this / "bin/text2wave");
    }
    void LetGo() const { Tell("hang"); }

private:
    void Tell(const std::string& hangsOn) const {
        std::string told = "text2wave numbers\ntext2wave hang " + hangsOn + "\n";
        for (const std::string trouble : {"hang", "die", "nothing", "once", "many", "half"})
            told += "text2wave " + trouble + " " + trouble + "\n";
        Write("engine", told);
    }
    const ScopedVariable desktop_{"LECTORA_DESKTOP", Path().c_str()};
};

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
