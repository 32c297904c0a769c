#include "coreproperties/CorePropertiesComposer.hpp"

#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/PlainMarkup.hpp"

#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;

class Composer {
public:
    explicit Composer(std::string& markup) : markup(markup) {}

    bool compose(const CoreProperties& properties) {
        markup << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n<" << ROOT;
        for (const Namespace& declared : NAMESPACES)
            markup << " xmlns:" << declared.prefix << "=\"" << declared.uri << "\"";
        for (const CorePropertyField& field : CorePropertyField::all())
            field.visit(properties, [&](const auto& value) { add(field, value); });
        if (hasElements)
            endElement(ROOT);
        else
            markup << "/>\n";
        return markup.isPlain();
    }

private:
    void beginElement(std::string_view name) {
        markup << (hasElements ? "  <" : ">\n  <") << name;
        hasElements = true;
    }

    /// The content of an element. An empty text is content too.
    void addText(std::u16string_view text) {
        markup << ">";
        markup.addUnicodeText(text);
    }

    void endElement(std::string_view name) { markup << "</" << name << ">\n"; }

    void add(const CorePropertyField& field, const CoreProperties::Text& text) {
        if (!text)
            return;
        beginElement(field.element);
        addText(*text);
        endElement(field.element);
    }

    void add(const CorePropertyField& field, const CoreProperties::Time& time) {
        const std::u16string text = time ? convertTimeToString(*time) : std::u16string();
        if (text.empty())
            return;
        beginElement(field.element);
        if (field.attribute == CorePropertyField::Attribute::Type)
            markup << " " << vocabulary::core_properties::TYPE << "=\"" << W3CDTF << "\"";
        addText(text);
        endElement(field.element);
    }

    /// The first keyword is the element's own text. Each further keyword is a child.
    void add(const CorePropertyField& field, const CoreProperties::Keywords& keywords) {
        if (!keywords || keywords->empty())
            return;
        beginElement(field.element);
        addKeyword(keywords->front());
        for (auto next = keywords->begin() + 1; next != keywords->end(); ++next) {
            markup << "\n    <" << KEYWORD;
            addKeyword(*next);
            markup << "</" << KEYWORD << ">";
        }
        if (keywords->size() > 1)
            markup << "\n  ";
        endElement(field.element);
    }

    void addKeyword(const CoreProperties::KeywordList::value_type& keyword) {
        const auto& [text, language] = keyword;
        if (!language.empty())
            markup.addAttribute(LANGUAGE, language);
        addText(text);
    }

    PlainMarkup markup;
    bool hasElements = false;
};

} // namespace

bool composePlainCoreProperties(const CoreProperties& properties, std::string& document) {
    document.clear();
    return Composer(document).compose(properties);
}

} // namespace opc::model
