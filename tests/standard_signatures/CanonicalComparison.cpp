#include "standard_signatures/CanonicalComparison.hpp"

#include "canonical/CanonicalXml.hpp"
#include "support/EventComparison.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <libxml/c14n.h>
#include <libxml/parser.h>

#include <memory>
#include <optional>
#include <vector>

namespace opc::test {

namespace {

using namespace standard_signatures;
using Version = CanonicalForm::Version;

struct DocumentDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct BufferDeleter {
    void operator()(xmlOutputBuffer* buffer) const { xmlOutputBufferClose(buffer); }
};
using DocumentPtr = std::unique_ptr<xmlDoc, DocumentDeleter>;

const CanonicalForm FORMS[] = {
    {Version::Inclusive10, false, {}},          {Version::Inclusive10, true, {}},
    {Version::Inclusive11, true, {}},           {Version::Exclusive, false, {}},
    {Version::Exclusive, true, {"", "a", "b"}},
};

int isInSubtree(void* apex, xmlNode* node, xmlNode* parent) {
    if (node->type == XML_NAMESPACE_DECL || node->type == XML_ATTRIBUTE_NODE)
        node = parent;
    for (; node != nullptr; node = node->parent)
        if (node == apex)
            return 1;
    return 0;
}

/// @return nothing if it has no canonical form
std::optional<std::string> byLibxml(xmlDoc& document, xmlNode& apex, const CanonicalForm& form) {
    xmlChar names[3][9] = {"#default", "a", "b"};
    xmlChar* prefixes[] = {names[0], names[1], names[2], nullptr};
    const int mode = form.version == Version::Inclusive10   ? XML_C14N_1_0
                     : form.version == Version::Inclusive11 ? XML_C14N_1_1
                                                            : XML_C14N_EXCLUSIVE_1_0;
    const std::unique_ptr<xmlOutputBuffer, BufferDeleter> buffer(xmlAllocOutputBuffer(nullptr));
    if (xmlC14NExecute(&document, isInSubtree, &apex, mode,
                       form.inclusivePrefixes.empty() ? nullptr : prefixes, form.withComments ? 1 : 0,
                       buffer.get()) < 0)
        return std::nullopt;
    const auto* const text = reinterpret_cast<const char*>(xmlOutputBufferGetContent(buffer.get()));
    return text == nullptr ? std::string() : std::string(text, xmlOutputBufferGetSize(buffer.get()));
}

void ignoreError(void*, xmlError*) {
}

std::optional<std::string> byThisLibrary(const XmlTreeNode& apex, const CanonicalForm& form) {
    try {
        return canonicalize(apex, form);
    } catch (const Exception&) {
        return std::nullopt;
    }
}

std::optional<XmlTree> readTree(const Bytes& document) {
    SlowStream stream(document, 1U << 16);
    try {
        return XmlTree::read(stream, {1U << 26, 5000000, 900});
    } catch (const Exception&) {
        return std::nullopt;
    }
}

void collect(const XmlTreeNode& root, std::vector<const XmlTreeNode*>& elements) {
    for (const XmlTreeNode* node = &root; node != nullptr; node = nextInSubtree(*node, root))
        if (node->kind == XmlTreeNode::Kind::Element)
            elements.push_back(node);
}

void collect(xmlNode* node, std::vector<xmlNode*>& elements) {
    for (; node != nullptr; node = node->next)
        if (node->type == XML_ELEMENT_NODE) {
            elements.push_back(node);
            collect(node->children, elements);
        }
}

std::string shown(const std::optional<std::string>& text) {
    return text ? *text : "(no canonical form)";
}

} // namespace

CanonicalComparison compareCanonicalForms(const Bytes& document, std::size_t most) {
    CanonicalComparison result;
    const std::optional<XmlTree> tree = readTree(document);
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
    const DocumentPtr other(
        xmlReadMemory(reinterpret_cast<const char*>(document.data()), static_cast<int>(document.size()), "",
                      nullptr, XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!tree || !other)
        return result;
    std::vector<const XmlTreeNode*> mine;
    std::vector<xmlNode*> theirs;
    collect(tree->root(), mine);
    collect(xmlDocGetRootElement(other.get()), theirs);
    if (mine.size() != theirs.size()) {
        result.difference = "other elements";
        return result;
    }
    const std::size_t step = mine.size() / most + 1;
    for (std::size_t i = 0; i < mine.size() && result.difference.empty(); i += step) {
        ++result.subtrees;
        for (const CanonicalForm& form : FORMS) {
            const auto ours = byThisLibrary(*mine[i], form);
            const auto expected = byLibxml(*other, *theirs[i], form);
            if (expected &&
                ours != expected) // the other one refuses more: any relative namespace around, and IRIs
                result.difference = "element " + std::to_string(i) + " in form " +
                                    std::to_string(&form - FORMS) + "\n" + shown(ours) + "\nagainst\n" +
                                    shown(expected);
        }
    }
    return result;
}

} // namespace opc::test
