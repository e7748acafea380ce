// A formula (MathML, OMML) as one would type it in a line: "E = m c²", "(a + b)/2", "√x".
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class FormulaText {
public:
    // What the parts of a formula are to each other.
    enum class Part { kRow, kToken, kRaised, kLowered, kFraction, kRoot, kTable };

    FormulaText();
    ~FormulaText();
    FormulaText(const FormulaText&) = delete;
    FormulaText& operator=(const FormulaText&) = delete;

    // False: what is no part is left out with all that it holds, and its end is not told.
    bool Begin(std::optional<Part> part);
    void End();
    void AddText(std::string_view text);
    bool IsOpen() const { return open_.size() > 1; }  // something was begun and has not ended

    // "formula" for one that no line can show. Makes room for the next one.
    std::string Take();

private:
    struct Node;
    void Write(const Node& node, std::string& line);
    void WriteGroup(const Node& node, std::string& line);
    void WriteToken(std::string_view token, std::string& line);

    std::unique_ptr<Node> formula_;
    std::vector<Node*> open_;
    int tokens_ = 0;
    bool isTable_ = false;
};

// The part that an element is, of MathML or of OMML; nothing for what is left out of a formula.
std::optional<FormulaText::Part> MathPart(std::string_view name);
std::optional<FormulaText::Part> OfficeMathPart(std::string_view name);
