#include "app/listening/place_keeper.h"

#include <glib.h>

#include <utility>

#include "app/settings_keys.h"
#include "foundation/first_words.h"

PlaceKeeper::PlaceKeeper(Parts parts)
    : parts_(std::move(parts)),
      offer_({parts_.reshaped, [this] { GoOn(); }, [this] { BeginAnew(); }}),
      news_(parts_.narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

std::string PlaceKeeper::KeyOfWindow(const std::string& text) const {
    return parts_.text.File().empty() ? KeyOfText(text) : KeyOfFile(parts_.text.File());
}

void PlaceKeeper::TextCame() {
    isAwaited_ = false;
    LookForPlace();
}

void PlaceKeeper::LookForPlace() {
    offer_.Close();
    const bool wasAwaited = std::exchange(isAwaited_, false);
    const std::string text = parts_.text.Text();
    const auto kept = text.empty() ? std::nullopt : places_.Find(KeyOfWindow(text));
    if (!kept)
        return;
    const bool isPart = parts_.text.Structure().IsPart();
    const auto place = isPart && text.size() <= kept->place ? std::nullopt : FindPlace(*kept, text);
    if (!place && isPart) {
        isAwaited_ = true;
        if (!wasAwaited)
            parts_.tell(("You stopped at " + std::to_string(kept->Percent()) +
                         " %, on a page that is still to come: it is offered when it is here.")
                            .c_str());
        return;
    }
    if (!place) {
        parts_.tell("The document has changed: the sentence where you stopped is not in it.");
        return;
    }
    offered_ = *place;
    const std::string offer = "You stopped at " + std::to_string(kept->Percent()) + " %, \"" +
                              BeginningOf(std::string_view(text).substr(offered_)) + "\"";
    offer_.Open(offer);
    parts_.tell((offer + ": Alt+G goes on, Alt+B begins anew").c_str());
}

void PlaceKeeper::TextGrew() {
    if (isAwaited_)
        LookForPlace();
}

void PlaceKeeper::TextChanged() {
    offer_.Close();
}

void PlaceKeeper::GoOn() {
    if (parts_.narrator.IsReading())
        parts_.narrator.MoveToPlace(offered_);
    else
        parts_.read.ReadAt(offered_);
}

void PlaceKeeper::BeginAnew() {
    if (parts_.narrator.IsReading())
        parts_.narrator.MoveToPlace(0);
    else
        parts_.read.ReadAt(0);
}

void PlaceKeeper::Hear(const ReadingNews& news) {
    if (news.HasBegun()) {
        offer_.Close();
        NoteText();
    }
    // What was offered stays kept until its user has answered, or has heard so far.
    if (news.stretch && news.stretch->sourceBegin >= offered_)
        offer_.Close();
    if (now_.key.empty() || offer_.IsOpen() || isAwaited_)
        return;
    if (!kKeepTextSetting.Get()) {  // since it began
        now_ = {};
        return;
    }
    if (news.IsNew() && news.end == ReadingEnd::kToItsEnd)
        TellTrouble(places_.Forget(now_.key));
    else if (news.stretch && news.stretch->sourceBegin != now_.place)
        Keep(news.stretch->sourceBegin);
}

// A stretch that was selected is no text of its own, and what came from another program is private.
void PlaceKeeper::NoteText() {
    now_ = {};
    isAwaited_ = isAwaited_ && parts_.text.Structure().IsPart();
    if (!parts_.read.IsWhole() || !parts_.text.IsKept() || !kKeepTextSetting.Get())
        return;
    const std::string& text = parts_.narrator.Text();
    now_ = {.key = KeyOfWindow(text),
            .digest = KeyOfText(text),
            .size = text.size(),
            .place = 0,
            .sentence = {}};
}

// At its beginning there is nothing to go on with.
void PlaceKeeper::Keep(std::size_t place) {
    const std::string& text = parts_.narrator.Text();
    if (now_.size != text.size()) {  // it has grown
        now_.digest = KeyOfText(text);
        now_.size = text.size();
    }
    now_.place = place;
    now_.sentence = text.substr(place, KeptPlaces::kMostSentence);
    if (const std::size_t line = now_.sentence.find('\n'); line != std::string::npos)
        now_.sentence.resize(line);
    TellTrouble(place == 0 ? places_.Forget(now_.key) : places_.Keep(now_));
}

void PlaceKeeper::TellTrouble(int error) {
    if (error == 0 || std::exchange(isTroubleTold_, true))
        return;
    const std::string why = g_strerror(error);
    parts_.tell(("The place in the text cannot be kept: " + why + ".").c_str());
}

std::string PlaceKeeper::WithProgress(const std::string& path) const {
    const auto kept = places_.Find(KeyOfFile(path));
    return kept ? path + " (" + std::to_string(kept->Percent()) + " %)" : path;
}
