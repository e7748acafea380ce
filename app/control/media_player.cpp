#include "app/control/media_player.h"

#include <algorithm>
#include <cmath>

#include "app/commands/command_numbers.h"
#include "app/control/media_player_description.h"
#include "playback/settings_keys.h"

namespace {

constexpr guint kBeginMilliseconds = 500;
constexpr std::int64_t kMicroseconds = 1000;  // a millisecond

constexpr const char* kName = "org.mpris.MediaPlayer2.lectora";
constexpr const char* kPath = "/org/mpris/MediaPlayer2";
constexpr const char* kPlayer = "org.mpris.MediaPlayer2.Player";

// Those that the desktop is told of when they change; the rest stay as they are.
constexpr const char* kChanging[] = {"PlaybackStatus", "Rate",      "Metadata",
                                     "Volume",         "CanGoNext", "CanPlay",
                                     "CanPause",       "CanSeek",   "CanGoPrevious"};

constexpr const char* kMimeTypes[] = {"text/plain", "text/html", "application/epub+zip",
                                      "application/vnd.oasis.opendocument.text", "application/pdf"};
constexpr const char* kSchemes[] = {"file"};

std::int64_t Microseconds(LSoundTime time) {
    return time.Milliseconds() * kMicroseconds;
}

const char* StatusWord(ReadingState state) {
    if (!IsReading(state))
        return "Stopped";
    return state == ReadingState::kPaused ? "Paused" : "Playing";
}

}  // namespace

MediaPlayer::MediaPlayer(Narrator& narrator, const ControlledWindow& window)
    : narrator_(narrator),
      window_(window),
      bus_(kPath, kMediaPlayerDescription,
           {.call = [this](const auto& method, GVariant* given) { return Call(method, given); },
            .get = [this](const std::string& property) { return Get(property); },
            .set = [this](const auto& property, GVariant* value) { return Set(property, value); },
            .begun = [this] { Update(); }}),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }),
      changes_(narrator.Changes(), [this](LPlayerChange change) {
          if (change == LPlayerChange::kTempo || change == LPlayerChange::kVolume)
              Update();
      }) {}

void MediaPlayer::BeginSoon() {
    begin_.Start(kBeginMilliseconds, [this] { bus_.Begin(kName); });
}

void MediaPlayer::Hear(const ReadingNews& news) {
    if (news.HasBegun())
        ++readings_;
    const bool runs = news.state == ReadingState::kPlaying;
    const bool isJump = jumps_.IsJump(news.time, runs ? narrator_.TempoPercent() / 100.0 : 0,
                                      g_get_monotonic_time());
    // The length is an estimate at first, which each sentence betters.
    constexpr int kOtherLengthMilliseconds = 2000;
    const int change = news.length.Milliseconds() - toldLength_.Milliseconds();
    if (news.IsNew() || std::abs(change) > kOtherLengthMilliseconds)
        Update();
    if (isJump && IsReading(news.state) && !news.HasBegun())
        bus_.EmitSignal(kPlayer, "Seeked", g_variant_new("(x)", Microseconds(news.time)));
}

void MediaPlayer::Update() {
    if (!bus_.IsThere())
        return;
    GVariantBuilder changed;
    g_variant_builder_init(&changed, G_VARIANT_TYPE_VARDICT);
    bool hasChanged = false;
    for (const char* property : kChanging) {
        VariantRef value(g_variant_ref_sink(Get(property)));
        VariantRef& told = told_[property];
        if (told && g_variant_equal(told.get(), value.get()) != FALSE)
            continue;
        hasChanged = true;
        g_variant_builder_add(&changed, "{sv}", property, value.get());
        told = std::move(value);
    }
    toldLength_ = narrator_.Now().length;
    GVariant* arguments = g_variant_new("(sa{sv}as)", kPlayer, &changed, nullptr);
    if (hasChanged)
        bus_.EmitSignal("org.freedesktop.DBus.Properties", "PropertiesChanged", arguments);
    else
        g_variant_unref(g_variant_ref_sink(arguments));
}

bool MediaPlayer::CanMove() const {
    return narrator_.State() == ReadingState::kPlaying ||
           narrator_.State() == ReadingState::kPaused;
}

// What cannot be done now is left out without an error, as the desktop's panels expect.
bool MediaPlayer::Call(const std::string& method, GVariant* arguments) {
    const ReadingState state = narrator_.State();
    if (method == "Raise") {
        window_.show();
    } else if (method == "Next") {
        window_.run(kNextSentence);
    } else if (method == "Previous") {
        window_.run(kPreviousSentence);
    } else if (method == "PlayPause" || (method == "Pause" && state == ReadingState::kPlaying) ||
               (method == "Play" && (state == ReadingState::kPaused || !IsReading(state)))) {
        window_.run(kPlayOrPause);
    } else if (method == "Stop") {
        window_.run(kStopReading);
    } else if (method == "Seek" && CanMove()) {
        gint64 offset = 0;
        g_variant_get(arguments, "(x)", &offset);
        constexpr gint64 kMost = INT32_MAX * kMicroseconds;
        MoveTo(Microseconds(narrator_.Time()) + std::clamp(offset, -kMost, kMost));
    } else if (method == "SetPosition" && CanMove()) {
        const char* track = nullptr;
        gint64 position = 0;
        g_variant_get(arguments, "(&ox)", &track, &position);
        // One that was meant for another text, or leads out of this, is passed over.
        if (track == Track() && position >= 0 && position <= Microseconds(narrator_.Length()))
            MoveTo(position);
    } else if (method == "OpenUri") {
        const char* address = nullptr;
        g_variant_get(arguments, "(&s)", &address);
        char* path = g_filename_from_uri(address, nullptr, nullptr);
        if (path == nullptr)
            return false;
        window_.readFile(path, std::make_shared<VerbReply>(nullptr));
        g_free(path);
    }
    return true;
}

