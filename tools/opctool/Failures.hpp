#pragma once

#include <nlohmann/json_fwd.hpp>

#include <exception>
#include <string>

namespace opctool {

/// A failure of a command, as it is told.
struct Failure {
    std::string className;          ///< of the exception, without its namespaces
    int code = 0;                   ///< of the system; 0 if there is none
    std::string message;            ///< with its details, without the name of the package's file in front
    std::string part, relationship; ///< that it is about; empty if it is about none

    /// The family of the class: format, not-found, state, store, signature, limit or installation.
    std::string kind() const;
};

/// @param package  the file that it is about; empty if it is about none
Failure describe(const std::exception& failure, const std::string& package);

/// The member `error` of what `--json=2` prints.
nlohmann::ordered_json toJSON(const Failure& failure);

} // namespace opctool
