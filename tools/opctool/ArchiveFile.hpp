#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Inspection.hpp>

#include <string>

namespace opctool {

class FileRun;
struct ReadOptions;

/// The archive of a run as it lies, for commands that don't open it as a package. Contents are read as packages are: unless
/// the run is strict, their compressed data may lack its last block.
/// @throws opc::Exception  it can't be read
opc::inspection::Archive openArchive(const FileRun& run);

/// The same for commands that look for faults: such contents can't be read.
opc::inspection::Archive openToInspect(const FileRun& run);

/// The same for another file of a run; "-" is standard input.
opc::inspection::Archive openArchive(const std::string& path, const ReadOptions& options);

/// Writes an archive that was made of the run's own to the target of the run, or back to its file if it has none. A dry run
/// writes nothing.
/// @param read  the state in which the file was read
void deliver(const FileRun& run, const opc::inspection::Archive& made, const opc::physical::FileState& read);

/// For inspections of a package before and after a change: with all findings, so that none that isn't listed passes for
/// new.
opc::inspection::InspectionOptions optionsForNewErrors(const FileRun& run);

} // namespace opctool
