#include "app/contents/contents_tree.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>

#include "foundation/owned_text.h"
#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/gobject_ref.h"

namespace {

// The tip is the title as markup.
enum Column : int { kTitle, kNumber, kWeight, kTip, kColumns };

// As many are seen at once: what is longer is folded to its highest entries.
constexpr std::size_t kMostUnfolded = 40;

}  // namespace

GtkWidget* ContentsTree::Create() {
    rows_ = gtk_tree_store_new(kColumns, G_TYPE_STRING, G_TYPE_INT, G_TYPE_INT, G_TYPE_STRING);
    GtkWidget* tree = gtk_tree_view_new_with_model(GTK_TREE_MODEL(rows_));
    g_object_unref(rows_);
    tree_ = GTK_TREE_VIEW(tree);
    GtkCellRenderer* text = gtk_cell_renderer_text_new();
    g_object_set(text, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    gtk_tree_view_append_column(
        tree_, gtk_tree_view_column_new_with_attributes("Contents", text, "text", kTitle, "weight",
                                                        kWeight, nullptr));
    gtk_tree_view_set_headers_visible(tree_, TRUE);
    gtk_tree_view_set_search_column(tree_, kTitle);
    gtk_tree_view_set_tooltip_column(tree_, kTip);
    SetAccessibleName(tree, "Contents");
    signals_.Connect(tree, "row-activated", G_CALLBACK(GCActivated), this);
    signals_.Connect(tree, "key-press-event", G_CALLBACK(GCKeyPress), this);
    signals_.Connect(tree, "focus-in-event", G_CALLBACK(GCFocusIn), this);
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), tree);
    return scrolled;
}

void ContentsTree::Fill(const std::vector<OutlineEntry>& outline) {
    heard_.reset();
    iters_.clear();
    // Row by row a tree view would look at each of thousands.
    const auto rows = GObjectRef<GtkTreeStore>::Share(rows_);
    gtk_tree_view_set_model(tree_, nullptr);
    gtk_tree_store_clear(rows_);
    std::vector<GtkTreeIter> above;  // the last entry of each depth
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const OutlineEntry& entry = outline[i];
        above.resize(std::min(above.size(), static_cast<std::size_t>(entry.depth)));
        GtkTreeIter row;
        const std::string title = DisplayText(entry.title);
        const OwnedText tip(g_markup_escape_text(title.c_str(), -1));
        gtk_tree_store_insert_with_values(rows_, &row, above.empty() ? nullptr : &above.back(), -1,
                                          kTitle, title.c_str(), kNumber, static_cast<int>(i),
                                          kWeight, PANGO_WEIGHT_NORMAL, kTip, tip.get(), -1);
        above.push_back(row);
        iters_.push_back(row);
    }
    gtk_tree_view_set_model(tree_, GTK_TREE_MODEL(rows_));
    gtk_tree_view_set_search_column(tree_, kTitle);
    if (outline.size() <= kMostUnfolded)
        gtk_tree_view_expand_all(tree_);
}

bool ContentsTree::HasKeyboard() const {
    return tree_ != nullptr && gtk_widget_is_focus(GTK_WIDGET(tree_)) != FALSE;
}

void ContentsTree::TakeKeyboard() {
    gtk_widget_grab_focus(GTK_WIDGET(tree_));
}

std::optional<std::size_t> ContentsTree::Selected() const {
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree_), nullptr, &row) == FALSE)
        return std::nullopt;
    int number = 0;
    gtk_tree_model_get(GTK_TREE_MODEL(rows_), &row, kNumber, &number, -1);
    return static_cast<std::size_t>(number);
}

void ContentsTree::SetWeight(std::size_t number, int weight) {
    GtkTreeIter row = iters_[number];
    gtk_tree_store_set(rows_, &row, kWeight, weight, -1);
}

