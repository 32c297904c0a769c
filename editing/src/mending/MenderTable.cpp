#include "mending/Menders.hpp"

#include <unordered_map>

namespace opc::editing::mending {

const Mender* findMender(std::string_view rule) {
    static const std::unordered_map<std::string_view, const Mender*> all = [] {
        std::unordered_map<std::string_view, const Mender*> byRule;
        for (const MenderRows rows : {archiveMenders(), nameMenders(), documentMenders(),
                                      contentTypeMenders(), relationshipMenders(), propertyMenders()})
            for (std::size_t i = 0; i < rows.count; ++i)
                byRule.emplace(rows.first[i].rule, rows.first + i);
        return byRule;
    }();
    const auto found = all.find(rule);
    return found == all.end() ? nullptr : found->second;
}

} // namespace opc::editing::mending
