// Base of every window and dialog: controls by number, user actions as commands.
//
// Each control is registered under a small control id, unique within its window; application code
// holds no widget pointers but names the id, and an operation on an unknown id or on a control of
// another family does nothing. Each user action on a control becomes a command (by default the
// control's id) delivered to Command(), followed by EnableControls(). Everything runs on the GUI
// thread, or on another thread inside the GDK lock.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <forward_list>
#include <string>

#include "foundation/text_buffer.h"
#include "gui/bubble_tip.h"
#include "gui/gobject_ref.h"

// Commands of the toolkit itself; the dialog answers equal GTK's response codes.
constexpr int kCommandOk = GTK_RESPONSE_OK;          // -5
constexpr int kCommandCancel = GTK_RESPONSE_CANCEL;  // -6
constexpr int kResponseHelp = GTK_RESPONSE_HELP;     // -11
constexpr int kCommandHelp = 99;                     // a further help answer
constexpr int kUseControlId = -1;                    // for Handle...: the command is the control id

struct LListColumns;

class LWindow {
public:
    LWindow() = default;
    LWindow(const LWindow&) = delete;
    LWindow& operator=(const LWindow&) = delete;
    // Destroys a top-level widget that is still open, without calling DestroyDialog.
    virtual ~LWindow();

    virtual void InitDialog() {}              // once, when built and before it is shown
    virtual void DestroyDialog() {}           // before the widget is destroyed
    virtual bool CmOk() { return true; }      // true lets a modal dialog close
    virtual bool CmCancel() { return true; }  // likewise
    virtual void CmHelp();                    // shows the window's help page
    virtual void EnableControls() {}          // after every command delivered from a control
    virtual void Command(int) {}
    virtual void CmClose();            // hides the window
    virtual void Close(int response);  // DestroyDialog, then destruction
    virtual void CmExit() {}

    GtkWidget* Widget() const { return widget_; }  // top-level widget, borrowed; null while closed
    bool IsOpen() const { return widget_ != nullptr; }
    bool IsModeless() const { return modeless_; }
    void SetAppIcon(int number);

    // Registry; the newest registration of an id hides older ones. Widgets are kept alive until
    // the window closes.
    void SetControlID(GtkWidget* control, int id);
    GtkWidget* GetControlByID(int id) const;  // borrowed; null when unknown
    void EnableControl(int id, bool enabled);
    bool IsControlEnabled(int id) const;
    void ShowControl(int id, bool shown);
    void FocusControl(int id);
    void SetTooltip(int id, const char* text);
    // Tells the user what is wrong with a control and gives it the focus.
    void SetControlInvalid(int id, const char* message, const char* title);

    // Command registration. A button is also registered under its command. The edit's maximum
    // command takes the place of the change command above 65536 characters.
    // 0 is no command for clicks and edits: it ends what was registered before.
    void SetButtonCommandHandler(GtkWidget* button, int command);
    void SetRadioCheckButtonCommandHandler(GtkWidget* button, int command);
    void HandleClick(int id, int command = kUseControlId);
    void HandleDoubleClick(int id, int command = kUseControlId);
    void HandleRightClick(int id, int command = kUseControlId);
    void HandleEditTextChange(int id, int command = kUseControlId);
    void HandleEditTextMax(int id, int command = kUseControlId);
    void HandlePDLSelChange(int id, int command = kUseControlId);
    void HandleLVSelChange(int id, int command = kUseControlId);
    void HandleLVDoubleClick(int id, int command = kUseControlId);
    void HandleTABSelChange(int id, int command = kUseControlId);
    void HandleHSBChange(int id, int command = kUseControlId);

    // Single-line entries (and the entry of a combo box). Positions and lengths in characters, end
    // -1 is the end of the text. Text that fills `size` bytes has no terminator. Only spaces are
    // trimmed.
    void SetText(int id, const char* text);
    void GetText(int id, char* out, std::size_t size) const;
    void GetText(int id, char (&out)[kTextBufferSize]) const;
    std::string GetText(int id) const;
    int GetTextLength(int id) const;
    void GetTextAndTrim(int id, char (&out)[kTextBufferSize]) const;
    void SetInt(int id, int value);
    int GetInt(int id) const;  // 0 when not a number
    void SetPasswordText(int id, const char* text);
    void GetPasswordTextAndTrim(int id, char (&out)[kTextBufferSize]) const;
    void SetTextSelection(int id, int start, int end);
    void SetTextSelectionAll(int id);
    void SetTextEditable(int id, bool editable);
    bool IsTextEditable(int id) const;

    // Static text and buttons. SetCheck delivers the command when it changes the state, as a click
    // does.
    void SetStaticText(int id, const char* text);
    void SetButtonText(int id, const char* text);
    void SetButtonImage(int id, int imageNumber);
    void SetCheck(int id, bool checked);
    bool GetCheck(int id) const;

    // Multi-line edit. Any bytes may be set (see DisplayText); got text is UTF-8.
    void SetEditText(int id, const char* text);
    void SetEditText(int id, const LStringLongTemplate<char>& text);
    void GetEditText(int id, LStringLongTemplate<char>& out) const;
    std::string GetEditText(int id) const;
    int GetEditTextLength(int id) const;  // characters
    void SetEditTextSelection(int id, int start, int end);
    void SetEditTextSelectionAll(int id);
    void EditTextInsert(int id, const char* text);  // in place of the selection
    void EditTextCut(int id);
    void EditTextCopy(int id);
    void EditTextPaste(int id);

