// Text holders: a growable text, and the fixed 260-byte buffers of paths, keys and labels.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

constexpr std::size_t kTextBufferSize =
    260;  // paths, keys, values, labels: 259 characters and the terminator

// Copies text cut to the buffer and always terminates it.
template <std::size_t N>
void CopyText(char (&out)[N], std::string_view text) {
    const std::size_t length = text.size() < N - 1 ? text.size() : N - 1;
    std::memmove(out, text.data(), length);
    out[length] = '\0';
}
inline void CopyText(char* out, std::size_t size, std::string_view text) {
    const std::size_t length = text.size() < size - 1 ? text.size() : size - 1;
    std::memmove(out, text.data(), length);
    out[length] = '\0';
}

// A growable text, always terminated; may hold NUL bytes, so use View() where content comes from a
// file.
template <typename Char>
class LStringLongTemplate {
public:
    LStringLongTemplate() = default;
    explicit LStringLongTemplate(std::basic_string_view<Char> text) : text_(text) {}

    const Char* CStr() const { return text_.c_str(); }
    std::basic_string_view<Char> View() const { return text_; }
    std::size_t Length() const { return text_.size(); }
    bool IsEmpty() const { return text_.empty(); }
    void Clear() { text_.clear(); }
    void Append(std::basic_string_view<Char> more) { text_.append(more); }
    void Assign(std::basic_string_view<Char> text) { text_.assign(text); }
    std::basic_string<Char>& Storage() { return text_; }  // for readers that fill it in place

private:
    std::basic_string<Char> text_;
};

// Writes into a caller's buffer; what does not fit is dropped silently. The buffer stays
// terminated.
template <typename Char>
class LFixedLengthStringWriterTemplate {
public:
    LFixedLengthStringWriterTemplate(Char* buffer, std::size_t capacity)
        : buffer_(buffer), capacity_(capacity) {
        if (capacity_ > 0)
            buffer_[0] = Char();
    }
    void Put(Char character) {
        if (length_ + 1 < capacity_) {
            buffer_[length_++] = character;
            buffer_[length_] = Char();
        }
    }
    std::size_t Length() const { return length_; }

private:
    Char* buffer_;
    std::size_t capacity_;
    std::size_t length_ = 0;
};
