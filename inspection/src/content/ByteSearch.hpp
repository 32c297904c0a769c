#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Looks for texts in content that comes in pieces.
class ByteSearch {
public:
    /// @param texts  not empty; they live as long as this object. Their first bytes are looked for: let them be rare
    explicit ByteSearch(std::vector<std::string_view> texts) : texts(std::move(texts)) {
        for (const std::string_view text : this->texts)
            longest = std::max(longest, text.size());
    }

    void begin() {
        last.clear();
        found = false;
    }

    void add(std::string_view piece) {
        if (found)
            return;
        last.append(piece.substr(0, longest)); // what is cut in two by the pieces
        look(last);
        look(piece);
        last.assign(piece.substr(piece.size() - std::min(piece.size(), longest)));
    }

    /// Whether one of the texts was there.
    bool isFound() const { return found; }

private:
    void look(std::string_view in) {
        for (const std::string_view text : texts)
            found = found || in.find(text) != std::string_view::npos;
    }

    const std::vector<std::string_view> texts;
    std::size_t longest = 0;
    std::string last; // the end of the last piece
    bool found = false;
};

} // namespace opc::inspection
