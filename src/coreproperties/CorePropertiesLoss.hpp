#pragma once

namespace opc::model {

class CoreProperties;
struct CorePropertyField;

/// Holds core properties against what is read in the document that was made of them. A file keeps whole seconds and no
/// white space at the end of keywords, and neither special times nor a list without keywords: that is no loss.
/// @return the first field that has changed; null if none has
const CorePropertyField* findLostCoreProperty(const CoreProperties& written, const CoreProperties& read);

} // namespace opc::model
