#include "ContentTypeCover.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>
#include <opc/model/XercesString.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::physical::lenient {

namespace {

using model::XercesHelper;

void addAttributes(const xercesc::DOMElement* root, const char16_t* element, const char16_t* attribute,
                   std::set<std::u16string>& values) {
    const model::XercesString name(attribute);
    for (const xercesc::DOMElement* found : XercesHelper::getElements(root, model::XercesString(element))) {
        std::u16string value;
        XercesHelper::getElementAttribute(found, name, value);
        values.insert(toLowerASCIIString(value));
    }
}

} // namespace

ContentTypeCover::ContentTypeCover(interfaces::IPhysicalPackage& package)
    : usesStream(package.usesContentTypeStream()) {
    if (!usesStream)
        return;
    try {
        read(package);
    } catch (const Exception&) {
        isReadable = false;
    }
}

void ContentTypeCover::read(interfaces::IPhysicalPackage& package) {
    const model::XercesGuard guard;
    const auto parser = XercesHelper::createParser();
    model::PhysicalInputStream stream(package.getContentTypeInputStream());
    const xercesc::DOMElement* root =
        XercesHelper::readDocumentFromStream(parser.get(), stream, false, {}, {})->getDocumentElement();
    addAttributes(root, u"Default", u"Extension", extensions);
    addAttributes(root, u"Override", u"PartName", names);
}

bool ContentTypeCover::covers(interfaces::IPhysicalPart& part) const {
    if (!usesStream)
        return !part.getContentType().empty();
    if (!isReadable)
        return true;
    const std::u16string name = toLowerASCIIString(part.getName());
    return names.count(name) > 0 || extensions.count(detail::getExtension(name)) > 0;
}

} // namespace opc::physical::lenient
