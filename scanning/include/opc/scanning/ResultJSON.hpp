#pragma once

#include <opc/scanning/Export.hpp>
#include <opc/scanning/Scanner.hpp>

#include <string>

namespace opc::scanning {

/// One JSON object, in UTF-8 and on one line, with the members `hidden`, `error` and, of what was asked for and could
/// be read, `format`, `parts`, `relationships`, `properties`, `externals`, `signatures`, `findings`. They have the shapes
/// that `opctool --json=2` gives: `hidden` and `error` as its envelope has them, the others as the results of `type`, `ls`,
/// `rels --all`, `props`, `external`, `verify` and `check`. Without an error, `error` is null. `properties` is null if they
/// can't be read, and `propertiesFailure` says why.
/// @param aspects  which of these are written, as bits of `Aspect`
OPC_SCANNING_EXPORT std::string toJSON(const Result& result, unsigned aspects = EVERY_ASPECT);

/// The member `signatures` of it.
OPC_SCANNING_EXPORT std::string toJSON(const ScannedSignatures& signatures);

} // namespace opc::scanning
