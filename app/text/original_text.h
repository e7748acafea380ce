// What leaves a text box with broken lines leaves it whole: copied, cut, selected or dragged text
// is the original, without the breaks that stand in it for showing.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "app/text/long_lines.h"

// Takes these ways over from GTK. GUI thread.
class OriginalText {
public:
    // Once, before the view is realized. Lines must be those of the view's buffer; both must
    // outlive the view.
    void Attach(GtkTextView* view, const LongLines& lines);

private:
    std::string Selected() const;  // empty when nothing is
    void EvRealize();
    void EvUnrealize();
    void EvCopy();
    void EvCut();
    void EvDrag(GtkSelectionData* data);
    void EvMarkSet(GtkTextMark* mark);
    bool CopySelected();
    void UpdatePrimary();

    static void GCRealize(GtkWidget* view, gpointer self);
    static void GCUnrealize(GtkWidget* view, gpointer self);
    static void GCCopy(GtkTextView* view, gpointer self);
    static void GCCut(GtkTextView* view, gpointer self);
    static void GCDragDataGet(GtkWidget* view, GdkDragContext* context, GtkSelectionData* data,
                              guint info, guint time, gpointer self);
    static void GCMarkSet(GtkTextBuffer* buffer, GtkTextIter* at, GtkTextMark* mark, gpointer self);
    static void GCHasSelection(GtkTextBuffer* buffer, GParamSpec* property, gpointer self);
    static void GiveSelected(GtkSelectionData* data, GObject* buffer);
    static void ShowNoneSelected(GtkTextBuffer* buffer);
    static void GCGetPrimary(GtkClipboard* primary, GtkSelectionData* data, guint info,
                             gpointer buffer);
    static void GCClearPrimary(GtkClipboard* primary, gpointer buffer);

    GtkTextView* view_ = nullptr;
    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
};
