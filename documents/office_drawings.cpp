#include "documents/office_drawings.h"

#include <glib.h>

#include <cstdlib>
#include <set>
#include <utility>
#include <vector>

#include "documents/text_flow.h"

namespace {

constexpr std::size_t kMostSeries = 200;
constexpr std::size_t kMostPoints = 5000;  // of one
constexpr std::size_t kLongestPoint = 1000;
constexpr std::size_t kLargestDrawings = 32U << 20;  // all of a document

using Points = std::map<int, std::string>;

class RelationsListener : public MarkupListener {
public:
    explicit RelationsListener(std::map<std::string, std::string, std::less<>>& targets)
        : targets_(targets) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "Relationship")
            targets_.emplace(attributes.Value("Id"), attributes.Value("Target"));
        return true;
    }
    void EvElementEnd(std::string_view) override {}
    void EvText(std::string_view) override {}

private:
    std::map<std::string, std::string, std::less<>>& targets_;
};

// Charts keep binary fractions: "0.30000000000000004".
std::string FigureText(const std::string& text) {
    char* end = nullptr;
    const double figure = g_ascii_strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0')
        return text;
    if (text.find_first_of(".eE") == std::string::npos)
        return text;
    char shortened[G_ASCII_DTOSTR_BUF_SIZE];
    std::string figures = g_ascii_formatd(shortened, sizeof shortened, "%.10g", figure);
    return figures.find('e') == std::string::npos ? figures : text;
}

// Words come at once, figures when all series are known.
class DrawingListener : public MarkupListener {
public:
    explicit DrawingListener(TextFlow& flow) : flow_(flow) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "ser" && series_.size() < kMostSeries)
            series_.emplace_back();
        else if (name == "ser")
            return false;
        else if (name == "t")
            ++texts_;
        else if (name == "pt")
            BeginPoint(std::atoi(std::string(attributes.Value("idx")).c_str()));
        else if (name == "v")
            isFigure_ = true;
        else if (Points* const points = PointsOf(name))
            points_ = points;
        return true;
    }

    void EvElementEnd(std::string_view name) override {
        if (name == "t" && texts_ > 0)
            --texts_;
        else if (name == "p")
            flow_.EndParagraph();
        else if (name == "v")
            isFigure_ = false;
        else if (PointsOf(name) != nullptr)
            points_ = nullptr;
    }

    void EvText(std::string_view text) override {
        if (texts_ > 0)
            flow_.Add(text);
        else if (isFigure_ && points_ != nullptr && points_->size() <= kMostPoints) {
            std::string& point = (*points_)[point_];
            if (point.size() < kLongestPoint)
                point += text;
        }
    }

    void EndDrawing() {
        flow_.EndParagraph();
        std::set<int> rows;
        for (const Series& series : series_) {
            AddCell(TextAt(series.name, 0));
            for (const Points* points : {&series.categories, &series.values})
                for (const auto& [row, text] : *points)
                    rows.insert(row);
        }
        flow_.EndParagraph();
        for (const int row : rows) {
            // Series mostly share their categories.
            AddCell(TextAt(series_.front().categories, row));
            for (const Series& series : series_)
                AddCell(FigureText(TextAt(series.values, row)));
            flow_.EndParagraph();
        }
    }

private:
    struct Series {
        Points name;
        Points categories;
        Points values;
    };

    Points* PointsOf(std::string_view element) {
        if (series_.empty())
            return nullptr;
        return element == "tx"                         ? &series_.back().name
               : element == "cat" || element == "xVal" ? &series_.back().categories
               : element == "val" || element == "yVal" ? &series_.back().values
                                                       : nullptr;
    }

    void BeginPoint(int index) {
        point_ = index;
        // A category has several levels where they are grouped.
        if (points_ == nullptr)
            return;
        if (const auto known = points_->find(index);
            known != points_->end() && !known->second.empty())
            known->second += ' ';
    }

    static std::string TextAt(const Points& points, int index) {
        const auto found = points.find(index);
        return found == points.end() ? "" : found->second;
    }

    void AddCell(const std::string& text) {
        if (text.empty())
            return;
        flow_.Add(text);
        flow_.EndCell();
    }

    TextFlow& flow_;
    std::vector<Series> series_;
    Points* points_ = nullptr;  // that are being told
    int point_ = 0;
    int texts_ = 0;
    bool isFigure_ = false;
};

}  // namespace

OfficeDrawings::OfficeDrawings(const ZipIndex& index, std::string_view file)
    : index_(index), folder_(FolderInZip(file)) {
    RelationsListener relations(targets_);
    ParseXml(index.Content(folder_ + "_rels/" + std::string(file.substr(folder_.size())) + ".rels"),
             relations);
}

Document OfficeDrawings::Take(std::string_view element, const MarkupAttributes& attributes) {
    const bool isChart = element == "chart";
    if (!isChart && element != "relIds")
        return {};
    const std::string_view content = TakeFile(attributes.Value(isChart ? "id" : "dm"));
    if (content.empty())
        return {};
    TextFlow flow;
    flow.Add(isChart ? "Chart:" : "Diagram:");
    flow.AddBlank();
    const std::size_t empty = flow.Size();
    DrawingListener listener(flow);
    ParseXml(content, listener);
    listener.EndDrawing();
    return flow.Size() > empty ? flow.TakeDocument() : Document();
}

std::string_view OfficeDrawings::TakeFile(std::string_view identifier) {
    const auto target = targets_.find(identifier);
    if (target == targets_.end())
        return {};
    const std::string name = index_.Find(folder_, target->second);
    targets_.erase(target);
    // Several identifiers may lead to one file.
    if (bytes_ > kLargestDrawings || !taken_.insert(name).second)
        return {};
    const std::string_view content = index_.Content(name);
    bytes_ += content.size();
    return content;
}
