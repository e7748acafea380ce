#include "gui/controls/control_registry.h"

#include <algorithm>

void LControlRegistry::Insert(const Entry& entry) {
    const bool known = std::ranges::any_of(
        entries_, [&](const Entry& other) { return other.control == entry.control; });
    if (!known)
        g_signal_connect(entry.control, "destroy", G_CALLBACK(GCControlDestroyed), this);
    entries_.push_back(entry);
}

void LControlRegistry::Add(GtkWidget* control, int id) {
    Insert({id, control, false});
}

void LControlRegistry::AddYielding(GtkWidget* control, int id) {
    Insert({id, control, true});
}

GtkWidget* LControlRegistry::Find(int id) const {
    GtkWidget* yielding = nullptr;
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        if (entry->id != id)
            continue;
        if (!entry->yields)
            return entry->control;
        if (yielding == nullptr)
            yielding = entry->control;
    }
    return yielding;
}

void LControlRegistry::Clear() {
    for (const Entry& entry : entries_)
        g_signal_handlers_disconnect_by_func(entry.control,
                                             reinterpret_cast<gpointer>(GCControlDestroyed), this);
    entries_.clear();
}

void LControlRegistry::GCControlDestroyed(GtkWidget* control, gpointer registry) {
    auto& entries = static_cast<LControlRegistry*>(registry)->entries_;
    g_signal_handlers_disconnect_by_func(control, reinterpret_cast<gpointer>(GCControlDestroyed),
                                         registry);
    std::erase_if(entries, [&](const Entry& entry) { return entry.control == control; });
}
