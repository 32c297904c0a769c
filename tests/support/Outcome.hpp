#pragma once

#include <opc/core/Exception.hpp>

#include <boost/core/demangle.hpp>

#include <exception>
#include <string>
#include <typeinfo>

namespace opc::test {

/// The exception of an action, as "class: message"; empty if it throws nothing.
template <typename Action>
std::string outcomeOf(const Action& action) {
    try {
        action();
    } catch (const std::exception& e) {
        return boost::core::demangle(typeid(e).name()) + ": " + e.what();
    }
    return {};
}

/// The details of the exception of an action; empty if it throws nothing.
template <typename Action>
std::string detailsOf(const Action& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.details();
    }
    return {};
}

/// Compares the results of a scanner and of the parser for a document.
/// @return both, if they differ
inline std::string differenceOf(const std::string& byScanner, const std::string& byParser) {
    return byScanner == byParser ? std::string() : byScanner + "\nagainst\n" + byParser;
}

} // namespace opc::test
