#include "mending/UsedIds.hpp"

#include "subject/Targets.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace opc::editing::mending {

using namespace inspection;

namespace {

bool isXML(std::string_view mediaType) {
    constexpr std::string_view ENDS[] = {"+xml", "/xml"};
    return std::any_of(std::begin(ENDS), std::end(ENDS), [mediaType](std::string_view end) {
        return mediaType.size() >= end.size() && mediaType.substr(mediaType.size() - end.size()) == end;
    });
}

/// Looks at every text that ends at a quote and begins behind the one in front of it: which of them are values of
/// attributes doesn't matter.
class QuotedTexts {
public:
    QuotedTexts(const std::set<std::string>& wanted, std::size_t longest)
        : wanted(wanted), longest(longest) {}

    void take(char c) {
        if (c == '"' || c == '\'') {
            if (text.size() <= longest && wanted.count(text) != 0)
                found.insert(text);
            text.clear();
        } else if (text.size() <= longest) {
            text += c;
        }
    }

    std::set<std::string> found;

private:
    const std::set<std::string>& wanted;
    const std::size_t longest;
    std::string text;
};

} // namespace

std::optional<std::set<std::string>> findUsedIds(const Subject& subject, const RelationshipsView& view) {
    if (!isXML(view.sourcePart->mediaType()))
        return std::nullopt;
    std::set<std::string> wanted;
    std::size_t longest = 0;
    for (const RelationshipView& entry : view.entries) {
        wanted.emplace(trimmed(entry.id));
        longest = std::max(longest, entry.id.size());
    }
    QuotedTexts texts(wanted, longest);
    try {
        const std::unique_ptr<InputStream> stream = subject.open(*view.sourcePart);
        std::array<unsigned char, 65536> block;
        while (!stream->isDone()) {
            const auto got = static_cast<std::size_t>(stream->read(block.data(), block.size()));
            for (std::size_t i = 0; i < got; ++i) {
                if (block[i] == 0) // UTF-16, or no text
                    return std::nullopt;
                texts.take(static_cast<char>(block[i]));
            }
        }
    } catch (const Exception&) {
        return std::nullopt;
    }
    return std::move(texts.found);
}

} // namespace opc::editing::mending
