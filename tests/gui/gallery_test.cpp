// Every control in a window, in several themes and font sizes. The pictures land in the build
// folder, for people to look at.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "gui/icon_numbers.h"
#include "gui/widgets/explorer_bar.h"
#include "tests/gui/gui_fixtures.h"

namespace {

// Controls that got less room than they asked for are cut off on the screen.
void ExpectRoom(GtkWidget* widget, const std::string& look) {
    if (!gtk_widget_get_mapped(widget))
        return;
    GtkRequisition wanted;
    gtk_widget_get_child_requisition(widget, &wanted);
    const GtkAllocation& place = widget->allocation;
    EXPECT_TRUE(place.width >= wanted.width && place.height >= wanted.height)
        << look << ": " << G_OBJECT_TYPE_NAME(widget) << " \""
        << (GTK_IS_LABEL(widget) ? gtk_label_get_text(GTK_LABEL(widget)) : "") << "\" wants "
        << wanted.width << " x " << wanted.height << ", has " << place.width << " x "
        << place.height;
    // What scrolls needs no room.
    if (GTK_IS_CONTAINER(widget) && !GTK_IS_SCROLLED_WINDOW(widget))
        gtk_container_foreach(
            GTK_CONTAINER(widget),
            [](GtkWidget* child, gpointer text) {
                ExpectRoom(child, *static_cast<const std::string*>(text));
            },
            const_cast<std::string*>(&look));
}

void GenerateGallery(LDialogGenContext& context) {
    context.AddHorizontalLine(1, "Texts and lists");
    context.AddInput(10, "Input:");
    context.AddInputUpDown(12, "Up and down:");
    context.AddPullDownList(14, "Drop-down list:");
    context.AddComboBox(16, "Combo box:");
    context.AddEdit(18, "Several lines of text, which are broken where they must be", 60);
    context.AddGroup(20, "Group");
    context.AddCheckBox(21, "Check box");
    context.AddRadioButtonGroup(22, "First of two");
    context.AddRadioButton(23, "Second of two");
    context.GroupEnd();
    context.AddScrollBar(30, "Scroll bar:");
    context.AddProgressBar(32);
    context.AddDBEdit(34, "Volume:");
    context.AddDBDisplay(36);
    context.AddDateTime(38, "Date:");
    context.AddHyperLink(37, "A page about voices", "http://quillon.example/lectora");
    GtkWidget* row = gtk_hbox_new(FALSE, 6);
    for (int id = 40; id < 43; ++id) {
        GtkWidget* button = gtk_toggle_button_new();
        gtk_widget_set_size_request(button, 150, 54);
        gtk_box_pack_start(GTK_BOX(row), button, FALSE, FALSE, 0);
        context.Dialog().SetControlID(button, id);
    }
    context.AddSpanFull(row, -1);
    context.AddOkCancelHelp(false, false, false);
}

class GalleryDialog : public RecordingDialog {
public:
    void InitDialog() override {
        static constexpr const char* kEntries[] = {"44100", "22050", nullptr};
        PDLFill(14, kEntries);
        PDLSetCurSel(14, 0);
        PBSetProgress(32, 0.4);
        PBSetText(32, "Please wait...");
        DBEditSetLevel(34, LDB(5));
        LDBMC levels(2, LDB(-8));
        levels[1] = LDB(9);
        DBDisplaySetLevels(36, levels);
        CoolButtonInit(40, kReadButtonIcon, "Read Aloud");
        CoolButtonInitDropDown(41, kSaveButtonIcon, "Save as Speech", 1);
        CoolButtonInitUpDown(42, kRewindIcon, "", 2, 3);
        SetTooltip(42, "Rewind (<-)");
        EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GetControlByID(42))),
                     "Rewind (<-)");
        GtkWidget* bar = bar_.Create(nullptr);
        const int read = bar_.AddTopic("Read Aloud", kReadAloudIcon);
        bar_.AddItem(read, "Read current text", "Read aloud (Ctrl+Shift+R)", 1011);
        bar_.AddItem(read, "Read from clipboard", "Read what is selected", 1009);
        bar_.FoldTopic(bar_.AddTopic("Save as Speech", kSaveSpeechIcon), true);
        gtk_widget_set_size_request(bar, 180, 220);
        gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(Widget()))), bar, FALSE,
                           FALSE, 0);
    }

private:
    LExplorerBar bar_;
};

// Drawn anew for the picture, so that neither the screen's edge nor other windows cut it.
void SavePicture(GtkWidget* window, const std::filesystem::path& file) {
    GdkPixmap* drawn = gtk_widget_get_snapshot(window, nullptr);
    GdkPixbuf* picture =
        gdk_pixbuf_get_from_drawable(nullptr, drawn, gtk_widget_get_colormap(window), 0, 0, 0, 0,
                                     window->allocation.width, window->allocation.height);
    EXPECT_TRUE(gdk_pixbuf_save(picture, file.c_str(), "png", nullptr, nullptr));
    g_object_unref(picture);
    g_object_unref(drawn);
}

TEST(Gallery, EveryControlHasRoomInEveryLook) {
    const auto folder = std::filesystem::current_path() / "gallery";
    std::filesystem::create_directories(folder);
    const struct {
        const char *name, *theme, *font;
    } looks[] = {{"plain", "Raleigh", "Sans 10"},
                 {"light", "Adwaita", "Sans 10"},
                 {"dark", "Adwaita-dark", "Sans 10"},
                 {"large", "Adwaita", "Sans 18"}};
    GtkSettings* settings = gtk_settings_get_default();
    for (const auto& look : looks) {
        gtk_settings_set_string_property(settings, "gtk-theme-name", look.theme, "test");
        gtk_settings_set_string_property(settings, "gtk-font-name", look.font, "test");
        GalleryDialog dialog;
        ASSERT_TRUE(dialog.Open(nullptr, {"Gallery", false, GenerateGallery}, false));
        EXPECT_TRUE(PumpUntil(
            [&] { return gtk_widget_get_mapped(dialog.Widget()) && !gtk_events_pending(); },
            10000));
        PumpPending();
        ExpectRoom(dialog.Widget(), look.name);
        SavePicture(dialog.Widget(), folder / (std::string(look.name) + ".png"));
        dialog.Close(0);
    }
    gtk_settings_set_string_property(settings, "gtk-theme-name", "Raleigh", "test");
    gtk_settings_set_string_property(settings, "gtk-font-name", "Sans 10", "test");
}

}  // namespace
