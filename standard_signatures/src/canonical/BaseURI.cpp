#include "canonical/BaseURI.hpp"

#include <algorithm>
#include <cctype>
#include <vector>

namespace opc::standard_signatures {

namespace {

/// A reference, taken apart as RFC 3986 appendix B does it. The fragment is dropped: a base has none.
struct Pieces {
    std::string_view scheme, authority, path, query; ///< with what separates them

    explicit Pieces(std::string_view text) {
        text = text.substr(0, text.find('#'));
        const std::size_t colon = text.find_first_of(":/?");
        if (colon != std::string_view::npos && colon != 0 && text[colon] == ':')
            scheme = take(text, colon + 1);
        if (text.substr(0, 2) == "//")
            authority = take(text, std::min(text.find_first_of("/?", 2), text.size()));
        path = take(text, std::min(text.find('?'), text.size()));
        query = text;
    }

private:
    static std::string_view take(std::string_view& text, std::size_t size) {
        const std::string_view taken = text.substr(0, size);
        text.remove_prefix(size);
        return taken;
    }
};

std::string withoutDots(std::string_view path) {
    const bool isAbsolute = !path.empty() && path.front() == '/';
    std::vector<std::string_view> kept;
    bool endsInFolder = false;
    for (std::size_t begin = isAbsolute ? 1 : 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string_view segment = path.substr(begin, end - begin);
        endsInFolder = end == path.size() ? segment.empty() || segment == "." || segment == ".." : true;
        if (segment == ".." && !kept.empty() && kept.back() != "..")
            kept.pop_back();
        else if (segment == ".." ? !isAbsolute : segment != "." && !segment.empty())
            kept.push_back(segment);
        begin = end + 1;
    }
    std::string result = isAbsolute ? "/" : "";
    for (const std::string_view segment : kept)
        result.append(segment).append("/");
    if (!kept.empty() && !endsInFolder)
        result.pop_back();
    return result;
}

std::string merged(const Pieces& base, std::string_view path) {
    if (!base.authority.empty() && base.path.empty())
        return "/" + std::string(path);
    const std::size_t slash = base.path.rfind('/');
    return std::string(base.path.substr(0, slash == std::string_view::npos ? 0 : slash + 1)).append(path);
}

} // namespace

std::string joinBase(std::string_view base, std::string_view reference) {
    const Pieces from(base);
    const Pieces to(reference);
    std::string path;
    std::string_view query = to.query;
    const bool isOwnPlace = !to.scheme.empty() || !to.authority.empty();
    if (isOwnPlace || (!to.path.empty() && to.path.front() == '/')) {
        path = withoutDots(to.path);
    } else if (to.path.empty()) {
        path = withoutDots(from.path);
        query = to.query.empty() ? from.query : to.query;
    } else {
        path = withoutDots(merged(from, to.path));
    }
    return std::string(to.scheme.empty() ? from.scheme : to.scheme)
        .append(isOwnPlace ? to.authority : from.authority)
        .append(path)
        .append(query);
}

} // namespace opc::standard_signatures
