#pragma once

#include <utility>

namespace opc::model {

/// A snapshot of parts, relationships or names, for iteration.
///
/// It owns its elements, so later changes of the package don't change it. Elements that are handles, such as `Part`, still
/// become invalid when their part is deleted.
///
/// @tparam Container  the container of the elements, such as `std::vector<Part>`
template <typename Container>
class Enumerator {
public:
    using value_type = typename Container::value_type;
    using size_type = typename Container::size_type;
    using const_iterator = typename Container::const_iterator;

    explicit Enumerator(Container elements) : elements(std::move(elements)) {}

    const_iterator begin() const { return elements.begin(); }
    const_iterator end() const { return elements.end(); }
    size_type size() const { return elements.size(); }
    bool empty() const { return elements.empty(); }

private:
    Container elements;
};

} // namespace opc::model
