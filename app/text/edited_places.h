// Where the places of a text are after it was edited. Free of widgets.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

// Of a text as it was at the last Clear, and as it is now; in bytes.
class EditedPlaces {
public:
    EditedPlaces() { Clear(); }
    void Clear();
    // Behind so many bytes of the text as it is now, some gave way to others.
    void Note(std::size_t at, std::size_t removed, std::size_t added);

    bool HasEdits() const {
        return pieces_.size() > 1 || pieces_.front().then != pieces_.front().now;
    }
    // Where the stretch begins now; nothing when something within it was edited.
    std::optional<std::size_t> Now(std::size_t begin, std::size_t end) const;
    // Where the place was; of what was added the place behind it.
    std::size_t Then(std::size_t now) const;

private:
    static constexpr std::size_t kEndless = std::numeric_limits<std::size_t>::max() / 4;

    // What nobody touched, in order; never empty.
    struct Piece {
        std::size_t then;
        std::size_t now;
        std::size_t length;
    };
    std::vector<Piece> pieces_;
};
