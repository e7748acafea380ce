// The window that tells what the machine lacks for reading aloud, and helps to get it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "gui/windows/dialog.h"

// A program that a part of the application needs.
struct LHelperProgram {
    const char* what;  // it is for
    const char* package;
    bool isThere;
};

// What the application knows about the machine. GUI thread.
class LReadiness {
public:
    enum class Engine { kAsking, kMissing, kWithoutVoice, kSpeaks };

    virtual ~LReadiness() = default;
    // Looks anew; `changed` is called from the main loop when the engine has answered.
    virtual void Look(std::function<void()> changed) = 0;
    virtual Engine EngineState() const = 0;
    virtual std::string Engines() const = 0;             // those that speak
    virtual std::string Voices() const = 0;              // how many of them, in how many languages
    virtual std::vector<std::string> Cards() const = 0;  // names
    virtual std::vector<LHelperProgram> Helpers() const = 0;  // always the same ones
    // Says a sentence aloud; troubles are told to the user in boxes of their own.
    virtual void ReadTestSentence(GtkWidget* parent) = 0;
};

class LReadyDialog : public LDialog {
public:
    enum class Part { kState, kVoices };
    // begin: the list that has the keyboard first.
    explicit LReadyDialog(LReadiness& machine, Part begin = Part::kState)
        : machine_(machine), begin_(begin) {}

    void Run(GtkWidget* parent);  // until the user closes it; `parent` may be null

private:
    void InitDialog() override;
    void DestroyDialog() override;
    void EnableControls() override;
    void Command(int command) override;
    void Look();
    void Show();
    void FillVoices();
    const char* PackageAt(int row) const;
    std::vector<std::string> ChosenVoices() const;
    void Install(const std::vector<std::string>& packages);

    LReadiness& machine_;
    const Part begin_;
    std::vector<std::string> missing_;  // packages
    std::string told_;                  // the advice that stands there; empty before the first
};
