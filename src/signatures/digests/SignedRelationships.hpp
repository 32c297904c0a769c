#pragma once

#include <opc/model/Relationship.hpp>
#include <opc/model/SignatureParams.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace opc::model {

/// Relationships that are selected together: one by its ID, or all relationships of a source that have one type.
struct SelectedGroup {
    std::vector<Relationship> relationships;
    std::uint64_t length = 0; ///< the most bytes of the text that is digested
};

/// The relationships that a signature covers, each as often as it is selected. Every group is stored once: n
/// relationships of one type, each named by its own selector, make n² entries.
class SignedRelationships {
public:
    using Group = std::shared_ptr<const SelectedGroup>;

    /// A group, and how often it was selected.
    struct Repeated {
        const SelectedGroup* group;
        std::uint64_t times;
    };

    SignedRelationships() = default;

    /// @param selections  the groups in the order in which they were selected, none null
    explicit SignedRelationships(std::vector<Group> selections);

    /// The groups in the order in which they were selected.
    const std::vector<Group>& selections() const { return order; }

    /// Each group once.
    const std::vector<Repeated>& groups() const { return different; }

    bool empty() const { return entries == 0; }

    /// The work of digesting them, in bytes: the length of their text, and 500 for each different relationship. A group
    /// whose relationships are longer than 1 KiB on average counts four times.
    std::uint64_t work() const { return digestWork; }

    /// Every entry, in the order of the selections.
    /// @throws opc::Exception  if there are more than 10,000,000
    std::vector<Relationship> toVector() const;

    /// Whether the same relationships were selected in the same order, from the same state of the package.
    bool operator==(const SignedRelationships& other) const;

    /// The digest for each method, in Base64. It is computed once.
    mutable std::map<DigestMethod, std::u16string> digests;

private:
    std::vector<Group> order;
    std::vector<Repeated> different;
    std::uint64_t entries = 0;
    std::uint64_t digestWork = 0;
};

} // namespace opc::model
