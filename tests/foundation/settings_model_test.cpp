// Both stores against small models that follow the written rules in the plainest way, over
// thousands of random operations, foreign edits and looks by a second process.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <vector>

#include "foundation/dat_file_native.h"
#include "foundation/settings.h"
#include "foundation/ticks.h"
#include "tests/foundation/forked.h"
#include "tests/foundation/scratch_folder.h"

namespace {

constexpr int kOperations = 10000;
constexpr int kLooksBySecondProcess = 40;

using Entries = std::vector<std::pair<std::string, std::string>>;

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

Entries::iterator FindKey(Entries& entries, const std::string& key, bool anyCase) {
    return std::find_if(entries.begin(), entries.end(), [&](const auto& entry) {
        return anyCase ? Lowered(entry.first) == Lowered(key) : entry.first == key;
    });
}

std::string Lines(const Entries& entries) {
    std::string text;
    for (const auto& [key, value] : entries)
        text += key + "=" + value + "\r\n";
    return text;
}

// One file of the settings store as this process remembers it.
class SettingsModel {
public:
    std::string Get(const std::string& key) {
        const auto found = FindKey(entries_, Lowered(key.substr(0, 259)), false);
        return found == entries_.end() ? "(none)" : found->second;
    }
    bool Exists(const std::string& key) {
        return FindKey(entries_, key.substr(0, 259), true) != entries_.end();
    }
    void Set(const std::string& key, const std::string* value) {
        const std::string lowered = Lowered(key.substr(0, 259));
        const auto found = FindKey(entries_, lowered, false);
        if (found == entries_.end()) {
            if (value)
                entries_.emplace_back(lowered, value->substr(0, 259));
        } else if (value) {
            found->second = value->substr(0, 259);
        } else {
            entries_.erase(found);
        }
    }
    std::string Text() const { return Lines(entries_); }
    void Read(const std::string& text) {
        entries_.clear();
        std::string line;
        for (const char c : text + "\n") {
            if (c != '\r' && c != '\n') {
                if (!line.empty() || static_cast<unsigned char>(c) >= 33)
                    line += c;
                continue;
            }
            std::string key = line.substr(0, line.find('='));
            std::string value = line.substr(key.size());
            while (!value.empty() && value.front() == '=')
                value.erase(0, 1);
            if (!key.empty())
                entries_.emplace_back(key.substr(0, 259), value.substr(0, 259));
            line.clear();
        }
    }

private:
    Entries entries_;
};

class RandomTexts {
public:
    std::size_t Below(std::size_t limit) { return random_() % limit; }
    std::string Key() {
        static const std::vector<std::string> keys = {"a",
                                                      "B",
                                                      "Width",
                                                      "WIDTH",
                                                      "two words",
                                                      "trailing ",
                                                      "x.y",
                                                      "\xc3\xa9",
                                                      std::string(258, 'k'),
                                                      std::string(259, 'k'),
                                                      std::string(300, 'K'),
                                                      "last"};
        return keys[Below(keys.size())];
    }
    std::string Value() {
        static const std::vector<std::string> values = {"",
                                                        "1",
                                                        "0",
                                                        "=starts",
                                                        "==",
                                                        "a=b=c",
                                                        " leading",
                                                        "trailing ",
                                                        "\xff\xfe",
                                                        std::string(258, 'v'),
                                                        std::string(259, 'w'),
                                                        std::string(400, 'x')};
        return values[Below(values.size())] + (Below(3) == 0 ? std::to_string(Below(100)) : "");
    }

private:
    std::mt19937 random_{7};
};

void AppendTo(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::app) << text;
}

