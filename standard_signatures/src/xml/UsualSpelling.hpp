#pragma once

#include <cstddef>
#include <cstdint>

namespace opc::standard_signatures {

/// Looks in a document in UTF-8 for what some programs don't understand that read XML as mere text, so that they see other values:
/// tabs in tags, line ends at an equals sign, and references by number to characters of ASCII that need none (XML 1.0 section
/// 4.1). Hardly any program writes these.
class UsualSpelling {
public:
    /// @param bytes  the next ones of the document
    /// @return what is wrong; null if nothing is so far
    const char* findOdd(const unsigned char* bytes, std::size_t count);

private:
    enum class Place { Text, Begin, Tag, Value, Aside }; ///< Begin: behind `<`
    enum class Reference { None, Ampersand, Number };

    bool isOddInTag(unsigned char byte); ///< one with a meaning
    bool isNeedlessReference(unsigned char byte);
    bool hasOddTag(const unsigned char* bytes, const unsigned char* end);
    bool hasNeedlessReference(const unsigned char* bytes, const unsigned char* end);

    Place place = Place::Text;
    unsigned char quote = 0;      ///< that ends the value
    bool isBehindLineEnd = false; ///< and nothing but white space
    bool isBehindEqualsSign = false;

    Reference reference = Reference::None;
    unsigned base = 10;
    std::uint32_t number = 0;
};

} // namespace opc::standard_signatures
