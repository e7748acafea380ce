// How the player panel is laid out: transport on top, then the position with its time, then what
// is heard and how.
#include <gtk/gtk.h>

#include <initializer_list>

#include "gui/accessible.h"
#include "gui/gtk_children.h"
#include "gui/widgets/ticking_text.h"
#include "gui/windows/dialog_gen_context.h"
#include "playback/dialogs/player_panel.h"
#include "playback/dialogs/player_panel_ids.h"
#include "playback/dialogs/wave_window.h"

namespace {

using namespace PlayerPanel;

// So narrow and low that it has room beside the main window, or on its text, on a small screen.
constexpr int kWidth = 294;
constexpr int kWaveHeight = 40;
constexpr unsigned int kRowPadding = 2;
constexpr unsigned int kSidePadding = 4;
constexpr int kGap = 8;
constexpr int kFieldWidth = 100;  // at least; it fills its row

void AddTransportButtons(LDialogGenContext& context, std::initializer_list<int> ids) {
    context.StartHBox();
    for (const int id : ids)
        context.AddSpan(gtk_toggle_button_new(), id, 0, 1);
    context.EndHBox();
}

GtkWidget* NewLabel(const char* text) {
    GtkWidget* label = gtk_label_new(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    return label;
}

GtkWidget* NewSlider(int lowest, int highest, int step) {
    GtkWidget* slider = gtk_hscale_new_with_range(lowest, highest, step);
    gtk_scale_set_draw_value(GTK_SCALE(slider), FALSE);
    return slider;
}

// A row of what is said and what it is said of.
GtkWidget* NewRow(GtkWidget* first, GtkWidget* second, GtkWidget* wide) {
    GtkWidget* row = gtk_hbox_new(FALSE, kGap);
    for (GtkWidget* widget : {first, second})
        gtk_box_pack_start(GTK_BOX(row), widget, widget == wide, widget == wide, 0);
    return row;
}

// What is wide goes to the controls, not to their captions.
void PackClosely(GtkWidget* grid) {
    GtkContainer* table = GTK_CONTAINER(grid);
    for (GtkWidget* child : LGtkChildren(grid)) {
        gtk_container_child_set(table, child, "x-padding", kSidePadding, "y-padding", kRowPadding,
                                nullptr);
        guint rightColumn = 0;
        gtk_container_child_get(table, child, "right-attach", &rightColumn, nullptr);
        if (rightColumn == 1)
            gtk_container_child_set(table, child, "x-options", GTK_FILL, nullptr);
    }
}

}  // namespace

void DlgGenPlayer(LDialogGenContext& context) {
    context.AddInput(kItem, "Now Playing", kFieldWidth);
    GtkWidget* wave = LWaveWindow::CreateControl();
    gtk_widget_set_size_request(wave, kWidth, kWaveHeight);
    context.AddSpanFull(wave, kWave);
    AddTransportButtons(context, {kStart, kRewind, kPlay, kScrub, kStop, kForward, kEnd});
    AddTransportButtons(context,
                        {kPreviousSentence, kRepeatSentence, kNextSentence, kNextTrack, kPutBack});
    GtkWidget* position = NewSlider(0, 100, 1);
    context.AddStaticLeft(-1, "Position");
    context.AddSpanRight(position, kPosition);
    SetAccessibleName(position, "Position");
    GtkWidget* time = NewTickingText(kTimeCharacters);
    context.AddSpanFull(NewRow(NewLabel("Time"), time, time), -1);
    context.Dialog().SetControlID(time, kTime);
    context.AddDBDisplay(kMeter);
    context.AddDBEdit(kVolume, "Volume");
    GtkWidget* tempo = NewSlider(LTempo::kSlowestPercent, LTempo::kFastestPercent, 10);
    GtkWidget* factor = NewLabel("");
    context.AddStaticLeft(-1, "Reading Speed");
    context.AddSpanRight(NewRow(tempo, factor, tempo), -1);
    context.Dialog().SetControlID(tempo, kTempo);
    context.Dialog().SetControlID(factor, kTempoTime);
    SetAccessibleName(tempo, "Reading Speed");
    // A line of its own: names of cards are long.
    GtkWidget* caption = NewLabel("Playback Device");
    context.AddSpanFull(caption, -1);
    context.AddPullDownList(kDevice);
    LabelWidget(caption, context.Dialog().GetControlByID(kDevice));
    GtkWidget* route = NewLabel("");
    gtk_label_set_line_wrap(GTK_LABEL(route), TRUE);
    gtk_widget_set_size_request(route, kWidth, -1);
    context.AddSpanFull(route, kRoute);
    PackClosely(gtk_widget_get_parent(wave));
    context.AddOkCancelHelp(kOkButton | kHelpButton, "Close");
}
