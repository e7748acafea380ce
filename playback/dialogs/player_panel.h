// The panel that plays the current speech: transport buttons, position, time, level, card, volume
// and reading speed.
#pragma once

#include <memory>
#include <string>

#include "gui/inter_win_message.h"
#include "gui/key_dialog.h"
#include "playback/dialogs/wave_window.h"
#include "playback/play_device.h"
#include "playback/player_info.h"
#include "playback/player_wind.h"
#include "playback/sound_player.h"
#include "sound/sound_time.h"
#include "sound/tempo.h"

// Owns its player and is the player's listener. GUI thread. `info` is borrowed and outlives the
// panel.
class LPlayerBaseDlg : public LKeyDialog,
                       public LSoundPlayerNotify,
                       public LInterWinMessageHandler {
public:
    explicit LPlayerBaseDlg(LPlayerBaseInfo& info);
    ~LPlayerBaseDlg() override;

    // Card, volume and speed as they are kept in the settings. InitDialog does it unless it was
    // done: who plays before the panel is on the screen calls it first.
    void Prepare();

    void InitDialog() override;
    void DestroyDialog() override;
    void EnableControls() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    bool EvKeyUp(unsigned int key) override;
    void EvInterWinMessage(int, int, int) override {}

    void CmPlay();
    void CmScrub();
    virtual void CmStop();
    void CmStart();
    void CmEnd();
    void CmPlayEnd();  // the last three seconds
    void CmBack();
    void CmFwd();
    void CmBackFwdStop();
    void CmSentence(int step);  // to the sentence `step` ones on; 0 repeats the one being heard

    bool IsLoaded() const { return player_.IsLoaded(); }  // playing or paused
    bool IsPlaying() const { return player_.IsLoaded() && !player_.IsCued(); }
    LSoundTime Time() const { return time_; }
    // Why nothing can be heard, when playback ended by itself.
    PlayTrouble Trouble() const { return trouble_; }
    // What keeps the sound from the card that was chosen, as a sentence; empty when nothing does.
    const std::string& RouteText() const { return routeText_; }

protected:
    const LPlayerBaseInfo& Info() const { return info_; }

    void spntfPlay(int id) override;
    void spntfStop(int id) override;
    void spntfCue(int id) override;
    void spntfTime(LSoundTime time, int id) override;
    void spntfLevel(const LDBMC& levels, int id) override;

    // Playback ended by itself: at the end, or in trouble. Also when a rewind or forward ends that
    // had begun in silence.
    virtual void EvEnded() {}
    virtual void EvRoute() {}  // RouteText() is another

    // `info` tells of another item from now on: stops, and shows that from its start.
    void ShowItem();
    void MoveTo(LSoundTime time);
    void StopPlayer();

private:
    LSoundSource OpenSource();
    void SetTime(LSoundTime time, bool fromSlider);
    LSoundTime ShownLength() const;
    void ShowItemControls();
    void ShowTime();
    void ShowWave();
    double Pace() const;
    void ShowTempo();
    bool StartAt(const LSoundSource& source, LSoundTime time);
    void Wind(PlayerWind::Way way);
    void TakeDevice();  // as chosen in the list
    void SetVolume(LDB volume);
    void ReadTempo();
    void StoreTempo();
    bool CmSpace();
    void EvTrouble(PlayTrouble trouble);
    void TakeRoute(const PlayRoute& route);
    void SetRouteText(const std::string& text);

    LPlayerBaseInfo& info_;
    bool isPrepared_ = false;
    std::string voice_;  // whose speed the tempo is
    std::shared_ptr<LTempo> tempo_;
    LSoundPlayDevice device_;
    std::string missingDevice_;  // the settings' own, which has no card at the moment
    std::string obstacle_;       // the first half of the next
    std::string routeText_;
    LSoundPlayer player_;
    LWaveWindow wave_;
    int sampleRate_ = 0;  // of the source last opened
    LSoundTime time_;
    LSoundTime length_;  // of the source last opened; grows with it
    PlayerWind wind_;
    bool stopping_ = false;  // by the panel itself
    PlayTrouble trouble_ = PlayTrouble::kNone;
};

void DlgGenPlayer(LDialogGenContext& context);
