#include "ArchiveReports.hpp"

#include "FileRun.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace opctool {

using nlohmann::ordered_json;
using opc::editing::HiddenContent;

ordered_json hiddenToJSON(const std::vector<HiddenContent>& hidden) {
    ordered_json list = ordered_json::array();
    for (const HiddenContent& content : hidden)
        list.push_back({{"item", content.place.empty() ? ordered_json() : ordered_json(content.place)},
                        {"what", content.what}});
    return list;
}

void remark(FileRun& run, const std::vector<HiddenContent>& hidden, const char* beginning) {
    constexpr std::size_t MOST = 100;
    const std::size_t shown = run.options().output.verbose ? hidden.size() : std::min(hidden.size(), MOST);
    for (std::size_t i = 0; i < shown; ++i)
        run.remark((hidden[i].place.empty() ? "" : hidden[i].place + ": ") + beginning + hidden[i].what);
    if (shown < hidden.size())
        run.remark(std::to_string(hidden.size() - shown) + " more; -v shows them");
}

} // namespace opctool
