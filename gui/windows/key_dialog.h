// A window that sees its keys first, and turns them into commands through a table.
#pragma once

#include "gui/menus/key_map.h"
#include "gui/windows/dialog.h"

class LKeyDialog : public LDialog {
public:
    // Every key press and release of the window, before the focused control sees it, but for the
    // presses that edit the text of an entry that has the focus; true takes the key away from the
    // control. By default a press sends the command of the key map or else of
    // the menu item with that accelerator.
    virtual bool EvKeyDown(unsigned int key);
    virtual bool EvKeyUp(unsigned int) { return false; }

    // The table is borrowed and must outlive the window.
    void SetKeyMap(LKeyMap map) { keyMap_ = map; }
    // Sends the command of the first row with this key; false when there is none.
    bool MapKeyToCommand(LKeyCode key, LKeyMap map);

protected:
    void WidgetAttached(GtkWidget* widget) override;  // connects the keys

private:
    static gboolean GCKeyPress(GtkWidget* widget, GdkEventKey* event, gpointer host);
    static gboolean GCKeyRelease(GtkWidget* widget, GdkEventKey* event, gpointer host);
    static LKeyDialog& DialogOf(gpointer host);

    LKeyMap keyMap_;
};