TEST(SettingsModel, AgreesOverTenThousandOperations) {
    const ScratchFolder folder;
    const std::string path = folder / "s";
    LSettingsFile file(path.c_str());
    SettingsModel model;
    RandomTexts texts;
    char out[260];
    for (int step = 0; step < kOperations && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        const std::string key = texts.Key();
        const std::string value = texts.Value();
        const std::size_t choice = texts.Below(100);
        if (choice < 45) {
            file.SetString(key.c_str(), value.c_str());
            model.Set(key, &value);
        } else if (choice < 55) {
            file.SetString(key.c_str(), nullptr);
            model.Set(key, nullptr);
        } else if (choice < 58) {
            const std::string foreign = (texts.Below(2) ? "\n \t" : "") + key + "=" + value +
                                        (texts.Below(2) ? "\n" : "\n\r");
            AppendTo(path, foreign);
            model.Read(model.Text() + foreign);
            file.GetString("a", "", out);
            file.SetString("touched", std::to_string(step).c_str());  // writes the plain form again
            const std::string touched = std::to_string(step);
            model.Set("touched", &touched);
        } else if (choice < 70) {
            EXPECT_EQ(file.TestFieldExists(key.c_str()), model.Exists(key));
        }
        file.GetString(key.c_str(), "(none)", out);
        EXPECT_EQ(out, model.Get(key));
        EXPECT_EQ(folder.Read("s"), model.Text());
        if (step % (kOperations / kLooksBySecondProcess) == 0) {
            EXPECT_EQ(RunForked([&] {
                          LSettingsFile second(path.c_str());
                          SettingsModel fresh;
                          fresh.Read(model.Text());
                          for (int i = 0; i < 30; ++i) {
                              const std::string asked = texts.Key();
                              second.GetString(asked.c_str(), "(none)", out);
                              if (out != fresh.Get(asked))
                                  return 1;
                          }
                          return 0;
                      }),
                      0);
        }
    }
}

// A data file as sections of entries, first match wins and case is ignored.
class DatModel {
public:
    void Set(const std::string& section, const std::string* key, const std::string* value) {
        const auto found = Find(section);
        if (!key) {
            if (found != sections_.end())
                sections_.erase(found);
            return;
        }
        Entries& entries = found == sections_.end()
                               ? sections_.emplace_back(section, Entries()).second
                               : found->second;
        const std::string cut = key->substr(0, 259);
        const auto entry = FindKey(entries, cut, true);
        if (entry != entries.end() && !value)
            entries.erase(entry);
        else if (entry != entries.end())
            entry->second = value->substr(0, 259);
        else if (value)
            entries.emplace_back(cut, value->substr(0, 259));
    }
    std::string Get(const std::string& section, const std::string& key) {
        const auto found = Find(section);
        if (found == sections_.end())
            return "(none)";
        const auto entry = FindKey(found->second, key.substr(0, 259), true);
        return entry == found->second.end() ? "(none)" : entry->second;
    }
    std::string Text() const {
        std::string text;
        for (const auto& [name, entries] : sections_)
            text += "[" + name + "]\r\n" + Lines(entries) + "\r\n";
        return text;
    }

private:
    std::vector<std::pair<std::string, Entries>>::iterator Find(const std::string& section) {
        return std::find_if(sections_.begin(), sections_.end(), [&](const auto& known) {
            return Lowered(known.first) == Lowered(section);
        });
    }
    std::vector<std::pair<std::string, Entries>> sections_;
};

TEST(DatFileModel, AgreesOverTenThousandOperations) {
    const ScratchFolder folder;
    const std::string path = folder / "d";
    DatModel model;
    RandomTexts texts;
    LDatFileNativeSystem cache;
    const char* sections[] = {"Default", "DEFAULT", "X Session", "b", ""};
    for (int step = 0; step < kOperations && !testing::Test::HasFailure(); ++step) {
        SCOPED_TRACE(step);
        const std::string section = sections[texts.Below(5)];
        const std::string key = texts.Key();
        const std::string value = texts.Value();
        const std::size_t choice = texts.Below(100);
        if (choice < 60) {
            cache.SetValue(path.c_str(), section.c_str(), key.c_str(), value.c_str());
            model.Set(section, &key, &value);
        } else if (choice < 70) {
            cache.SetValue(path.c_str(), section.c_str(), key.c_str(), nullptr);
            model.Set(section, &key, nullptr);
        } else if (choice < 72) {
            cache.SetValue(path.c_str(), section.c_str(), nullptr, nullptr);
            model.Set(section, nullptr, nullptr);
        } else if (choice < 75) {
            cache.Flush(path.c_str());
            EXPECT_EQ(folder.Read("d"), model.Text());
            // Out of the cache: the next access loads what was saved.
            cache.Flush(GetTickCount() + LDatFileNativeSystem::kIdleMilliseconds + 1000);
        }
        char out[260];
        cache.GetValue(path.c_str(), section.c_str(), key.c_str(), "(none)", out);
        EXPECT_EQ(out, model.Get(section, key));
    }
}

}  // namespace
