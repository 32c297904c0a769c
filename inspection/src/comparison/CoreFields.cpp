#include "comparison/CoreFields.hpp"

#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

namespace opc::inspection {

namespace {

class FieldReader final : public model::XmlEvents {
public:
    std::map<std::string, std::string> fields;

private:
    static constexpr std::size_t MOST_TEXT = 1U << 20;

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        passText();
        if (++depth == 2)
            name = narrow(element.localName());
    }

    void onEnd() override {
        passText();
        if (depth-- == 2)
            fields[name]; // an empty one is a field, too
    }

    void onText(std::u16string_view piece) override {
        if (depth >= 2 && text.size() + piece.size() <= MOST_TEXT)
            text += piece;
    }

    /// Values of keywords are elements within their field.
    void passText() {
        const std::string passed = narrow(text);
        text.clear();
        if (depth < 2 || trimmed(passed).empty())
            return;
        std::string& value = fields[name];
        value.append(value.empty() ? "" : "; ").append(trimmed(passed));
    }

    std::size_t depth = 0;
    std::string name;
    std::u16string text;
};

} // namespace

std::map<std::string, std::string> readCoreFields(const Archive& archive, const PartView& part) {
    FieldReader reader;
    DocumentState state;
    readDocument(archive, part.items, state, reader);
    return std::move(reader.fields);
}

} // namespace opc::inspection
