// One command at a time has dialogs up that run events: a loading, a save.
#pragma once

#include <functional>
#include <utility>

// Whatever would take the window's text away from that command waits, or is refused. GUI thread.
class CommandTurn {
public:
    // freed: the last one has ended.
    explicit CommandTurn(std::function<void()> freed) : freed_(std::move(freed)) {}
    CommandTurn(const CommandTurn&) = delete;
    CommandTurn& operator=(const CommandTurn&) = delete;

    bool IsTaken() const { return holds_ > 0; }
    // The dialog that waits for its answer comes to the front of other windows.
    static void PresentDialog();

    // Taken as long as this lives.
    class Hold {
    public:
        explicit Hold(CommandTurn& turn) : turn_(turn) { ++turn_.holds_; }
        ~Hold() {
            if (--turn_.holds_ == 0)
                turn_.freed_();
        }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        CommandTurn& turn_;
    };

private:
    const std::function<void()> freed_;
    int holds_ = 0;
};
