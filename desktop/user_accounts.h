// The machine's user accounts.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

constexpr uid_t kNoUser = static_cast<uid_t>(-1);

struct LUserAccount {
    std::string name;
    std::string home;  // below LECTORA_ROOT where that is set; empty when the account has none
    uid_t user = kNoUser;
    gid_t group = static_cast<gid_t>(-1);
};

// In the order of "/etc/passwd"; empty when it cannot be read.
std::vector<LUserAccount> LGetUsersAccounts();

// Whoever runs this, in the home folder that the environment names; where that is another's, its
// owner.
LUserAccount PresentAccount();

// Whether this process may write wherever the machine keeps its programs.
bool LIsUserRoot();
