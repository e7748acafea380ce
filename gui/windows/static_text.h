#pragma once

#include "gui/display_text.h"
#include "gui/windows/window.h"

// Replaces what a static text of the window says.
inline void SetStaticText(const LWindow& window, int id, const std::string& text) {
    if (GtkWidget* label = window.GetControlByID(id); GTK_IS_LABEL(label))
        gtk_label_set_text(GTK_LABEL(label), DisplayText(text.c_str()).c_str());
}
