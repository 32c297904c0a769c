#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

#include <string_view>

namespace opc::inspection {

/// Where an item is: the part that it holds, or the item itself if it holds none.
Place placeOf(const ArchiveItem& item);

/// Whether the records of the archive break a rule.
bool hasFault(const Archive& archive, std::string_view rule);

/// Whether an archive without a content types stream was meant to be a package.
bool lacksContentTypesAlone(const Subject& subject);

/// The concerns of `checkContainer`.
/// @{

void checkKindOfFile(const Subject& subject, Findings& findings); ///< what it is, if it is no package
void checkRecords(const Subject& subject, Findings& findings); ///< headers, the directory, what lies between
void checkItemHeaders(const Subject& subject, Findings& findings); ///< what the records of an item say
void checkPieces(const Subject& subject, Findings& findings);
void tellWriter(const Subject& subject, Findings& findings); ///< what the headers say of who wrote them

/// @}

/// Checks the extra fields of an item.
/// @return whether there is a growth hint
bool checkExtraFields(const ArchiveItem& item, Findings& findings);

} // namespace opc::inspection
