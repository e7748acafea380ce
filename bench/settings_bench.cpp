// Gets and sets of the settings store beside the same work done with GLib's key files: load the
// file, look up or change one key, save. Both sides use a file on the same file system and end with
// the same content; items are operations. "memory" runs count the bytes that a loaded store takes.
#include <benchmark/benchmark.h>
#include <glib.h>
#include <malloc.h>

#include <filesystem>
#include <memory>
#include <string>

#include "foundation/settings/settings_file.h"

namespace {

constexpr char kGroup[] = "Settings";

struct KeyFileRelease {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileRelease>;

std::string KeyOf(int index) {
    return "window.option" + std::to_string(index);
}

// A folder with one file of each kind, both holding the same keys.
class Stores {
public:
    explicit Stores(int keys) {
        char name[] = "/tmp/lectora-bench-XXXXXX";
        folder_ = ::mkdtemp(name);
        const KeyFile peer(g_key_file_new());
        std::string text;
        for (int i = 0; i < keys; ++i) {
            const std::string value = "value " + std::to_string(i);
            text += KeyOf(i) + "=" + value + "\r\n";
            g_key_file_set_string(peer.get(), kGroup, KeyOf(i).c_str(), value.c_str());
        }
        g_file_set_contents(Ours().c_str(), text.data(), static_cast<gssize>(text.size()), nullptr);
        g_key_file_save_to_file(peer.get(), Peer().c_str(), nullptr);
    }
    Stores(const Stores&) = delete;
    Stores& operator=(const Stores&) = delete;
    ~Stores() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string Ours() const { return folder_ + "/ours"; }
    std::string Peer() const { return folder_ + "/peer"; }

private:
    std::string folder_;
};

KeyFile LoadPeer(const Stores& stores) {
    KeyFile file(g_key_file_new());
    g_key_file_load_from_file(file.get(), stores.Peer().c_str(), G_KEY_FILE_NONE, nullptr);
    return file;
}

void GetOurs(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const Stores stores(keys);
    LSettingsFile file(stores.Ours().c_str());
    int turn = 0;
    char value[260];
    for (auto _ : state) {
        file.GetString(KeyOf(turn++ * 7 % keys).c_str(), "", value);
        benchmark::DoNotOptimize(value[0]);
    }
    state.SetItemsProcessed(state.iterations());
}

void GetKeyFile(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const Stores stores(keys);
    int turn = 0;
    for (auto _ : state) {
        const KeyFile file = LoadPeer(stores);
        char* value =
            g_key_file_get_string(file.get(), kGroup, KeyOf(turn++ * 7 % keys).c_str(), nullptr);
        benchmark::DoNotOptimize(value);
        g_free(value);
    }
    state.SetItemsProcessed(state.iterations());
}

// Every value differs from the one before in text and in length, so every set moves lines.
std::string NewValue(int turn) {
    return "value " + std::to_string(turn) + std::string(static_cast<std::size_t>(turn % 9), 'x');
}

void SetOurs(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const Stores stores(keys);
    LSettingsFile file(stores.Ours().c_str());
    int turn = 0;
    for (auto _ : state) {
        ++turn;
        file.SetString(KeyOf(turn * 7 % keys).c_str(), NewValue(turn).c_str());
    }
    state.SetItemsProcessed(state.iterations());
}

void SetKeyFile(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    const Stores stores(keys);
    int turn = 0;
    for (auto _ : state) {
        ++turn;
        const KeyFile file = LoadPeer(stores);
        g_key_file_set_string(file.get(), kGroup, KeyOf(turn * 7 % keys).c_str(),
                              NewValue(turn).c_str());
        g_key_file_save_to_file(file.get(), stores.Peer().c_str(), nullptr);
    }
    state.SetItemsProcessed(state.iterations());
}

double HeapBytes() {
    return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
}

void MemoryOurs(benchmark::State& state) {
    const Stores stores(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const double before = HeapBytes();
        LSettingsFile file(stores.Ours().c_str());
        file.TestFieldExists("none");
        state.counters["bytes"] = HeapBytes() - before;
    }
}

void MemoryKeyFile(benchmark::State& state) {
    const Stores stores(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const double before = HeapBytes();
        const KeyFile file = LoadPeer(stores);
        state.counters["bytes"] = HeapBytes() - before;
    }
}

BENCHMARK(GetOurs)->Arg(20)->Arg(10000);
BENCHMARK(GetKeyFile)->Arg(20)->Arg(10000);
BENCHMARK(SetOurs)->Arg(20)->Arg(10000);
BENCHMARK(SetKeyFile)->Arg(20)->Arg(10000);
BENCHMARK(MemoryOurs)->Arg(10000)->Iterations(1);
BENCHMARK(MemoryKeyFile)->Arg(10000)->Iterations(1);

}  // namespace
