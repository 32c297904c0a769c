#pragma once

#include <string>

namespace opc::model {

class CoreProperties;

/// Composes the document of core properties, byte for byte as Xerces would write it, in a fraction of the time.
/// @param document  receives the document; its old content is lost
/// @return whether all texts are plain: without control characters, and in the most usual scripts. If not, ignore
///         `document`
bool composePlainCoreProperties(const CoreProperties& properties, std::string& document);

} // namespace opc::model
