// Accounts of a machine that stands in a folder. As root each is another's, as on a real machine;
// otherwise all of them are this user's.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/scratch_folder.h"

class Accounts {
public:
    // Writes the list, with further lines before it; the homes are "home/NAME".
    Accounts(const ScratchFolder& root, std::vector<std::string> names,
             const std::string& further = "")
        : root_(root), names_(std::move(names)) {
        ::chmod(root_.Path().c_str(), 0755);
        std::filesystem::create_directories(root_ / "etc");
        std::string list = further;
        for (const std::string& name : names_) {
            const std::string id = std::to_string(IdOf(name));
            list += name + ":x:" + id + ":" + id + "::/home/" + name + ":/bin/sh\n";
        }
        root_.Write("etc/passwd", list);
    }
    uid_t IdOf(const std::string& name) const {
        constexpr uid_t kFirst = 61000;
        uid_t id = kFirst;
        for (const std::string& each : names_) {
            if (each == name)
                break;
            ++id;
        }
        return ::geteuid() == 0 ? id : ::geteuid();
    }
    // What stands in the homes by now belongs to them.
    void OwnTheirHomes() const {
        for (const std::string& name : names_) {
            const std::string home = root_ / ("home/" + name);
            Own(home, IdOf(name));
            std::error_code error;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(home, error))
                Own(entry.path(), IdOf(name));
        }
    }

private:
    static void Own(const std::string& path, uid_t id) {
        if (::geteuid() == 0)
            std::ignore = ::lchown(path.c_str(), id, id);
    }

    const ScratchFolder& root_;
    std::vector<std::string> names_;
};
