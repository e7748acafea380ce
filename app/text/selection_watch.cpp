#include "app/text/selection_watch.h"

#include <utility>

namespace {

// Server times begin anew after 49 days.
bool IsLater(guint32 one, guint32 other) {
    return other == 0 ? one != 0 : one != 0 && static_cast<gint32>(one - other) > 0;
}

// Selected in a window of this program: it is there already, and not what the user means. What he
// copied here he may mean.
bool IsOwnSelection(GdkAtom selection) {
    GdkWindow* owner =
        selection == GDK_SELECTION_PRIMARY ? gdk_selection_owner_get(selection) : nullptr;
    return owner != nullptr && gdk_window_get_window_type(owner) != GDK_WINDOW_FOREIGN;
}

}  // namespace

SelectionWatch::SelectionWatch(const std::function<void()>& changed)
    : shared_(std::make_shared<Sources>()) {
    shared_->changed = changed;
    const GdkAtom selections[] = {GDK_SELECTION_PRIMARY, GDK_SELECTION_CLIPBOARD};
    const bool tells = shared_->tells =
        gdk_display_supports_selection_notification(gdk_display_get_default()) != FALSE;
    for (int index = 0; index < 2; ++index) {
        Source& source = shared_->sources[index];
        source.selection = selections[index];
        source.clipboard = gtk_clipboard_get(selections[index]);
        gtk_clipboard_request_contents(source.clipboard, gdk_atom_intern_static_string("TIMESTAMP"),
                                       GCTime, new Asked{shared_, index, 0, true});
        if (!tells)
            continue;
        g_signal_connect(source.clipboard, "owner-change", G_CALLBACK(GCOwnerChanged), this);
        Ask(index);
    }
}

SelectionWatch::~SelectionWatch() {
    for (const Source& source : shared_->sources)
        g_signal_handlers_disconnect_by_data(source.clipboard, this);
}

bool SelectionWatch::HasText() const {
    return shared_->sources[0].hasText || shared_->sources[1].hasText;
}

unsigned int SelectionWatch::Offered() const {
    return shared_->tells ? shared_->offered : ++shared_->offered;
}

void SelectionWatch::Ask(int index) {
    gtk_clipboard_request_targets(shared_->sources[index].clipboard, GCTargets,
                                  new Asked{shared_, index, 0, true});
}

void SelectionWatch::GCOwnerChanged(GtkClipboard* clipboard, GdkEvent* event, gpointer user) {
    auto* self = static_cast<SelectionWatch*>(user);
    const int index = clipboard == self->shared_->sources[0].clipboard ? 0 : 1;
    self->shared_->sources[index].since = event->owner_change.selection_time;
    self->Ask(index);
}

// An owner that does not know the target leaves the time unknown.
void SelectionWatch::GCTime(GtkClipboard*, GtkSelectionData* data, gpointer user) {
    const std::unique_ptr<Asked> asked(static_cast<Asked*>(user));
    const std::shared_ptr<Sources> shared = asked->sources.lock();
    if (!shared || gtk_selection_data_get_format(data) != 32 ||
        gtk_selection_data_get_length(data) < static_cast<gint>(sizeof(long)))
        return;
    Source& source = shared->sources[asked->index];
    // A time that an event told meanwhile is a newer owner's. Xlib hands 32 bits out as longs.
    if (source.since == 0)
        source.since =
            static_cast<guint32>(*reinterpret_cast<const long*>(gtk_selection_data_get_data(data)));
}

void SelectionWatch::GCTargets(GtkClipboard*, GdkAtom* targets, gint count, gpointer user) {
    const std::unique_ptr<Asked> asked(static_cast<Asked*>(user));
    const std::shared_ptr<Sources> shared = asked->sources.lock();
    if (!shared)
        return;
    Source& source = shared->sources[asked->index];
    const bool hasText = targets != nullptr && gtk_targets_include_text(targets, count) != FALSE &&
                         !IsOwnSelection(source.selection);
    shared->offered += hasText ? 1 : 0;
    if (std::exchange(source.hasText, hasText) != hasText)
        shared->changed();
}

bool SelectionWatch::Fetch(std::function<void(const std::string&)> taken, From from) {
    if (shared_->taken)
        return false;
    shared_->taken = std::move(taken);
    ++shared_->request;
    const Source* sources = shared_->sources;
    const bool isOwn = IsOwnSelection(sources[0].selection);
    switch (from) {
        case From::kNewest: {
            const int first = isOwn || IsLater(sources[1].since, sources[0].since) ? 1 : 0;
            RequestText(first, first == 1 && isOwn);
            break;
        }
        case From::kSelection:
            RequestText(0, true);
            break;
        case From::kClipboard:
            RequestText(1, true);
            break;
    }
    return true;
}

void SelectionWatch::RequestText(int index, bool isLast) {
    gtk_clipboard_request_text(shared_->sources[index].clipboard, GCText,
                               new Asked{shared_, index, shared_->request, isLast});
}

void SelectionWatch::DropFetch() {
    shared_->taken = nullptr;
}

// The newer one may hold none: a picture, or what its owner does not give away.
void SelectionWatch::GCText(GtkClipboard*, const char* text, gpointer user) {
    const std::unique_ptr<Asked> asked(static_cast<Asked*>(user));
    const std::shared_ptr<Sources> shared = asked->sources.lock();
    if (!shared || !shared->taken || asked->request != shared->request)
        return;
    const bool isOwn = IsOwnSelection(shared->sources[asked->index].selection);
    const std::string fetched = text != nullptr && !isOwn ? text : "";
    if (fetched.empty() && !asked->isLast) {
        const int other = 1 - asked->index;
        gtk_clipboard_request_text(shared->sources[other].clipboard, GCText,
                                   new Asked{asked->sources, other, asked->request, true});
        return;
    }
    std::exchange(shared->taken, nullptr)(fetched);
}
