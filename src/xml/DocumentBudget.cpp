#include "xml/DocumentBudget.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <string>

namespace opc::model {

namespace {

std::string nameOf(DocumentShare::Kind kind) {
    if (kind == &XmlLimits::contentTypes)
        return "contentTypes";
    if (kind == &XmlLimits::relationships)
        return "relationships";
    if (kind == &XmlLimits::coreProperties)
        return "coreProperties";
    return kind == &XmlLimits::signature ? "signature" : "package";
}

[[noreturn]] void refuse(DocumentShare::Kind kind, std::uint64_t limit, bool isBytes) {
    const std::string unit = isBytes ? "bytes" : "elements";
    throw InvalidPartContent(
        (kind == &XmlLimits::package ? "The XML documents of a package can not have more than "
                                     : "XML content can not have more than ") +
        std::to_string(limit) + " " + unit + " (limit " + nameOf(kind) + "." + unit + ")");
}

} // namespace

DocumentShare& DocumentShare::operator=(DocumentShare&& other) noexcept {
    giveBack();
    budget = std::move(other.budget);
    kind = other.kind;
    taken = other.taken;
    return *this;
}

void DocumentShare::add(std::uint64_t XmlLimits::Size::*number, std::uint64_t count) {
    const bool isBytes = number == &XmlLimits::Size::bytes;
    const auto check = [&](Kind limited, std::uint64_t before) {
        const std::uint64_t limit = (budget->limits.*limited).*number;
        if (count > limit - std::min(limit, before))
            refuse(limited, limit, isBytes);
    };
    check(kind, taken.*number);
    check(&XmlLimits::package, budget->taken.*number);
    taken.*number += count;
    budget->taken.*number += count;
}

void DocumentShare::giveBack() noexcept {
    if (!budget)
        return;
    budget->taken.bytes -= taken.bytes;
    budget->taken.elements -= taken.elements;
    budget.reset();
}

std::uint64_t MeteredStream::read(unsigned char* buffer, std::uint64_t count) {
    const std::uint64_t got = stream.read(buffer, count);
    share.addBytes(std::min(got, count));
    if (bytesPerElement != 0) {
        pending += std::min(got, count);
        share.addElements(pending / bytesPerElement);
        pending %= bytesPerElement;
    }
    return got;
}

} // namespace opc::model
