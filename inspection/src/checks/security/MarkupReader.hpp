#pragma once

#include "checks/Findings.hpp"
#include "checks/security/FieldCodes.hpp"

#include <opc/model/XmlEvents.hpp>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Reads one part after the other and tells what in it loads, runs, or isn't shown.
class MarkupReader final : public model::XmlEvents {
public:
    explicit MarkupReader(Findings& findings);

    /// The local names of elements for whose sake a part is worth reading. `f` is among them, though most formulas don't
    /// matter; elements that nearly every document of a kind has aren't.
    static std::vector<std::string_view> decidingElements();

    void begin(const std::string& part);
    void end(); ///< also where a document can't be read to its end

    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override;
    void onEnd() override;
    void onText(std::u16string_view text) override;

private:
    struct Row;
    static const Row ROWS[];

    void onFieldCharacter(const model::XmlElement& element);
    void onSimpleField(const model::XmlElement& element);
    void onFieldInstruction(const model::XmlElement& element);
    void onFormula(const model::XmlElement& element);
    void onDefinedName(const model::XmlElement& element);
    void onDdeLink(const model::XmlElement& element);
    void onAction(const model::XmlElement& element);
    void onCustomUi(const model::XmlElement& element);
    void onConnection(const model::XmlElement& element);
    void onDatabase(const model::XmlElement& element);
    void onWebQuery(const model::XmlElement& element);
    void onHyperlinkBase(const model::XmlElement& element);
    void onPath(const model::XmlElement& element);
    void onSheet(const model::XmlElement& element);
    void onSlide(const model::XmlElement& element);
    void onHiddenText(const model::XmlElement& element);
    void onTrackedChange(const model::XmlElement& element);
    void onSession(const model::XmlElement& element);
    void onScript(const model::XmlElement& element);
    void onReference(const model::XmlElement& element);
    void onSheetLine(const model::XmlElement& element);

    void tellField(const std::string& code, const model::XmlPlace& where);
    void tellFormula(const std::string& formula, const std::string& what);
    void tellCallbacks(const model::XmlElement& element);
    void tellCount(std::size_t count, const char* rule, const char* what);
    void add(const char* rule, Severity severity, std::string message);
    Place here() const;

    enum class Text { None, Instruction, Formula, DefinedName, HyperlinkBase };
    void collect(Text kind);
    void tellText();

    Findings& findings;
    FieldCodes fields;
    std::string part;
    model::XmlPlace place{};
    std::size_t depth = 0;

    Text collected = Text::None;
    std::size_t collectedDepth = 0;
    std::u16string text;
    std::string name; // of the text: a defined name, the function of a macro

    std::set<std::string> told; // of the part: what one finding for all is enough for
    std::size_t hiddenTexts = 0, hiddenLines = 0, trackedChanges = 0, sessions = 0;
    bool isRibbon = false, hasCallbacks = false;
};

} // namespace opc::inspection
