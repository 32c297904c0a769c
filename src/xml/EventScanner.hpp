#pragma once

#include "xml/DocumentWindow.hpp"
#include "xml/GrowingRoom.hpp"
#include "xml/ScannedNames.hpp"
#include "xml/ScannedText.hpp"

#include <opc/model/XmlEvents.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace opc::model {

/// What a listener has been told of a document.
struct ToldEvents {
    bool declaration = false;
    std::uint64_t markup = 0; ///< starts and ends of elements, comments and instructions
    std::uint64_t text = 0;   ///< code units behind the last of them
};

/// Reads a document of the usual form as events, at a small part of the parser's cost: in UTF-8, with names in ASCII,
/// without a document type. Whatever else it has, and whatever breaks a rule, is left to the parser.
class EventScanner {
public:
    /// @param stream, events  must outlive this object
    EventScanner(InputStream& stream, XmlEvents& events);
    EventScanner(const EventScanner&) = delete;
    EventScanner& operator=(const EventScanner&) = delete;

    /// @return whether the document ended without leaving the usual form. If not, the parser tells the same of it as far
    ///         as it was told
    /// @throws the exceptions of the stream and of the listener
    bool scan();

    const ToldEvents& told() const { return toldEvents; }

private:
    class Element;

    struct Attribute {
        const ScannedName* name;
        std::string_view plain;    ///< the value, if it stands in the document as it is
        std::u16string_view value; ///< the value else, and once it was asked for; until then a view of null
    };
    struct Declaration {
        ScannedPrefix* prefix;
        std::u16string_view namespaceURI;
    };
    struct Open {
        const ScannedName* name;
        std::size_t declarations; ///< that it has
    };

    bool scanDeclaration();
    bool takeDeclaration(const char* p, const char* declarationEnd);
    Scanned takeMarkup();

    Scanned takeStartTag();
    Scanned takeAttribute(const char*& p);
    Scanned takeValue(const char*& p, Attribute& attribute);
    Scanned takeOddValue(const char*& p, char quote, std::u16string& value);
    bool declare(const Attribute& attribute);
    bool canStart(const ScannedName& name);
    void tellStart(const ScannedName& name, bool isEmpty);
    Scanned takeEndTag();
    void tellEnd();

    Scanned takeText();
    Scanned takeTextRun();
    Scanned takeBracket(const char*& p, std::uint32_t& code);
    Scanned takeCharacterData();
    void putPlainText(const char*& p);
    void putText(std::uint32_t code);
    void tellText();

    Scanned takeComment();
    Scanned takeInstruction();
    bool takeCharacters(const char*& p, const char* textEnd, std::u16string& taken);
    void tellMarkup();

    Scanned takeName(const char*& p, const ScannedName*& name);
    bool skipSpace(const char*& p);
    Scanned takeOddCharacter(const char*& p, std::uint32_t& code);
    std::u16string& newOddValue();
    std::u16string_view valueOf(Attribute& attribute);

    static constexpr std::size_t LONGEST_PIECE = 4096;

    DocumentWindow window;
    XmlEvents& events;
    ToldEvents toldEvents;
    ScannedNames names;
    ScannedLines lines;
    std::vector<Open> openElements;
    std::vector<Declaration> hidden; ///< what the declarations of the open elements have replaced
    std::size_t asides = 0;          ///< comments and instructions
    bool hasRoot = false;

    std::vector<Attribute> attributes; ///< of the tag in hand
    std::vector<Declaration> declarations;
    std::vector<std::unique_ptr<std::u16string>> oddValues; ///< of the tag in hand: the first `oddValueCount`
    std::size_t oddValueCount = 0;
    std::size_t plainSize = 0;           ///< of all plain values of the tag in hand
    GrowingRoom<char16_t, 1024> widened; ///< for them
    std::size_t widenedSize = 0;

    std::array<char16_t, LONGEST_PIECE + 16> text; ///< that wasn't told yet
    std::size_t textSize = 0;
    std::size_t spaceOutside = 0; ///< bytes of white space outside the root
};

} // namespace opc::model
