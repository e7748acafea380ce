// List views: rows, selection, check boxes, widths that come back.
#include <gmock/gmock.h>

#include <filesystem>

#include "foundation/files/machine_root.h"
#include "foundation/settings/settings.h"
#include "gui/controls/list_view_store.h"
#include "gui/icon_numbers.h"
#include "tests/gui/gui_fixtures.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr int kId = 108;
constexpr LListColumn kColumns[] = {{"Key", 200}, {"Command", 90}};

class ListView : public testing::Test {
protected:
    void SetUp() override {
        dialog.Show([](LDialogGenContext& context) { context.AddList(kId, LRows{5}); });
        view = GTK_TREE_VIEW(dialog.GetControlByID(kId));
    }
    std::string Cell(int row, int column) {
        char text[kTextBufferSize];
        dialog.LVGetColumnString(kId, row, column, text);
        return text;
    }
    // What stands beside and in the first text of this row as it is drawn.
    std::string Drawn(int row) {
        GtkTreeIter iter;
        EXPECT_TRUE(ListRowOf(view, row, iter));
        GtkTreeViewColumn* column = ListColumnOf(view, 0);
        gtk_tree_view_column_cell_set_cell_data(column, gtk_tree_view_get_model(view), &iter, FALSE,
                                                FALSE);
        GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        GdkPixbuf* image = nullptr;
        gboolean isColored = FALSE;
        g_object_get(cells->data, "pixbuf", &image, nullptr);
        g_object_get(cells->next->data, "foreground-set", &isColored, nullptr);
        g_list_free(cells);
        const auto owned = GObjectRef<GdkPixbuf>::Adopt(image);
        return std::string(image != nullptr ? "image " : "") + (isColored ? "color" : "");
    }
    RecordingDialog dialog;
    GtkTreeView* view = nullptr;
};

TEST_F(ListView, RowsTextsDataAndSelection) {
    EXPECT_EQ(dialog.LVAddString(kId, "too early"), -1);
    dialog.LVInit(kId, {LListColumns::kPixels, kColumns});
    EXPECT_EQ(dialog.LVAddString(kId, "Ctrl+B", 7), 0);
    EXPECT_EQ(dialog.LVAddString(kId, "Ctrl+O", 9), 1);
    EXPECT_EQ(dialog.LVInsertString(kId, 0, "Ctrl+A", 5), 0);
    dialog.LVSetColumnString(kId, 2, 1, "Read text");
    dialog.LVSetColumnString(kId, 2, 2, "no such column");
    dialog.LVSetColumnString(kId, 3, 0, "no such row");
    EXPECT_EQ(Cell(2, 1), "Read text");
    EXPECT_EQ(Cell(2, 2) + Cell(-1, 0) + Cell(9, 0) + Cell(0, -1), "");
    EXPECT_EQ(dialog.LVFindString(kId, "Ctrl+O"), 2);
    EXPECT_EQ(dialog.LVFindColumnString(kId, 1, "Ctrl+O"), -1);
    EXPECT_EQ(dialog.LVGetItemData(kId, 1), 7);

    dialog.LVSetSel(kId, 1, true);
    EXPECT_EQ(dialog.LVGetFirstSel(kId), 1);
    dialog.LVSetSel(kId, 1, false);
    dialog.HandleLVSelChange(kId);
    dialog.HandleLVDoubleClick(kId, 1080);
    EXPECT_EQ(dialog.LVGetFirstSel(kId), -1);
    dialog.LVSetCurSel(kId, 2);
    EXPECT_EQ(dialog.LVGetFirstSel(kId), 2);
    EXPECT_EQ(dialog.LVGetSelCount(kId), 1);
    GtkTreePath* path = gtk_tree_path_new_from_indices(2, -1);
    gtk_tree_view_row_activated(view, path, gtk_tree_view_get_column(view, 0));
    gtk_tree_path_free(path);
    EXPECT_THAT(dialog.commands, testing::ElementsAre(kId, 1080));

    dialog.LVDeleteItem(kId, 0);
    dialog.LVDeleteItem(kId, 5);
    EXPECT_EQ(dialog.LVGetCount(kId), 2);
    EXPECT_TRUE(dialog.LVGetSel(kId, 1));  // the selection stays on its row
    dialog.LVClear(kId);
    EXPECT_EQ(dialog.LVGetCount(kId), 0);
}

