// The playback side of the virtual card: an ALSA I/O plug-in that behaves as a kernel card. A clock
// drains its buffer at the granted rate (times the card's speed), and a buffer that runs dry stops
// the stream with -EPIPE. ALSA calls every function here under the lock of the PCM.
#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "foundation/files/unique_fd.h"
#include "tests/support/vcard/card_folder.h"
#include "tests/support/vcard/card_number.h"
#include "tests/support/vcard/received_sound.h"

namespace {

constexpr unsigned int kBytesPerSample = 2;

class VirtualPcm {
public:
    explicit VirtualPcm(int card) : folder_(card) {}

    // 0, or what a kernel card would answer: -ENOENT, -ENODEV, -EBUSY.
    int Open(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode);

    int Start();
    int Stop();
    snd_pcm_sframes_t Pointer();
    snd_pcm_sframes_t Transfer(const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                               snd_pcm_uframes_t size);
    int HwParams();
    int SwParams(const snd_pcm_sw_params_t* params);
    int Prepare();
    int Resume();
    int Delay(snd_pcm_sframes_t* delay);
    int Revents(const pollfd& polled, unsigned short& revents);
    void LogClose() { Log("close"); }

private:
    int Constrain();
    // Plays on to the present moment and lets a fault or a dry buffer stop the stream.
    void PlayOn();
    void ApplyFaults();
    bool TakeFault(CardFault::Kind kind, std::uint64_t frame, CardFault& taken);
    void StopClock(snd_pcm_state_t state, const char* event);
    void StartClock();
    std::int64_t StartFor(std::uint64_t played);
    bool IsBroken() { return IsAt(CardFault::Kind::kBreak, playedBefore_ + played_); }
    bool IsAt(CardFault::Kind kind, std::uint64_t frame) {
        const CardFault* const fault = folder_.Settings().FindFault(kind);
        return fault != nullptr && frame >= fault->frame;
    }
    void SetTicks(bool ticking);
    double FramesPerMicrosecond() const { return io_.rate * speed_ / 1e6; }
    void Log(const char* event, const std::string& more = "") {
        sound_.Log(event, receivedBefore_ + received_, playedBefore_ + played_, more);
    }

