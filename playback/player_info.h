// What a player panel plays: it asks for a fresh source each time it needs one.
#pragma once

#include <optional>
#include <string>

#include "sound/sound_source.h"
#include "sound/sound_time.h"

// GUI thread.
class LPlayerBaseInfo {
public:
    virtual ~LPlayerBaseInfo() = default;

    // A new source at frame 0; its status tells when there is none.
    virtual void OpenSource(LSoundSource& source) = 0;

    // What the panel shows as the name of the item, and whether the user may change it there.
    virtual std::string ItemText() const { return ""; }
    virtual bool IsItemTextReadOnly() const { return true; }

    // Whether there is another item to go on with; who has one is asked for it by a command.
    virtual bool HasNextItem() const { return false; }

    // Whose speech it is: each voice keeps a reading speed of its own.
    virtual std::string VoiceName() const { return ""; }

    // Where in the item its source begins: a text may be spoken from the middle on.
    virtual LSoundTime SourceBegin() const { return LSoundTime(); }

    // While the source still grows: how long the whole will probably be. 0 when nobody knows.
    virtual LSoundTime EstimatedLength() const { return LSoundTime(); }

    // Where the sentence begins that stands `step` sentences from the one at `time`; nothing when
    // there is no such sentence or the item has none.
    virtual std::optional<LSoundTime> FindSentence(LSoundTime /*time*/, int /*step*/) const {
        return std::nullopt;
    }
};

class LPlayerInfoWav final : public LPlayerBaseInfo {
public:
    LPlayerInfoWav(std::string name, std::string path)
        : name_(std::move(name)), path_(std::move(path)) {}
    void OpenSource(LSoundSource& source) override;
    std::string ItemText() const override { return name_; }

private:
    std::string name_;
    std::string path_;
};
