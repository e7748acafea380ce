// Reads the text in pictures of pages, by the programs tesseract and pdftoppm.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "documents/program_output.h"
#include "documents/reading_watch.h"

// A page, of which the program's own bound is half in processor time: others want the computer too.
constexpr std::chrono::seconds kPagePatience{120};

// In the user's languages and English, then others that are installed.
class PageRecogniser {
public:
    explicit PageRecogniser(const ReadingWatch& watch);  // asks for what is installed

    // What is missing, in a sentence for the user; empty when pictures can be read.
    const std::string& Lack() const { return lack_; }

    // One page, or the pages of one file, a form feed behind each. Lines come as they are
    // recognised, so that those of a run that is ended are not lost.
    ProgramOutcome Read(std::string_view picture, const ReadingWatch& watch,
                        std::string& text) const;

private:
    std::string lack_;
    std::string languages_;
};

// The page of a PDF document, from 1 on, as a picture file; kFailed behind the last one too.
ProgramOutcome DrawPdfPage(std::string_view bytes, std::size_t page, const ReadingWatch& watch,
                           std::string& picture);
