#include "reports/JSONWriter.hpp"

#include <opc/core/PrintableText.hpp>

#include <array>
#include <cstdio>
#include <ostream>

namespace opc::inspection {

namespace {

std::string quoted(std::string_view text) {
    std::string escaped = "\"";
    for (const char c : text)
        if (c == '"' || c == '\\') {
            escaped += '\\';
            escaped += c;
        } else if (static_cast<unsigned char>(c) < ' ') {
            std::array<char, 7> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(c));
            escaped += code.data();
        } else {
            escaped += c;
        }
    return escapedJSON(escaped + '"');
}

} // namespace

JSONWriter& JSONWriter::name(std::string_view name) {
    separate();
    output << quoted(name) << ':';
    isBehindName = true;
    return *this;
}

void JSONWriter::text(std::string_view value) {
    separate();
    output << quoted(value);
}

void JSONWriter::textOrNull(std::string_view value) {
    value.empty() ? null() : text(value);
}

void JSONWriter::number(std::uint64_t value) {
    separate();
    output << value;
}

void JSONWriter::numberOrNull(std::uint64_t value) {
    value == 0 ? null() : number(value);
}

void JSONWriter::boolean(bool value) {
    separate();
    output << (value ? "true" : "false");
}

void JSONWriter::null() {
    separate();
    output << "null";
}

void JSONWriter::begin(char bracket) {
    separate();
    output << bracket;
    isFirst = true;
}

void JSONWriter::end(char bracket) {
    output << bracket;
    isFirst = false;
}

void JSONWriter::separate() {
    if (!isFirst && !isBehindName)
        output << ',';
    isFirst = isBehindName = false;
}

} // namespace opc::inspection
