// What became of a verb: told exactly once to whoever asked.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

// Shared by whatever the verb waits for. One that is dropped on its way was not done. GUI thread.
class VerbReply {
public:
    using Send = std::function<void(bool isDone, const std::string& text)>;

    explicit VerbReply(Send send) : send_(std::move(send)) {}
    ~VerbReply() { NotDone("Lectora was asked for something else meanwhile."); }
    VerbReply(const VerbReply&) = delete;
    VerbReply& operator=(const VerbReply&) = delete;

    // The first answer counts. text: a line for the user, who may be at a terminal.
    void Done(const std::string& text = "") { Give(true, text); }
    void NotDone(const std::string& text) { Give(false, text); }

private:
    void Give(bool isDone, const std::string& text) {
        if (const Send send = std::exchange(send_, nullptr))
            send(isDone, text);
    }

    Send send_;
};
using VerbReplyRef = std::shared_ptr<VerbReply>;
