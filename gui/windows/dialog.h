// Dialogs: built by a generator function, run modally or modelessly.
#pragma once

#include "gui/windows/window.h"

class LDialogGenContext;

class LDialog : public LWindow {
public:
    // What to build. The texts and the function must live until Open returns.
    struct OpenGenData {
        const char* title;
        bool noSeparator;  // no line above the buttons
        void (*generator)(LDialogGenContext& context);
    };

    // Builds the dialog, calls InitDialog and EnableControls, and runs it. Modal: returns when it
    // ended, true for OK. Modeless: returns true at once; the dialog object must outlive its
    // window, OK, Cancel and Help arrive as commands, and closing the window hides it; Open then
    // shows it again as it was left. False at once when already on the screen. `parent` may be
    // null. GUI thread, GDK lock held.
    bool Open(GtkWidget* parent, OpenGenData genData, bool modal);

    // As if the buttons had been pressed.
    void DoOKButton();
    void DoCANCELButton();

private:
    // Returns what the generator laid out.
    GtkWidget* Build(GtkWidget* parent, const OpenGenData& genData);
    bool RunModal(GtkWidget* parent);
    void RunModeless(GtkWidget* parent);
    bool ShowAgain(GtkWidget* parent);
    static gboolean GCExitDlg(GtkWidget* widget, GdkEvent* event, gpointer host);
    static gboolean GCHelpKey(GtkWidget* widget, GdkEventKey* event, gpointer host);
};

// A table filled by the generator, floating; the controls are registered in the dialog.
GtkWidget* GenerateTable(LDialog& dialog, const LDialog::OpenGenData& genData);
