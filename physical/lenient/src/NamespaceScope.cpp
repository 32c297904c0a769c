#include "NamespaceScope.hpp"

namespace opc::physical::lenient {

NamespaceScope::NamespaceScope() {
    declarations[u"xml"] = {u"http://www.w3.org/XML/1998/namespace"};
}

void NamespaceScope::declare(std::u16string_view prefix, std::u16string_view namespaceURI) {
    const auto entry = declarations.try_emplace(prefix).first;
    entry->second.push_back(namespaceURI);
    inUse.push_back(entry);
    ++counts.back();
}

void NamespaceScope::leave() {
    for (; counts.back() > 0; --counts.back()) {
        inUse.back()->second.pop_back();
        inUse.pop_back();
    }
    counts.pop_back();
}

std::u16string_view NamespaceScope::find(std::u16string_view prefix) const {
    const auto entry = declarations.find(prefix);
    return entry == declarations.end() || entry->second.empty() ? std::u16string_view()
                                                                : entry->second.back();
}

} // namespace opc::physical::lenient
