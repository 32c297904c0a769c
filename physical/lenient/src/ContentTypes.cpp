#include "ContentTypes.hpp"

#include "RelationshipsPart.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/XercesHelper.hpp>

namespace opc::physical::lenient {

namespace {

using model::XercesHelper;
using model::XercesString;

constexpr char16_t NAMESPACE[] = u"http://schemas.openxmlformats.org/package/2006/content-types";
constexpr char16_t RELATIONSHIPS_EXTENSION[] = u"rels";

void addAttributes(const xercesc::DOMElement* root, const char16_t* element, const char16_t* attribute,
                   std::set<std::u16string>& values) {
    const XercesString name(attribute);
    for (const xercesc::DOMElement* found : XercesHelper::getElements(root, XercesString(element))) {
        std::u16string value;
        XercesHelper::getElementAttribute(found, name, value);
        values.insert(toLowerASCIIString(value));
    }
}

} // namespace

ContentTypes::ContentTypes(interfaces::IPhysicalPackage& package)
    : usesStream(package.usesContentTypeStream()) {
    if (!usesStream)
        return;
    try {
        read(package);
    } catch (const Exception&) {
        isReadable = false;
    }
}

void ContentTypes::read(interfaces::IPhysicalPackage& package) {
    interfaces::IPhysicalInputStream* const stream = package.getContentTypeInputStream();
    const auto bytes = stream != nullptr ? readDocument(*stream) : std::nullopt;
    if (!bytes) {
        isReadable = false;
        return;
    }
    document = std::make_unique<MendedDocument>(*bytes);
    isChanged = document->removePrefixes(XercesString(NAMESPACE));
    addAttributes(document->root(), u"Default", u"Extension", extensions);
    addAttributes(document->root(), u"Override", u"PartName", names);
}

bool ContentTypes::covers(interfaces::IPhysicalPart& part) const {
    if (!usesStream)
        return !part.getContentType().empty();
    if (!isReadable)
        return true;
    const std::u16string name = toLowerASCIIString(part.getName());
    return names.count(name) > 0 || extensions.count(detail::getExtension(name)) > 0;
}

void ContentTypes::coverRelationships() {
    if (!document || !extensions.insert(RELATIONSHIPS_EXTENSION).second)
        return;
    xercesc::DOMElement* const entry =
        XercesHelper::appendElementNS(document->root(), XercesString(NAMESPACE), XercesString(u"Default"));
    XercesHelper::setElementAttribute(entry, XercesString(u"Extension"), RELATIONSHIPS_EXTENSION);
    XercesHelper::setElementAttribute(entry, XercesString(u"ContentType"), RelationshipsPart::CONTENT_TYPE);
    isChanged = true;
}

std::optional<Bytes> ContentTypes::changedStream() const {
    if (!isReadable || !isChanged)
        return std::nullopt;
    return document->toBytes();
}

} // namespace opc::physical::lenient
