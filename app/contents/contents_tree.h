// A document's outline as a tree that folds.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "documents/document_outline.h"
#include "gui/signal_owner.h"

// GUI thread. Owns no widget: the window does.
class ContentsTree {
public:
    // chosen: an entry's number, by Enter or a double click.
    explicit ContentsTree(std::function<void(std::size_t)> chosen) : chosen_(std::move(chosen)) {}
    ContentsTree(const ContentsTree&) = delete;
    ContentsTree& operator=(const ContentsTree&) = delete;

    GtkWidget* Create();  // the tree, in scroll bars; once; floating
    GtkWidget* Tree() const { return GTK_WIDGET(tree_); }
    void Fill(const std::vector<OutlineEntry>& outline);
    bool HasKeyboard() const;
    void TakeKeyboard();  // at the entry that is selected, else at the first one
    std::optional<std::size_t> Selected() const;
    // The entry is shown to be heard; nothing: none is. Selected as well, itself or what it is
    // folded into, unless the user is about to choose one.
    void ShowHeard(std::optional<std::size_t> number);

private:
    GtkTreePath* SeenOf(std::size_t number) const;
    void SetWeight(std::size_t number, int weight);
    bool EvKeyPress(const GdkEventKey& event);
    void FoldOrUnfold(GtkTreePath* path, bool unfolds);
    void EvFocus();
    static void GCActivated(GtkTreeView* tree, GtkTreePath* path, GtkTreeViewColumn* column,
                            gpointer self);
    static gboolean GCKeyPress(GtkWidget* tree, GdkEventKey* event, gpointer self);
    static gboolean GCFocusIn(GtkWidget* tree, GdkEventFocus* event, gpointer self);

    const std::function<void(std::size_t)> chosen_;
    GtkTreeView* tree_ = nullptr;
    GtkTreeStore* rows_ = nullptr;    // owned by the tree
    std::vector<GtkTreeIter> iters_;  // of the entries
    std::optional<std::size_t> heard_;
    LSignalOwner signals_;
};
