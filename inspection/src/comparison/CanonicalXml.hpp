#pragma once

#include "comparison/XmlPrefixes.hpp"

#include <opc/model/XmlEvents.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Gets the lines of a text.
class LineSink {
public:
    virtual ~LineSink() = default;

    /// @param line  in UTF-8, without its end
    virtual void onLine(std::string_view line) = 0;

protected:
    LineSink() = default;
    LineSink(const LineSink&) = default;
    LineSink& operator=(const LineSink&) = default;
};

/// Writes a document in a form that doesn't depend on how it is written: one element, comment or instruction a line, attributes sorted, prefixes by
/// namespace. White space between elements is left out, unless `xml:space` is `preserve`. A text that is all that an element
/// holds stands in its line, with its white space. The namespaces follow behind the document.
///
/// An attribute in a namespace without prefix begins with a colon. Characters that could control a terminal become references.
class CanonicalXml final : public model::XmlEvents {
public:
    /// Both must outlive this object.
    CanonicalXml(XmlPrefixes& prefixes, LineSink& sink) : prefixes(prefixes), sink(sink) {}

    /// Call it behind the last event.
    void end();

private:
    struct Level {
        std::string name;
        bool preservesSpace;
    };

    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override;
    void onEnd() override;
    void onText(std::u16string_view piece) override;
    void onComment(std::u16string_view content) override;
    void onInstruction(std::u16string_view target, std::u16string_view data) override;

    std::string nameOf(std::u16string_view uri, std::u16string_view local, bool isAttribute);
    void openTag(const model::XmlElement& element);
    void passTag();
    void passText(bool isWhole);
    void writeAside(const std::string& content);
    void writeLine(std::string_view content, std::size_t depth);

    XmlPrefixes& prefixes;
    LineSink& sink;
    std::vector<bool> used; ///< by the places of namespaces
    std::vector<Level> levels;
    std::string tag; ///< a start tag that isn't written yet, without its end; empty if there is none
    std::u16string text;
    std::string line;
};

} // namespace opc::inspection
