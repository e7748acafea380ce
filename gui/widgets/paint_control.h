// Base of controls that draw themselves with Cairo.
#pragma once

#include <gtk/gtk.h>

// Draws on one drawing area that its window owns; whichever of the two goes first, the other lives
// on without it. GUI thread only.
class LPaintControl {
public:
    LPaintControl() = default;
    LPaintControl(const LPaintControl&) = delete;
    LPaintControl& operator=(const LPaintControl&) = delete;
    virtual ~LPaintControl();

    // One that is not attached yet; an event box is drawn behind what it holds.
    void Attach(GtkWidget* area);
    GtkWidget* Area() const { return area_; }  // null before Attach and once it is destroyed

    int Width() const;   // pixels
    int Height() const;  // pixels
    // Asks for a new picture of these columns, or of everything.
    void Invalidate(int left, int width);
    void Invalidate();

protected:
    // Clipped to what must be drawn anew, which is `dirty` or less.
    virtual void Paint(cairo_t* cairo, const GdkRectangle& dirty) = 0;
    virtual void EvSize(int width, int height);  // after each change of size
    // A press of button 1, or a move while it is held; false when not wanted.
    virtual bool EvPointer(int x, int y);

private:
    friend struct LPaintControlCallbacks;
    GtkWidget* area_ = nullptr;  // borrowed
};
