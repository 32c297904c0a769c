#include "MarkupCompatibility.hpp"

#include "ScopedMap.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace opc::physical::lenient {

namespace {

/// Takes the next word from a list, whose words are separated by white space; empty at the end.
std::u16string_view takeWord(std::u16string_view& list) {
    list.remove_prefix(std::min(list.find_first_not_of(u" \t\r\n"), list.size()));
    const std::u16string_view word = list.substr(0, list.find_first_of(u" \t\r\n"));
    list.remove_prefix(word.size());
    return word;
}

} // namespace

/// Processes the elements in their order.
class CompatibilityWalk {
public:
    using Role = MarkupCompatibility::Role;

    CompatibilityWalk(const Markup& markup, const std::vector<std::u16string_view>& understood,
                      MarkupCompatibility& result)
        : markup(markup), understood(understood), result(result) {}

    void go() {
        for (const Element& element : markup.elements()) {
            while (open.size() > element.depth)
                leave();
            enter(element);
        }
    }

private:
    struct Open {
        Role role;
        std::size_t childrensParent;
        bool isAlternate = false; ///< whether it is an AlternateContent
        bool hasChosen = false;   ///< whether one of its alternatives counts
    };
    /// Markup stores each namespace once. They are compared by address, because they can be long.
    using Namespace = const char16_t*;
    struct Mark {};

    void leave() {
        open.pop_back();
        prefixes.leave();
        ignorable.leave();
        processed.leave();
    }

    void enter(const Element& element) {
        prefixes.enter();
        ignorable.enter();
        processed.enter();
        for (const Attribute& attribute : markup.attributes(element))
            if (attribute.isDeclaration())
                prefixes.add(attribute.declaredPrefix(), attribute.namespaceURI);
        const std::size_t parent = open.empty() ? Element::NO_PARENT : open.back().childrensParent;
        const Role role = roleOf(element);
        result.anyIgnored = result.anyIgnored || role != Role::Content;
        open.push_back({role, role == Role::Content ? result.found.size() : parent});
        open.back().isAlternate =
            role == Role::Wrapper && element.is(COMPATIBILITY_NAMESPACE, u"AlternateContent");
        result.found.push_back({parent, role});
        for (const Attribute& attribute : markup.attributes(element)) {
            const bool isIgnored =
                !attribute.isDeclaration() &&
                (attribute.namespaceURI == COMPATIBILITY_NAMESPACE || isIgnorable(attribute.namespaceURI));
            result.ignoredAttributes.push_back(isIgnored);
            result.anyIgnored =
                result.anyIgnored || (isIgnored && attribute.namespaceURI != COMPATIBILITY_NAMESPACE);
        }
    }

    Role roleOf(const Element& element) {
        if (!open.empty() && open.back().role == Role::Ignored)
            return Role::Ignored;
        takeIgnorable(element);
        const Role role =
            open.empty() || !open.back().isAlternate ? ownRoleOf(element) : choose(element, open.back());
        if (role != Role::Ignored)
            throwIfMoreMustBeUnderstood(element);
        return role;
    }

    Role ownRoleOf(const Element& element) const {
        if (element.is(COMPATIBILITY_NAMESPACE, u"AlternateContent"))
            return Role::Wrapper;
        if (!isIgnorable(element.namespaceURI))
            return Role::Content;
        const Namespace uri = element.namespaceURI.data();
        const bool isProcessed =
            processed.find({uri, u"*"}) != nullptr || processed.find({uri, element.localName}) != nullptr;
        return isProcessed ? Role::Wrapper : Role::Ignored;
    }

    /// Of the alternatives whose requirements are met, the first one counts.
    Role choose(const Element& element, Open& alternatives) {
        if (alternatives.hasChosen)
            return Role::Ignored;
        if (element.is(COMPATIBILITY_NAMESPACE, u"Choice")) {
            const Attribute* const required = markup.findAttribute(element, u"", u"Requires");
            alternatives.hasChosen = required != nullptr && areUnderstood(required->rawValue);
        } else {
            alternatives.hasChosen = element.is(COMPATIBILITY_NAMESPACE, u"Fallback");
        }
        return alternatives.hasChosen ? Role::Wrapper : Role::Ignored;
    }

    void takeIgnorable(const Element& element) {
        for (const Attribute& attribute : markup.attributes(element)) {
            std::u16string_view list = attribute.rawValue;
            if (attribute.is(COMPATIBILITY_NAMESPACE, u"Ignorable"))
                for (std::u16string_view word = takeWord(list); !word.empty(); word = takeWord(list))
                    ignorable.add(namespaceOf(word).data(), {});
            if (attribute.is(COMPATIBILITY_NAMESPACE, u"ProcessContent"))
                for (std::u16string_view word = takeWord(list); !word.empty(); word = takeWord(list))
                    addProcessed(word);
        }
    }

    void throwIfMoreMustBeUnderstood(const Element& element) const {
        const Attribute* const attribute =
            markup.findAttribute(element, COMPATIBILITY_NAMESPACE, u"MustUnderstand");
        if (attribute != nullptr && !areUnderstood(attribute->rawValue))
            throw Exception("The document has content that a program must understand to read it: " +
                            toUDEString(std::u16string(attribute->rawValue.substr(0, 80))));
    }

    void addProcessed(std::u16string_view name) {
        const std::size_t colon = std::min(name.find(u':'), name.size() - 1);
        processed.add({namespaceOf(name.substr(0, colon)).data(), name.substr(colon + 1)}, {});
    }

    bool areUnderstood(std::u16string_view list) const {
        for (std::u16string_view word = takeWord(list); !word.empty(); word = takeWord(list))
            if (!isUnderstood(namespaceOf(word)))
                return false;
        return true;
    }

    bool isUnderstood(std::u16string_view namespaceURI) const {
        return namespaceURI == COMPATIBILITY_NAMESPACE ||
               std::find(understood.begin(), understood.end(), namespaceURI) != understood.end();
    }

    bool isIgnorable(std::u16string_view namespaceURI) const {
        return !namespaceURI.empty() && !isUnderstood(namespaceURI) &&
               ignorable.find(namespaceURI.data()) != nullptr;
    }

    std::u16string_view namespaceOf(std::u16string_view prefix) const {
        const auto* const found = prefixes.find(prefix);
        if (found == nullptr)
            throw Exception(
                "The document has content to ignore under a namespace prefix that it doesn't declare: " +
                toUDEString(std::u16string(prefix.substr(0, 80))));
        return *found;
    }

    const Markup& markup;
    const std::vector<std::u16string_view>& understood;
    MarkupCompatibility& result;
    std::vector<Open> open;
    ScopedMap<std::u16string_view, std::u16string_view> prefixes;
    ScopedMap<Namespace, Mark> ignorable;
    ScopedMap<std::pair<Namespace, std::u16string_view>, Mark> processed; // names of elements; `*` for all
};

MarkupCompatibility::MarkupCompatibility(const Markup& markup,
                                         const std::vector<std::u16string_view>& understood) {
    const auto isUsed = [](const auto& named) { return named.namespaceURI == COMPATIBILITY_NAMESPACE; };
    const auto& elements = markup.elements();
    if (std::any_of(markup.allAttributes().begin(), markup.allAttributes().end(), isUsed)) {
        CompatibilityWalk(markup, understood, *this).go();
        return;
    }
    found.reserve(elements.size());
    for (const Element& element : elements)
        found.push_back({element.parent, Role::Content});
}

} // namespace opc::physical::lenient
