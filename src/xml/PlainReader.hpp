#pragma once

#include "xml/PlainCharacters.hpp"
#include "xml/PlainReferences.hpp"

#include <array>
#include <cstddef>
#include <string_view>

namespace opc::model {

struct PlainAttribute {
    std::string_view name;
    std::string_view value;
};

/// The attributes of one element, at most as many as elements of these documents usually have.
class PlainAttributes {
public:
    const PlainAttribute* begin() const { return attributes.data(); }
    const PlainAttribute* end() const { return attributes.data() + count; }
    std::size_t size() const { return count; }
    void clear() { count = 0; }

    /// @return false if an attribute has this name already, or there is no room; nothing is added then
    bool add(const PlainAttribute& attribute);

private:
    std::array<PlainAttribute, 8> attributes;
    std::size_t count = 0;
};

/// Reads a document piece by piece. Each operation takes a piece, if it comes next.
class PlainCursor {
public:
    explicit PlainCursor(std::string_view document) : rest(document) {}

    bool atEnd() const { return rest.empty(); }

    bool isAt(std::string_view expected) const { return rest.substr(0, expected.size()) == expected; }

    bool take(std::string_view expected) {
        if (!isAt(expected))
            return false;
        rest.remove_prefix(expected.size());
        return true;
    }

    /// Everything up to the next `<`, or up to the end.
    std::string_view takeText() {
        const std::string_view taken = rest.substr(0, rest.find('<'));
        rest.remove_prefix(taken.size());
        return taken;
    }

    /// Takes everything up to a character, and the character.
    /// @return false if there is no such character; then `text` is the rest of the document
    bool takeThrough(char end, std::string_view& text) {
        text = rest.substr(0, rest.find(end));
        rest.remove_prefix(text.size());
        if (atEnd())
            return false;
        rest.remove_prefix(1);
        return true;
    }

    /// The text that was taken from a position on.
    /// @param begin  the result of `position` at that place
    std::string_view takenSince(const char* begin) const {
        return {begin, static_cast<std::size_t>(position() - begin)};
    }
    const char* position() const { return rest.data(); }

protected:
    std::string_view rest;
};

/// Reads a document in the plain form (`xml/PlainDocument.hpp`). Each operation takes a piece, if it comes next and
/// is plain. If an operation didn't take a required piece, the document isn't plain.
class PlainReader : public PlainCursor {
public:
    /// @param texts  receives the values of attributes that contain references; must outlive this object
    PlainReader(std::string_view document, PlainTexts& texts) : PlainCursor(document), texts(texts) {}

    /// @return whether there was any
    bool skipSpace() { return !takeAll(plain::Space).empty(); }

    /// White space and comments. Stops before a comment that isn't plain, and before one too many.
    void skipMisc() {
        skipSpace();
        if (isAt("<!--"))
            skipComments();
    }

    /// Everything that can come before the root: a byte order mark, the XML declaration, white space and comments.
    bool skipProlog();

    /// A name of ASCII letters, with a prefix or without; empty if there is none.
    std::string_view takeName() { return takeAll(plain::Letter | plain::Colon); }

    /// The attributes of a start tag, up to its end.
    /// @param isEmpty  set to whether the tag ends the element too
    bool takeAttributes(PlainAttributes& attributes, bool& isEmpty);

    bool takeEndTag(std::string_view name);

private:
    bool skipDeclaration();
    void skipComments();
    bool takeComment();

    /// An equals sign and a value between quotes.
    bool takeValue(std::string_view& value) {
        skipSpace();
        if (!take("="))
            return false;
        skipSpace();
        if (take("\""))
            return takeUpTo("\"", plain::DoubleQuoted | plain::BeyondASCII, value);
        return take("'") && takeUpTo("'", plain::SingleQuoted | plain::BeyondASCII, value);
    }

    bool takeUpTo(std::string_view quote, unsigned kinds, std::string_view& value) {
        std::size_t plainSize = 0;
        while (rest.size() - plainSize >= 8 && plain::areEightInValue(rest.data() + plainSize))
            plainSize += 8;
        value = takeAll(kinds, plainSize);
        return take(quote) || takeReferences(quote, kinds, value);
    }

    /// The rest of a value, which begins with the value's first reference.
    bool takeReferences(std::string_view quote, unsigned kinds, std::string_view& value);

    /// The longest run of characters of these kinds.
    /// @param known  the number of characters that are already known to belong to it
    std::string_view takeAll(unsigned kinds, std::size_t known = 0) {
        std::size_t end = known;
        while (end < rest.size() && plain::is(rest[end], kinds))
            ++end;
        const std::string_view taken = rest.substr(0, end);
        rest.remove_prefix(end);
        return taken;
    }

    PlainTexts& texts;
    std::size_t comments = 0;
};

} // namespace opc::model
