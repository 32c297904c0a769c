#pragma once

#include "Markup.hpp"

#include <opc/physical/LenientExport.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

/// Changes of a text, which are collected and then made together.
class OPC_LENIENT_EXPORT TextEdits {
public:
    /// Replaces a piece, which may be empty, by `replacement`. An insertion stays if the text around it is removed.
    /// Insertions at one place are in the order of the calls.
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
