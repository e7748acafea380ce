#include "app/saving/save_text.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

#include "app/settings_keys.h"
#include "formats/whole_file.h"
#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "gui/windows/message_box.h"

namespace {

// Empty, or why it failed.
std::string Write(const std::string& path, const std::string& text) {
    WholeFile file(path, WholeFile::Existing::kReplace);
    if (!file.Problem().empty())
        return file.Problem();
    {
        const UniqueFd output(::open(file.WritePath().c_str(), O_WRONLY | O_CLOEXEC));
        const int error = output.IsOpen() ? WriteFully(output.Get(), text) : errno;
        if (error != 0)
            return std::strerror(error);
    }
    return file.Commit();
}

}  // namespace

std::string SaveTextAs(GtkWidget* parent, const std::string& text,
                       const std::string& suggestedName) {
    static constexpr char kFilters[] = "Text Documents\0*.txt;*.TXT\0";
    int filter = 0;
    std::string path = suggestedName;
    std::string folder = kOpenFolderSetting.Get();
    if (!LFile::BrowseSaveFilePath(parent, path, "Save Text As", folder, kFilters, filter))
        return "";
    const std::string problem = Write(path, text);
    if (problem.empty()) {
        KeepFolder(kOpenFolderSetting, folder);
        return path;
    }
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Save Error",
                  "Cannot save the file. Please try again.", (path + ": " + problem + ".").c_str());
    return "";
}
