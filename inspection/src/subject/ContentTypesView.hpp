#pragma once

#include "subject/PartTable.hpp"
#include "subject/Subject.hpp"

#include <string>
#include <unordered_map>
#include <vector>

namespace opc::inspection {

/// The content types stream, and the types that it gives to parts.
struct ContentTypesView {
    DocumentState document;
    std::vector<ContentTypeEntry> entries;

    /// @param table  gets the type of each of its parts
    ContentTypesView(const Archive& archive, PartTable& table);

private:
    void giveTypes(std::vector<PartView>& parts) const;
};

} // namespace opc::inspection
