#include "books/book_order.h"

#include <algorithm>

std::string ChapterFileName(const BookOrder& order, std::size_t index) {
    const auto digits = std::max<std::size_t>(2, std::to_string(order.plan.chapters.size()).size());
    std::string number = std::to_string(index + 1);
    number.insert(0, digits - std::min(digits, number.size()), '0');
    return number + " " + FileNameOfTitle(order.plan.chapters[index].title) + "." +
           NameOf(order.type);
}
