#include "canonical/XmlTree.hpp"

#include "memory/Arena.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace opc::standard_signatures {

namespace {

/// Compares as bytes, which is faster.
bool isSame(std::u16string_view left, std::u16string_view right) {
    return left.size() == right.size() &&
           std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0;
}

} // namespace

/// What all texts, lists and nodes of a tree live in.
class XmlTree::Memory {
public:
    std::string_view keep(std::u16string_view text) {
        if (text.empty())
            return std::string_view("");
        return isASCII(text) ? copy(text) : copy(narrow(text));
    }

    /// The same for texts that come again and again: mostly, the one that was kept before is found.
    std::string_view keepName(std::u16string_view name) {
        if (name.empty())
            return std::string_view("");
        Entry& recent =
            recentNames[(name.size() + std::size_t{8} * name.front() + std::size_t{32} * name.back()) %
                        recentNames.size()];
        if (!isSame(recent.first, name))
            recent = keepEntry(name);
        return recent.second;
    }

    /// The same for the names of namespaces, which are long, and of which one is used by most elements.
    std::string_view keepNamespace(std::u16string_view name) {
        if (name.empty())
            return std::string_view("");
        if (!isSame(lastNamespace.first, name))
            lastNamespace = keepEntry(name);
        return lastNamespace.second;
    }

    template <typename T>
    XmlTreeList<T> keep(const std::vector<T>& all) {
        if (all.empty())
            return {};
        auto* const place = static_cast<T*>(resource.allocate(all.size() * sizeof(T), alignof(T)));
        std::uninitialized_copy(all.begin(), all.end(), place);
        return {place, all.size()};
    }

    XmlTreeNode& add(XmlTreeNode::Kind kind) {
        static_assert(std::is_trivially_destructible_v<XmlTreeNode>);
        auto* const added =
            static_cast<XmlTreeNode*>(resource.allocate(sizeof(XmlTreeNode), alignof(XmlTreeNode)));
        std::uninitialized_value_construct_n(added, 1);
        added->kind = kind;
        return *added;
    }

private:
    using Entry = std::pair<std::u16string_view, std::string_view>;

    Entry keepEntry(std::u16string_view name) {
        auto* const place =
            static_cast<char16_t*>(resource.allocate(name.size() * sizeof(char16_t), alignof(char16_t)));
        std::copy(name.begin(), name.end(), place);
        return {std::u16string_view(place, name.size()), keep(name)};
    }

    template <typename Text>
    std::string_view copy(const Text& text) {
        auto* const place = static_cast<char*>(resource.allocate(text.size(), 1));
        std::transform(text.begin(), text.end(), place, [](auto c) { return static_cast<char>(c); });
        return {place, text.size()};
    }

    Arena resource{16384};
    std::array<Entry, 64> recentNames; ///< each at a place that follows from the name
    Entry lastNamespace;
};

class XmlTree::Builder final : public PackageDocument {
public:
    Builder(XmlTree& tree, const XmlTreeLimits& limits) : tree(tree), limits(limits) {}

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        if (open.size() >= limits.depth)
            refuse("Elements are nested deeper than " + std::to_string(limits.depth));
        count(element.attributeCount() + element.declarationCount());
        XmlTreeNode& node = append(XmlTreeNode::Kind::Element);
        throwIfTooLong(element.namespaceURI());
        node.name = tree.memory->keepName(element.localName());
        node.namespaceURI = tree.memory->keepNamespace(element.namespaceURI());
        node.prefix = tree.memory->keepName(element.prefix());
        node.attributes = attributesOf(element);
        node.declarations = declarationsOf(element);
        open.push_back({&node, nullptr});
    }
    void onEnd() override {
        endText();
        open.pop_back();
    }
    void onText(std::u16string_view piece) override { text.append(piece); }
    void onComment(std::u16string_view comment) override {
        appendAside(XmlTreeNode::Kind::Comment, {}, comment);
    }
    void onInstruction(std::u16string_view target, std::u16string_view data) override {
        appendAside(XmlTreeNode::Kind::Instruction, target, data);
    }

