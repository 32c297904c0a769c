#pragma once

#include <opc/inspection/Export.hpp>

#include <cstddef>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// How bad a finding is for who uses the package.
enum class Severity {
    Info,    ///< worth knowing; programs read the package
    Warning, ///< some programs read it otherwise, or it may do harm
    Error    ///< the package breaks the standard, or is made to do harm
};

/// Sets of rules, as bits.
enum Profile : unsigned {
    OPC = 1,      ///< what ECMA-376 Part 2 asks of every package
    SECURITY = 2, ///< what loads or runs on open, what is hidden, what tells about people
    OFFICE = 4,   ///< what office programs ask beyond: ECMA-376 Parts 1 and 3
    EVERY_PROFILE = OPC | SECURITY | OFFICE
};

/// A rule that the checker knows. All texts are English and live as long as the program.
struct Rule {
    std::string_view id;        ///< stable for ever: `M1.6`, `SEC-46`
    std::string_view title;     ///< a few words
    Severity severity;          ///< the highest that its findings have
    unsigned profiles;          ///< bits of `Profile`
    std::string_view standard;  ///< the numbers in the standard, `M2.4, M3.5`; empty beyond the standard
    std::string_view statement; ///< what the rule asks
    std::string_view cause;     ///< how packages come to break it
    std::string_view writers;   ///< which programs write such files; empty if unknown
    std::string_view readers;   ///< what readers do with them
    std::string_view remedy;    ///< what mends it
};

/// All rules, sorted in the order in which `inspect` checks them: first the archive, then names, content types,
/// relationships, properties, signatures, office documents and security.
struct RuleList {
    const Rule* const* first;
    const Rule* const* last;
    const Rule* const* begin() const { return first; }
    const Rule* const* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
};
OPC_INSPECTION_EXPORT RuleList rules();

/// @param id  without regard to case
/// @return null if there is no such rule
OPC_INSPECTION_EXPORT const Rule* findRule(std::string_view id);

/// The rule of this id; if there is none, the rules that check this number of the standard, such as `M2.14`.
/// @param id  without regard to case
/// @return empty if there is no such rule
OPC_INSPECTION_EXPORT std::vector<const Rule*> findRules(std::string_view id);

} // namespace opc::inspection
