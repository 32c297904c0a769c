#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Looks for texts in content that comes in pieces.
class ByteSearch {
public:
    /// @param texts  not empty; they live as long as this object
    explicit ByteSearch(const std::vector<std::string_view>& texts) {
        for (const std::string_view text : texts) {
            searchers.emplace_back(text.begin(), text.end());
            longest = std::max(longest, text.size());
        }
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
        for (const Searcher& searcher : searchers)
            found = found || std::search(in.begin(), in.end(), searcher) != in.end();
    }

    using Searcher = std::boyer_moore_horspool_searcher<std::string_view::const_iterator>;
    std::vector<Searcher> searchers;
    std::size_t longest = 0;
    std::string last; // the end of the last piece
    bool found = false;
};

} // namespace opc::inspection
