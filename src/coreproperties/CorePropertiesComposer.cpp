#include "coreproperties/CorePropertiesComposer.hpp"

#include "xml/PlainMarkup.hpp"

#include <opc/core/Time.hpp>
#include <opc/model/CoreProperties.hpp>

namespace opc::model {

namespace {

class Composer {
public:
    Composer(const CoreProperties& source, std::string& document) : properties(source), markup(document) {}

    bool compose() {
        markup
            << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes" ?>)"
               "\n"
               R"(<cp:coreProperties )"
               R"(xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" )"
               R"(xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcmitype="http://purl.org/dc/dcmitype/" )"
               R"(xmlns:dcterms="http://purl.org/dc/terms/" )"
               R"(xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance")";
        add("cp:category", properties.getCategory());
        add("cp:contentStatus", properties.getContentStatus());
        add("dcterms:created", properties.getCreated(), u"dcterms:W3CDTF");
        add("dc:creator", properties.getCreator());
        add("dc:description", properties.getDescription());
        add("dc:identifier", properties.getIdentifier());
        addKeywords();
        add("dc:language", properties.getLanguage());
        add("cp:lastModifiedBy", properties.getLastModifiedBy());
        add("cp:lastPrinted", properties.getLastPrinted());
        add("dcterms:modified", properties.getModified(), u"dcterms:W3CDTF");
        add("cp:revision", properties.getRevision());
        add("dc:subject", properties.getSubject());
        add("dc:title", properties.getTitle());
        add("cp:version", properties.getVersion());
        markup << (hasElements ? "</cp:coreProperties>\n" : "/>\n");
        return markup.isPlain();
    }

private:
    void beginElement(std::string_view name) {
        markup << (hasElements ? "  <" : ">\n  <") << name;
        hasElements = true;
    }

    /// What an element holds. An empty text is one as well.
    void addText(std::u16string_view text) {
        markup << ">";
        markup.addUnicodeText(text);
    }

    void endElement(std::string_view name) { markup << "</" << name << ">\n"; }

    void add(std::string_view name, const CoreProperties::Text& text) {
        if (!text)
            return;
        beginElement(name);
        addText(*text);
        endElement(name);
    }

    void add(std::string_view name, const CoreProperties::Time& time, std::u16string_view type = {}) {
        const std::u16string text = time ? convertTimeToString(*time) : std::u16string();
        if (text.empty())
            return;
        beginElement(name);
        if (!type.empty())
            markup.addAttribute("xsi:type", type);
        addText(text);
        endElement(name);
    }

    /// The first keyword is the element's own text, and each other one a child.
    void addKeywords() {
        const CoreProperties::Keywords keywords = properties.getKeywords();
        if (!keywords || keywords->empty())
            return;
        beginElement("cp:keywords");
        addKeyword(keywords->front());
        for (auto next = keywords->begin() + 1; next != keywords->end(); ++next) {
            markup << "\n    <cp:value";
            addKeyword(*next);
            markup << "</cp:value>";
        }
        if (keywords->size() > 1)
            markup << "\n  ";
        endElement("cp:keywords");
    }

    void addKeyword(const CoreProperties::KeywordList::value_type& keyword) {
        const auto& [text, language] = keyword;
        if (!language.empty())
            markup.addAttribute("xml:lang", language);
        addText(text);
    }

    const CoreProperties& properties;
    PlainMarkup markup;
    bool hasElements = false;
};

} // namespace

bool composePlainCoreProperties(const CoreProperties& properties, std::string& document) {
    document.clear();
    return Composer(properties, document).compose();
}

} // namespace opc::model
