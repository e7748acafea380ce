// An engine that was started before its text is there.
#include "speech/engine_reserve.h"

#include <gmock/gmock.h>

#include <fstream>

#include "speech/speech_reading.h"
#include "tests/speech/numbers_engine.h"

namespace {

using testing::ElementsAre;

std::vector<pid_t> Processes(const std::string& idFile) {
    std::ifstream ids(idFile);
    std::vector<pid_t> processes;
    for (pid_t id = 0; ids >> id;)
        processes.push_back(id);
    return processes;
}

TEST(EngineReserveTest, TheNextReadingFindsAnEngineThatWaitsForItsText) {
    const NumbersEngine engine;
    const std::string ids = engine / "engine.ids";
    EngineReserve reserve;
    const auto hear = [&] {
        SpeechReading reading(
            "This sentence says the number 1. This one says the number 2. And this says the number "
            "3.",
            0, engine / "speech.wav", ReadingUse::kListening);
        reading.KeepReserve(reserve);
        reading.Start();
        reading.Ended().WaitSignalForever();
        EXPECT_EQ(reading.Outcome(), SynthesisOutcome::kSpoken);
        EXPECT_THAT(HearNumbers(*reading.OpenSource()), ElementsAre(1, 2, 3));
    };
    const auto haveStarted = [&](std::size_t engines) {
        return Eventually([&] { return Processes(ids).size() >= engines; }) &&
               Processes(ids).size() == engines;
    };
    hear();
    EXPECT_TRUE(haveStarted(4));
    hear();
    EXPECT_TRUE(haveStarted(7)) << "the first of them before it was needed";
    for (const pid_t id : Processes(ids)) {  // only the one that waits is left
        const std::string program =
            ScratchFolder::ReadFile("/proc/" + std::to_string(id) + "/cmdline");
        if (program.find(engine.Path()) != std::string::npos)
            ::kill(id, SIGKILL);
    }
    hear();
    EXPECT_TRUE(haveStarted(11)) << "nobody waited";
    EXPECT_EQ(reserve.Take(0, "/another/folder/"), nullptr);
    EXPECT_TRUE(ProcessesEnd(ids));
    hear();
    reserve.Drop();
    EXPECT_TRUE(ProcessesEnd(ids));
    EXPECT_EQ(CountFiles(engine.Path(), ".speech"), 0U);
}

}  // namespace
