#include "documents/pptx_text.h"

#include <map>
#include <utility>

namespace {

constexpr std::size_t kMaxSlides = 5000;

// Identifiers in order, or the addresses that they stand for.
class PartsListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        // It has two attributes of this name, the second one in a namespace.
        if (name == "sldId" && slides.size() < kMaxSlides)
            slides.emplace_back(attributes.LastValue("id"));
        else if (name == "Relationship")
            targets.emplace(attributes.Value("Id"), attributes.Value("Target"));
        return true;
    }
    void EvElementEnd(std::string_view) override {}
    void EvText(std::string_view) override {}

    std::vector<std::string> slides;
    std::map<std::string, std::string, std::less<>> targets;
};

}  // namespace

std::vector<std::string> PptxSlides(const ZipIndex& index) {
    PartsListener parts;
    ParseXml(index.Content("ppt/presentation.xml"), parts);
    ParseXml(index.Content("ppt/_rels/presentation.xml.rels"), parts);
    std::vector<std::string> names;
    for (const std::string& slide : parts.slides)
        if (const auto target = parts.targets.find(slide); target != parts.targets.end())
            if (std::string name = index.Find("ppt/", target->second); !name.empty())
                names.push_back(std::move(name));
    return names;
}

bool SlideListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "Fallback" || name == "timing" || name == "rt")
        return false;
    if (name == "sp") {
        isTitle_ = false;
    } else if (name == "ph") {
        const std::string_view type = attributes.Value("type");
        isTitle_ = type == "title" || type == "ctrTitle";
        // A slide's number, date and foot are those of every slide.
        if (type == "sldNum" || type == "dt" || type == "ftr")
            isFurniture_ = true;
    } else if (name == "p") {
        if (isTitle_ && cells_ == 0)
            flow_.BeginHeading(1);
    } else if (name == "t") {
        ++texts_;
    } else if (name == "br") {
        flow_.EndLine();
    } else if (name == "tc") {
        ++cells_;
    } else if (name == "cNvPr" && attributes.Has("descr")) {
        flow_.AddPicture(attributes.Value("descr"));
        flow_.EndParagraph();
    } else if (Document drawing = drawings_.Take(name, attributes); !drawing.text.empty()) {
        flow_.EndParagraph();
        flow_.Append(std::move(drawing));
    }
    return true;
}

void SlideListener::EvElementEnd(std::string_view name) {
    if (name == "t" && texts_ > 0) {
        --texts_;
    } else if (name == "p") {
        if (cells_ > 0)
            flow_.EndCell();
        else
            flow_.EndHeading();
    } else if (name == "tc" && cells_ > 0) {
        --cells_;
        flow_.EndCell();
    } else if (name == "tr" || name == "sp") {
        isTitle_ = isFurniture_ = false;
        flow_.EndParagraph();
    }
}

void SlideListener::EvText(std::string_view text) {
    if (texts_ > 0 && !isFurniture_)
        flow_.Add(text);
}
