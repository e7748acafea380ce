// Keeps how far the text of the window was read, and offers to go on there when it comes again.
#pragma once

#include <functional>
#include <string>

#include "app/listening/place_offer.h"
#include "app/listening/read_aloud.h"
#include "app/reading/kept_places.h"
#include "app/reading/narrator.h"
#include "app/text/text_pane.h"

// A receiver of the narrator's news: with each sentence that is heard, the place is in the store,
// so that a kill loses no more than one. A text that was heard to its end has none. GUI thread; all
// that is handed over outlives this object.
class PlaceKeeper {
public:
    struct Parts {
        TextPane& text;
        Narrator& narrator;
        ReadAloud& read;
        std::function<void(const char*)> tell;
        std::function<void()> reshaped;  // the bar has come or gone
    };
    explicit PlaceKeeper(Parts parts);
    PlaceKeeper(const PlaceKeeper&) = delete;
    PlaceKeeper& operator=(const PlaceKeeper&) = delete;

    PlaceOffer& Offer() { return offer_; }
    void TextCame();     // it may have been read before
    void TextGrew();     // more of its document has come
    void TextChanged();  // by its user: the offer is about another text
    // "/home/ann/book.epub (41 %)": how far a file was read.
    std::string WithProgress(const std::string& path) const;

private:
    void Hear(const ReadingNews& news);
    void LookForPlace();
    void NoteText();
    void Keep(std::size_t place);
    void GoOn();
    void BeginAnew();
    void TellTrouble(int error);
    std::string KeyOfWindow(const std::string& text) const;

    const Parts parts_;
    KeptPlaces places_;
    PlaceOffer offer_;
    std::size_t offered_ = 0;  // byte of the text
    bool isAwaited_ = false;   // the place is in a part of the document that is still to come
    KeptPlace now_;            // of the text that is read; without a key: it is not kept
    bool isTroubleTold_ = false;
    Narrator::Subscription news_;
};
