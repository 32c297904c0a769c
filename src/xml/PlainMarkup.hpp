#pragma once

#include <string>
#include <string_view>

namespace opc::model {

/// Composes markup with values in it: the very bytes that Xerces writes, at a small part of its cost.
///
/// Values in printable ASCII are plain. What holds any other value is left to Xerces.
class PlainMarkup {
public:
    /// @param composed  the markup is appended to it; must outlive this object
    explicit PlainMarkup(std::string& composed) : composed(composed) {}

    /// Appends what is markup already.
    PlainMarkup& operator<<(std::string_view markup) {
        composed.append(markup);
        return *this;
    }

    /// The attributes of an element come in the order of their names: Xerces keeps them so.
    void addAttribute(std::string_view name, std::u16string_view value);

    /// The text of an element. An empty one isn't plain: its element stands as one tag.
    void addText(std::u16string_view value);

    /// The text of an element in a document of UTF-8: all usual letters are plain here, and lines. A text of white
    /// space alone isn't: the next element may stand in the same line.
    void addUnicodeText(std::u16string_view value);

    /// Whether all values were plain. If not, the bytes mean nothing.
    bool isPlain() const { return hasOnlyPlainValues; }

private:
    template <typename StandsAsItIs>
    void add(std::u16string_view value, StandsAsItIs standsAsItIs);
    void addReference(char16_t unit);

    std::string& composed;
    bool hasOnlyPlainValues = true;
};

} // namespace opc::model
