#pragma once

#include <opc/core/Exception.hpp>

#include <boost/core/demangle.hpp>

#include <exception>
#include <string>
#include <typeinfo>

namespace opc::test {

/// What comes out of an action, as "class: message"; empty if it raises nothing.
template <typename Action>
std::string outcomeOf(const Action& action) {
    try {
        action();
    } catch (const std::exception& e) {
        return boost::core::demangle(typeid(e).name()) + ": " + e.what();
    }
    return {};
}

/// The details of what comes out of an action; empty if it raises nothing.
template <typename Action>
std::string detailsOf(const Action& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.details();
    }
    return {};
}

/// Holds what a scanner makes of a document against what the parser does.
/// @return both, if they differ
inline std::string differenceOf(const std::string& byScanner, const std::string& byParser) {
    return byScanner == byParser ? std::string() : byScanner + "\nagainst\n" + byParser;
}

} // namespace opc::test
