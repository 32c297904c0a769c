#pragma once

#include "comparison/CanonicalXml.hpp"
#include "comparison/LineDifference.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// A text in memory, by lines.
class TextLines final : public LineSink {
public:
    /// What is thrown if the text gets too large.
    struct Full {};

    void onLine(std::string_view line) override;

    std::size_t count() const { return ends.size(); }
    std::string_view line(std::size_t index) const {
        const std::size_t begin = index == 0 ? 0 : ends[index - 1];
        return std::string_view(text).substr(begin, ends[index] - begin);
    }

private:
    std::string text;
    std::vector<std::size_t> ends;
};

/// Which lines differ.
LineDifference compareTexts(const TextLines& before, const TextLines& now);

} // namespace opc::inspection
