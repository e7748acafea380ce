#include "documents/office_text.h"

#include "documents/problems.h"

namespace {

class OdtListener : public MarkupListener {
public:
    explicit OdtListener(TextFlow& flow) : flow_(flow) {}

    bool EvElement(std::string_view name, const MarkupAttributes&) override {
        if (name == "note" || name == "annotation" || name == "tracked-changes" ||
            name == "forms" || name == "title" || name == "desc" || name == "hidden-text" ||
            name == "ruby-text" || name == "binary-data" || name == "script")
            return false;
        if (name == "body")
            ++bodies_;
        else if (name == "p" || name == "h")
            ++paragraphs_;
        else if (name == "s" || name == "tab")
            flow_.Add(" ");
        else if (name == "line-break")
            flow_.EndLine();
        if (IsCell(name))
            ++cells_;
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "body") {
            --bodies_;
        } else if (name == "p" || name == "h") {
            --paragraphs_;
            if (cells_ == 0)
                flow_.EndParagraph();
            else
                flow_.EndCell();
        } else if (name == "table-row" && cells_ == 0) {
            flow_.EndParagraph();
        } else if (IsCell(name)) {
            --cells_;
        }
    }
    void EvText(std::string_view text) override {
        if (bodies_ > 0 && paragraphs_ > 0)
            flow_.Add(text);
    }

private:
    static bool IsCell(std::string_view name) {
        return name == "table-cell" || name == "covered-table-cell";
    }

    TextFlow& flow_;
    int bodies_ = 0;
    int paragraphs_ = 0;
    int cells_ = 0;
};

class DocxListener : public MarkupListener {
public:
    explicit DocxListener(TextFlow& flow) : flow_(flow) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        // The alternative is what the first choice shows already.
        if (name == "Fallback" || name == "moveFrom" || name == "del" || name == "instrText" ||
            name == "rt")
            return false;
        if (name == "t")
            ++texts_;
        else if (name == "tc")
            ++cells_;
        else if (name == "r")
            isHidden_ = isRaised_ = false;
        else if (name == "vertAlign")
            isRaised_ = attributes.Value("val") == "superscript";
        else if (name == "vanish")
            isHidden_ = attributes.Value("val") != "0" && attributes.Value("val") != "false";
        else if (name == "br" || name == "cr")
            flow_.EndLine();
        else if (name == "tab")
            flow_.Add(" ");
        else if (name == "noBreakHyphen")
            flow_.Add("-");
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "t") {
            --texts_;
        } else if (name == "r") {
            isHidden_ = isRaised_ = false;
        } else if (name == "p") {
            isHidden_ = isRaised_ = false;
            if (cells_ == 0)
                flow_.EndParagraph();
            else
                flow_.EndCell();
        } else if (name == "tc") {
            --cells_;
        } else if (name == "tr" && cells_ == 0) {
            flow_.EndParagraph();
        }
    }
    void EvText(std::string_view text) override {
        if (texts_ == 0 || isHidden_)
            return;
        if (isRaised_)
            flow_.AddRaised(text);
        else
            flow_.Add(text);
    }

private:
    TextFlow& flow_;
    int texts_ = 0;
    int cells_ = 0;
    bool isHidden_ = false;
    bool isRaised_ = false;
};

constexpr std::size_t kPartBlock = 65536;

}  // namespace

Document ReadFlatOdt(std::string_view bytes, const ReadingWatch& watch) {
    TextFlow flow;
    OdtListener listener(flow);
    MarkupReader reader(MarkupReader::Kind::kXml, listener);
    for (std::size_t at = 0; at < bytes.size(); at += kPartBlock) {
        if (watch.IsToEnd())
            return {{}, watch.Problem()};
        if (flow.IsTooLong())
            return {{}, kTooLongDocument};
        if (!reader.Feed(bytes.substr(at, kPartBlock)))
            return {{}, kDamagedDocument};
    }
    if (!reader.Finish())
        return {{}, kDamagedDocument};
    return {flow.Take(), {}};
}

std::unique_ptr<MarkupListener> MakeOdtListener(TextFlow& flow) {
    return std::make_unique<OdtListener>(flow);
}

std::unique_ptr<MarkupListener> MakeDocxListener(TextFlow& flow) {
    return std::make_unique<DocxListener>(flow);
}
