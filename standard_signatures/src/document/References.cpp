#include "document/References.hpp"

#include "document/ChildElements.hpp"
#include "document/Vocabulary.hpp"
#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

namespace opc::standard_signatures {

namespace {

using Code = Reason::Code;

struct ReferenceElements {
    std::vector<const XmlTreeNode*> transforms;
    StatedDigest digest;
};

[[noreturn]] void refuseTransforms(const std::string& text) {
    throw Refusal(Code::AlgorithmNotAccepted, "", text);
}

ReferenceElements readElements(const XmlTreeNode& reference) {
    ReferenceElements found;
    ChildElements children(reference);
    if (const XmlTreeNode* const transforms = children.take("Transforms")) {
        ChildElements each(*transforms);
        while (const XmlTreeNode* const transform = each.take("Transform"))
            found.transforms.push_back(transform);
        each.requireEnd();
    }
    const XmlTreeNode& method = children.require("DigestMethod");
    found.digest = readStatedDigest(method, children.require("DigestValue"));
    children.requireEnd();
    return found;
}

bool isNCName(std::string_view text) {
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
    };
    if (text.empty() || !isLetter(text.front()))
        return false;
    return std::all_of(text.begin(), text.end(), [&isLetter](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

/// The prefixes of the exclusive form.
void readInclusivePrefixes(const XmlTreeNode& list, CanonicalForm& form) {
    std::istringstream words{std::string(requireAttribute(list, "PrefixList"))};
    for (std::string word; words >> word;)
        form.inclusivePrefixes.insert(word == "#default" ? std::string() : word);
}

RelationshipSelection readSelection(const XmlTreeNode& transform) {
    RelationshipSelection selection;
    for (const XmlTreeNode* one = firstChildElement(transform); one != nullptr; one = nextElement(*one)) {
        if (one->is(vocabulary::PACKAGE_SIGNATURE, "RelationshipReference"))
            selection.ids.insert(std::string(requireAttribute(*one, "SourceId")));
        else if (one->is(vocabulary::PACKAGE_SIGNATURE, "RelationshipsGroupReference"))
            selection.types.insert(std::string(requireAttribute(*one, "SourceType")));
        else
            throw Refusal(Code::Malformed, "",
                          "The element " + std::string(one->name) +
                              " doesn't belong into a relationships transform");
    }
    return selection;
}

bool isRelationshipTransform(const XmlTreeNode& transform) {
    return attributeOf(transform, "Algorithm") == vocabulary::RELATIONSHIP_TRANSFORM;
}

/// No transform; or one form of Canonical XML for a relationships part as a whole; or the relationships transform and one form
/// behind it.
void readPartTransforms(const std::vector<const XmlTreeNode*>& transforms, PartReference& reference) {
    if (transforms.empty())
        return;
    if (!isRelationshipTransform(*transforms.front())) {
        reference.form = readCanonicalForm(*transforms.front());
        std::string source;
        if (transforms.size() > 1 || !isRelationshipsName(reference.partName, source))
            refuseTransforms("Canonical XML of a part isn't accepted");
        return;
    }
    if (transforms.size() != 2 || isRelationshipTransform(*transforms.back()))
        refuseTransforms("Behind a relationships transform there isn't exactly one canonicalization");
    readCanonicalForm(*transforms.back());
    reference.selects = readSelection(*transforms.front());
}

/// Adds what the URI says.
void readPartURI(PartReference& reference) {
    constexpr std::string_view QUERY = "?ContentType=";
    const std::string_view uri = reference.uri;
    const std::size_t query = std::min(uri.find('?'), uri.size());
    std::string name = decodePartName(std::string(uri.substr(0, query)));
    if (uri.find('#') != std::string_view::npos || !isAbsolutePartName(name))
        throw Refusal(Code::BadReference, reference.uri, "The reference doesn't lead to a part");
    reference.partName = std::move(name);
    if (query == uri.size())
        return;
    if (uri.substr(query, QUERY.size()) != QUERY)
        throw Refusal(Code::BadReference, reference.uri, "The query of the reference isn't a content type");
    reference.contentType = decodePercent(uri.substr(query + QUERY.size()));
}

} // namespace

CanonicalForm readCanonicalForm(const XmlTreeNode& method) {
    CanonicalForm form;
    const std::string_view uri = requireAttribute(method, "Algorithm");
    if (!findCanonicalForm(uri, form))
        refuseTransforms("The algorithm \"" + std::string(uri.substr(0, 200)) + "\" isn't accepted");
    for (const XmlTreeNode* one = firstChildElement(method); one != nullptr; one = nextElement(*one)) {
        if (form.version != CanonicalForm::Version::Exclusive ||
            !one->is(vocabulary::EXCLUSIVE, "InclusiveNamespaces"))
            refuseTransforms("A canonicalization has the parameter " + std::string(one->name));
        readInclusivePrefixes(*one, form);
    }
    return form;
}

StatedDigest readStatedDigest(const XmlTreeNode& method, const XmlTreeNode& value) {
    const DigestMethod& found = findDigestMethod(requireAttribute(method, "Algorithm"));
    if (firstChildElement(method) != nullptr)
        refuseTransforms("A digest method has a parameter");
    StatedDigest digest{&found, bytesOf(value)};
    if (digest.value.size() != found.size)
        throw Refusal(Code::Malformed, "", "A digest has the wrong length");
    return digest;
}

ElementReference readElementReference(const XmlTreeNode& reference) {
    const std::string uri(requireAttribute(reference, "URI"));
    if (uri.empty() || uri.front() != '#' || !isNCName(std::string_view(uri).substr(1)))
        throw Refusal(Code::BadReference, uri, "The reference doesn't lead to an element of the signature");
    ReferenceElements elements = readElements(reference);
    if (elements.transforms.size() > 1)
        refuseTransforms("A reference to an element has more than one transform");
    return {uri,
            elements.transforms.empty() ? CanonicalForm() : readCanonicalForm(*elements.transforms.front()),
            std::move(elements.digest)};
}

PartReference readPartReference(const XmlTreeNode& reference) {
    PartReference read;
    read.uri = requireAttribute(reference, "URI");
    readPartURI(read);
    try {
        ReferenceElements elements = readElements(reference);
        readPartTransforms(elements.transforms, read);
        read.digest = std::move(elements.digest);
    } catch (const Refusal& refusal) {
        throw Refusal(refusal.reason().code, read.uri, refusal.reason().text);
    }
    return read;
}

} // namespace opc::standard_signatures
