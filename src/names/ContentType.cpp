#include <opc/model/ContentType.hpp>

#include "ContentTypeGrammar.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace opc::model {

namespace {

bool isPrintable(char16_t unit) {
    return unit >= 32 && unit <= 126;
}

bool isSeparator(char16_t unit) {
    return unit < 128 &&
           std::string_view(contenttype::SEPARATORS).find(static_cast<char>(unit)) != std::string_view::npos;
}

bool isPrintable(const std::u16string& text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return isPrintable(unit); });
}

bool hasSeparator(const std::u16string& text) {
    return std::any_of(text.begin(), text.end(), isSeparator);
}

struct CaselessLess {
    bool operator()(const std::u16string& left, const std::u16string& right) const {
        return caselessCompare(left, right) < 0;
    }
};

} // namespace

struct ContentType::Body {
    std::u16string text; // the canonical one
    std::map<std::u16string, std::u16string, CaselessLess> parameters;

    /// Writes the parameters into the text anew.
    void renewParameters() {
        text.resize(std::min(text.find(u';'), text.size()));
        for (const auto& [attribute, value] : parameters) {
            text.append(u";").append(attribute).append(u"=");
            if (hasSeparator(value))
                text.append(u"\"").append(value).append(u"\"");
            else
                text.append(value);
        }
    }
};

ContentType::ContentType(const std::u16string& contentType) {
    init(contentType);
}

ContentType::ContentType(const char16_t* contentType) {
    init(contentType == nullptr ? std::u16string() : std::u16string(contentType));
}

void ContentType::init(const std::u16string& contentType) {
    ParsedContentType parsed;
    if (!contenttype::parse(contentType, parsed))
        throw InvalidContentType("Could not successfully parse content type string");
    const auto made = std::make_shared<Body>();
    made->text = parsed.name;
    for (auto& [attribute, value] : parsed.parameters)
        made->parameters[std::move(attribute)] = std::move(value);
    if (!made->parameters.empty())
        made->renewParameters();
    body = made;
}

std::u16string ContentType::toString() const {
    return body->text;
}

// A token holds neither a slash nor a semicolon.

std::u16string ContentType::getType() const {
    return body->text.substr(0, body->text.find(u'/'));
}

std::u16string ContentType::getSubType() const {
    const std::size_t begin = body->text.find(u'/') + 1;
    return body->text.substr(begin, body->text.find(u';', begin) - begin);
}

bool ContentType::hasParameter(const std::u16string& attribute) const {
    return body->parameters.find(attribute) != body->parameters.end();
}

std::u16string ContentType::getParameterValue(const std::u16string& attribute) const {
    const auto found = body->parameters.find(attribute);
    if (found == body->parameters.end())
        throw ContentTypeParameterNotFound("No parameter exists for the given attribute");
    return found->second;
}

void ContentType::addParameter(const std::u16string& attribute, const std::u16string& value) {
    if (attribute.empty() || !isPrintable(attribute) || hasSeparator(attribute))
        throw InvalidContentTypeParameter("Invalid parameter attribute name");
    if (value.empty() || !isPrintable(value))
        throw InvalidContentTypeParameter("Invalid parameter attribute value");
    const auto changed = std::make_shared<Body>(*body);
    changed->parameters[attribute] = value;
    changed->renewParameters();
    body = changed;
}

void ContentType::removeParameter(const std::u16string& attribute) {
    const auto changed = std::make_shared<Body>(*body);
    if (changed->parameters.erase(attribute) == 0)
        throw ContentTypeParameterNotFound("No parameter exists for the given attribute");
    changed->renewParameters();
    body = changed;
}

bool ContentType::canBeReadAgain() const {
    return std::all_of(body->parameters.begin(), body->parameters.end(), [](const auto& parameter) {
        return parameter.second.find(u'"') == std::u16string::npos;
    });
}

bool ContentType::operator==(const ContentType& other) const {
    return caselessCompare(body->text, other.body->text) == 0;
}

bool ContentType::operator!=(const ContentType& other) const {
    return !(*this == other);
}

bool ContentType::operator<(const ContentType& other) const {
    return caselessCompare(body->text, other.body->text) < 0;
}

} // namespace opc::model
