#pragma once

namespace opc::inspection {

/// Passes over two lists that are sorted by the same key.
/// @param keyOf   gives the key of an element
/// @param onPair  gets pointers to two elements with the same key, or to one and null
template <typename List, typename KeyOf, typename OnPair>
void mergeSorted(const List& before, const List& now, const KeyOf& keyOf, const OnPair& onPair) {
    auto left = before.begin();
    auto right = now.begin();
    while (left != before.end() || right != now.end()) {
        const int order = left == before.end() ? 1
                          : right == now.end() ? -1
                                               : keyOf(*left).compare(keyOf(*right));
        onPair(order <= 0 ? &*left : nullptr, order >= 0 ? &*right : nullptr);
        if (order <= 0)
            ++left;
        if (order >= 0)
            ++right;
    }
}

} // namespace opc::inspection
