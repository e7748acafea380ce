// "Bookmarks": those of a document, to go to, rename and remove.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/reading/kept_bookmarks.h"
#include "gui/windows/dialog.h"

// What is renamed or removed is kept at once, however the dialog ends.
class BookmarksDialog final : public LDialog {
public:
    // Of the document with that key; text: as it is now.
    BookmarksDialog(std::string key, std::string text);

    std::optional<Bookmark> Run(GtkWidget* parent);  // modal; the one to go to

    void InitDialog() override;
    void EnableControls() override;
    void Command(int command) override;
    bool CmOk() override { return chosen_.has_value(); }

private:
    void Fill(std::size_t selected);
    std::string WhereOf(const Bookmark& bookmark) const;
    void Rename(std::size_t index);
    void Remove(std::size_t index);
    void TellTrouble(int error);

    const std::string key_;
    const std::string text_;
    const std::string digest_;
    KeptBookmarks kept_;
    std::vector<Bookmark> shown_;
    std::optional<std::size_t> chosen_;
};
