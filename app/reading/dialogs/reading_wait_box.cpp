#include "app/reading/dialogs/reading_wait_box.h"

#include <utility>

#include "gui/accessible.h"
#include "gui/minimum_size.h"
#include "gui/windows/dialog_frame.h"

namespace {

constexpr const char* kTitle = "Synthesize Voice";
// A usual first sentence is there before a box could be read.
constexpr unsigned int kPatienceMilliseconds = 300;
constexpr unsigned int kPulseMilliseconds = 100;
// After the box; who cannot see it is told only what will not be heard over a first sentence.
constexpr unsigned int kTellMilliseconds = 1200;

// A wait in the middle of a text is told in the status bar.
bool IsBeginning(const ReadingNews& news) {
    if (news.isMove)
        return false;
    return news.state == ReadingState::kWaitingForVoice ||
           (news.state == ReadingState::kWaitingForSound && news.before != ReadingState::kPlaying);
}

}  // namespace

ReadingWaitBox::ReadingWaitBox(Narrator& narrator, std::function<GtkWidget*()> parent)
    : narrator_(narrator),
      parent_(std::move(parent)),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

ReadingWaitBox::~ReadingWaitBox() {
    Close();
}

void ReadingWaitBox::Hear(const ReadingNews& news) {
    if (!news.IsNew())
        return;
    if (!IsBeginning(news))
        Close();
    else if (box_ != nullptr)
        ShowWhatFor();
    else
        patience_.Start(kPatienceMilliseconds, [this] { Show(); });
}

void ReadingWaitBox::Show() {
    GtkWidget* parent = parent_();
    box_ = NewDialogWindow(parent, "Lectora", GTK_DIALOG_DESTROY_WITH_PARENT,
                           {{GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL}});
    g_signal_connect(box_, "response", G_CALLBACK(GCResponse), this);
    g_signal_connect(box_, "destroy", G_CALLBACK(gtk_widget_destroyed), &box_);
    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(box_));
    label_ = gtk_label_new("");
    bar_ = gtk_progress_bar_new();
    for (GtkWidget* widget : {label_, gtk_label_new("Please wait"), bar_})
        gtk_box_pack_start(GTK_BOX(content), widget, TRUE, TRUE, 0);
    SetAccessibleName(bar_, kTitle);
    // A screen reader takes labels of a word or two for captions and says nothing of them.
    atk_object_set_description(gtk_widget_get_accessible(box_), kTitle);
    SetMinimumSize(box_, 300, 110);
    ShowWhatFor();
    // Whoever types goes on there, Escape stops the reading from there too, and a screen reader has
    // nothing to say over the first sentence when the box goes.
    gtk_window_set_focus_on_map(GTK_WINDOW(box_), FALSE);
    gtk_widget_show_all(box_);
    patience_.Start(kTellMilliseconds, [this] {
        if (box_ != nullptr)  // it went with its parent
            TellScreenReader(box_, "Waiting for the first sentence. Escape stops.");
    });
    Pulse();
}

void ReadingWaitBox::ShowWhatFor() {
    gtk_label_set_text(GTK_LABEL(label_), narrator_.State() == ReadingState::kWaitingForVoice
                                              ? "Waiting for the Speech Engine"
                                              : "Synthesizing Voice");
}

// It comes to an end, nobody knows when.
void ReadingWaitBox::Pulse() {
    if (box_ == nullptr)
        return;
    gtk_progress_bar_pulse(GTK_PROGRESS_BAR(bar_));
    pulse_.Start(kPulseMilliseconds, [this] { Pulse(); });
}

void ReadingWaitBox::Close() {
    patience_.Stop();
    pulse_.Stop();
    if (GtkWidget* box = std::exchange(box_, nullptr))
        gtk_widget_destroy(box);
}

void ReadingWaitBox::GCResponse(GtkDialog*, gint, gpointer self) {
    static_cast<ReadingWaitBox*>(self)->narrator_.Stop();
}
