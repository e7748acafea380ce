#include "documents/page_surroundings.h"

#include <glib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "documents/html_reader.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kMostElements = 300000;
constexpr std::size_t kLeastArticle = 200;  // bytes of text
constexpr std::size_t kShortNotice = 600;

// Words in the classes and identifiers of what surrounds articles.
constexpr SortedNames<36> kSurroundingWords = {
    "ad",          "ads",           "advert",     "advertisement", "banner",  "breadcrumb",
    "breadcrumbs", "consent",       "cookie",     "cookies",       "footer",  "gdpr",
    "masthead",    "menu",          "modal",      "nav",           "navbar",  "navfooter",
    "navheader",   "navigation",    "newsletter", "popup",         "promo",   "promotion",
    "recommended", "related",       "share",      "sharing",       "sidebar", "skip",
    "social",      "sphinxsidebar", "sponsored",  "subscribe",     "toolbar", "topbar"};
static_assert(std::is_sorted(kSurroundingWords.begin(), kSurroundingWords.end()));
constexpr SortedNames<10> kSurroundingRoles = {
    "alertdialog", "banner",  "complementary", "contentinfo", "dialog",
    "menu",        "menubar", "navigation",    "search",      "toolbar"};
static_assert(std::is_sorted(kSurroundingRoles.begin(), kSurroundingRoles.end()));
constexpr SortedNames<9> kNeverText = {"button", "head", "noscript", "script",  "select",
                                       "style",  "svg",  "template", "textarea"};
static_assert(std::is_sorted(kNeverText.begin(), kNeverText.end()));

enum class Sign {
    kNone,
    kPlain,   // what it is called says that it may surround
    kMarked,  // its element or role says so
    kSurely
};

struct Part {
    std::size_t at;      // in the page
    std::size_t parent;  // in the list; of the first one itself
    Sign sign = Sign::kNone;
    bool isMain = false;
    bool isArticle = false;
    bool isInArticle = false;
    bool isLink = false;
    bool isSiteHead = false;
    bool hasTitle = false;  // an <h1>
    bool isLeftOut = false;
    std::size_t text = 0;
    std::size_t linked = 0;  // of it, in links
};

bool HasSurroundingWord(std::string_view names) {
    std::string word;
    for (std::size_t at = 0; at <= names.size(); ++at) {
        if (at < names.size() && g_ascii_isalpha(names[at])) {
            word += g_ascii_tolower(names[at]);
            continue;
        }
        if (IsOneOf(word, kSurroundingWords))
            return true;
        word.clear();
    }
    return false;
}

class PartsOfPage : public MarkupListener {
public:
    PartsOfPage() { parts_.push_back({}); }

    void SetReader(const HtmlReader& reader) { reader_ = &reader; }
    bool IsTooLarge() const { return parts_.size() > kMostElements; }

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (IsOneOf(name, kNeverText))
            return false;
        Part part;
        part.at = reader_->Position();
        part.parent = open_;
        const std::string_view role = attributes.Value("role");
        part.isMain = name == "main" || role == "main";
        part.isArticle = name == "article" || role == "article";
        part.isInArticle =
            part.isMain || part.isArticle || name == "blockquote" || parts_[open_].isInArticle;
        part.isLink = name == "a";
        part.isSiteHead = name == "header" || role == "banner";
        if (name == "h1")
            for (std::size_t i = open_; i != 0; i = parts_[i].parent)
                parts_[i].hasTitle = true;
        if (name == "nav" || name == "form" || name == "dialog")
            part.sign = Sign::kSurely;
        else if (name == "aside" || name == "footer" || name == "header" ||
                 IsOneOf(role, kSurroundingRoles))
            part.sign = Sign::kMarked;
        else if (name != "body" && name != "html" && !part.isMain && !part.isArticle &&
                 (HasSurroundingWord(attributes.Value("class")) ||
                  HasSurroundingWord(attributes.Value("id"))))
            part.sign = Sign::kPlain;
        open_ = parts_.size();
        parts_.push_back(part);
        return true;
    }
    void EvElementEnd(std::string_view) override { open_ = parts_[open_].parent; }
    void EvText(std::string_view text) override {
        const auto letters =
            static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char sign) {
                return kWhiteSpace.find(sign) == std::string_view::npos;
            }));
        bool isLinked = false;
        for (std::size_t i = open_;; i = parts_[i].parent) {
            isLinked = isLinked || parts_[i].isLink;
            parts_[i].text += letters;
            parts_[i].linked += isLinked ? letters : 0;
            if (i == 0)
                break;
        }
    }

    PageSurroundings Judge() {
        PageSurroundings found;
        std::size_t left = parts_[0].text;
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            Part& part = parts_[i];
            if (parts_[part.parent].isLeftOut) {
                part.isLeftOut = true;
            } else if (Surrounds(part)) {
                part.isLeftOut = true;
                found.leftOut.insert(part.at);
                left -= std::min(left, part.text);
            }
        }
        if (left < kLeastArticle)
            return {};
        found.article = ArticleOf(left);
        return found;
    }

private:
    bool Surrounds(const Part& part) const {
        if (part.sign == Sign::kNone || part.text * 2 > parts_[0].text || part.hasTitle)
            return false;
        const bool isLinks = part.linked * 10 > part.text * 3;
        switch (part.sign) {
            case Sign::kSurely:
                return true;
            case Sign::kMarked:
                return isLinks || !part.isInArticle;
            case Sign::kPlain:
                return isLinks || (part.text < kShortNotice && !part.isInArticle);
            case Sign::kNone:
                break;
        }
        return false;
    }

    // The one element that says that it holds the page's matter.
    std::size_t ArticleOf(std::size_t left) const {
        const Part* main = nullptr;
        const Part* article = nullptr;
        int articles = 0;
        for (const Part& part : parts_) {
            if (part.isLeftOut)
                continue;
            if (part.isMain && (main == nullptr || part.text > main->text))
                main = &part;
            if (part.isArticle && !parts_[part.parent].isArticle && ++articles > 0)
                article = &part;
        }
        const std::size_t least = std::max(kLeastArticle, left / 3);
        if (articles == 1 && article->text >= least && article->text * 5 >= left * 3)
            return article->at;
        return main != nullptr && main->text >= least ? main->at : PageSurroundings::kNowhere;
    }

    const HtmlReader* reader_ = nullptr;
    std::vector<Part> parts_;
    std::size_t open_ = 0;
};

}  // namespace

PageSurroundings FindSurroundings(std::string_view page, const ReadingWatch& watch) {
    PartsOfPage parts;
    HtmlReader reader(page, parts);
    parts.SetReader(reader);
    while (reader.ReadSome())
        if (watch.IsToEnd() || parts.IsTooLarge())
            return {};
    return parts.Judge();
}
