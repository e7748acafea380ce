// The title of the main window: what is read, else the document in it.
#pragma once

#include <functional>
#include <string>

#include "app/reading/narrator.h"
#include "gui/windows/window.h"

// A receiver of the narrator's news. GUI thread.
class WindowTitle {
public:
    // Window and narrator are borrowed. document: what its text is called; empty: nothing.
    WindowTitle(const LWindow& window, Narrator& narrator, std::function<std::string()> document);
    WindowTitle(const WindowTitle&) = delete;
    WindowTitle& operator=(const WindowTitle&) = delete;

    void Show() const;  // the document is another one

private:
    void Hear(const ReadingNews& news);

    const LWindow& window_;
    Narrator& narrator_;
    const std::function<std::string()> document_;
    std::size_t chapter_ = 0;
    Narrator::Subscription news_;
};
