// Loads a document on a thread of its own while the window stays alive.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "documents/document.h"
#include "foundation/gdk/signal_watch.h"

// Under a progress dialog when it takes longer than a moment; nothing when the user cancelled it. A
// disk that does not answer is left behind then. Of a web page the article, or all of it. GUI
// thread, GDK lock held; runs events.
std::optional<Document> LoadDocumentUnderDialog(GtkWidget* parent, const char* path,
                                                bool isWholePage);

struct DocumentLoading;

// What is still to come of a document whose beginning is there. The loading is given up with it.
// GUI thread.
class DocumentRest {
public:
    DocumentRest(std::shared_ptr<DocumentLoading> loading, std::size_t taken);
    ~DocumentRest();
    DocumentRest(const DocumentRest&) = delete;
    DocumentRest& operator=(const DocumentRest&) = delete;

    // From the main loop, whenever more is there: what stands behind all that was told before, with
    // its pages; isAll: nothing else will come. Then there may be a problem in place of a text.
    using More = std::function<void(const Document& more, bool isAll)>;
    void Follow(More more);
    // Waits for all of it under a progress dialog, and tells it. False: the user did not want to
    // wait. Runs events, in which this object must not end.
    bool Await(GtkWidget* parent);

private:
    void Tell();

    const std::shared_ptr<DocumentLoading> loading_;
    std::size_t taken_;  // bytes of the text that were told
    More more_;
    LSignalWatch news_;
};

struct LoadedDocument {
    Document document;
    std::unique_ptr<DocumentRest> rest;  // null: all of it is there
};

// Likewise, but the beginning is enough where a document takes long, as a scan does.
std::optional<LoadedDocument> LoadBeginningUnderDialog(GtkWidget* parent, const char* path,
                                                       bool isWholePage);

// What the user is told of a document that was read: what is missing of it, and of a web page how
// much around the article is left out. Empty where it is all there.
std::string NoteOn(const Document& document);
