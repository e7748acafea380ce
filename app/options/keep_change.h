// Keeping what was changed in the options.
#pragma once

// True when it is kept; an untouched choice is not written, so that it goes on following what an
// administrator has set.
template <typename Setting, typename Value>
bool KeepChange(const Setting& setting, const Value& before, const Value& now) {
    if (now != before)
        setting.Set(now);
    return now == before || setting.Get() == now;
}

constexpr const char* kFolderNotWritten = "Your settings folder cannot be written.";
