#pragma once

#include "Markup.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

/// Changes to a text, which are collected and then made in one go.
class TextEdits {
public:
    /// Puts `replacement` in place of a piece, or into an empty one. What is put into a place where something is
    /// removed stays. What is put into one place stands in the order of the calls.
    void replace(const Span& span, std::u16string replacement) {
        edits.push_back({span, std::move(replacement)});
    }

    bool areNone() const { return edits.empty(); }

    std::u16string applyTo(std::u16string_view text) const;

private:
    struct Edit {
        Span span;
        std::u16string replacement;
    };

    std::vector<Edit> edits;
};

} // namespace opc::physical::lenient