void MediaPlayer::MoveTo(std::int64_t microseconds) {
    const std::int64_t end = narrator_.Length().Milliseconds();
    const std::int64_t place = std::clamp<std::int64_t>(microseconds / kMicroseconds, 0, end);
    narrator_.MoveTo(LSoundTime(static_cast<std::int32_t>(place)));
}

bool MediaPlayer::SetRate(double rate) {
    // By the standard, a rate of 0 is a pause.
    if (!std::isfinite(rate) || rate <= 0)
        return rate == 0 && narrator_.State() == ReadingState::kPlaying &&
               window_.run(kPlayOrPause);
    if (!narrator_.IsReading())
        return false;
    const double percent =
        std::clamp(rate * 100, double{LTempo::kSlowestPercent}, double{LTempo::kFastestPercent});
    narrator_.SetTempo(static_cast<int>(std::lround(percent)));
    return true;
}

// While nothing is read the card is left alone, and the settings hold what it will be.
double MediaPlayer::Volume() const {
    const int decibels = narrator_.IsPrepared() ? narrator_.Volume().Value() : kPlayerVolume.Get();
    return decibels <= LDB::kSilence ? 0 : std::pow(10, std::min(decibels, 0) / 20.0);
}

void MediaPlayer::SetVolume(double volume) {
    if (std::isnan(volume))
        return;
    const double decibels = volume > 0 ? 20 * std::log10(std::min(volume, 1.0)) : LDB::kSilence;
    const LDB level(static_cast<int>(std::lround(std::max<double>(decibels, LDB::kSilence))));
    if (narrator_.IsPrepared()) {
        narrator_.SetVolume(level);
    } else {
        kPlayerVolume.Set(level.Value());
        Update();
    }
}

bool MediaPlayer::Set(const std::string& property, GVariant* value) {
    if (property == "Rate")
        return SetRate(g_variant_get_double(value));
    if (property == "Volume")
        SetVolume(g_variant_get_double(value));
    return property == "Volume";
}

std::string MediaPlayer::Track() const {
    return "/example/quillon/lectora/reading/" + std::to_string(readings_);
}

GVariant* MediaPlayer::Metadata() const {
    GVariantBuilder data;
    g_variant_builder_init(&data, G_VARIANT_TYPE_VARDICT);
    const ReadingNews news = narrator_.Now();
    const bool hasText = news.state != ReadingState::kIdle;
    g_variant_builder_add(
        &data, "{sv}", "mpris:trackid",
        g_variant_new_object_path(hasText ? Track().c_str()
                                          : "/org/mpris/MediaPlayer2/TrackList/NoTrack"));
    if (hasText) {
        // A file's name may be of any bytes.
        char* title = g_utf8_make_valid(news.title.c_str(), -1);
        g_variant_builder_add(&data, "{sv}", "xesam:title", g_variant_new_take_string(title));
        g_variant_builder_add(&data, "{sv}", "mpris:length",
                              g_variant_new_int64(Microseconds(news.length)));
    }
    return g_variant_builder_end(&data);
}

GVariant* MediaPlayer::Get(const std::string& property) const {
    if (property == "PlaybackStatus")
        return g_variant_new_string(StatusWord(narrator_.State()));
    if (property == "Metadata")
        return Metadata();
    if (property == "Position")
        return g_variant_new_int64(Microseconds(narrator_.Time()));
    if (property == "Rate")
        return g_variant_new_double(narrator_.TempoPercent() / 100.0);
    if (property == "MinimumRate")
        return g_variant_new_double(LTempo::kSlowestPercent / 100.0);
    if (property == "MaximumRate")
        return g_variant_new_double(LTempo::kFastestPercent / 100.0);
    if (property == "Volume")
        return g_variant_new_double(Volume());
    if (property == "CanGoNext" || property == "CanGoPrevious" || property == "CanSeek")
        return g_variant_new_boolean(CanMove() ? TRUE : FALSE);
    if (property == "CanPlay" || property == "CanPause")
        return g_variant_new_boolean(window_.canRun(kPlayOrPause) || narrator_.IsReading() ? TRUE
                                                                                           : FALSE);
    if (property == "CanControl" || property == "CanRaise")
        return g_variant_new_boolean(TRUE);
    if (property == "CanQuit" || property == "HasTrackList")
        return g_variant_new_boolean(FALSE);
    if (property == "Identity")
        return g_variant_new_string("Lectora");
    if (property == "DesktopEntry")
        return g_variant_new_string("lectora");
    if (property == "SupportedUriSchemes")
        return g_variant_new_strv(kSchemes, std::size(kSchemes));
    if (property == "SupportedMimeTypes")
        return g_variant_new_strv(kMimeTypes, std::size(kMimeTypes));
    return nullptr;
}
