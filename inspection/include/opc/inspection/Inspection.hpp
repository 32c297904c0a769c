#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Finding.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace opc::inspection {

/// What `inspect` looks for.
struct InspectionOptions {
    unsigned profiles = OPC; ///< bits of `Profile`
    std::vector<std::string>
        only; ///< ids of rules; if there are any, no other rule counts, and profiles don't
    std::vector<std::string> never; ///< ids of rules that don't count
    physical::ZipOptions limits;
    std::size_t mostFindingsOfARule = 100; ///< further ones are only counted
    std::string
        fileName; ///< the package's own name, for rules that compare it with the content; may be empty
};

struct Report {
    std::vector<Finding> findings; ///< in the order of the checks, within one rule in that of the package
    std::map<std::string, std::uint64_t> unlisted; ///< by rule: how many findings there were beyond the limit
    std::string format;                            ///< `docx`, `xlsx` … as `detectFormat` names it

    OPC_INSPECTION_EXPORT std::uint64_t count(Severity severity) const;
};

/// Checks a package by all rules that `options` choose. It goes on after every fault. Nothing is fetched.
///
/// Memory and time are bounded by the limits. Any number of threads may inspect different archives.
/// @throws opc::Exception  the archive's bytes can't be read; faults of the package itself are findings
OPC_INSPECTION_EXPORT Report inspect(const Archive& archive, const InspectionOptions& options = {});

} // namespace opc::inspection
