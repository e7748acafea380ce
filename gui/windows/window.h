// Base of every window and dialog: controls by number, user actions as commands.
//
// Each control is registered under a small control id, unique within its window; application code
// holds no widget pointers but names the id, and an operation on an unknown id or on a control of
// another family does nothing. Each user action on a control becomes a command (by default the
// control's id) delivered to Command(), followed by EnableControls(). The operations of a kind of
// control are in the header of its family. Everything runs on the GUI thread, or on another thread
// inside the GDK lock.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "gui/controls/button_controls.h"
#include "gui/controls/cool_button_controls.h"
#include "gui/controls/date_time_controls.h"
#include "gui/controls/decibel_controls.h"
#include "gui/controls/drop_down_controls.h"
#include "gui/controls/edit_controls.h"
#include "gui/controls/list_view_controls.h"
#include "gui/controls/range_controls.h"
#include "gui/controls/tab_controls.h"
#include "gui/controls/text_controls.h"
#include "gui/desktop_notification.h"
#include "gui/gobject_ref.h"
#include "gui/windows/bubble_tip.h"
#include "gui/windows/menu_controls.h"

// Commands of the toolkit itself; the dialog answers equal GTK's response codes.
constexpr int kCommandOk = GTK_RESPONSE_OK;          // -5
constexpr int kCommandCancel = GTK_RESPONSE_CANCEL;  // -6
constexpr int kResponseHelp = GTK_RESPONSE_HELP;     // -11
constexpr int kCommandHelp = 99;                     // a further help answer
// Menu commands that the toolkit carries out itself.
constexpr int kCommandExit = 801;
constexpr int kCommandClose = 802;
constexpr int kCommandHelpContents = 9001;
constexpr int kCommandNothing = 9003;
constexpr int kCommandProductPage = 9005;
constexpr int kCommandSupportPage = 9006;
constexpr int kCommandSuggestion = 9007;
constexpr int kCommandBugReport = 9008;
constexpr int kCommandHomePage = 9009;
constexpr int kCommandProductsPage = 9080;
constexpr int kCommandAbout = 9090;

class LWindow : public LTextControls,
                public LButtonControls,
                public LEditControls,
                public LDropDownControls,
                public LListViewControls,
                public LTabControls,
                public LRangeControls,
                public LCoolButtonControls,
                public LDecibelControls,
                public LDateTimeControls,
                public LMenuControls {
public:
    class PopupMenu;  // popup_menu.h

    LWindow() = default;
    // Destroys a top-level widget that is still open, without calling DestroyDialog.
    ~LWindow() override;

    virtual void InitDialog() {}              // once, when built and before it is shown
    virtual void DestroyDialog() {}           // before the widget is destroyed
    virtual bool CmOk() { return true; }      // true lets a modal dialog close
    virtual bool CmCancel() { return true; }  // likewise
    virtual void CmHelp();                    // shows the window's help page
    virtual void CmClose();                   // hides the window
    virtual void Close(int response);         // DestroyDialog, then destruction; once
    virtual void CmExit() {}
    void CmHelpAbout();

    GtkWidget* Widget() const { return widget_; }  // top-level widget, borrowed; null while closed
    bool IsOpen() const { return widget_ != nullptr; }
    bool IsModeless() const { return modeless_; }
    void SetAppIcon(int number);

    // The keyboard does not stay where it could do nothing: gui/control_focus.h.
    void EnableControl(int id, bool enabled);
    bool IsControlEnabled(int id) const;
    // With its frame or scroll bars. What is hidden before the window is shown stays hidden.
    void ShowControl(int id, bool shown);
    void FocusControl(int id);
    void SetTooltip(int id, const char* text);
    // Tells the user, beside the control, what is wrong with it, and gives it the focus.
    void SetControlInvalid(int id, const char* message, const char* title);

    // A short message at a control; a window has one at a time.
    void BubbleTipRun(int id, const char* title, const char* text);
    void BubbleTipShow(int id, const char* title, const char* text) {
        BubbleTipRun(id, title, text);
    }
    void BubbleTipHide();
    // A message that concerns no control, in the desktop's notifications. Where the desktop has
    // none, `otherwise` runs, soon.
    void Notify(const char* title, const char* text, std::function<void()> otherwise);

    void WMCommand(int command) override;
    bool TakeAnswer(int command) override;

protected:
    // Makes `widget` the window's own; a shared one (of a property sheet) outlives this object.
    void AttachWidget(GtkWidget* widget, bool shared = false);
    virtual void WidgetAttached(GtkWidget*) {}  // for signals of the window itself
    virtual void WidgetDetached() {}            // to forget widgets that went with it
    void SetModeless(bool modeless) { modeless_ = modeless; }
    void SetHelpPage(const char* page) { helpPage_ = page; }  // borrowed; "index" unless set
    GtkWidget* TopWidget() const override { return widget_; }
    GtkAccelGroup* Accelerators() const override { return accelerators_.Get(); }
    void CreateAccelerators();

private:
    void DetachWidget();
    static void GCWindowDestroyed(GtkWidget* widget, gpointer host);

    GtkWidget* widget_ = nullptr;
    bool shared_ = false;
    bool modeless_ = false;
    bool closing_ = false;  // inside Close
    const char* helpPage_ = "index";
    LBubbleTip bubbleTip_;
    LDesktopNotification notification_;
    GObjectRef<GtkAccelGroup> accelerators_;
};
