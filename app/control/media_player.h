// Lectora as a media player of the desktop: media keys, headset buttons, panels and lock screens.
//
// Offers org.mpris.MediaPlayer2 and its Player on the session bus.
#pragma once

#include <glib.h>

#include <map>
#include <string>

#include "app/control/bus_object.h"
#include "app/control/controlled_window.h"
#include "app/control/jump_watch.h"
#include "app/control/session_bus.h"
#include "app/reading/narrator.h"
#include "gui/gui_timer.h"

// GUI thread. A receiver of the narrator's news.
class MediaPlayer {
public:
    // Both outlive this object.
    MediaPlayer(Narrator& narrator, const ControlledWindow& window);
    MediaPlayer(const MediaPlayer&) = delete;
    MediaPlayer& operator=(const MediaPlayer&) = delete;

    void BeginSoon();  // once, and off the way of a start
    void Update();     // tells the desktop what has changed, of what can be asked for as well

private:
    void Hear(const ReadingNews& news);
    bool Call(const std::string& method, GVariant* arguments);
    GVariant* Get(const std::string& property) const;
    bool Set(const std::string& property, GVariant* value);
    GVariant* Metadata() const;
    std::string Track() const;
    bool CanMove() const;
    bool SetRate(double rate);
    void SetVolume(double volume);
    double Volume() const;
    void MoveTo(std::int64_t microseconds);

    Narrator& narrator_;
    const ControlledWindow& window_;
    std::map<std::string, VariantRef> told_;  // the properties, as the desktop knows them
    LSoundTime toldLength_;
    int readings_ = 0;  // counted
    JumpWatch jumps_;
    BusObject bus_;
    LGuiTimer begin_;
    Narrator::Subscription news_;
    LPlayerTransport::Subscription changes_;
};
