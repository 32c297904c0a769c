#pragma once

#include "reason/Shortened.hpp"

#include <opc/core/Exception.hpp>
#include <opc/standard_signatures/Reason.hpp>

#include <string>
#include <utility>

namespace opc::standard_signatures {

/// Ends the work on a signature or on one of its references. It is caught in this library and becomes a reason.
class Refusal : public Exception {
public:
    explicit Refusal(Reason reason) : Exception(reason.text), why(std::move(reason)) {
        why.text = shortened(why.text, LONGEST);
        why.place = shortened(why.place, LONGEST);
    }
    Refusal(Reason::Code code, const std::string& place, const std::string& text)
        : Refusal(Reason{code, place, text}) {}

    const Reason& reason() const { return why; }

private:
    static constexpr std::size_t LONGEST = 1000; ///< of a text that can have a part of the package in it

    Reason why;
};

} // namespace opc::standard_signatures
