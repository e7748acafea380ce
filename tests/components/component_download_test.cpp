// Fetching a component from a local server with all kinds of manners.
#include "components/component_download.h"
#include "components/settings_keys.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include "foundation/processes/child_process.h"
#include "foundation/settings/hosts.h"
#include "foundation/settings/settings.h"
#include "foundation/settings/settings_keys.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/signals.h"

namespace {

using std::string_literals::operator""s;

// Waits as a dialog does; stops once the server has said that it hangs.
class PatientProgress : public LSilentProgress {
public:
    bool IsShown() const override { return true; }
    void SetFraction(double fraction) override { fractions.push_back(fraction); }
    bool IsToStop() override { return LSignalObjectRef(serverOutput).WaitSignal(0); }
    int serverOutput = -1;
    std::vector<double> fractions;
};

class ComponentDownload : public ::testing::Test {
protected:
    ComponentDownload() {
        char settings[kTextBufferSize];
        LSettingsGetSharedFolder(settings);
        turn_ = UniqueFd(::open(settings, O_RDONLY | O_CLOEXEC));
        EXPECT_EQ(::flock(turn_.Get(), LOCK_EX), 0);
        ::setenv("HOME", Path("").c_str(), 1);
        ::setenv("MP3EL", COMPONENTS_TESTS_FOLDER "/../../share/components/mp3el", 1);
        const LPipePair input = LPipePair::Make();
        serverInput_ = UniqueFd(::dup(input.writeEnd.Get()));
        ::fcntl(serverInput_.Get(), F_SETFD, FD_CLOEXEC);
        LChildStreams streams;
        streams.input = input.readEnd.Get();
        streams.output = output_.writeEnd.Get();
        server_ = LChildProcess::StartShell(
            "exec python3 " COMPONENTS_TESTS_FOLDER "/../support/component_server.py", streams);
        host_ = "127.0.0.1:" + ServerLine();
        progress_.serverOutput = output_.readEnd.Get();
        kComponentsHostSetting.Set("127.0.0.1:1");  // refuses
        kWebHostSetting.Set(host_.c_str());
    }
    ~ComponentDownload() override { serverInput_.Reset(); }

    std::string ServerLine() const {
        char line[16] = "";
        EXPECT_TRUE(LSignalObjectRef(output_.readEnd.Get()).WaitSignal(60000));
        EXPECT_GT(::read(output_.readEnd.Get(), line, sizeof(line) - 1), 0);
        return {line, std::strcspn(line, "\n")};
    }
    LProcessResult Get(const char* name) {
        request_ = {};
        request_.name = name;
        return Process(progress_, request_);
    }
    std::string Path(const std::string& name) const { return folder_ / name; }
    bool IsThere(const std::string& name) const {
        return std::filesystem::exists(Path("components/" + name));
    }

    const ScratchFolder folder_;
    // A program's settings stand where they stood when it started, whatever LECTORA_ROOT says
    // later, and the cases of this fixture, each a process, name servers of their own there.
    UniqueFd turn_;
    const LPipePair output_ = LPipePair::Make();
    UniqueFd serverInput_;  // the server ends with it
    LChildProcess server_;
    std::string host_;
    PatientProgress progress_;
    LProcessGetComponentPath request_;
};

TEST_F(ComponentDownload, TakesWhatIsWholeAndNothingElse) {
    for (const char* whole : {"moved", "good", "good"}) {
        EXPECT_EQ(Get(whole), kProcessDone) << whole;
        EXPECT_TRUE(IsThere(whole) && request_.message.empty()) << whole;
    }
    EXPECT_EQ(request_.path, Path("components/good/good"));
    EXPECT_FALSE(progress_.fractions.empty());
    for (const char* bad :
         {"gone", "half", "over", "unmeasured", "huge", "garbled", "empty", "unwilling"}) {
        EXPECT_EQ(Get(bad), kProcessFailed) << bad;
        EXPECT_FALSE(IsThere(bad)) << bad;
        EXPECT_EQ(request_.message, bad == "unwilling"s ? "Something is missing." : "") << bad;
    }
}

TEST_F(ComponentDownload, ACancelLeavesNothingAndAsksNobodyElse) {
    kComponentsHostSetting.Set(host_.c_str());
    kWebHostSetting.Set("127.0.0.1:1");
    for (const char* name : {"mute", "stalling", "busy"}) {
        EXPECT_EQ(Get(name), kProcessStopped) << name;
        EXPECT_EQ(ServerLine(), "hanging");
        EXPECT_FALSE(IsThere(name));
    }
    int installer = 0;
    char script[100] = "";
    ASSERT_EQ(std::sscanf(folder_.Read("pid").c_str(), "%d %99s", &installer, script), 2);
    EXPECT_NE(::kill(installer, 0), 0);
    EXPECT_FALSE(std::filesystem::exists(script)) << script;
    EXPECT_FALSE(std::filesystem::exists(std::string(script).substr(0, 12))) << script;
}

TEST_F(ComponentDownload, AnInstallerWithAnotherSumIsNotRun) {
    const auto sum = ComponentSumSetting("good");
    sum.Set(std::string(64, 'a'));
    EXPECT_EQ(Get("good"), kProcessFailed);
    EXPECT_FALSE(IsThere("good"));
    EXPECT_NE(request_.message, "");
    // Of the script in component_server.py.
    sum.Set("c4daf55006719dedfc48d92cca87041b09b9fd112efd88179f86a325f4c25147");
    EXPECT_EQ(Get("good"), kProcessDone);
}

}  // namespace
