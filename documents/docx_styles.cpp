#include "documents/docx_styles.h"

#include <algorithm>

#include "documents/list_numbers.h"
#include "documents/markup_listener.h"
#include "documents/small_texts.h"
#include "documents/zip_index.h"

namespace {

constexpr int kMostBases = 10;  // styles that a style is based on
constexpr int kLowestHeading = 6;

}  // namespace

class DocxStyles::StylesListener : public MarkupListener {
public:
    explicit StylesListener(DocxStyles& styles) : styles_(styles) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        const std::string_view value = attributes.Value("val");
        if (name == "style")
            style_ = &styles_.styles_[std::string(attributes.Value("styleId"))];
        else if (name == "lang" && style_ == nullptr && styles_.language_.empty())
            styles_.language_ = value;
        if (style_ == nullptr)
            return true;
        if (name == "name")
            NameHeading(value);
        else if (name == "basedOn")
            style_->base = value;
        else if (name == "outlineLvl" && NumberIn(value) < kLowestHeading)
            style_->heading = NumberIn(value) + 1;
        else if (name == "numId")
            style_->list.list = value;
        else if (name == "ilvl")
            style_->list.level = NumberIn(value);
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "style")
            style_ = nullptr;
    }
    void EvText(std::string_view) override {}

private:
    // Built-in styles have English names in every language.
    void NameHeading(std::string_view name) {
        if (name == "Title" || name == "title")
            style_->heading = 1;
        else if ((name.starts_with("heading ") || name.starts_with("Heading ")) &&
                 NumberIn(name.substr(8)) >= 1)
            style_->heading = std::min(NumberIn(name.substr(8)), kLowestHeading);
    }

    DocxStyles& styles_;
    Style* style_ = nullptr;
};

class DocxStyles::NumberingListener : public MarkupListener {
public:
    explicit NumberingListener(DocxStyles& styles) : styles_(styles) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        const std::string_view value = attributes.Value("val");
        if (name == "abstractNum") {
            levels_ = &styles_.descriptions_[std::string(attributes.Value("abstractNumId"))];
            levels_->resize(kMostListLevels);
        } else if (name == "num") {
            levels_ = nullptr;
            list_ = attributes.Value("numId");
        } else if (name == "lvlOverride") {
            started_ = static_cast<std::size_t>(NumberIn(attributes.Value("ilvl")));
        } else if (name == "startOverride" && started_ < kMostListLevels) {
            styles_.starts_[list_][started_] = NumberIn(value);
        } else if (name == "abstractNumId" && levels_ == nullptr) {
            styles_.lists_[list_] = value;
        } else if (name == "lvl" && levels_ != nullptr) {
            const auto level = static_cast<std::size_t>(NumberIn(attributes.Value("ilvl")));
            level_ = level < kMostListLevels ? &(*levels_)[level] : nullptr;
        } else if (levels_ != nullptr && level_ != nullptr) {
            if (name == "numFmt")
                level_->format = value;
            else if (name == "lvlText")
                level_->text = value;
            else if (name == "start")
                level_->start = NumberIn(value);
        }
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "lvl")
            level_ = nullptr;
    }
    void EvText(std::string_view) override {}

private:
    DocxStyles& styles_;
    std::vector<Level>* levels_ = nullptr;
    Level* level_ = nullptr;
    std::string list_;
    std::size_t started_ = 0;  // level whose count this list begins anew
};

DocxStyles::DocxStyles(std::string_view styles, std::string_view numbering) {
    StylesListener stylesListener(*this);
    ParseXml(styles, stylesListener);
    NumberingListener numberingListener(*this);
    ParseXml(numbering, numberingListener);
}

int DocxStyles::HeadingLevel(std::string_view style) const {
    auto found = styles_.find(style);
    for (int i = 0; i < kMostBases && found != styles_.end(); ++i) {
        if (found->second.heading > 0)
            return found->second.heading;
        found = styles_.find(found->second.base);
    }
    return 0;
}

DocxStyles::ListPlace DocxStyles::ListOf(std::string_view style) const {
    auto found = styles_.find(style);
    for (int i = 0; i < kMostBases && found != styles_.end(); ++i) {
        if (!found->second.list.list.empty())
            return found->second.list;
        found = styles_.find(found->second.base);
    }
    return {};
}

std::string DocxStyles::NextNumber(const ListPlace& place) {
    const auto list = lists_.find(place.list);
    if (list == lists_.end())
        return {};
    const auto description = descriptions_.find(list->second);
    const auto depth = static_cast<std::size_t>(place.level);
    if (description == descriptions_.end() || depth >= description->second.size())
        return {};
    const std::vector<Level>& levels = description->second;
    const bool isNumbered = levels[depth].format != "bullet" && levels[depth].format != "none";
    // Lists of one description go on counting where the last one stopped, unless they say
    // otherwise.
    std::vector<int>& counts = counts_[list->second];
    counts.resize(kMostListLevels, 0);
    counts[depth] = counts[depth] == 0 ? levels[depth].start : counts[depth] + 1;
    // Of this level alone: the list around it goes on.
    if (const auto starts = starts_.find(place.list); starts != starts_.end())
        if (const auto own = starts->second.find(depth); own != starts->second.end()) {
            counts[depth] = own->second;
            starts->second.erase(own);
        }
    std::fill(counts.begin() + place.level + 1, counts.end(), 0);
    if (!isNumbered)
        return {};
    std::string number;
    for (std::size_t at = 0; at < levels[depth].text.size(); ++at) {
        const char sign = levels[depth].text[at];
        const int of = sign == '%' && at + 1 < levels[depth].text.size()
                           ? levels[depth].text[at + 1] - '1'
                           : -1;
        if (of < 0 || of >= static_cast<int>(kMostListLevels)) {
            number += sign;
            continue;
        }
        const auto part = static_cast<std::size_t>(of);
        number += ListNumber(std::max(counts[part], levels[part].start), levels[part].format);
        ++at;
    }
    return number;
}
