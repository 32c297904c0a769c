#include "canonical/CanonicalXml.hpp"

#include "canonical/BaseURI.hpp"
#include "canonical/CanonicalText.hpp"
#include "reason/Refusal.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

namespace opc::standard_signatures {

namespace {

constexpr std::string_view XML_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

using NodeKind = XmlTreeNode::Kind;
using Version = CanonicalForm::Version;

/// Names of a relative form have no canonical form (Canonical XML 1.0 section 1.3).
void throwIfRelative(std::string_view namespaceURI) {
    const std::size_t place = namespaceURI.find_first_of(":/?#");
    if (!namespaceURI.empty() && (place == std::string_view::npos || namespaceURI[place] != ':'))
        throw model::InvalidXMLDocument("A namespace is a relative reference, which has no canonical form");
}

/// Which namespace each prefix has in what was written, at the element that is written now.
class WrittenNamespaces {
public:
    WrittenNamespaces() {
        constexpr std::size_t USUAL_COUNT = 16;
        written.reserve(USUAL_COUNT);
        counts.reserve(USUAL_COUNT);
    }

    std::string_view of(std::string_view prefix) const {
        const auto found = values.find(prefix);
        return found == values.end() || found->second.empty() ? std::string_view() : found->second.back();
    }

    void open() { counts.push_back(written.size()); }

    void write(std::string_view prefix, std::string_view namespaceURI) {
        values[prefix].push_back(namespaceURI);
        written.push_back(prefix);
    }

    void close() {
        for (; written.size() > counts.back(); written.pop_back())
            values[written.back()].pop_back();
        counts.pop_back();
    }

private:
    std::map<std::string_view, std::vector<std::string_view>> values;
    std::vector<std::string_view> written;
    std::vector<std::size_t> counts; ///< of `written` at the start of each open element
};

class Canonicalizer {
public:
    Canonicalizer(const XmlTreeNode& apex, const CanonicalForm& form, std::uint64_t& work)
        : apex(apex), form(form), work(work) {
        constexpr std::size_t USUAL_COUNT = 8;
        attributes.reserve(USUAL_COUNT);
    }

    std::string run() {
        for (const XmlTreeNode* around = apex.parent; around != nullptr; around = around->parent)
            spend(1 + around->attributes.count + around->declarations.count);
        for (const XmlTreeNode* node = &apex; node != nullptr; node = next(*node))
            begin(*node);
        spendOnText();
        return text.take();
    }

private:
    static constexpr std::size_t MOST_BYTES = 40U << 20;
    static constexpr std::size_t BYTES_LIKE_A_NODE = 64;
    static constexpr std::size_t PAID_AT_ONCE = 65536; ///< bytes

    using Declarations = std::map<std::string_view, std::string_view>; ///< sorted as they are written
    using Attribute = std::tuple<std::string_view, std::string_view, std::string_view, std::string_view>;

    /// The next node in document order, after the end of each element that ends in front of it.
    const XmlTreeNode* next(const XmlTreeNode& node) {
        if (node.firstChild != nullptr)
            return node.firstChild;
        for (const XmlTreeNode* at = &node;; at = at->parent) {
            if (at->kind == NodeKind::Element)
                end(*at);
            if (at == &apex || at->next != nullptr)
                return at == &apex ? nullptr : at->next;
        }
    }

    void spend(std::uint64_t amount) const {
        work -= std::min(work, amount);
        if (work == 0)
            throw Refusal(Reason::Code::BeyondLimit, "",
                          "The signatures of the package need too much digesting");
    }

    void spendOnText() {
        spend((text.size() - paidBytes) / BYTES_LIKE_A_NODE);
        paidBytes = text.size();
    }

    void begin(const XmlTreeNode& node) {
        spend(1 + node.attributes.count + node.declarations.count);
        if (text.size() - paidBytes >= PAID_AT_ONCE)
            spendOnText();
        if (text.size() > MOST_BYTES)
            throw Refusal(Reason::Code::BeyondLimit, "", "The canonical form of an element is too long");
        switch (node.kind) {
        case NodeKind::Element:
            beginElement(node);
            break;
        case NodeKind::Text:
            text.putText(node.text);
            break;
        case NodeKind::Comment:
            if (form.withComments) {
                text.put("<!--");
                text.put(node.text);
                text.put("-->");
            }
            break;
        case NodeKind::Instruction:
            text.put("<?");
            text.put(node.name);
            if (!node.text.empty())
                text.put(' ');
            text.put(node.text);
            text.put("?>");
        }
    }

