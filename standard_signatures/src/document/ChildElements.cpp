#include "document/ChildElements.hpp"

#include "document/Vocabulary.hpp"
#include "reason/Refusal.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <string>

namespace opc::standard_signatures {

namespace {

[[noreturn]] void refuse(const std::string& text) {
    throw Refusal(Reason::Code::Malformed, "", text);
}

} // namespace

const XmlTreeNode* ChildElements::take(std::string_view name) {
    if (at == nullptr || !at->is(vocabulary::SIGNATURE, name))
        return nullptr;
    const XmlTreeNode* const taken = at;
    at = nextElement(*at);
    return taken;
}

const XmlTreeNode& ChildElements::require(std::string_view name) {
    if (const XmlTreeNode* const taken = take(name))
        return *taken;
    refuse("The element " + std::string(parent.name) + " has no " + std::string(name) + " where it must be");
}

void ChildElements::requireEnd() const {
    if (at != nullptr)
        refuse("The element " + std::string(at->name) + " doesn't belong into " + std::string(parent.name));
}

std::vector<unsigned char> bytesOf(const XmlTreeNode& element) {
    const XmlTreeNode* const only = element.firstChild;
    const bool isOneText = only != nullptr && only->kind == XmlTreeNode::Kind::Text && only->next == nullptr;
    const std::string joined = isOneText ? std::string() : textOf(element);
    if (firstChildElement(element) == nullptr)
        try {
            return bedrock::crypto::utils::base64Decode(isOneText ? only->text : std::string_view(joined));
        } catch (const bedrock::crypto::utils::Exception&) { // refused below
        }
    refuse("The element " + std::string(element.name) + " isn't Base64");
}

std::string_view requireAttribute(const XmlTreeNode& element, std::string_view name) {
    const std::string_view value = attributeOf(element, name);
    if (value.data() == nullptr)
        refuse("The element " + std::string(element.name) + " has no " + std::string(name));
    return value;
}

} // namespace opc::standard_signatures