void ContentsTree::ShowHeard(std::optional<std::size_t> number) {
    if (number && *number >= iters_.size())
        number.reset();
    if (number == heard_)
        return;
    if (heard_)
        SetWeight(*heard_, PANGO_WEIGHT_NORMAL);
    heard_ = number;
    if (!number)
        return;
    SetWeight(*number, PANGO_WEIGHT_BOLD);
    if (HasKeyboard())
        return;
    GtkTreePath* seen = SeenOf(*number);
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(tree_), seen);
    gtk_tree_view_scroll_to_cell(tree_, seen, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(seen);
}

// To be freed; of what is folded the entry that it is folded into.
GtkTreePath* ContentsTree::SeenOf(std::size_t number) const {
    GtkTreeIter row = iters_[number];
    GtkTreePath* path = gtk_tree_model_get_path(GTK_TREE_MODEL(rows_), &row);
    const int* indices = gtk_tree_path_get_indices(path);
    GtkTreePath* seen = gtk_tree_path_new_from_indices(indices[0], -1);
    for (int level = 1;
         level < gtk_tree_path_get_depth(path) && gtk_tree_view_row_expanded(tree_, seen) != FALSE;
         ++level)
        gtk_tree_path_append_index(seen, indices[level]);
    gtk_tree_path_free(path);
    return seen;
}

void ContentsTree::GCActivated(GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*, gpointer user) {
    const auto* self = static_cast<ContentsTree*>(user);
    if (const auto number = self->Selected())
        self->chosen_(*number);
}

gboolean ContentsTree::GCKeyPress(GtkWidget*, GdkEventKey* event, gpointer user) {
    return static_cast<ContentsTree*>(user)->EvKeyPress(*event) ? TRUE : FALSE;
}

// The arrows fold and unfold, and go to what is above and below, as in other trees.
bool ContentsTree::EvKeyPress(const GdkEventKey& event) {
    const bool unfolds = event.keyval == GDK_Right || event.keyval == GDK_KP_Right;
    const bool folds = event.keyval == GDK_Left || event.keyval == GDK_KP_Left;
    const auto modifiers = event.state & gtk_accelerator_get_default_mod_mask();
    GtkTreePath* path = nullptr;
    gtk_tree_view_get_cursor(tree_, &path, nullptr);
    if ((!folds && !unfolds) || modifiers != 0 || path == nullptr) {
        gtk_tree_path_free(path);
        return false;
    }
    FoldOrUnfold(path, unfolds);
    gtk_tree_path_free(path);
    return true;
}

void ContentsTree::FoldOrUnfold(GtkTreePath* path, bool unfolds) {
    const bool isUnfolded = gtk_tree_view_row_expanded(tree_, path) != FALSE;
    if (!unfolds && isUnfolded) {
        gtk_tree_view_collapse_row(tree_, path);
    } else if (unfolds && !isUnfolded) {
        gtk_tree_view_expand_row(tree_, path, FALSE);
    } else if (unfolds || gtk_tree_path_get_depth(path) > 1) {
        if (unfolds)
            gtk_tree_path_down(path);
        else
            gtk_tree_path_up(path);
        gtk_tree_view_set_cursor(tree_, path, nullptr, FALSE);
    }
}

gboolean ContentsTree::GCFocusIn(GtkWidget*, GdkEventFocus*, gpointer user) {
    static_cast<ContentsTree*>(user)->EvFocus();
    return FALSE;
}

// The keyboard begins with what is heard, which was only selected.
void ContentsTree::EvFocus() {
    GtkTreeModel* model = nullptr;
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree_), &model, &row) ==
            FALSE &&
        gtk_tree_model_get_iter_first(GTK_TREE_MODEL(rows_), &row) == FALSE)
        return;
    GtkTreePath* path = gtk_tree_model_get_path(GTK_TREE_MODEL(rows_), &row);
    gtk_tree_view_set_cursor(tree_, path, nullptr, FALSE);
    gtk_tree_path_free(path);
}
