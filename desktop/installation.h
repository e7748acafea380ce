// Placing the program on the machine and taking it away again.
//
// What is placed is a tree of files that stand below its top as they shall stand on the machine
// ("opt/quillon/lectora/bin/lectora"), as an unpacked copy or "DESTDIR=TREE cmake --install" gives
// it. A list below "/opt/quillon/lectora" remembers what was placed, so that only that is taken
// away. Waits for the disk; one process at a time. Results are empty, or a sentence for the user
// that tells what is wrong.
#pragma once

#include <functional>
#include <string>

// Told of each file and of the part of the work done by then, 0 to 1, on the thread that does the
// work. False stops it; nothing has been changed then.
using InstallProgress = std::function<bool(const std::string& path, double fraction)>;

// Everything or nothing: a full disk, a missing permission or a stop leaves the machine as it was.
// Over an older installation the files are replaced while that one may run, and what it had more
// goes. What exists without having been placed by an installation is never replaced.
std::string InstallTree(const std::string& tree, const InstallProgress& progress = {});

// What goes with the program, beyond what was placed.
struct RemovalChoice {
    bool machineSettings = false;  // what the program has stored for the machine
    bool usersData = false;        // settings, logs and last speech of every user
};

// Takes away what was placed, and the start-up entries and desktop shortcuts of all users. Goes on
// past what cannot be removed, and tells the first.
std::string RemoveInstallation(RemovalChoice choice);

bool IsInstalled();  // by an installation of this kind

// The tree that the running program stands in; empty when it stands in none. The machine's own
// root is "/".
std::string OwnTree();
inline constexpr const char* kNoTreeText =
    "The files to install are not beside this program. Please run the copy that stands in an "
    "unpacked installation.";
// Whether that is where the machine has its programs, so that there is nothing to place.
bool IsOwnTreeInPlace();