    CardFolder folder_;
    ReceivedSound sound_;
    UniqueFd lock_;
    UniqueFd timer_;
    snd_pcm_ioplug_t io_{};
    std::vector<CardFault> taken_;
    std::uint64_t receivedBefore_ = 0;  // frames, before the last prepare
    std::uint64_t playedBefore_ = 0;
    std::uint64_t received_ = 0;  // frames, since the last prepare
    std::uint64_t played_ = 0;
    // The moment, in microseconds, at which frame 0 since prepare was played.
    std::int64_t clockStart_ = 0;
    double speed_ = 1;  // of the clock
    snd_pcm_uframes_t boundary_ = 0;
    snd_pcm_uframes_t availMin_ = 1;
};

VirtualPcm& PcmOf(snd_pcm_ioplug_t* io) {
    return *static_cast<VirtualPcm*>(io->private_data);
}

const snd_pcm_ioplug_callback_t& PcmCallbacks() {
    static const snd_pcm_ioplug_callback_t callbacks = [] {
        snd_pcm_ioplug_callback_t table{};
        table.start = [](snd_pcm_ioplug_t* io) { return PcmOf(io).Start(); };
        table.stop = [](snd_pcm_ioplug_t* io) { return PcmOf(io).Stop(); };
        table.pointer = [](snd_pcm_ioplug_t* io) { return PcmOf(io).Pointer(); };
        table.transfer = [](snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas,
                            snd_pcm_uframes_t offset, snd_pcm_uframes_t size) {
            return PcmOf(io).Transfer(areas, offset, size);
        };
        table.close = [](snd_pcm_ioplug_t* io) {
            PcmOf(io).LogClose();
            delete &PcmOf(io);
            return 0;
        };
        table.hw_params = [](snd_pcm_ioplug_t* io, snd_pcm_hw_params_t*) {
            return PcmOf(io).HwParams();
        };
        table.sw_params = [](snd_pcm_ioplug_t* io, snd_pcm_sw_params_t* params) {
            return PcmOf(io).SwParams(params);
        };
        table.prepare = [](snd_pcm_ioplug_t* io) { return PcmOf(io).Prepare(); };
        table.resume = [](snd_pcm_ioplug_t* io) { return PcmOf(io).Resume(); };
        table.delay = [](snd_pcm_ioplug_t* io, snd_pcm_sframes_t* delay) {
            return PcmOf(io).Delay(delay);
        };
        table.poll_revents = [](snd_pcm_ioplug_t* io, pollfd* polled, unsigned int,
                                unsigned short* revents) {
            return PcmOf(io).Revents(*polled, *revents);
        };
        return table;
    }();
    return callbacks;
}

int VirtualPcm::Open(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode) {
    if (!folder_.Exists() || stream != SND_PCM_STREAM_PLAYBACK)
        return -ENOENT;
    if (::access((folder_.Path() + "/gone").c_str(), F_OK) == 0)
        return -ENODEV;
    lock_.Reset(::open((folder_.Path() + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (folder_.Settings().FindFault(CardFault::Kind::kBusy) != nullptr ||
        ::flock(lock_.Get(), LOCK_EX | LOCK_NB) != 0)
        return -EBUSY;
    timer_.Reset(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    io_.version = SND_PCM_IOPLUG_VERSION;
    io_.name = "Virtual sound card";
    io_.flags = SND_PCM_IOPLUG_FLAG_BOUNDARY_WA | SND_PCM_IOPLUG_FLAG_MONOTONIC;
    io_.poll_fd = timer_.Get();
    io_.poll_events = POLLIN;
    io_.callback = &PcmCallbacks();
    io_.private_data = this;
    int result = snd_pcm_ioplug_create(&io_, name, stream, mode);
    if (result < 0)
        return result;
    result = Constrain();
    if (result < 0)
        return result;
    *pcm = io_.pcm;
    return 0;
}

int VirtualPcm::Constrain() {
    const CardSettings& settings = folder_.Settings();
    static const std::array<unsigned int, 2> accesses = {SND_PCM_ACCESS_RW_INTERLEAVED,
                                                         SND_PCM_ACCESS_MMAP_INTERLEAVED};
    static const std::array<unsigned int, 1> formats = {SND_PCM_FORMAT_S16_LE};
    const auto setList = [this](int type, const auto& list) {
        return snd_pcm_ioplug_set_param_list(&io_, type, static_cast<unsigned int>(list.size()),
                                             list.data());
    };
    const auto setRange = [this](int type, unsigned int low, unsigned int high) {
        return snd_pcm_ioplug_set_param_minmax(&io_, type, low, high);
    };
    const std::array<int, 7> results = {
        setList(SND_PCM_IOPLUG_HW_ACCESS, accesses),
        setList(SND_PCM_IOPLUG_HW_FORMAT, formats),
        settings.channels.empty() ? setRange(SND_PCM_IOPLUG_HW_CHANNELS, 1, 2)
                                  : setList(SND_PCM_IOPLUG_HW_CHANNELS, settings.channels),
        settings.rates.empty() ? setRange(SND_PCM_IOPLUG_HW_RATE, 4000, 192000)
                               : setList(SND_PCM_IOPLUG_HW_RATE, settings.rates),
        setRange(SND_PCM_IOPLUG_HW_PERIOD_BYTES, 64, 128 * 1024),
        setRange(SND_PCM_IOPLUG_HW_BUFFER_BYTES, 128, 256 * 1024),
        setRange(SND_PCM_IOPLUG_HW_PERIODS, 2, 1024),
    };
    return *std::min_element(results.begin(), results.end());
}

int VirtualPcm::HwParams() {
    sound_.Begin(folder_.Path(), io_.rate, io_.channels);
    Log("params", std::to_string(io_.rate) + " " + std::to_string(io_.channels) + " " +
                      std::to_string(io_.period_size) + " " + std::to_string(io_.buffer_size));
    return 0;
}

int VirtualPcm::SwParams(const snd_pcm_sw_params_t* params) {
    snd_pcm_sw_params_get_avail_min(params, &availMin_);
    return snd_pcm_sw_params_get_boundary(params, &boundary_);
}

int VirtualPcm::Prepare() {
    SetTicks(true);  // a kernel card tells at once, and for as long as it is so, that it has room
    receivedBefore_ += received_;
    playedBefore_ += played_;
    received_ = 0;
    played_ = 0;
    Log("prepare");
    return 0;
}

void VirtualPcm::SetTicks(bool ticking) {
    itimerspec ticks{};
    if (ticking) {
        // Four wake-ups a period, within what a fast and a slow clock can bear.
        const double quarterPeriod =
            static_cast<double>(io_.period_size) / 4 / FramesPerMicrosecond();
        const auto nanoseconds =
            static_cast<long>(std::clamp(quarterPeriod, 500.0, 20000.0) * 1000);
        ticks.it_interval.tv_nsec = nanoseconds;
        ticks.it_value.tv_nsec = nanoseconds;
    }
    ::timerfd_settime(timer_.Get(), 0, &ticks, nullptr);
}

void VirtualPcm::StartClock() {
    speed_ = folder_.Settings().speed;
    clockStart_ = StartFor(played_);
    SetTicks(true);
}

// When the clock would have started had it played that many frames by now.
std::int64_t VirtualPcm::StartFor(std::uint64_t played) {
    return MonotonicMicroseconds() -
           static_cast<std::int64_t>(static_cast<double>(played) / FramesPerMicrosecond());
}

void VirtualPcm::StopClock(snd_pcm_state_t state, const char* event) {
    SetTicks(false);
    // A waiting writer must wake up and see the new state.
    itimerspec now{};
    now.it_value.tv_nsec = 1;
    ::timerfd_settime(timer_.Get(), 0, &now, nullptr);
    snd_pcm_ioplug_set_state(&io_, state);
    Log(event);
}

int VirtualPcm::Start() {
    StartClock();
    Log("start");
    return 0;
}

int VirtualPcm::Stop() {
    PlayOn();
    SetTicks(false);
    Log("stop");
    return 0;
}

bool VirtualPcm::TakeFault(CardFault::Kind kind, std::uint64_t frame, CardFault& taken) {
    for (const CardFault& fault : folder_.Settings().faults) {
        if (fault.kind != kind || frame < fault.frame ||
            std::find(taken_.begin(), taken_.end(), fault) != taken_.end())
            continue;
        taken_.push_back(fault);
        taken = fault;
        return true;
    }
    return false;
}

void VirtualPcm::ApplyFaults() {
    const std::uint64_t frame = playedBefore_ + played_;
    CardFault fault;
    if (TakeFault(CardFault::Kind::kVanish, frame, fault)) {
        const UniqueFd mark(
            ::open((folder_.Path() + "/gone").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        StopClock(SND_PCM_STATE_DISCONNECTED, "vanish");
    } else if (TakeFault(CardFault::Kind::kSuspend, frame, fault)) {
        StopClock(SND_PCM_STATE_SUSPENDED, "suspend");
    } else if (TakeFault(CardFault::Kind::kUnderrun, frame, fault)) {
        StopClock(SND_PCM_STATE_XRUN, "underrun");
    }
}

void VirtualPcm::PlayOn() {
    if (io_.state != SND_PCM_STATE_RUNNING && io_.state != SND_PCM_STATE_DRAINING)
        return;
    if (IsBroken() || IsAt(CardFault::Kind::kStall, playedBefore_ + played_)) {
        clockStart_ = StartFor(played_);
        return;
    }
    const auto elapsed = static_cast<double>(MonotonicMicroseconds() - clockStart_);
    const auto clock = static_cast<std::uint64_t>(std::max(elapsed * FramesPerMicrosecond(), 0.0));
    played_ = std::clamp(clock, played_, received_);
    // What was played by now was played at the old speed.
    if (speed_ != folder_.Settings().speed)
        StartClock();
    ApplyFaults();
    if (io_.state != SND_PCM_STATE_RUNNING || clock < received_)
        return;
    if (folder_.Settings().serverMilliseconds > 0)
        clockStart_ = StartFor(played_);
    else
        StopClock(SND_PCM_STATE_XRUN, "underrun");
}

snd_pcm_sframes_t VirtualPcm::Pointer() {
    PlayOn();
    if (io_.state == SND_PCM_STATE_XRUN || IsBroken())
        return -EPIPE;
    // Other states must not look like an underrun: ALSA turns every error here into one.
    return static_cast<snd_pcm_sframes_t>(boundary_ > 0 ? played_ % boundary_ : played_);
}

snd_pcm_sframes_t VirtualPcm::Transfer(const snd_pcm_channel_area_t* areas,
                                       snd_pcm_uframes_t offset, snd_pcm_uframes_t size) {
    ApplyFaults();
    CardFault fault;
    if (io_.state == SND_PCM_STATE_DISCONNECTED)
        return -ENODEV;
    if (TakeFault(CardFault::Kind::kAgain, receivedBefore_ + received_, fault)) {
        Log("again");
        return -EAGAIN;
    }
    while (IsAt(CardFault::Kind::kHang, receivedBefore_ + received_))
        ::usleep(2000);
    if (received_ == 0)
        Log("first");
    const auto* bytes = static_cast<const char*>(areas->addr) + areas->first / 8 +
                        static_cast<std::size_t>(areas->step) / 8 * offset;
    sound_.Add(bytes, size * io_.channels * kBytesPerSample);
    received_ += size;
    return static_cast<snd_pcm_sframes_t>(size);
}

int VirtualPcm::Resume() {
    StartClock();
    snd_pcm_ioplug_set_state(&io_, SND_PCM_STATE_RUNNING);
    Log("resume");
    return 0;
}

int VirtualPcm::Delay(snd_pcm_sframes_t* delay) {
    PlayOn();
    *delay = static_cast<snd_pcm_sframes_t>(received_ - played_);
    if (const int latency = folder_.Settings().serverMilliseconds; latency > 0) {
        if (io_.state == SND_PCM_STATE_PREPARED)
            return -EIO;
        *delay = std::max(*delay, snd_pcm_sframes_t{latency} * io_.rate / 1000);
    }
    if (IsBroken())
        return 0;
    switch (io_.state) {
        case SND_PCM_STATE_XRUN:
            return -EPIPE;
        case SND_PCM_STATE_SUSPENDED:
            return -ESTRPIPE;
        case SND_PCM_STATE_DISCONNECTED:
            return -ENODEV;
        default:
            return 0;
    }
}

int VirtualPcm::Revents(const pollfd& polled, unsigned short& revents) {
    if (IsBroken())
        return -EPIPE;
    std::uint64_t expirations = 0;
    [[maybe_unused]] const ssize_t count = ::read(polled.fd, &expirations, sizeof expirations);
    PlayOn();
    if (io_.state != SND_PCM_STATE_RUNNING && io_.state != SND_PCM_STATE_DRAINING &&
        io_.state != SND_PCM_STATE_PREPARED)
        revents = POLLERR | POLLOUT;
    else
        revents = io_.buffer_size - (received_ - played_) >= availMin_ ? POLLOUT : 0;
    return 0;
}

}  // namespace

extern "C" {
SND_PCM_PLUGIN_DEFINE_FUNC(vcard) {
    static_cast<void>(root);
    auto* card = new VirtualPcm(CardNumberOf(conf));
    const int result = card->Open(pcmp, name, stream, mode);
    if (result < 0)
        delete card;
    return result;
}
SND_PCM_PLUGIN_SYMBOL(vcard)
}
