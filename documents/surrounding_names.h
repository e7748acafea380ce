// What web pages call the parts that surround their articles, in classes and identifiers.
#pragma once

#include <string_view>

enum class SurroundingName {
    kNone,
    kPlace,  // where it stands: a side, a head; articles have such parts too
    kMatter  // what it holds: comments, notices, what is shared or related
};

// Of the names in an attribute's value, parted by blanks. All words of a name behind the first that
// tells something must be known: "news-share-links", not "share-price". Identifiers are made of
// headings too, so that only one word before it may be the page's own.
SurroundingName SurroundingNameOfClass(std::string_view names);
SurroundingName SurroundingNameOfId(std::string_view name);

enum class PostName {
    kNone,
    kPost,   // of a thread: a message, a comment, an answer
    kBeside  // in a post beside its words, such as when it was written and what can be done with it
};

// The same of a thread's posts: what these words mean elsewhere they do not tell.
PostName PostNameOfClass(std::string_view names);
// Whether one of these says that it names who wrote a post, or when, by its last word.
bool IsNameOfWriter(std::string_view names);
bool IsNameOfTime(std::string_view names);
