// The main window's controls: made once, and laid out whenever its size or what is shown changes.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "app/commands/command_places.h"
#include "app/commands/command_set.h"
#include "gui/controls/control_factory.h"
#include "gui/main_window/main_window.h"

struct LayoutPlace;
struct LayoutSizes;

// GUI thread.
class MainControls {
public:
    // Below the text or beside it, there only now and then.
    struct Bar {
        int control;
        GtkWidget* widget;  // floating
        std::function<bool()> isOpen;
        // Leaves out what a place of that width has no room for, before it is asked for its height.
        // Who has this stands for voices and buttons in a low window.
        std::function<void(int width, bool isLow)> fit = nullptr;
        GtkWidget* frame = nullptr;  // the scroll bars that it lies in
    };
    // All are borrowed.
    MainControls(LMainWindow& window, CommandSet& commands, CommandPlaces& places)
        : window_(window), commands_(commands), places_(places) {}
    MainControls(const MainControls&) = delete;
    MainControls& operator=(const MainControls&) = delete;

    void AddCommands();
    // Once. What stands beside the text, where the window has room for it, has the keyboard before
    // the text; the bars from top to bottom have it after.
    void Create(const LEditWidgets& text, Bar beside, std::vector<Bar> bars);
    void LayOut(int width, int height);
    // The keyboard is never lost with a control that was hidden or disabled.
    void KeepFocus();

private:
    void CmShowCommandBar();  // or hides it
    void ShowChoice();
    void CreateVoices();
    void CreateButton(int number);
    void SetFocusOrder();
    void MeasureBars(LayoutSizes& sizes);
    void PlaceBars(LayoutPlace place);
    void Place(int control, const LayoutPlace& place);

    LMainWindow& window_;
    CommandSet& commands_;
    CommandPlaces& places_;
    Bar beside_{};
    std::vector<Bar> bars_;
};
