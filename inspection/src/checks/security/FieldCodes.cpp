#include "checks/security/FieldCodes.hpp"

#include "subject/Names.hpp"
#include "text/LeadingBlanks.hpp"

namespace opc::inspection {

namespace {

// Programs write far less; a hostile document must not fill the memory. What decides is the first word of a code.
constexpr std::size_t DEEPEST = 256;
constexpr std::size_t LONGEST_CODE = 4096;

} // namespace

void FieldCodes::begin(const model::XmlPlace& place) {
    if (open.size() < DEEPEST) {
        open.push_back({{}, place});
    } else {
        ++deeper;
        beginDeep(place);
    }
}

void FieldCodes::beginDeep(const model::XmlPlace& place) {
    tellOf(deep);
    deep = {{}, place};
}

FieldCodes::Field& FieldCodes::innermost() {
    return deeper > 0 ? deep : open.back();
}

void FieldCodes::separate() {
    if (!open.empty())
        tellOf(innermost());
}

void FieldCodes::end() {
    if (deeper > 0) {
        beginDeep(deep.place); // what follows belongs to the field around
        --deeper;
    } else if (!open.empty()) {
        tellOf(open.back());
        open.pop_back();
    }
}

void FieldCodes::addText(std::u16string_view text) {
    if (open.empty()) // a code without a begin: readers may still take it
        begin({});
    std::u16string& code = innermost().code;
    if (code.size() < LONGEST_CODE)
        code += code.empty() ? withoutBlanksInFront(text) : text;
}

void FieldCodes::endDocument() {
    while (deeper > 0 || !open.empty())
        end();
}

void FieldCodes::tellOf(Field& field) {
    if (!field.isTold && !field.code.empty())
        tell(narrow(field.code), field.place);
    field.isTold = true;
}

} // namespace opc::inspection
