#include "checks/security/MarkupChecks.hpp"

#include "checks/security/Formulas.hpp"
#include "checks/security/MarkupReader.hpp"
#include "content/ByteSearch.hpp"
#include "content/TagNames.hpp"

namespace opc::inspection {

namespace {

class MarkupObserver final : public ContentObserver {
public:
    explicit MarkupObserver(Findings& findings) : reader(findings), tags(MarkupReader::decidingElements()) {}

    bool begin(const PartView& part, std::string_view head) override {
        if (part.isRelationships() || !looksLikeXml(head))
            return false;
        name = part.name;
        tags.begin(head);
        formulas.begin();
        // Every slide is one, and every sheet has rows: an attribute decides.
        isHiddenSlide = head.substr(0, 4096).find(" show=") != std::string_view::npos;
        isSheet = part.mediaType().find("sheet") != std::string::npos;
        hidden.begin();
        isStyles =
            part.mediaType().find("styles") != std::string::npos; // they offer hidden text, and hide none
        return true;
    }

    void bytes(std::string_view piece) override {
        tags.add(piece);
        formulas.add(piece);
        if (isSheet)
            hidden.add(piece);
    }

    model::XmlEvents* end() override {
        const bool isWorthIt = tags.any() && !isStyles &&
                               (formulas.isFound() || !tags.only({"f", "formula", "formula1", "formula2",
                                                                  "calculatedColumnFormula"}));
        if (!isWorthIt && !isHiddenSlide && !hidden.isFound())
            return nullptr;
        reader.begin(name);
        return &reader;
    }

    void parsed(bool) override { reader.end(); }

private:
    MarkupReader reader;
    TagNames tags;
    FormulaSearch formulas;
    ByteSearch hidden{{"hidden=\"1", "hidden=\"true", "hidden='"}};
    std::string name;
    bool isHiddenSlide = false, isStyles = false, isSheet = false;
};

} // namespace

std::unique_ptr<ContentObserver> makeMarkupObserver(Findings& findings) {
    return std::make_unique<MarkupObserver>(findings);
}

} // namespace opc::inspection
