#include "gui/main_window/main_window.h"

#include <algorithm>

#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/main_window/idle_answer.h"
#include "gui/settings_keys.h"

struct LMainWindowCallbacks {
    static LMainWindow& WindowOf(gpointer host) { return dynamic_cast<LMainWindow&>(HostOf(host)); }
    static gboolean GCExit(GtkWidget*, GdkEvent*, gpointer host) {
        WindowOf(host).CmClose();
        return TRUE;
    }
    // Runs before GTK spreads the new size, so that the controls move in the same pass.
    static gboolean GCConfigure(GtkWidget*, GdkEventConfigure* event, gpointer host) {
        auto* window = &WindowOf(host);
        window->NotePlacement();
        if (event->width != window->width_ || event->height != window->height_) {
            window->width_ = event->width;
            window->height_ = event->height;
            window->LayoutControls(event->width, event->height);
        }
        return FALSE;
    }
};

void LMainWindow::Run(const char* title, const char* const* arguments, int count) {
    if (!kInstalledSetting.Get()) {
        OnFirstRun();
        kInstalledSetting.Set(true);
    }
    CreateMainWindow(title);
    InitDialog();
    SetMinimumSize();
    Layout();
    EvRunArguments(arguments, count);
    if (IsOpen()) {
        // A command may have ended the window; by then GTK is out of it.
        const auto window = GObjectRef<GtkWidget>::Share(Widget());
        gtk_widget_show_all(Widget());
        EvShown();
        gtk_main();
        // Still open when the loop was ended by anything but Close.
        LMainWindow::CmClose();
        Close(GTK_RESPONSE_CANCEL);
        EndWidget(window.Get());
    }
}

void LMainWindow::CreateMainWindow(const char* title) {
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    AttachWidget(window);
    gtk_window_set_title(GTK_WINDOW(window), DisplayText(title).c_str());
    gtk_widget_add_events(window, GDK_ALL_EVENTS_MASK);
    CreateAccelerators();
    Connect(window, "delete_event", G_CALLBACK(LMainWindowCallbacks::GCExit));
    Connect(window, "configure-event", G_CALLBACK(LMainWindowCallbacks::GCConfigure));
    AnswerWhenIdle(window);

    GtkWidget* box = gtk_vbox_new(FALSE, 0);
    fixed_ = gtk_fixed_new();
    gtk_box_pack_start(GTK_BOX(box), fixed_, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(box), CreateStatusBar(), FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), box);

    gtk_window_set_resizable(GTK_WINDOW(window), TRUE);
    ApplyPlacement();
    SetAppIcon(kAppIconNumber);
}

// An explicit minimum also lets the window shrink below what the fixed container asks for. With
// large letters the menu bar needs more.
void LMainWindow::SetMinimumSize() {
    GdkGeometry geometry{};
    geometry.min_width = std::max(kMinimumWidth, GetMenuBarWidth());
    geometry.min_height = kMinimumHeight;
    gtk_window_set_geometry_hints(GTK_WINDOW(Widget()), Widget(), &geometry, GDK_HINT_MIN_SIZE);
}

void LMainWindow::ApplyPlacement() {
    GtkWindow* window = GTK_WINDOW(Widget());
    if (kMaximizedSetting.Get())
        gtk_window_maximize(window);
    gtk_window_move(window, kWindowLeftSetting.Get(), kWindowTopSetting.Get());
    gtk_window_set_default_size(window, std::max(kWindowWidthSetting.Get(), kMinimumWidth),
                                std::max(kWindowHeightSetting.Get(), kMinimumHeight));
}

bool LMainWindow::IsMaximized() const {
    GdkWindow* window = gtk_widget_get_window(Widget());
    return window != nullptr && (gdk_window_get_state(window) & GDK_WINDOW_STATE_MAXIMIZED) != 0;
}

