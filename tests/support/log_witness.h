// What the program's log is told while this object lives.
#pragma once

#include <string>

#include "foundation/log/log.h"

class LogWitness final : public LStatusWindowBase {
public:
    LogWitness() { gLLog.SetStatusWindow(this); }
    LogWitness(const LogWitness&) = delete;
    LogWitness& operator=(const LogWitness&) = delete;
    ~LogWitness() { gLLog.SetStatusWindow(nullptr); }

    void DisplayStatus(const char*, const char* message, std::uint8_t) override {
        told += message;
        told += '\n';
    }
    std::string told;
};
