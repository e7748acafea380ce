#include "desktop/install_list.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/publish_file.h"

namespace {

constexpr std::size_t kLargestList = std::size_t{1} << 20;

// The list is a text that anybody may have edited: nothing outside the root is ever named by it.
bool IsPlausible(std::string_view path) {
    return path.starts_with('/') && path.size() > 1 &&
           path.find("/../") == std::string_view::npos && !path.ends_with("/..");
}

}  // namespace

std::string LInstallList::Path() {
    return MachinePath("/opt/quillon/lectora/install.list");
}

bool LInstallList::Load() {
    paths_.clear();
    const UniqueFd file = OpenFileForReading(Path().c_str());
    std::string text;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestList, text))
        return false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (IsPlausible(line))
            paths_.emplace(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return true;
}

int LInstallList::Save() const {
    const std::string written = Path() + ".new";
    std::string text;
    for (const std::string& path : paths_)
        text += path + "\n";
    int error = 0;
    {
        const UniqueFd file = OpenRegularFile(written.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        error = file.IsOpen() ? WriteFully(file.Get(), text) : errno;
    }
    if (error == 0)
        error = PublishFile(written.c_str(), Path().c_str(), true);
    if (error != 0)
        ::unlink(written.c_str());
    return error;
}