    void beginElement(const XmlTreeNode& element) {
        text.put('<');
        text.putName(element.prefix, element.name);
        written.open();
        for (const auto& [prefix, namespaceURI] : declarationsFor(element)) {
            if (written.of(prefix) == namespaceURI)
                continue;
            throwIfRelative(namespaceURI);
            written.write(prefix, namespaceURI);
            text.put(prefix.empty() ? " xmlns" : " xmlns:");
            text.put(prefix);
            putValue(namespaceURI);
        }
        std::string base;
        collectAttributes(element, base);
        for (const auto& [namespaceURI, name, prefix, value] : attributes) {
            text.put(' ');
            text.putName(prefix, name);
            putValue(value);
        }
        text.put('>');
    }

    void putValue(std::string_view value) {
        text.put("=\"");
        text.putValue(value);
        text.put('"');
    }

    void end(const XmlTreeNode& element) {
        text.put("</");
        text.putName(element.prefix, element.name);
        text.put('>');
        written.close();
    }

    /// Those that must be in force at the element, some of which are already.
    Declarations declarationsFor(const XmlTreeNode& element) const {
        Declarations needed;
        const bool isExclusive = form.version == Version::Exclusive;
        const auto need = [&](const XmlTreeDeclaration& declared) {
            if (!isExclusive || form.inclusivePrefixes.count(declared.prefix) != 0)
                needed.emplace(declared.prefix, declared.namespaceURI); // the innermost comes first
        };
        for (const XmlTreeNode* at = &element; at != nullptr; at = &element == &apex ? at->parent : nullptr)
            std::for_each(at->declarations.begin(), at->declarations.end(), need);
        if (isExclusive) {
            needed[element.prefix] = element.namespaceURI;
            for (const XmlTreeAttribute& attribute : element.attributes)
                if (!attribute.prefix.empty())
                    needed[attribute.prefix] = attribute.namespaceURI;
            needed.erase("xml");
        }
        return needed;
    }

    /// @param base  room for a value of `xml:base`
    void collectAttributes(const XmlTreeNode& element, std::string& base) {
        attributes.clear();
        for (const XmlTreeAttribute& one : element.attributes)
            attributes.emplace_back(one.namespaceURI, one.name, one.prefix, one.value);
        if (&element == &apex && form.version != Version::Exclusive)
            inherit(attributes, base);
        std::sort(attributes.begin(), attributes.end());
    }

    /// Attributes of XML's own namespace that elements around the apex have.
    void inherit(std::vector<Attribute>& all, std::string& base) const {
        std::set<std::string_view> known;
        const auto isNew = [&known](const XmlTreeAttribute& one) {
            return one.namespaceURI == XML_NAMESPACE && known.insert(one.name).second;
        };
        for (const XmlTreeAttribute& one : apex.attributes)
            static_cast<void>(isNew(one));
        for (const XmlTreeNode* at = apex.parent; at != nullptr; at = at->parent)
            for (const XmlTreeAttribute& one : at->attributes) {
                const bool isInherited =
                    form.version == Version::Inclusive10 || one.name == "lang" || one.name == "space";
                if (isInherited && isNew(one))
                    all.emplace_back(one.namespaceURI, one.name, one.prefix, one.value);
            }
        if (form.version == Version::Inclusive11)
            joinBases(all, base);
    }

    /// In version 1.1 the bases of all elements around the apex are joined with its own.
    void joinBases(std::vector<Attribute>& all, std::string& base) const {
        std::vector<std::string_view> bases; // from the inside to the outside
        for (const XmlTreeNode* at = &apex; at != nullptr; at = at->parent)
            for (const XmlTreeAttribute& one : at->attributes)
                if (one.namespaceURI == XML_NAMESPACE && one.name == "base") {
                    bases.push_back(one.value);
                    spend(one.value.size());
                }
        if (bases.empty())
            return;
        all.erase(std::remove_if(all.begin(), all.end(),
                                 [](const Attribute& one) {
                                     return std::get<0>(one) == XML_NAMESPACE && std::get<1>(one) == "base";
                                 }),
                  all.end());
        base = bases.back();
        for (auto inner = bases.rbegin() + 1; inner != bases.rend(); ++inner)
            base = joinBase(base, *inner);
        if (!base.empty())
            all.emplace_back(XML_NAMESPACE, "base", "xml", base);
    }

    const XmlTreeNode& apex;
    const CanonicalForm& form;
    std::uint64_t& work; ///< that is left
    WrittenNamespaces written;
    std::vector<Attribute> attributes; ///< of the element that is written; their memory is used again
    CanonicalText text;
    std::size_t paidBytes = 0; ///< of the text
};

} // namespace

std::string canonicalize(const XmlTreeNode& element, const CanonicalForm& form) {
    std::uint64_t work = std::numeric_limits<std::uint64_t>::max();
    return canonicalize(element, form, work);
}

std::string canonicalize(const XmlTreeNode& element, const CanonicalForm& form, std::uint64_t& work) {
    return Canonicalizer(element, form, work).run();
}

} // namespace opc::standard_signatures
