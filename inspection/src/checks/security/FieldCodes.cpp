#include "checks/security/FieldCodes.hpp"

#include "subject/Names.hpp"

namespace opc::inspection {

namespace {

// Programs write far less; a hostile document must not fill the memory.
constexpr std::size_t DEEPEST = 256;
constexpr std::size_t LONGEST_CODE = 4096;

} // namespace

void FieldCodes::begin(const model::XmlPlace& place) {
    if (open.size() < DEEPEST)
        open.push_back({{}, place});
    else
        ++unseen;
}

void FieldCodes::separate() {
    if (unseen == 0 && !open.empty())
        tellOf(open.back());
}

void FieldCodes::end() {
    if (unseen > 0) {
        --unseen;
    } else if (!open.empty()) {
        tellOf(open.back());
        open.pop_back();
    }
}

void FieldCodes::addText(std::u16string_view text) {
    if (open.empty()) // a code without a begin: readers may still take it
        begin({});
    std::u16string& code = open.back().code;
    if (unseen == 0 && code.size() < LONGEST_CODE)
        code += text;
}

void FieldCodes::endDocument() {
    unseen = 0;
    while (!open.empty())
        end();
}

void FieldCodes::tellOf(Field& field) {
    if (!field.isTold && !field.code.empty())
        tell(narrow(field.code), field.place);
    field.isTold = true;
}

} // namespace opc::inspection
