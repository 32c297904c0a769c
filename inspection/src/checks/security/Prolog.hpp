#pragma once

#include <opc/model/XmlEvents.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// Looks for a document type declaration in front of the first element of an XML document, from its bytes as they come.
/// What stands in comments and processing instructions doesn't count. Documents in UTF-16 and UTF-32 are read, too.
class Prolog {
public:
    void begin();
    void add(std::string_view piece);

    bool isOver() const { return state == State::Over; }
    bool hasDoctype() const { return doctype; }

    /// The declaration's first characters, up to a few hundred: entities stand there.
    const std::string& declaration() const { return text; }
    model::XmlPlace place() const { return tag; } ///< where it begins

private:
    enum class State { Between, Tag, Comment, Instruction, Doctype, Over };

    void add(char c);
    void advance(unsigned char c);

    State state = State::Between;
    bool doctype = false;
    model::XmlPlace next{1, 1}, tag{1, 1};
    std::string text; // of what is being read; of a comment or an instruction its last characters
};

} // namespace opc::inspection
