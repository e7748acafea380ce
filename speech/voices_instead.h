// Who speaks when a voice cannot any more: its engine was removed, or it was itself.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

// Value; one thread at a time.
class VoicesInstead {
public:
    // The voice itself while it speaks, else the one in its place. Indices into the voice table.
    int Of(int voice) const;
    // From now on the next voice of its language speaks in place of this one, of another engine
    // where that is what is missing. False: there is none.
    bool Replace(int voice, bool isEngineMissing);
    bool IsEmpty() const { return instead_.empty(); }
    std::string Message() const;  // for the user; empty when nobody was replaced

private:
    bool IsGone(int voice) const;

    std::vector<std::pair<int, int>> instead_;
    std::set<std::string> goneEngines_;
    std::set<int> goneVoices_;
};
