#pragma once

#include <cstddef>
#include <string>

namespace opc::model {

/// How many elements weren't read, and why.
std::string describeElements(std::size_t count);

/// Why a document with unread elements can't be written anew. Elements are found by their names without a prefix, so
/// that those with a prefix aren't read; nor is a root that isn't the usual one.
std::string describeUnread(std::size_t count);

} // namespace opc::model
