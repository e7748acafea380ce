#include "app/text/edited_places.h"

#include <algorithm>

void EditedPlaces::Clear() {
    pieces_.assign(1, {0, 0, kEndless});
}

void EditedPlaces::Note(std::size_t at, std::size_t removed, std::size_t added) {
    std::vector<Piece> pieces;
    pieces.reserve(pieces_.size() + 1);
    for (const Piece& piece : pieces_) {
        const std::size_t end = piece.now + piece.length;
        if (piece.now < at)
            pieces.push_back({piece.then, piece.now, std::min(end, at) - piece.now});
        const std::size_t from = std::max(piece.now, at + removed);
        if (from < end)
            pieces.push_back({piece.then + (from - piece.now), from - removed + added, end - from});
    }
    pieces_ = std::move(pieces);
}

std::optional<std::size_t> EditedPlaces::Now(std::size_t begin, std::size_t end) const {
    const auto behind =
        std::ranges::upper_bound(pieces_, begin, {}, [](const Piece& piece) { return piece.then; });
    if (behind == pieces_.begin())
        return std::nullopt;
    const Piece& piece = *std::prev(behind);
    if (end > piece.then + piece.length)
        return std::nullopt;
    return piece.now + (begin - piece.then);
}

std::size_t EditedPlaces::Then(std::size_t now) const {
    for (const Piece& piece : pieces_) {
        if (now < piece.now + piece.length)
            return piece.then + (std::max(now, piece.now) - piece.now);
    }
    return pieces_.back().then;
}
