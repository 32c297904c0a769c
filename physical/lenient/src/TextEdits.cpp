#include "TextEdits.hpp"

#include <algorithm>
#include <functional>

namespace opc::physical::lenient {

std::u16string TextEdits::applyTo(std::u16string_view text) const {
    std::vector<std::reference_wrapper<const Edit>> ordered(edits.begin(), edits.end());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Edit& left, const Edit& right) { return left.span.begin < right.span.begin; });
    std::u16string result;
    std::size_t taken = 0;
    for (const Edit& edit : ordered) {
        if (edit.span.begin > taken)
            result.append(text, taken, edit.span.begin - taken);
        result.append(edit.replacement);
        taken = std::max({taken, edit.span.begin, edit.span.end});
    }
    return result.append(text, taken);
}

} // namespace opc::physical::lenient
