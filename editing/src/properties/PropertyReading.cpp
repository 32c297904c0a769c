#include "properties/PropertyReading.hpp"

#include "properties/Vocabulary.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/XmlEvents.hpp>

#include <cstdlib>

namespace opc::editing::properties {

using inspection::narrow;

namespace {

/// Builds values from elements: those of lists contain others, and `variant` stands for the one that it contains.
class PropertyReader final : public model::XmlEvents {
public:
    explicit PropertyReader(PropertyKind kind) : kind(kind) {}

    ReadProperties found;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        ++depth;
        if (depth == 1)
            return startRoot(element);
        if (depth == 2)
            return startProperty(element);
        const bool isTyped = element.namespaceURI() == vocabulary->variantTypes;
        const std::string type = isTyped ? narrow(element.localName()) : "unknown";
        if (!isIn)
            return;
        PropertyValue& parent = *open.back();
        if (type == "variant") {
            open.push_back(&parent);
        } else if (parent.type == "vector" || parent.type == "array") {
            open.push_back(&parent.items.emplace_back());
            open.back()->type = type;
        } else {
            if (parent.type.empty())
                parent.type = type;
            open.push_back(&parent);
        }
    }

    void startRoot(const model::XmlElement& element) {
        for (const Vocabulary& one : VOCABULARIES)
            if (one.kind == kind && one.namespaceURI == element.namespaceURI() && element.localName() == ROOT)
                vocabulary = &one;
        if (vocabulary == nullptr)
            throw Exception("The root is {" + narrow(element.namespaceURI()) + "}" +
                            narrow(element.localName()));
        found.isStrict = vocabulary->isStrict;
    }

    void startProperty(const model::XmlElement& element) {
        const bool isCustom = kind == PropertyKind::Custom;
        isIn = element.namespaceURI() == vocabulary->namespaceURI &&
               (!isCustom || element.localName() == PROPERTY);
        if (!isIn)
            return;
        Property& property = found.all.emplace_back();
        if (isCustom) {
            property.name = narrow(element.valueOf({}, u"name"));
            property.linkTarget = narrow(element.valueOf({}, u"linkTarget"));
            found.pids.push_back(std::atoll(narrow(element.valueOf({}, u"pid")).c_str()));
        } else {
            property.name = narrow(element.localName());
            const std::string_view type = typeOfExtended(property.name);
            property.value.type = type.empty() ? "unknown" : type == "vector" ? "" : type; // the list tells
        }
        open = {&property.value};
    }

    void onText(std::u16string_view text) override {
        if (isIn && depth >= (kind == PropertyKind::Custom ? 3 : 2)) // in front of that is white space
            open.back()->text += narrow(text);
    }

    void onEnd() override {
        if (isIn && depth >= 2) {
            PropertyValue& value = *open.back();
            if (!isText(value.type))
                value.text = inspection::trimmed(value.text);
            open.pop_back();
        }
        if (depth == 2) {
            if (isIn && found.all.back().value.type.empty())
                found.all.back().value.type = "unknown";
            isIn = false;
        }
        --depth;
    }

    const PropertyKind kind;
    const Vocabulary* vocabulary = nullptr;
    std::size_t depth = 0;
    bool isIn = false; ///< an element right below the root that is a property
    std::vector<PropertyValue*> open;
};

} // namespace

ReadProperties readPropertyDocument(const std::string& document, PropertyKind kind) {
    const std::vector<unsigned char> bytes(document.begin(), document.end());
    ByteArrayInAdaptor stream(bytes);
    PropertyReader reader(kind);
    model::readXmlDocument(stream, reader);
    return std::move(reader.found);
}

} // namespace opc::editing::properties
