#pragma once

namespace opc::model {

class CoreProperties;
struct CorePropertyField;

/// Compares core properties with what is read from the document that was written of them. Some differences aren't
/// losses: a file keeps no fractions of seconds, no white space at the end of keywords, no special times, and no list
/// without keywords.
/// @return the first field that has changed; null if none has
const CorePropertyField* findLostCoreProperty(const CoreProperties& written, const CoreProperties& read);

} // namespace opc::model
