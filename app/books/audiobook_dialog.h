// "Save as Audiobook": documents on their way to audiobooks, made while their user reads on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/books/audiobook_controls.h"
#include "app/books/book_list.h"
#include "gui/gui_timer.h"
#include "gui/windows/dialog.h"

// Modeless: closed, it goes on making books, and is as it was when it is opened again. GUI thread.
class AudiobookDialog final : public LDialog {
public:
    // What is told while the dialog is not on the screen: a sentence.
    explicit AudiobookDialog(std::function<void(const char*)> tell);

    void Show(GtkWidget* parent, int voice);  // with this voice chosen, below 0 for none
    void Add(BookEntry entry, bool again);    // one that was made already again

    void InitDialog() override;
    void DestroyDialog() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    void AddFiles(const std::vector<KeptBook>& books, bool again);
    void AddKeptBooks();
    void FillVoices(int chosen);
    void ShowChoices();
    void ShowQualities(BookQuality chosen);
    BookChoices Choices() const;
    int ChosenVoiceOf() const { return PDLGetCurSel(AudiobookControls::kBookVoice); }
    std::size_t Selected() const;  // the number of entries when there is none
    void CmAdd();
    void CmRemove();
    void CmDetails();
    void CmBrowse();
    void CmBreakOff();
    void CmPause();
    void CmStart();
    bool IsReadyToStart(const BookChoices& choices);
    void ShowBooks();
    void ShowEstimate(const BookOrder& manner);
    void ShowRow(int row, int column, const std::string& text);
    void FollowWork();
    void Tell(const std::string& text);

    std::function<void(const char*)> tell_;
    BookList list_;
    bool isRestored_ = false;
    int voice_ = -1;
    int voicesShown_ = 0;
    bool saysGoOn_ = false;  // what pauses; each change of its name is heard
    std::string shownEstimate_;
    LGuiTimer timer_;
};
