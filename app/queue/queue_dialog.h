// "Waiting Files": the files that will be read one after the other, to reorder and to empty.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/reading/reading_queue.h"
#include "gui/windows/dialog.h"

// Shows at once what becomes of the queue meanwhile; what is done here counts at once, too.
class QueueDialog final : public LDialog {
public:
    // withProgress: a path, and how far the file was read. The queue outlives the dialog.
    QueueDialog(ReadingQueue& queue, std::function<std::string(const std::string&)> withProgress);

    std::optional<int> Run(GtkWidget* parent);  // modal; the id of the one to be read now

    void InitDialog() override;
    void EnableControls() override;
    void Command(int command) override;
    bool CmOk() override { return chosen_.has_value(); }

private:
    void Fill();
    void EnableMove(int button, bool isPossible);
    void Move(int steps);

    ReadingQueue& queue_;
    const std::function<std::string(const std::string&)> withProgress_;
    std::vector<ReadingQueue::File> shown_;
    std::optional<int> chosen_;  // stays so when others come and go
    LBroadcast<std::vector<ReadingQueue::File>>::Subscription changes_;
};
