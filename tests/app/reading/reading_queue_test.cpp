// Files that wait, in a narrator that reads them.
#include "app/reading/reading_queue.h"

#include "app/reading/kept_queue.h"

#include <gmock/gmock.h>

#include "tests/app/reading/narrator_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadingQueueTest : public NarratorTest {
protected:
    void QueueFile(const std::string& path) {
        narrator_->Queue({.begin =
                              [this, path] {
                                  begun_.push_back(path);
                                  narrator_->Read(kQueued, 0, path);
                                  return QueuedText::Begun::kYes;
                              },
                          .path = path});
    }
    std::vector<std::string> Waiting() const {
        std::vector<std::string> paths;
        for (const ReadingQueue::File& file : narrator_->Waiting().Files())
            paths.push_back(file.path);
        return paths;
    }
    bool RunToEndOf(const std::string& path) {
        return RunUntil([&] {
            return begun_.size() > 0 && begun_.back() == path &&
                   narrator_->State() == ReadingState::kEnded;
        });
    }
    void Turn() {
        for (int turn = 0; turn < 50; ++turn)
            g_main_context_iteration(nullptr, FALSE);
    }

    static constexpr const char* kQueued = "A sentence of several words.";
    std::vector<std::string> begun_;
};

TEST_F(ReadingQueueTest, WhatIsStoppedIsSetAsideAndReadOnceItIsAskedFor) {
    for (const char* path : {"a", "b", "c", "d"})
        QueueFile(path);
    ASSERT_TRUE(RunTo(ReadingState::kPlaying));
    bool isDropped = false;
    std::shared_ptr<void> asking(nullptr, [&](void*) { isDropped = true; });
    narrator_->Queue({.begin = [held = std::move(asking)] { return QueuedText::Begun::kFailed; }});
    EXPECT_FALSE(isDropped);
    narrator_->Stop();
    EXPECT_TRUE(isDropped) << "what is no file has no use any more";
    Turn();
    EXPECT_THAT(begun_, ElementsAre("a"));
    EXPECT_THAT(Waiting(), ElementsAre("b", "c", "d"));
    QueueFile("new");
    ASSERT_TRUE(RunToEndOf("new"));
    Turn();
    EXPECT_THAT(Waiting(), ElementsAre("b", "c", "d")) << "none begins by itself";

    ReadingQueue& queue = narrator_->Waiting();
    const auto id = [&](std::size_t index) { return queue.Files()[index].id; };
    queue.Move(id(2), -1);
    queue.Move(id(0), -1);
    queue.Move(id(2), 1);
    EXPECT_THAT(Waiting(), ElementsAre("b", "d", "c"));
    queue.Remove(id(0));
    queue.MoveToFront(id(1));
    narrator_->NextItem();
    ASSERT_TRUE(RunToEndOf("d"));
    EXPECT_THAT(begun_, ElementsAre("a", "new", "c", "d"));
    EXPECT_THAT(Waiting(), IsEmpty());
}

// What another start finds: the files of the queue, none of which begins by itself.
TEST(KeptQueueTest, WhatWaitsIsThereAtTheNextStartAndSetAside) {
    const ScratchFolder home;
    const ScopedVariable variable("HOME", home.Path().c_str());
    bool mayKeep = true;
    std::vector<std::string> told;
    const KeptQueue::Listener listener{.mayKeep = [&] { return mayKeep; },
                                       .tell = [&](const char* text) { told.push_back(text); }};
    const auto run = [&](const std::vector<std::string>& added) {
        ReadingQueue queue;
        for (const std::string& path : added)
            queue.Add({.begin = [] { return QueuedText::Begun::kFailed; }, .path = path});
        KeptQueue kept(queue, listener);
        kept.Begin([&](const std::string&) { return QueuedText::Begun::kYes; });
        EXPECT_EQ(queue.MayBegin(), !added.empty());
        std::vector<std::string> paths;
        for (const ReadingQueue::File& file : queue.Files())
            paths.push_back(file.path);
        queue.Add({.begin = [] { return QueuedText::Begun::kFailed; }});  // which is no file
        kept.End();
        queue.Clear();
        return paths;
    };
    run({"/home/one.txt", "https://example.org/two"});
    EXPECT_THAT(run({"/home/new"}),
                ElementsAre("/home/new", "/home/one.txt", "https://example.org/two"));
    EXPECT_THAT(told, IsEmpty());
    run(std::vector<std::string>(KeptQueue::kMost, "/home/" + std::string(1500, 'x')));
    EXPECT_THAT(told, ElementsAre(testing::HasSubstr("only the first 597 are kept")));
    mayKeep = false;
    EXPECT_THAT(run({"/home/private"}), ElementsAre("/home/private"));
    mayKeep = true;
    EXPECT_THAT(run({}), IsEmpty());
}

}  // namespace
