// FB2 books.
#include "documents/fiction_book.h"
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const StopTest goesOn;
    for (const DocumentRules& rules : RulesToTry())
        MustBeSound(ReadFictionBook(InputOf(data, size), ReadingWatch(goesOn), rules));
    return 0;
}
