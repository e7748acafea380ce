// "About This Book": what players show of an audiobook, as its user wants it.
#pragma once

#include "app/books/book_entry.h"
#include "gui/windows/dialog.h"

class BookDetailsDlg final : public LDialog {
public:
    // entry is borrowed, and changed by OK.
    explicit BookDetailsDlg(BookEntry& entry) : entry_(entry) { SetHelpPage("audiobooks"); }

    bool Run(GtkWidget* parent);  // modal; true: OK

    void InitDialog() override;
    void EnableControls() override;
    bool CmOk() override;
    void Command(int command) override;

private:
    void ChooseCover();
    void ShowCover();

    BookEntry& entry_;
    std::string cover_;
    std::string coverPath_;
};
