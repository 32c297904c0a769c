#include <opc/model/ContentType.hpp>

#include "ContentTypeGrammar.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <string_view>

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

} // namespace

ContentType::ContentType(const std::u16string& contentType) : text(contentType) {
    init();
}

ContentType::ContentType(const char16_t* contentType)
    : text(contentType == nullptr ? std::u16string() : std::u16string(contentType)) {
    init();
}

void ContentType::init() {
    ParsedContentType parsed;
    if (!contenttype::parse(toWideString(text), parsed))
        throw InvalidContentType("Could not successfully parse content type string");
    type = opc::toString(parsed.type);
    subType = opc::toString(parsed.subType);
    for (const auto& [attribute, value] : parsed.parameters)
        parameters[opc::toString(attribute)] = opc::toString(value);
    resetStringFromParts();
}

void ContentType::resetStringFromParts() {
    std::u16string canonical = type + u'/' + subType;
    for (const auto& [attribute, value] : parameters) {
        canonical.append(u";").append(attribute).append(u"=");
        if (hasSeparator(value))
            canonical.append(u"\"").append(value).append(u"\"");
        else
            canonical.append(value);
    }
    text = std::move(canonical);
}

std::u16string ContentType::toString() const {
    return text;
}

std::u16string ContentType::getType() const {
    return type;
}

std::u16string ContentType::getSubType() const {
    return subType;
}

bool ContentType::hasParameter(const std::u16string& attribute) const {
    return parameters.find(attribute) != parameters.end();
}

std::u16string ContentType::getParameterValue(const std::u16string& attribute) const {
    const auto found = parameters.find(attribute);
    if (found == parameters.end())
        throw ContentTypeParameterNotFound("No parameter exists for the given attribute");
    return found->second;
}

void ContentType::addParameter(const std::u16string& attribute, const std::u16string& value) {
    if (attribute.empty() || !isPrintable(attribute) || hasSeparator(attribute))
        throw InvalidContentTypeParameter("Invalid parameter attribute name");
    if (value.empty() || !isPrintable(value))
        throw InvalidContentTypeParameter("Invalid parameter attribute value");
    parameters[attribute] = value;
    resetStringFromParts();
}

void ContentType::removeParameter(const std::u16string& attribute) {
    const auto found = parameters.find(attribute);
    if (found == parameters.end())
        throw ContentTypeParameterNotFound("No parameter exists for the given attribute");
    parameters.erase(found);
    resetStringFromParts();
}

bool ContentType::operator==(const ContentType& other) const {
    return caselessCompare(text, other.text) == 0;
}

bool ContentType::operator!=(const ContentType& other) const {
    return !(*this == other);
}

bool ContentType::operator<(const ContentType& other) const {
    return caselessCompare(text, other.text) < 0;
}

bool ContentType::CaselessLess::operator()(const std::u16string& left, const std::u16string& right) const {
    return caselessCompare(left, right) < 0;
}

} // namespace opc::model