    // Drop-down list; items count from 0. PDLSetText and PDLSetInt select the item that reads so,
    // or none; a combo box shows any text.
    void PDLInit(int id);  // an empty list, also for a combo box made elsewhere
    void PDLClear(int id);
    void PDLAddString(int id, const char* text);
    void PDLFill(int id, const char* const* texts);  // appends up to the null pointer
    int PDLGetCount(int id) const;
    int PDLGetCurSel(int id) const;  // -1 when none
    void PDLSetCurSel(int id, int item);
    void PDLGetText(int id, char (&out)[kTextBufferSize]) const;  // selected or typed text
    std::string PDLGetText(int id) const;
    std::string PDLGetItem(int id, int item) const;
    void PDLSetText(int id, const char* text);
    int PDLFindString(int id, const char* text) const;  // -1 when absent
    void PDLDeleteItem(int id, int item);
    int PDLGetInt(int id) const;
    void PDLSetInt(int id, int value);
    // From the per-user settings section and back into it: the first 1000 items, both ways.
    void PDLAutoFill(int id, const char* section);
    void PDLAutoGet(int id, const char* section) const;

    // List view; rows count from 0, columns from 0, the check box not among them. See list_view.h.
    void LVInit(int id, const LListColumns& columns);
    void LVDestroy(int id);        // stores the widths where they are to be kept
    void LVSetStyleCheck(int id);  // a check box before the first column; before LVInit
    bool LVIsStyleCheck(int id) const;
    int LVAddString(int id, const char* text, int data = 0);  // the new row, -1 for none
    int LVInsertString(int id, int row, const char* text, int data = 0);
    void LVSetString(int id, int row, const char* text);
    void LVSetColumnString(int id, int row, int column, const char* text);
    void LVGetColumnString(int id, int row, int column, char (&out)[kTextBufferSize]) const;
    int LVFindString(int id, const char* text) const;  // -1 when absent
    int LVFindColumnString(int id, int column, const char* text) const;
    void LVDeleteItem(int id, int row);
    void LVClear(int id);
    int LVGetCount(int id) const;
    bool LVGetSel(int id, int row) const;
    void LVSetSel(int id, int row, bool selected);
    void LVSetCurSel(int id, int row);  // the only selected row, with the cursor
    int LVGetFirstSel(int id) const;    // -1 when none
    int LVGetSelCount(int id) const;
    void LVEnsureVisible(int id, int row);
    int LVGetItemData(int id, int row) const;  // as added; 0 for an unknown row
    bool LVGetCheck(int id, int row) const;
    void LVSetCheck(int id, int row, bool checked);
    int LVGetColumnWidth(int id, int column) const;  // pixels
    void LVSetColumnWidth(int id, int column, int width);
    void LVSetColumnName(int id, int column, const char* name);
    void LVShowColumn(int id, int column, bool shown);

    // Tabs, ranges and the rest.
    void TABInit(int id);
    void TABInsertTab(int id, int position, const char* text);
    void TABClear(int id);
    int TABGetCount(int id) const;
    int TABGetCurSel(int id) const;
    void TABSetCurSel(int id, int tab);
    void TABGetText(int id, int tab, char (&out)[kTextBufferSize]) const;
    int TABGetTabHeight(int id) const;  // pixels
    void SBSetRange(int id, int low, int high, int page);
    void SBSetPos(int id, int position);
    int SBGetPos(int id) const;
    void TBSetRange(int id, int low, int high);
    void UDInit(int id, int low, int high, int value);
    int UDGetInt(int id) const;
    void UDSetInt(int id, int value);
    void UDEnable(int id, bool enabled);
    void PBSetProgress(int id, double fraction);  // 0 to 1
    void PBSetText(int id, const char* text);

    // Bubble tip at a control; a window has one at a time.
    void BubbleTipRun(int id, const char* title, const char* text);
    void BubbleTipHide();

    // Cool buttons, on registered toggle buttons.
    void CoolButtonInit(int id, int imageNumber, const char* text);
    void CoolButtonInitUpDown(int id, int imageNumber, const char* text);
    void SetCoolButtonDown(int id);
    void SetCoolButtonUp(int id);
    bool IsCoolButtonDown(int id) const;

protected:
    // Makes `widget` the window's own; a shared one (of a property sheet) outlives this object.
    void AttachWidget(GtkWidget* widget, bool shared = false);
    void SetModeless(bool modeless) { modeless_ = modeless; }
    void SetHelpPage(const char* page) { helpPage_ = page; }  // borrowed; "index" unless set
    void DeliverCommand(int command);                         // Command, then EnableControls
    // Borrowed; null while closed.
    GtkAccelGroup* Accelerators() const { return accelerators_.Get(); }
    void CreateAccelerators();

private:
    friend struct LWindowCallbacks;
    struct Entry {
        int id;
        GObjectRef<GtkWidget> control;
    };
    template <typename T>
    T* ControlAs(int id, GType type) const {
        GtkWidget* control = GetControlByID(id);
        return G_TYPE_CHECK_INSTANCE_TYPE(control, type) ? reinterpret_cast<T*>(control) : nullptr;
    }
    GtkWidget* StoreCommand(int id, const char* key, int command);
    void HandlePress(int id, const char* key, int command);
    void HandleEditSignal(int id, const char* key, int command);
    GtkEntry* EntryOf(int id) const;
    GtkTextBuffer* EditBufferOf(int id) const;
    GtkListStore* ListOf(int id) const;
    GtkTreeView* ListViewOf(int id) const;
    void DetachWidget();
    static void GCWindowDestroyed(GtkWidget* widget, gpointer window);

    GtkWidget* widget_ = nullptr;
    bool shared_ = false;
    bool modeless_ = false;
    const char* helpPage_ = "index";
    LBubbleTip bubbleTip_;
    GObjectRef<GtkAccelGroup> accelerators_;
    std::forward_list<Entry> registry_;  // newest first
};
