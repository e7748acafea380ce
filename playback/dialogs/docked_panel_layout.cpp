// How the player is laid out in another window: a row of buttons with time and speed, and one of
// the position before the waveform. What is used less unfolds below.
#include <gtk/gtk.h>

#include <initializer_list>

#include "gui/accessible.h"
#include "gui/gobject_ref.h"
#include "gui/gtk_children.h"
#include "gui/widgets/ticking_text.h"
#include "gui/windows/dialog_gen_context.h"
#include "playback/dialogs/player_panel.h"
#include "playback/dialogs/player_panel_ids.h"

namespace {

using namespace PlayerPanel;

constexpr int kRowGap = 4;
constexpr int kSpeedWidth = 90;
constexpr int kWaveMargin = 11;  // of the slider, above and below which the wave is seen
constexpr int kSpeedCharacters = 4;

// Buttons keep pace with the letters, in the sizes that the images are drawn in.
int ImageSize(GtkWidget* widget) {
    const auto layout =
        GObjectRef<PangoLayout>::Adopt(gtk_widget_create_pango_layout(widget, "Ay"));
    int line = 0;
    pango_layout_get_pixel_size(layout.Get(), nullptr, &line);
    return line < 24 ? 24 : line < 36 ? 32 : 48;
}

void Pack(GtkWidget* row, GtkWidget* widget) {
    gtk_box_pack_start(GTK_BOX(row), widget, FALSE, FALSE, 0);
}

void AddButtons(LDialogGenContext& context, GtkWidget* row, std::initializer_list<int> ids) {
    for (const int id : ids) {
        GtkWidget* button = gtk_toggle_button_new();
        SetCoolButtonImageSize(GTK_TOGGLE_BUTTON(button), ImageSize(row));
        Pack(row, button);
        context.Dialog().SetControlID(button, id);
    }
}

GtkWidget* AddLabel(LDialogGenContext& context, GtkWidget* row, int id, int characters) {
    GtkWidget* label = gtk_label_new("");
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    gtk_label_set_width_chars(GTK_LABEL(label), characters);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    Pack(row, label);
    context.Dialog().SetControlID(label, id);
    return label;
}

GtkWidget* NewRowSlider(int lowest, int highest, int step, const char* name) {
    GtkWidget* slider = gtk_hscale_new_with_range(lowest, highest, step);
    gtk_scale_set_draw_value(GTK_SCALE(slider), FALSE);
    SetAccessibleName(slider, name);
    return slider;
}

GtkWidget* NewCaption(const char* text) {
    GtkWidget* label = gtk_label_new(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    return label;
}

// A trough of the usual height would hide the wave.
void MakeThin(GtkWidget* slider) {
    constexpr const char* kName = "lectora-thin-slider";
    gtk_rc_parse_string(
        "style \"lectora-thin\" { GtkRange::slider-width = 10 GtkRange::trough-border = 0 }\n"
        "widget \"*lectora-thin-slider\" style \"lectora-thin\"\n");
    gtk_widget_set_name(slider, kName);
}

void AddPosition(LDialogGenContext& context) {
    GtkWidget* position = NewRowSlider(0, 100, 1, "Position");
    MakeThin(position);
    GtkWidget* wave = gtk_event_box_new();
    GtkWidget* margin = gtk_alignment_new(0.5F, 0.5F, 1, 1);
    gtk_alignment_set_padding(GTK_ALIGNMENT(margin), kWaveMargin, kWaveMargin, 0, 0);
    gtk_container_add(GTK_CONTAINER(margin), position);
    gtk_container_add(GTK_CONTAINER(wave), margin);
    context.AddSpanFull(wave, kWave);
    context.Dialog().SetControlID(position, kPosition);
}

void PackRows(GtkWidget* grid) {
    for (GtkWidget* child : LGtkChildren(grid))
        gtk_container_child_set(GTK_CONTAINER(grid), child, "x-padding", 0U, "y-padding", 1U,
                                nullptr);
}

}  // namespace

void DlgGenDockedPlayer(LDialogGenContext& context) {
    GtkWidget* row = gtk_hbox_new(FALSE, kRowGap);
    GtkWidget* buttons = gtk_hbox_new(FALSE, 0);
    Pack(row, buttons);
    AddButtons(context, buttons, {kStart, kRewind, kPlay, kScrub, kStop, kForward, kEnd});
    AddButtons(context, buttons, {kPreviousSentence, kRepeatSentence, kNextSentence, kNextTrack});
    GtkWidget* time = NewTickingText(kTimeCharacters);
    Pack(row, time);
    context.Dialog().SetControlID(time, kTime);
    GtkWidget* ends = gtk_hbox_new(FALSE, 0);
    gtk_box_pack_end(GTK_BOX(row), ends, FALSE, FALSE, 0);
    GtkWidget* tempo =
        NewRowSlider(LTempo::kSlowestPercent, LTempo::kFastestPercent, 10, "Reading Speed");
    gtk_widget_set_size_request(tempo, kSpeedWidth, -1);
    gtk_box_pack_start(GTK_BOX(row), tempo, TRUE, TRUE, 0);
    context.Dialog().SetControlID(tempo, kTempo);
    AddLabel(context, row, kTempoTime, kSpeedCharacters);
    AddButtons(context, ends, {kUnfold, kTakeOut});
    context.AddSpanFull(row, -1);
    AddPosition(context);
    context.AddDBDisplay(kMeter);
    context.AddDBEdit(kVolume, "Volume");
    GtkWidget* caption = NewCaption("Playback Device");
    context.AddSpanFull(caption, kDeviceLabel);
    context.AddPullDownList(kDevice);
    LabelWidget(caption, context.Dialog().GetControlByID(kDevice));
    GtkWidget* route = NewCaption("");
    gtk_label_set_ellipsize(GTK_LABEL(route), PANGO_ELLIPSIZE_END);
    context.AddSpanFull(route, kRoute);
    PackRows(gtk_widget_get_parent(row));
}
