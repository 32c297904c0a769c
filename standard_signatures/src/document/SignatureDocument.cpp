#include "document/SignatureDocument.hpp"

#include "document/ChildElements.hpp"
#include "document/KeyInfo.hpp"
#include "document/Vocabulary.hpp"
#include "document/XadesProperties.hpp"
#include "hash/TextHash.hpp"
#include "reason/Refusal.hpp"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace opc::standard_signatures {

namespace {

using Code = Reason::Code;
using Ids = std::unordered_map<std::string_view, const XmlTreeNode*, TextHash>;

/// The elements with an Id. Two with the same one could be taken for one another.
Ids collectIds(const XmlTreeNode& root) {
    Ids ids;
    for (const XmlTreeNode* node = &root; node != nullptr; node = nextInSubtree(*node, root)) {
        const std::string_view id =
            node->kind == XmlTreeNode::Kind::Element ? attributeOf(*node, "Id") : std::string_view();
        if (id.data() != nullptr && !ids.emplace(id, node).second)
            throw Refusal(Code::AmbiguousId, "",
                          "Two elements have the Id " + std::string(id.substr(0, 200)));
    }
    return ids;
}

bool isObject(const XmlTreeNode* node, const XmlTreeNode& root) {
    return node != nullptr && node->parent == &root && node->is(vocabulary::SIGNATURE, "Object");
}

/// Whether it is something of an object that some programs sign by itself, beside the object.
bool isPieceOfObject(const XmlTreeNode& element, const XmlTreeNode& root) {
    const XmlTreeNode* const parent = element.parent;
    if (parent == nullptr)
        return false;
    return isObject(parent, root) ? element.is(vocabulary::SIGNATURE, "Manifest") ||
                                        element.is(vocabulary::SIGNATURE, "SignatureProperties")
                                  : isObject(parent->parent, root) &&
                                        ((element.is(vocabulary::SIGNATURE, "SignatureProperty") &&
                                          parent->is(vocabulary::SIGNATURE, "SignatureProperties")) ||
                                         (vocabulary::isOfXades(element, "SignedProperties") &&
                                          vocabulary::isOfXades(*parent, "QualifyingProperties")));
}

/// Whether it may be signed: an object of the signature or a piece of one, or the keys that the signature names.
bool isSignable(const XmlTreeNode& element, const XmlTreeNode& root) {
    return isObject(&element, root) || isPieceOfObject(element, root) ||
           (element.parent == &root && element.is(vocabulary::SIGNATURE, "KeyInfo"));
}

void readSignedInfo(SignatureDocument& document, const Ids& ids) {
    const XmlTreeNode& root = document.tree.root();
    ChildElements children(*document.signedInfo);
    document.form = readCanonicalForm(children.require("CanonicalizationMethod"));
    const XmlTreeNode& method = children.require("SignatureMethod");
    document.method = &findSignatureMethod(requireAttribute(method, "Algorithm"));
    if (firstChildElement(method) != nullptr)
        throw Refusal(Code::AlgorithmNotAccepted, "", "The signature method has a parameter");
    while (const XmlTreeNode* const reference = children.take("Reference")) {
        ElementReference read = readElementReference(*reference);
        const auto found = ids.find(std::string_view(read.uri).substr(1));
        if (found == ids.end() || !isSignable(*found->second, root))
            throw Refusal(Code::BadReference, read.uri,
                          "The reference " + read.uri + " leads to nothing that may be signed");
        document.elements.push_back({std::move(read), found->second});
        if (document.elements.size() > SignatureDocument::MOST_ELEMENTS)
            throw Refusal(Code::BeyondLimit, "", "The signature has too many references");
    }
    children.requireEnd();
}

/// The only manifest among the objects that are signed.
const XmlTreeNode& findManifest(const SignatureDocument& document) {
    const XmlTreeNode* manifest = nullptr;
    std::set<const XmlTreeNode*> known;
    for (const SignedElement& one : document.elements) {
        if (!known.insert(one.element).second) // several references can lead to one element
            continue;
        for (const XmlTreeNode* child = firstChildElement(*one.element); child != nullptr;
             child = nextElement(*child)) {
            if (!child->is(vocabulary::SIGNATURE, "Manifest") || child == manifest)
                continue;
            if (manifest != nullptr)
                throw Refusal(Code::NotAPackageSignature, "", "The signature signs more than one manifest");
            manifest = child;
        }
    }
    if (manifest == nullptr)
        throw Refusal(Code::NotAPackageSignature, "", "The signature signs no manifest of parts");
    return *manifest;
}

void readManifest(SignatureDocument& document, const XmlTreeNode& manifest) {
    constexpr std::size_t USUAL_COUNT = 16;
    document.manifest.reserve(USUAL_COUNT);
    ChildElements children(manifest);
    while (const XmlTreeNode* const reference = children.take("Reference")) {
        if (document.manifest.size() >= SignatureDocument::MOST_REFERENCES)
            throw Refusal(Code::BeyondLimit, "", "The manifest has too many references");
        document.manifest.push_back(readPartReference(*reference));
    }
    children.requireEnd();
}

/// The time in the object that has the manifest.
std::string readSignatureTime(const XmlTreeNode& object) {
    for (const XmlTreeNode* node = &object; node != nullptr; node = nextInSubtree(*node, object))
        if (node->is(vocabulary::PACKAGE_SIGNATURE, "SignatureTime"))
            for (const XmlTreeNode* child = firstChildElement(*node); child != nullptr;
                 child = nextElement(*child))
                if (child->is(vocabulary::PACKAGE_SIGNATURE, "Value"))
                    return textOf(*child);
    return {};
}

/// Time stamps as Visual Studio extensions have them, in objects of their own. Everybody can add, change and remove these:
/// one that can't be read is left out.
void readTimeStamps(SignatureDocument& document, const XmlTreeNode& object) {
    for (const XmlTreeNode* stamp = firstChildElement(object); stamp != nullptr;
         stamp = nextElement(*stamp)) {
        if (!stamp->is(vocabulary::PACKAGE_SIGNATURE, "TimeStamp"))
            continue;
        for (const XmlTreeNode* child = firstChildElement(*stamp); child != nullptr;
             child = nextElement(*child))
            try {
                if (child->is(vocabulary::PACKAGE_SIGNATURE, "EncodedTime") &&
                    document.timeStamps.size() < SignatureDocument::MOST_TIME_STAMPS)
                    document.timeStamps.push_back({bytesOf(*child), std::nullopt});
            } catch (const Refusal&) { // as if it weren't there
            }
    }
}

/// Whether an object that isn't signed has something else than time stamps and properties of XAdES.
bool hasContent(const XmlTreeNode& object) {
    for (const XmlTreeNode* node = object.firstChild; node != nullptr; node = node->next)
        if (node->kind == XmlTreeNode::Kind::Element
                ? !node->is(vocabulary::PACKAGE_SIGNATURE, "TimeStamp") &&
                      !vocabulary::isOfXades(*node, "QualifyingProperties")
                : node->kind == XmlTreeNode::Kind::Text &&
                      node->text.find_first_not_of(" \t\r\n") != std::string_view::npos)
            return true;
    return false;
}

/// Whether something isn't signed in which a program could find content: an object, or an element that isn't one of signatures.
bool leavesContentUnsigned(const SignatureDocument& document) {
    const XmlTreeNode& root = document.tree.root();
    const auto isSigned = [&document](const XmlTreeNode* node) {
        return node == document.signedInfo ||
               std::any_of(document.elements.begin(), document.elements.end(),
                           [node](const SignedElement& one) { return one.element == node; });
    };
    for (const XmlTreeNode* node = &root; node != nullptr;) {
        const bool isElement = node->kind == XmlTreeNode::Kind::Element;
        const bool isPassedOver = isElement && isSigned(node);
        if (isElement && !isPassedOver &&
            (!vocabulary::isOfSignatures(*node) || (isObject(node, root) && hasContent(*node))))
            return true;
        node = isPassedOver ? nextBehind(*node, root) : nextInSubtree(*node, root);
    }
    return false;
}

} // namespace

SignatureDocument SignatureDocument::read(InputStream& stream, const XmlTreeLimits& limits) {
    SignatureDocument document(XmlTree::read(stream, limits));
    const XmlTreeNode& root = document.tree.root();
    if (!root.is(vocabulary::SIGNATURE, "Signature"))
        throw Refusal(Code::Malformed, "", "The root element isn't Signature");
    const Ids ids = collectIds(root);
    ChildElements children(root);
    document.signedInfo = &children.require("SignedInfo");
    document.signatureValue = &children.require("SignatureValue");
    const XmlTreeNode* const keyInfo = children.take("KeyInfo");
    while (const XmlTreeNode* const object = children.take("Object"))
        readTimeStamps(document, *object);
    children.requireEnd();

    readSignedInfo(document, ids);
    document.hasUnsignedContent = leavesContentUnsigned(document);
    const XmlTreeNode& manifest = findManifest(document);
    readManifest(document, manifest);
    document.value = bytesOf(*document.signatureValue);
    document.claimedTime = readSignatureTime(*manifest.parent);
    if (keyInfo != nullptr)
        document.keys = readKeyInfo(*keyInfo);
    readXadesProperties(document);
    return document;
}

} // namespace opc::standard_signatures
