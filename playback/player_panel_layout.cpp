// How the player panel is laid out: transport on top, then the position with its time, then what
// is heard and how.
#include <gtk/gtk.h>

#include "gui/accessible.h"
#include "gui/dialog_gen_context.h"
#include "gui/key_dialog.h"
#include "playback/player_panel.h"
#include "playback/player_panel_ids.h"
#include "playback/wave_window.h"

namespace {

using namespace PlayerPanel;

constexpr int kWaveWidth = 420;
constexpr int kWaveHeight = 80;

void AddTransportButton(LDialogGenContext& context, int id) {
    GtkWidget* button = gtk_toggle_button_new();
    context.AddSpan(button, id, 0, 1);
}

void AddLabelled(LDialogGenContext& context, GtkWidget* control, int id, const char* text) {
    context.AddStaticLeft(-1, text);
    context.AddSpanRight(control, id);
    SetAccessibleName(control, text);
}

}  // namespace

void DlgGenPlayer(LDialogGenContext& context) {
    context.AddInput(kItem, "Now Playing");
    GtkWidget* wave = LWaveWindow::CreateControl();
    gtk_widget_set_size_request(wave, kWaveWidth, kWaveHeight);
    context.AddSpanFull(wave, kWave);
    context.StartHBox();
    for (const int id : {kStart, kRewind, kPlay, kScrub, kStop, kForward, kEnd})
        AddTransportButton(context, id);
    context.EndHBox();
    context.StartHBox();
    for (const int id : {kPreviousSentence, kRepeatSentence, kNextSentence, kNextTrack})
        AddTransportButton(context, id);
    context.EndHBox();
    GtkWidget* position = gtk_hscale_new_with_range(0, 100, 1);
    gtk_scale_set_draw_value(GTK_SCALE(position), FALSE);
    AddLabelled(context, position, kPosition, "Position");
    GtkWidget* time = gtk_label_new("");
    gtk_misc_set_alignment(GTK_MISC(time), 0.0F, 0.5F);
    context.AddStaticLeft(-1, "Time");
    context.AddSpanRight(time, kTime);
    context.AddDBDisplay(kMeter);
    context.AddDBEdit(kVolume, "Volume");
    GtkWidget* tempo =
        gtk_hscale_new_with_range(LTempo::kSlowestPercent, LTempo::kFastestPercent, 10);
    gtk_scale_set_draw_value(GTK_SCALE(tempo), FALSE);
    AddLabelled(context, tempo, kTempo, "Reading Speed");
    GtkWidget* factor = gtk_label_new("");
    gtk_misc_set_alignment(GTK_MISC(factor), 0.0F, 0.5F);
    context.AddSpanRight(factor, kTempoTime);
    context.AddPullDownList(kDevice, "Playback Device");
    GtkWidget* route = gtk_label_new("");
    gtk_misc_set_alignment(GTK_MISC(route), 0.0F, 0.5F);
    gtk_label_set_line_wrap(GTK_LABEL(route), TRUE);
    gtk_widget_set_size_request(route, kWaveWidth, -1);
    context.AddSpanFull(route, kRoute);
    context.AddOkCancelHelp("Close", false, true, false);
}
