#include "fuzz/fuzz_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "foundation/files/unique_fd.h"

namespace {

class Folder {
public:
    Folder()
        : path_(::access("/dev/shm", W_OK) == 0 ? "/dev/shm/lectora-fuzz-XXXXXX"
                                                : "/tmp/lectora-fuzz-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr)
            std::abort();
        path_ += "/input";
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(std::filesystem::path(path_).parent_path(), ignored);
    }
    const std::string& InputPath() const { return path_; }

private:
    std::string path_;
};

const std::string& InputPath() {
    static const Folder folder;
    return folder.InputPath();
}

// Reads frames and checks that each sample keeps what the source promises.
void ReadAndCheck(LSoundSourceBase& source, int frames, std::vector<int>& buffer) {
    buffer.assign(static_cast<std::size_t>(frames) * source.Channels() + 1, 0x5A5A5A5A);
    source.Read(buffer.data(), frames);
    if (buffer.back() != 0x5A5A5A5A)
        std::abort();
    // A float file may hold anything, but never the one value that has no magnitude.
    if (std::find(buffer.begin(), buffer.end() - 1, INT32_MIN) != buffer.end() - 1)
        std::abort();
}

}  // namespace

FuzzFile::FuzzFile(const std::uint8_t* data, std::size_t size) {
    const UniqueFd file(::open(Path(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file.IsOpen() || ::write(file.Get(), data, size) != static_cast<ssize_t>(size))
        std::abort();
}

const char* FuzzFile::Path() const {
    return InputPath().c_str();
}

void FuzzFile::Cut(std::size_t size) const {
    if (::truncate(Path(), static_cast<off_t>(size)) != 0)
        std::abort();
}

void ExerciseSource(const FuzzFile& file, std::size_t size,
                    LSoundSource (*open)(const char* path)) {
    const LSoundSource source = open(file.Path());
    if (source->SampleRate() < 1 || source->Channels() < 1 || source->GetEndSample() < 0)
        std::abort();
    const int end = source->GetEndSample();
    const int block =
        source->Channels() > 8 ? 300 : kMaxBlockFrames;  // many channels take much time
    std::vector<int> buffer;
    for (const int frames : {1, 2, 3, 161, block})
        ReadAndCheck(*source, frames, buffer);
    for (const int place : {0, 1, end / 2, end - 1, end, -40, INT32_MAX, INT32_MIN}) {
        source->Seek(place);
        if (source->Status() == SoundStatus::kGood && source->GetPositionSample() != place)
            std::abort();
        ReadAndCheck(*source, 100, buffer);
    }
    source->Seek(0);
    file.Cut(size / 2);
    for (int i = 0; i < 3; i++)
        ReadAndCheck(*source, block, buffer);
    if (source->GetEndSample() < 0)
        std::abort();
}
