// Controls by number: one registry for a window, each pop-up menu and each tool bar.
#pragma once

#include <gtk/gtk.h>

#include <vector>

// Holds no references: a control leaves by itself when it is destroyed, so that a number never
// reaches a widget that is no longer on the screen. GUI thread.
class LControlRegistry {
public:
    LControlRegistry() = default;
    LControlRegistry(const LControlRegistry&) = delete;
    LControlRegistry& operator=(const LControlRegistry&) = delete;
    ~LControlRegistry() { Clear(); }

    // The newest control of an id hides the older ones.
    void Add(GtkWidget* control, int id);
    // For numbers that were given by counting on from another control's: every control added under
    // its own number hides this one.
    void AddYielding(GtkWidget* control, int id);
    GtkWidget* Find(int id) const;  // borrowed; null when unknown
    void Clear();

private:
    struct Entry {
        int id;
        GtkWidget* control;
        bool yields;
    };
    static void GCControlDestroyed(GtkWidget* control, gpointer registry);
    void Insert(const Entry& entry);

    std::vector<Entry> entries_;  // newest last
};
