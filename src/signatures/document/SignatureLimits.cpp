#include "signatures/document/SignatureLimits.hpp"

#include "xml/ElementIndex.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <vector>

namespace opc::model {

namespace {

constexpr int MAXIMUM_NESTING = 6;
constexpr std::size_t MAXIMUM_ASIDES = 2000;

} // namespace

SignatureLimits::SignatureLimits(const SignatureNames& names) : names(names) {
}

void SignatureLimits::check(const ElementIndex& document) const {
    if (document.countAsides() > MAXIMUM_ASIDES)
        throw InvalidPartContent("XML signature: There are more than 2000 comments, CDATA sections and "
                                 "processing instructions.");
    struct Around {
        std::size_t end;
        bool isRepeated, isContent;
    };
    std::vector<Around> around;
    int depth = 0;    // how many elements around the current one are read repeatedly
    int contents = 0; // how many package objects and `SignedInfo` are around the current element
    for (std::size_t position = 0; position < document.size(); ++position) {
        for (; !around.empty() && around.back().end == position; around.pop_back()) {
            depth -= around.back().isRepeated ? 1 : 0;
            contents -= around.back().isContent ? 1 : 0;
        }
        const IndexedElement element = document.at(position);
        const Around entered{element.end(), isReadRepeatedly(element, contents), isContent(element)};
        if (!entered.isRepeated && !entered.isContent)
            continue;
        around.push_back(entered);
        depth += entered.isRepeated ? 1 : 0;
        contents += entered.isContent ? 1 : 0;
        if (depth > MAXIMUM_NESTING)
            throw InvalidPartContent("XML signature: Elements are nested too deeply.");
    }
}

bool SignatureLimits::isReadRepeatedly(const IndexedElement& element, int contents) const {
    return element.isNamed(names.object) ||
           (contents > 0 && (element.isNamed(names.reference) || element.isNamed(names.transform) ||
                             element.isNamed(names.signatureProperty)));
}

/// Whether references or properties are read from the element.
bool SignatureLimits::isContent(const IndexedElement& element) const {
    std::u16string id;
    return element.isNamed(names.signedInfo) ||
           (element.isNamed(names.object) && XercesHelper::getElementAttribute(element, names.id, id) &&
            id == vocabulary::signatures::PACKAGE_OBJECT_ID);
}

} // namespace opc::model
