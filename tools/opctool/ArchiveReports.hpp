#pragma once

#include <opc/editing/Unpacking.hpp>

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace opctool {

class FileRun;

/// What an archive has beside the contents of its items, for JSON.
nlohmann::ordered_json hiddenToJSON(const std::vector<opc::editing::HiddenContent>& hidden);

/// The same as remarks; of many only the first ones, unless all are asked for.
/// @param beginning  of each
void remark(FileRun& run, const std::vector<opc::editing::HiddenContent>& hidden, const char* beginning);

} // namespace opctool
