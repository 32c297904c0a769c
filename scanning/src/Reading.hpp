#pragma once

#include <opc/scanning/Scanner.hpp>

namespace opc::interfaces {
class IPhysicalPackage;
} // namespace opc::interfaces

namespace opc::model {
class DigitalSignatureManager;
} // namespace opc::model

namespace opc::scanning {

/// Reads what the model tells: parts, relationships, properties, signatures.
/// @throws opc::Exception  the model doesn't open the package. If it has signatures in the standard's profile, the result
///                         has them all the same
void readByModel(const Source& source, const ScanOptions& options, Result& result);

/// Reads what the archive tells, also where the model doesn't open it: format, externals, findings.
/// @throws opc::Exception  the file can't be read, or is no archive and externals are asked for
void readByArchive(const Source& source, const ScanOptions& options, Result& result);

/// Reads the signatures in both profiles.
/// @param manager  of the open package
/// @param store    which the package is open on, as it lies
ScannedSignatures readSignatures(model::DigitalSignatureManager& manager, interfaces::IPhysicalPackage& store,
                                 const ScanOptions& options);

/// Reads those in the standard's profile alone.
/// @param store  open
ScannedSignatures readStandardSignatures(interfaces::IPhysicalPackage& store, const ScanOptions& options);

} // namespace opc::scanning
