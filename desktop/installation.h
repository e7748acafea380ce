// Placing the program on the machine and taking it away again.
//
// What is placed is a tree of files that stand below its top as they shall stand on the machine
// ("opt/quillon/lectora/bin/lectora"), as an unpacked copy or "DESTDIR=TREE cmake --install" gives
// it. A list below "/opt/quillon/lectora" remembers what was placed, so that only that is taken
// away. Waits for the disk; one process at a time. Results are empty, or a sentence for the user
// that tells what is wrong.
#pragma once

#include <string>

// Everything or nothing: a full disk or a missing permission leaves the machine as it was. Over an
// older installation the files are replaced while that one may run, and what it had more goes.
// What exists without having been placed by an installation is never replaced.
std::string InstallTree(const std::string& tree);

// Takes away what was placed, and the start-up entries of all users; with settings also what the
// program has stored for the machine. Goes on past what cannot be removed, and tells the first.
std::string RemoveInstallation(bool withSettings);

// The tree that the running program stands in; empty when it stands in none. The machine's own
// root is "/".
std::string OwnTree();
