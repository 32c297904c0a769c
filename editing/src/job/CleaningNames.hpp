#pragma once

#include <opc/editing/Cleaning.hpp>

#include <utility>

namespace opc::editing {

/// What a job calls the metadata that are taken out.
constexpr std::pair<const char*, bool CleaningOptions::*> CLEANING[] = {
    {"core", &CleaningOptions::core},
    {"extended", &CleaningOptions::extended},
    {"custom", &CleaningOptions::custom},
    {"thumbnails", &CleaningOptions::thumbnails}};

} // namespace opc::editing
