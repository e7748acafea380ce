// Loads a document on a thread of its own while the window stays alive.
#pragma once

#include <gtk/gtk.h>

#include <optional>

#include "documents/document.h"

// Under a progress dialog when it takes longer than a moment; nothing when the user cancelled it. A
// disk that does not answer is left behind then. GUI thread, GDK lock held; runs events.
std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path);
