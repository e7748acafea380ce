// Loads a document on a thread of its own while the window stays alive.
#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <string>

#include "documents/document.h"

// Under a progress dialog when it takes longer than a moment; nothing when the user cancelled it. A
// disk that does not answer is left behind then. Of a web page the article, or all of it. GUI
// thread, GDK lock held; runs events.
std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path,
                                                bool isWholePage);

// What the user is told of a document that was read: what is missing of it, and of a web page how
// much around the article is left out. Empty where it is all there.
std::string NoteOn(const Document& document);
