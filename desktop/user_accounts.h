// The machine's user accounts.
#pragma once

#include <string>
#include <vector>

struct LUserAccount {
    std::string name;
    std::string home;  // below LECTORA_ROOT where that is set; empty when the account has none
};

// In the order of "/etc/passwd"; empty when it cannot be read.
std::vector<LUserAccount> LGetUsersAccounts();

// Whether this process may write wherever the machine keeps its programs.
bool LIsUserRoot();
