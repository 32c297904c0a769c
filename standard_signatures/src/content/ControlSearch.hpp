#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Tells contents in which no program can find a content control that shows data from elsewhere: XML in UTF-8 in which the end of
/// its name, `dataBinding`, stands nowhere. No reference can stand for a piece of a name (XML 1.0 section 4.1), unless the
/// document has a type.
class ControlSearch {
public:
    /// Begins with another content.
    void begin();

    /// Looks into the next bytes of the content.
    void look(const unsigned char* bytes, std::size_t count);

    /// Whether what was looked into is such a content. False as well if that isn't certain.
    bool isWithout() const { return !hasMark && isPlain(head); }

private:
    static bool isPlain(std::string_view head);

    std::string head; ///< the first bytes
    std::string tail; ///< the last bytes so far, into which a mark may reach
    bool hasMark = false;
};

} // namespace opc::standard_signatures
