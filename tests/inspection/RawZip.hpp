#pragma once

#include "support/RawZip.hpp"

#include <opc/inspection/Inspection.hpp>

#include <string>
#include <vector>

/// Small packages to inspect. Each test takes the one that conforms and breaks one thing.
namespace opc::test {

/// The items of a package that conforms in all profiles: content types, relationships of the package, and a document of
/// Word with one paragraph.
std::vector<RawItem> smallItems();

/// The same with these items: each replaces the one of its name, or stands behind the others.
std::vector<RawItem> itemsWith(const std::vector<RawItem>& items);
Bytes packageWith(const std::vector<RawItem>& items = {});

/// The content types of the small package with further entries, such as `<Override …/>`.
RawItem contentTypesWith(const std::string& entries);

/// A relationships part that holds these elements. Its name is `_rels/.rels` or that of the source's.
RawItem relationshipsWith(const std::string& elements, const std::string& name = "_rels/.rels");

/// The relationship of the small package that leads to its document.
extern const char* const TO_DOCUMENT;

/// What an inspection finds: a line for each, `error M1.6 /part#rId: message`, in the order of the report. In front of the
/// message stands the part, the item or nothing. Each package is mended as well: see `expectMends`.
std::vector<std::string> findingsOf(const Bytes& package, unsigned profiles = inspection::EVERY_PROFILE);
std::vector<std::string> findingsOf(const Bytes& package, const inspection::InspectionOptions& options);

/// The ids of the rules that it breaks, each once, in the order of the report, separated by blanks; without rules that
/// only tell about the package (severity info), unless `infos`. The package is mended as well.
std::string brokenRules(const Bytes& package, unsigned profiles = inspection::EVERY_PROFILE,
                        bool infos = false);

} // namespace opc::test
