#include "app/selection_watch.h"

SelectionWatch::SelectionWatch(const std::function<void()>& changed) {
    const GdkAtom selections[] = {GDK_SELECTION_PRIMARY, GDK_SELECTION_CLIPBOARD};
    const bool tells =
        gdk_display_supports_selection_notification(gdk_display_get_default()) != FALSE;
    for (std::size_t index = 0; index < 2; ++index) {
        sources_[index] =
            std::make_shared<Source>(Source{gtk_clipboard_get(selections[index]), changed});
        if (!tells)
            continue;
        g_signal_connect(sources_[index]->clipboard, "owner-change", G_CALLBACK(GCOwnerChanged),
                         this);
        Ask(sources_[index]);
    }
}

SelectionWatch::~SelectionWatch() {
    for (const auto& source : sources_)
        g_signal_handlers_disconnect_by_data(source->clipboard, this);
}

void SelectionWatch::Ask(const std::shared_ptr<Source>& source) {
    gtk_clipboard_request_targets(source->clipboard, GCTargets, new std::weak_ptr<Source>(source));
}

void SelectionWatch::GCOwnerChanged(GtkClipboard* clipboard, GdkEvent*, gpointer user) {
    auto* self = static_cast<SelectionWatch*>(user);
    Ask(self->sources_[clipboard == self->sources_[0]->clipboard ? 0 : 1]);
}

void SelectionWatch::GCTargets(GtkClipboard*, GdkAtom* targets, gint count, gpointer request) {
    const std::unique_ptr<std::weak_ptr<Source>> asked(
        static_cast<std::weak_ptr<Source>*>(request));
    const std::shared_ptr<Source> source = asked->lock();
    if (!source)
        return;
    const bool hasText = targets != nullptr && gtk_targets_include_text(targets, count) != FALSE;
    if (source->hasText == hasText)
        return;
    source->hasText = hasText;
    source->changed();
}
