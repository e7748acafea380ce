// The waveform, judged by its pixels.
#include "playback/dialogs/wave_window.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "gui/gobject_ref.h"
#include "tests/support/memory_sound.h"
#include "tests/support/window/main_loop.h"

namespace {

constexpr int kWaveRate = 1000;
constexpr int kColumnFrames = 40;  // 25 columns a second
constexpr int kWidth = 100;
constexpr int kHeight = 61;

class WaveWindow : public testing::Test {
protected:
    WaveWindow() {
        GtkWidget* area = LWaveWindow::CreateControl();
        gtk_widget_set_size_request(area, kWidth, kHeight);
        wave_->Attach(area);
        GtkWidget* fixed = gtk_fixed_new();
        gtk_fixed_put(GTK_FIXED(fixed), area, 0, 0);
        gtk_container_add(GTK_CONTAINER(window_), fixed);
        gtk_widget_show_all(window_);
        EXPECT_TRUE(PumpUntil([&] { return gtk_widget_get_mapped(area) != FALSE; }));
        wave_->SetPosition(-1000 * kWaveRate, 0);  // the play line out of the way
    }
    ~WaveWindow() override { gtk_widget_destroy(window_); }

    // A second each of silence, of speech and of clipping; half a second of speech.
    MemorySource* Give() {
        std::vector<int> samples(3 * kWaveRate + kWaveRate / 2, 200 << 10);
        std::fill_n(samples.begin(), kWaveRate, 0);
        std::fill_n(samples.begin() + 2 * kWaveRate, kWaveRate, -kMaxPcm16Peak);
        auto* source = new MemorySource(samples, kWaveRate);
        pending_ = source;
        return source;
    }
    void Show() { wave_->SetSource(LSoundSource(pending_)); }

    char Look(int column) const {
        const GtkStyle* style = gtk_widget_get_style(wave_->Area());
        const auto picture = GObjectRef<GdkPixbuf>::Adopt(gdk_pixbuf_get_from_drawable(
            nullptr, gtk_widget_get_window(wave_->Area()), nullptr, column, 0, 0, 0, 1, kHeight));
        const auto at = [&](int y) {
            return gdk_pixbuf_get_pixels(picture.Get()) +
                   y * gdk_pixbuf_get_rowstride(picture.Get());
        };
        const auto is = [&](int y, const GdkColor& color) {
            return at(y)[0] == color.red >> 8 && at(y)[1] == color.green >> 8 &&
                   at(y)[2] == color.blue >> 8;
        };
        const GdkColor& base = style->base[GTK_STATE_NORMAL];
        if (!is(3, base))
            return at(3)[0] > at(3)[1] + 80 ? '!' : '.';
        if (is(12, style->bg[GTK_STATE_SELECTED]))
            return 'w';
        return is(kHeight / 2, base) ? ' ' : '-';
    }
    std::string Looks() const {
        std::string looks;
        for (int column = 2; column < kWidth; column += 8)
            looks += Look(column);
        return looks;
    }
    bool ComesToLook(const char* wanted) {
        return PumpUntil([&] { return Looks() == wanted; });
    }

    GtkWidget* const window_ = gtk_window_new(GTK_WINDOW_POPUP);
    std::unique_ptr<LWaveWindow> wave_ = std::make_unique<LWaveWindow>();
    MemorySource* pending_ = nullptr;
};

TEST_F(WaveWindow, ShowsSilenceSpeechClippingAndTheEnd) {
    MemorySource* source = Give();
    wave_->SetFrame(0, kColumnFrames);
    Show();
    EXPECT_TRUE(ComesToLook("---www!!!!w..")) << Looks();
    const std::size_t reads = source->readSizes.size();
    wave_->SetFrame(10 * kColumnFrames, kColumnFrames);
    EXPECT_TRUE(ComesToLook("--www!!!ww...")) << Looks();
    EXPECT_EQ(source->readSizes.size(), reads) << "what scrolled is not read again";
    wave_->SetFrame(0, 2 * kColumnFrames);
    EXPECT_TRUE(ComesToLook("--w!!w.......")) << Looks();
    wave_->SetSource(LSoundSource());
    EXPECT_TRUE(ComesToLook(".............")) << Looks();
}

TEST_F(WaveWindow, ABlankIsLeftForWhatIsNotSpokenYet) {
    Give()->SetStreaming(kWaveRate + kWaveRate / 2, 0);
    wave_->SetFrame(0, kColumnFrames);
    Show();
    EXPECT_TRUE(ComesToLook("---ww........")) << Looks();
    Give()->SetStreaming(kWaveRate / 2, kWaveRate);
    Show();
    EXPECT_TRUE(ComesToLook("---www!!!!w..")) << "grown";
    Give()->SetStreaming(kWaveRate, 0);
    Show();
    wave_.reset();  // while it grows
    PumpPending();
}

TEST_F(WaveWindow, TwoSecondsAroundThePositionAndAClickLeadsThere) {
    std::vector<std::int64_t> sought;
    wave_->seek = [&](std::int64_t frame) { sought.push_back(frame); };
    const auto click = [&](int x) {
        GdkEvent* event = gdk_event_new(GDK_BUTTON_PRESS);
        event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(wave_->Area())));
        event->button.x = x;
        event->button.button = 1;
        gtk_widget_event(wave_->Area(), event);
        gdk_event_free(event);
    };
    wave_->ShowAround(500, kWaveRate, true);
    click(50);
    wave_->ShowAround(5007, kWaveRate, false);
    click(0);
    click(400);
    EXPECT_EQ(sought, (std::vector<std::int64_t>{1000, 4000, 5980}));
}

}  // namespace
