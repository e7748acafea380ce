// The application's main window: its place kept in the settings, free layout, keys, menu bar, tool
// bar and status bar, hidden where other windows close.
#pragma once

#include <span>

#include "gui/main_window/status_bar.h"
#include "gui/main_window/tool_bar.h"
#include "gui/windows/key_dialog.h"

class LMainWindow : public LKeyDialog, public LStatusBar, public LToolBar {
public:
    static constexpr int kMinimumWidth = 280;
    static constexpr int kMinimumHeight = 225;

    // Builds the window, runs InitDialog, the first layout and EvRunArguments, shows the window
    // (EvShown) and runs the main loop until Close, or gtk_main_quit, after which it closes the
    // window. Called and returns with the GDK lock held.
    // Arguments are borrowed; argument 0 is the program.
    void Run(const char* title, const char* const* arguments, int count);

    // Places the controls, by MoveControl; on every change of the window's size in pixels.
    virtual void LayoutControls(int width, int height) = 0;
    // In: the window's size. Out: the area left for controls, in container coordinates.
    virtual void LayoutBase(int& left, int& top, int& width, int& height);
    virtual void EvRunArguments(const char* const* arguments, int count) = 0;
    virtual void OnFirstRun() {}  // once an account, before the window is built
    virtual void EvShown() {}     // once, just before the main loop

    void CmClose() override;            // stores the placement and hides; the program goes on
    void CmExit() override;             // asks CmCancel; true ends
    void Close(int response) override;  // ends the main loop
    void CmOpen();                      // back on the screen where it was, in front
    void Minimise();                    // stores the placement first

    void Layout();  // runs LayoutControls with the present size

    // For the parts of the window that make and place its controls.
    // Adds a control to the free area and registers it; one that lies in a scrolled window names
    // that as `placed`.
    void AddControl(GtkWidget* control, int id, GtkWidget* placed = nullptr);
    void MoveControl(int id, int x, int y, int width, int height);
    // The way of the Tab key through the controls; without it, the way is by position.
    void SetFocusOrder(std::span<const int> ids);

protected:
    void WidgetDetached() override { fixed_ = nullptr; }
    void CreateMainWindow(const char* title);
    // Of the open window; of a maximised one as it was before, and that it is.
    void StorePlacement();

private:
    friend struct LMainWindowCallbacks;
    GtkWidget* PlacedControl(int id) const;  // child of the container, or null
    void ApplyPlacement();
    void SetMinimumSize();

    bool IsMaximized() const;
    GdkRectangle Placement() const;  // now
    void NotePlacement();

    GtkWidget* fixed_ = nullptr;  // owned by the window
    // The last two sizes, without those it had when it was known to be maximised: its new size may
    // come before that news. Without a width: there was none.
    GdkRectangle latest_{};
    GdkRectangle previous_{};
    int width_ = 0;
    int height_ = 0;
};
