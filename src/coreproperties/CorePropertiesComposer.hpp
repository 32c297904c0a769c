#pragma once

#include <string>

namespace opc::model {

class CoreProperties;

/// Composes the document of core properties: the very bytes that Xerces writes, at a small part of its cost.
/// @param document  takes the document in place of what it held
/// @return whether all texts are plain: without control characters, and of the most usual scripts. If not,
///         `document` doesn't count
bool composePlainCoreProperties(const CoreProperties& properties, std::string& document);

} // namespace opc::model
