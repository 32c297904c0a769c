#pragma once

#include <opc/scanning/Export.hpp>

#include <exception>
#include <string>

namespace opc::scanning {

/// A failure as a value, for programs that report on many files. Texts are UTF-8.
struct OPC_SCANNING_EXPORT Failure {
    std::string className;          ///< of the exception, without its namespaces
    int code = 0;                   ///< of the system; 0 if there is none
    std::string message;            ///< with its details, without the name of the file in front
    std::string part, relationship; ///< that it is about; empty if it is about none

    /// The family of the class: format, not-found, state, store, signature, limit or installation.
    std::string kind() const;
};

/// @param package  the file that it is about; empty if it is about none
OPC_SCANNING_EXPORT Failure describe(const std::exception& failure, const std::string& package);

} // namespace opc::scanning