TEST_F(ListView, HeadingsSortByTextNumberAndDateAndReverse) {
    constexpr LListColumn kSorted[] = {{"Name", 30, LListSort::kText},
                                       {"Size", 20, LListSort::kNumber},
                                       {"Date", 50, LListSort::kDate}};
    dialog.LVInit(kId, {LListColumns::kPercent, kSorted});
    const char* rows[][3] = {{"banana", "9", "31/12/25-10:00:00"},
                             {"Apple", "10", "2026-01-02"},
                             {"cherry", "", "01/02/26-00:00:00"}};
    for (const auto& row : rows) {
        const int at = dialog.LVAddString(kId, row[0]);
        for (int column : {1, 2})
            dialog.LVSetColumnString(kId, at, column, row[column]);
    }
    const auto order = [&] { return Cell(0, 0) + " " + Cell(1, 0) + " " + Cell(2, 0); };
    const struct {
        int column;
        const char *up, *down;
    } cases[] = {{0, "Apple banana cherry", "cherry banana Apple"},
                 {1, "cherry banana Apple", "Apple banana cherry"},
                 {2, "banana Apple cherry", "cherry Apple banana"}};
    for (const auto& c : cases) {
        gtk_tree_view_column_clicked(gtk_tree_view_get_column(view, c.column));
        EXPECT_EQ(order(), c.up);
        gtk_tree_view_column_clicked(gtk_tree_view_get_column(view, c.column));
        EXPECT_EQ(order(), c.down);
    }
    const int uid = dialog.LVGetUID(kId, 2);
    const int at = dialog.LVAddString(kId, "new");
    EXPECT_EQ(Cell(at, 0), "new");  // where the order has it
    EXPECT_NE(dialog.LVGetUID(kId, at), uid);
    // The percentages are of the width that the list has got; longer texts have more.
    PumpPending();
    GtkAllocation place;
    gtk_widget_get_allocation(GTK_WIDGET(view), &place);
    EXPECT_GE(dialog.LVGetColumnWidth(kId, 0), place.width * 30 / 100);
    EXPECT_LT(dialog.LVGetColumnWidth(kId, 0), 110);
    EXPECT_LE(place.width, 300);
}

TEST_F(ListView, ChecksImagesColorsAndNewColumnsKeepTheRows) {
    constexpr int kIcons[] = {kErrorIcon, kWarningIcon};
    const ScratchFolder root;
    const ScopedVariable rootVariable("LECTORA_ROOT", root.Path().c_str());
    const std::string icon = IconPath(kWarningIcon);
    std::filesystem::create_directories(std::filesystem::path(icon).parent_path());
    const auto drawing =
        GObjectRef<GdkPixbuf>::Adopt(gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 16, 16));
    gdk_pixbuf_save(drawing.Get(), icon.c_str(), "png", nullptr, nullptr);
    dialog.LVSetStyleCheck(kId);
    dialog.LVSetImages(kId, kIcons);
    dialog.LVInit(kId, {LListColumns::kPixels, kColumns});
    EXPECT_EQ(dialog.LVImageAddString(kId, 1, "with image", 3), 0);
    EXPECT_EQ(dialog.LVImageAddString(kId, 7, "no such image"), 1);
    dialog.LVSetRowColor(kId, 1, GdkColor{0, 0xFFFF, 0, 0});
    dialog.LVSetCheck(kId, 1, true);
    dialog.LVAddTextColumn(kId, {"More", 40, LListSort::kNumber});
    dialog.LVAddImageColumn(kId, "Picture");
    dialog.LVAddCheckColumn(kId, "Done");
    dialog.LVSetColumnString(kId, 0, 2, "third");
    EXPECT_EQ(Cell(0, 0) + Cell(0, 2), "with imagethird");
    EXPECT_EQ(dialog.LVGetItemData(kId, 0), 3);
    EXPECT_EQ(Drawn(0) + "," + Drawn(1), "image ,color");
    EXPECT_TRUE(dialog.LVIsRowColorSet(kId, 1));
    dialog.LVUnSetRowColor(kId, 1);
    EXPECT_EQ(Drawn(1), "");
    EXPECT_FALSE(dialog.LVIsRowColorSet(kId, 1));
    EXPECT_FALSE(dialog.LVGetCheck(kId, 0));
    EXPECT_TRUE(dialog.LVGetCheck(kId, 1));
    dialog.LVSetColumnName(kId, 0, "First text");  // beside the checks
    EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(view, 1)), "First text");
    dialog.LVSetShowColumnState(kId, 0b101);
    EXPECT_EQ(dialog.LVGetShowColumnState(kId), 0b101u);
    PumpPending();  // editing takes place in what is laid out
    dialog.LVSetCurSel(kId, 0);
    dialog.LVEditCurLabel(kId);
    GtkWidget* entry = nullptr;
    gtk_container_forall(
        GTK_CONTAINER(view),
        [](GtkWidget* child, gpointer out) {
            if (GTK_IS_ENTRY(child))
                *static_cast<GtkWidget**>(out) = child;
        },
        &entry);
    ASSERT_NE(entry, nullptr);
    gtk_entry_set_text(GTK_ENTRY(entry), "edited");
    gtk_cell_editable_editing_done(GTK_CELL_EDITABLE(entry));
    EXPECT_EQ(Cell(0, 0), "edited");
}

TEST_F(ListView, WidthsComeBackFromTheSettings) {
    LUserSettingSetString("GuiTestColumns", "Col1", nullptr);
    LUserSettingSetString("GuiTestColumns", "Col2", "123");
    const LListColumns columns{LListColumns::kStoredPixels, kColumns, "GuiTestColumns"};
    dialog.LVInit(kId, columns);
    PumpPending();
    EXPECT_EQ(dialog.LVGetColumnWidth(kId, 0), 200);
    dialog.LVSetColumnWidth(kId, 0, 77);
    PumpPending();
    dialog.LVDestroy(kId);
    EXPECT_EQ(LUserSettingGetInt("GuiTestColumns", "Col1", 0), 77);
    dialog.LVInit(kId, columns);
    PumpPending();
    EXPECT_EQ(dialog.LVGetColumnWidth(kId, 0), 77);
}

}  // namespace
