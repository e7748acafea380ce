// The side command bar: topics that fold, each with commands that can be hidden.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// Owns no widget: the bar's window does, and the bar outlives it without harm. Topics stay in the
// order in which they were added, and so do the items of each. GUI thread only.
class LExplorerBar {
public:
    LExplorerBar() = default;
    LExplorerBar(const LExplorerBar&) = delete;
    LExplorerBar& operator=(const LExplorerBar&) = delete;
    ~LExplorerBar();

    // A new bar (floating), once for an object; `send` gets the command of each item that is
    // pressed.
    GtkWidget* Create(std::function<void(int command)> send);

    // The topic's number, from 0. A negative image number stands for no image.
    int AddTopic(const char* text, int imageNumber = -1);
    // The item's widget, borrowed; null for an unknown topic. A topic whose items are all hidden is
    // hidden with them, whoever hides them.
    GtkWidget* AddItem(int topic, const char* text, const char* tooltip, int command);

    // A command that no item carries changes nothing.
    void ShowItem(int command, bool shown);
    bool IsItemShown(int command) const;
    void SetItemText(int command, const char* text);

    void FoldTopic(int topic, bool folded);
    bool IsTopicFolded(int topic) const;

private:
    friend struct LExplorerBarCallbacks;
    struct Item {
        int command;
        int topic;
        GtkWidget* button;
    };
    struct Topic {
        GtkWidget* expander;
        GtkWidget* items;  // box
    };
    const Item* Find(int command) const;
    const Topic* TopicAt(int number) const;
    void ShowTopicOf(GtkWidget* button);

    std::function<void(int)> send_;
    GtkWidget* bar_ = nullptr;  // null before Create and once destroyed
    GtkWidget* box_ = nullptr;
    std::vector<Topic> topics_;
    std::vector<Item> items_;
};
