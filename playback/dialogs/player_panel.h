// The panel that plays the current speech: transport buttons, position, time, level, card, volume
// and reading speed.
#pragma once

#include <string>

#include "gui/windows/inter_win_message.h"
#include "gui/windows/key_dialog.h"
#include "playback/dialogs/wave_window.h"
#include "playback/player_transport.h"

// Shows a transport, and moves it; while it is on the screen it hears what becomes of it. GUI
// thread. The transport is borrowed and outlives the panel.
class LPlayerBaseDlg : public LKeyDialog, public LInterWinMessageHandler {
public:
    explicit LPlayerBaseDlg(LPlayerTransport& transport);

    void InitDialog() override;
    void DestroyDialog() override;  // keeps card, volume and speed
    void EnableControls() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    bool EvKeyUp(unsigned int key) override;
    void EvInterWinMessage(int, int, int) override {}

    void CmPlay() { transport_.Play(); }
    void CmScrub() { transport_.Pause(); }
    virtual void CmStop() { transport_.Stop(); }
    void CmStart() { transport_.MoveTo(LSoundTime()); }
    void CmEnd() { transport_.MoveToEnd(); }
    void CmPlayEnd() { transport_.PlayEnd(); }
    void CmBack() { transport_.Wind(PlayerWind::Way::kBack); }
    void CmFwd() { transport_.Wind(PlayerWind::Way::kForward); }
    void CmBackFwdStop() { transport_.EndWind(); }
    void CmSentence(int step) { transport_.MoveToSentence(step); }

    bool IsLoaded() const { return transport_.IsLoaded(); }  // playing or paused
    bool IsPlaying() const { return transport_.IsPlaying(); }
    LSoundTime Time() const { return transport_.Time(); }
    PlayTrouble Trouble() const { return transport_.Trouble(); }

protected:
    LPlayerTransport& Transport() { return transport_; }
    const LPlayerTransport& Transport() const { return transport_; }
    virtual void EvChange(LPlayerChange change);
    // What has none is hidden even while there is something to show.
    virtual bool HasRoomFor(int /*control*/) const { return true; }

private:
    void NameButtons();
    void ShowItem();
    void ShowTime();
    void ShowPosition();
    void ShowWave();
    void ShowTempo();
    void ShowRoute();
    void CmPositionMoved();
    void TakeDevice();  // as chosen in the list
    void SetVolume(LDB volume);
    void ChangeTempo(int percent);
    bool CmSpace();

    LPlayerTransport& transport_;
    LPlayerTransport::Subscription changes_;
    LWaveWindow wave_;
    bool isSliderMoving_ = false;  // by the user, who would be disturbed
};

// As a window of its own, and as at most two rows in another window.
void DlgGenPlayer(LDialogGenContext& context);
void DlgGenDockedPlayer(LDialogGenContext& context);