GdkRectangle LMainWindow::Placement() const {
    GtkWindow* window = GTK_WINDOW(Widget());
    GdkRectangle placement{};
    gtk_window_get_size(window, &placement.width, &placement.height);
    gtk_window_get_position(window, &placement.x, &placement.y);
    return placement;
}

void LMainWindow::NotePlacement() {
    if (!gtk_widget_get_visible(Widget()) || IsMaximized())
        return;
    const GdkRectangle now = Placement();
    if (now.width != latest_.width || now.height != latest_.height)
        previous_ = latest_;
    latest_ = now;
}

void LMainWindow::StorePlacement() {
    GdkRectangle own = Placement();
    kMaximizedSetting.Set(IsMaximized());
    if (IsMaximized())
        own = own.width == latest_.width && own.height == latest_.height ? previous_ : latest_;
    if (own.width == 0)
        return;  // maximised all the time: what was stored before still holds
    kWindowWidthSetting.Set(own.width);
    kWindowHeightSetting.Set(own.height);
    kWindowLeftSetting.Set(own.x);
    kWindowTopSetting.Set(own.y);
}

void LMainWindow::LayoutBase(int& left, int& top, int&, int& height) {
    left = 0;
    top = 0;
    height = std::max(0, height - GetStatusBarHeight() - GetMenuBarHeight() - GetToolBarHeight());
}

void LMainWindow::Layout() {
    if (!IsOpen())
        return;
    if (width_ == 0)  // not shown yet
        gtk_window_get_default_size(GTK_WINDOW(Widget()), &width_, &height_);
    LayoutControls(width_, height_);
}

void LMainWindow::CmClose() {
    if (!IsOpen())
        return;
    // A hidden window has no place of its own to store.
    if (gtk_widget_get_visible(Widget()))
        StorePlacement();
    gtk_widget_hide(Widget());
}

void LMainWindow::CmExit() {
    if (CmCancel())
        Close(GTK_RESPONSE_CANCEL);
}

void LMainWindow::Close(int response) {
    if (!IsOpen())
        return;
    LKeyDialog::Close(response);
    if (gtk_main_level() > 0)
        gtk_main_quit();
}

void LMainWindow::Minimise() {
    StorePlacement();
    gtk_window_iconify(GTK_WINDOW(Widget()));
}

void LMainWindow::CmOpen() {
    if (!IsOpen())
        return;
    gtk_window_deiconify(GTK_WINDOW(Widget()));
    // One that only lies behind others stays where its user has put it since.
    if (!gtk_widget_get_visible(Widget()))
        ApplyPlacement();
    gtk_widget_show_all(Widget());
    gtk_window_present(GTK_WINDOW(Widget()));
}

void LMainWindow::AddControl(GtkWidget* control, int id, GtkWidget* placed) {
    gtk_fixed_put(GTK_FIXED(fixed_), placed != nullptr ? placed : control, 0, 0);
    SetControlID(control, id);
}

GtkWidget* LMainWindow::PlacedControl(int id) const {
    GtkWidget* control = GetControlByID(id);
    while (control != nullptr && gtk_widget_get_parent(control) != fixed_)
        control = gtk_widget_get_parent(control);
    return control;
}

void LMainWindow::SetFocusOrder(std::span<const int> ids) {
    if (fixed_ == nullptr)
        return;
    GList* chain = nullptr;
    for (const int id : ids) {
        if (GtkWidget* control = PlacedControl(id))
            chain = g_list_append(chain, control);
    }
    gtk_container_set_focus_chain(GTK_CONTAINER(fixed_), chain);
    g_list_free(chain);
}

void LMainWindow::MoveControl(int id, int x, int y, int width, int height) {
    GtkWidget* control = PlacedControl(id);
    if (control == nullptr)
        return;
    gtk_widget_set_size_request(control, std::max(width, 1), std::max(height, 1));
    gtk_fixed_move(GTK_FIXED(fixed_), control, x, y);
}
