#include "desktop/packages.h"

#include <unistd.h>

#include <sstream>

#include "desktop/root_prompt.h"
#include "foundation/files/machine_root.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr LVoicePackage kVoices[] = {
    {"Catalan", "female, Ona", "festvox-ca-ona-hts"},
    {"Czech", "female, Dita", "festvox-czech-dita"},
    {"Czech", "male, Machac", "festvox-czech-machac"},
    {"Czech", "male, PH", "festvox-czech-ph"},
    {"Czech", "boy, KRB", "festvox-czech-krb"},
    {"English, American", "male, Kal", kFirstVoicePackage},
    {"English, American", "male, Ked", "festvox-kdlpc16k"},
    {"English, American", "female, SLT (slower)", "festvox-us-slt-hts"},
    {"Finnish", "female, LJ", "festvox-suopuhe-lj"},
    {"Finnish", "male, MV", "festvox-suopuhe-mv"},
    {"Hindi", "male, NSK", "festvox-hi-nsk festival-hi"},
    {"Italian", "female, LP", "festvox-italp16k"},
    {"Italian", "male, PC", "festvox-itapc16k"},
    {"Marathi", "male, NSK", "festvox-mr-nsk festival-mr"},
    {"Russian", "male, NSH", "festvox-ru"},
    {"Telugu", "male, NSK", "festvox-te-nsk festival-te"},
};

std::string Joined(const std::vector<std::string>& packages) {
    std::string words;
    for (const std::string& package : packages)
        words += " " + package;
    return words;
}

}  // namespace

std::span<const LVoicePackage> VoicePackages() {
    return kVoices;
}

bool IsPackageInstalled(const char* packages) {
    std::istringstream words(packages);
    for (std::string package; words >> package;) {
        // Every package has this file; the package manager's own are for itself.
        const std::string copyright = "/usr/share/doc/" + package + "/copyright";
        if (::access(MachinePath(copyright).c_str(), F_OK) != 0)
            return false;
    }
    return true;
}

std::string InstallCommandToType(const std::vector<std::string>& packages) {
    return "sudo apt install" + Joined(packages);
}

std::string InstallCommandToRun(const std::vector<std::string>& packages) {
    if (packages.empty())
        return std::string();
    if (IsProgramInstalled("pkcon"))
        return "pkcon --plain -y install" + Joined(packages);
    if (!IsProgramInstalled("apt-get"))
        return std::string();
    // A fresh machine has no list of packages yet.
    const std::string install = "apt-get -y install" + Joined(packages);
    return RootPromptCommand({"env", "DEBIAN_FRONTEND=noninteractive", "sh", "-c",
                              install + " || { apt-get update && " + install + "; }"});
}