private:
    struct Open {
        XmlTreeNode* element;
        XmlTreeNode* lastChild;
    };

    void count(std::uint64_t more) {
        nodes += more;
        if (nodes > limits.nodes)
            refuse("The document has more than " + std::to_string(limits.nodes) + " nodes");
    }

    /// Namespaces are compared again and again.
    static void throwIfTooLong(std::u16string_view namespaceURI) {
        constexpr std::size_t LONGEST = 1024;
        if (namespaceURI.size() > LONGEST)
            refuse("A namespace has more than " + std::to_string(LONGEST) + " characters");
    }

    XmlTreeNode& append(XmlTreeNode::Kind kind) {
        endText();
        return appendNode(kind);
    }

    XmlTreeNode& appendNode(XmlTreeNode::Kind kind) {
        count(1);
        XmlTreeNode& node = tree.memory->add(kind);
        if (open.empty()) {
            tree.rootElement = &node;
            return node;
        }
        auto& [parent, lastChild] = open.back();
        node.parent = parent;
        if (lastChild == nullptr)
            parent->firstChild = &node;
        else
            lastChild->next = &node;
        lastChild = &node;
        return node;
    }

    void appendAside(XmlTreeNode::Kind kind, std::u16string_view target, std::u16string_view content) {
        if (open.empty()) // beside the root element: in no subtree
            return;
        XmlTreeNode& node = append(kind);
        node.name = tree.memory->keepName(target);
        node.text = tree.memory->keep(content);
    }

    void endText() {
        if (text.empty())
            return;
        appendNode(XmlTreeNode::Kind::Text).text = tree.memory->keep(text);
        text.clear();
    }

    XmlTreeList<XmlTreeAttribute> attributesOf(const model::XmlElement& element) {
        attributes.clear();
        for (std::size_t i = 0; i < element.attributeCount(); ++i) {
            const model::XmlAttribute one = element.attribute(i);
            throwIfTooLong(one.namespaceURI);
            attributes.push_back({tree.memory->keepName(one.namespaceURI), tree.memory->keepName(one.prefix),
                                  tree.memory->keepName(one.localName), tree.memory->keep(one.value)});
        }
        return tree.memory->keep(attributes);
    }

    XmlTreeList<XmlTreeDeclaration> declarationsOf(const model::XmlElement& element) {
        declarations.clear();
        for (std::size_t i = 0; i < element.declarationCount(); ++i) {
            const model::XmlNamespaceDeclaration one = element.declaration(i);
            if (one.prefix != u"xml") // it has its namespace without a declaration
                declarations.push_back(
                    {tree.memory->keepName(one.prefix), tree.memory->keepName(one.namespaceURI)});
        }
        return tree.memory->keep(declarations);
    }

    XmlTree& tree;
    const XmlTreeLimits limits;
    std::vector<Open> open;
    std::u16string text;                      ///< that no node has yet
    std::vector<XmlTreeAttribute> attributes; ///< of the element that is read; their memory is used again
    std::vector<XmlTreeDeclaration> declarations;
    std::uint64_t nodes = 0;
};

XmlTree::XmlTree() : memory(std::make_unique<Memory>()) {
}

XmlTree::XmlTree(XmlTree&&) noexcept = default;
XmlTree& XmlTree::operator=(XmlTree&&) noexcept = default;
XmlTree::~XmlTree() = default;

XmlTree XmlTree::read(InputStream& stream, const XmlTreeLimits& limits) {
    XmlTree tree;
    Builder(tree, limits).read(stream, limits.bytes);
    return tree;
}

std::string_view attributeOf(const XmlTreeNode& element, std::string_view name) {
    for (const XmlTreeAttribute& attribute : element.attributes)
        if (attribute.namespaceURI.empty() && attribute.name == name)
            return attribute.value;
    return {};
}

const XmlTreeNode* firstElementFrom(const XmlTreeNode* node) {
    while (node != nullptr && node->kind != XmlTreeNode::Kind::Element)
        node = node->next;
    return node;
}

std::string textOf(const XmlTreeNode& element) {
    std::string text;
    for (const XmlTreeNode* node = element.firstChild; node != nullptr; node = node->next)
        if (node->kind == XmlTreeNode::Kind::Text)
            text += node->text;
    return text;
}

const XmlTreeNode* nextInSubtree(const XmlTreeNode& node, const XmlTreeNode& apex) {
    return node.firstChild != nullptr ? node.firstChild : nextBehind(node, apex);
}

const XmlTreeNode* nextBehind(const XmlTreeNode& node, const XmlTreeNode& apex) {
    for (const XmlTreeNode* at = &node; at != &apex; at = at->parent)
        if (at->next != nullptr)
            return at->next;
    return nullptr;
}

} // namespace opc::standard_signatures
