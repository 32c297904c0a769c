#pragma once

#include <utility>

namespace opc::model {

/// A snapshot of parts, relationships or names, to be walked from the first element to the last.
///
/// A value that owns its elements: later changes of the package don't reach it. Elements that are handles, as
/// `Part` is, still learn that what they stand for has gone.
///
/// @tparam Container  what holds the elements, such as `std::vector<Part>`
template <typename Container>
class Enumerator {
public:
    using value_type = typename Container::value_type;
    using size_type = typename Container::size_type;
    using const_iterator = typename Container::const_iterator;

    explicit Enumerator(Container elements) : snapshot(std::move(elements)) {}

    const_iterator begin() const { return snapshot.begin(); }
    const_iterator end() const { return snapshot.end(); }
    size_type size() const { return snapshot.size(); }
    bool empty() const { return snapshot.empty(); }

private:
    Container snapshot;
};

} // namespace opc::model
