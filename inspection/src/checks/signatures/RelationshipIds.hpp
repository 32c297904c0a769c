#pragma once

#include "hash/TextHash.hpp"
#include "subject/Subject.hpp"

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace opc::inspection {

/// The Ids in each relationships part, for all signatures together. They are collected when first asked for.
class RelationshipIds {
public:
    /// @param subject  must outlive this object
    explicit RelationshipIds(const Subject& subject) : subject(subject) {}

    /// Without it, the Ids aren't all.
    bool canBeRead(const PartView& part) { return viewOf(part).readable; }
    const std::unordered_set<std::string, TextHash>& of(const PartView& part) { return viewOf(part).ids; }

private:
    struct View {
        bool readable = false;
        std::unordered_set<std::string, TextHash> ids;
    };

    const View& viewOf(const PartView& part);

    const Subject& subject;
    std::unordered_map<const PartView*, View> views;
};

} // namespace opc::inspection
