// The C callbacks behind LWindow's command registrations; user data is the LWindow.
#pragma once

#include <gtk/gtk.h>

class LWindow;

struct LWindowCallbacks {
    static void GCDialogButtonClicked(GtkWidget* button, gpointer window);
    static void GCRadioCheckButtonToggled(GtkWidget* button, gpointer window);
    static gboolean GCMouseClickEvent(GtkWidget* control, GdkEventButton* event, gpointer window);
    static void GCEditChange(GtkTextBuffer* buffer, gpointer window);
    static void GCDialogPDLChanged(GtkWidget* list, gpointer window);
    static void GCDialogListViewCurChanged(GtkWidget* list, gpointer window);
    static void GCDialogListViewRowActivated(GtkWidget* list, GtkTreePath* path,
                                             GtkTreeViewColumn* column, gpointer window);
    static void GCTABSwitch(GtkWidget* tabs, gpointer page, guint number, gpointer window);
    static gboolean GCTABFirstLayout(GtkWidget* widget, GdkEvent* event, gpointer tabs);
    static gboolean GCDialogSBChangeValue(GtkRange* range, GtkScrollType scroll, gdouble value,
                                          gpointer window);
    static void CoolButtonClicked(void* window, int command);

private:
    static void Deliver(gpointer window, gpointer object, const char* key);
};
