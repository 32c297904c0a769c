#pragma once

#include <opc/editing/ArchiveWriting.hpp>
#include <opc/editing/Change.hpp>
#include <opc/editing/Export.hpp>
#include <opc/editing/Signatures.hpp>

#include <opc/inspection/Inspection.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace opc::editing {

/// Something that was mended.
struct Mended {
    const inspection::Rule* rule; ///< that was broken; lives as long as the program
    inspection::Place place;      ///< where, in the package as it was
    std::string what;             ///< what was done, as a sentence without a full stop
    std::vector<Change> changes;  ///< the same for parts and relationships; empty for what isn't one of them
};

/// A package that was mended.
struct Mending {
    /// As it is now. If nothing was mended, this is the old one.
    inspection::Archive archive;

    /// The state of its file when that was opened, for `writeBack`.
    physical::FileState original;

    std::vector<Mended> mended; ///< in the order in which it was done

    /// What `inspect` still finds by the same options. `hint` says why it isn't mended.
    std::vector<inspection::Finding> left;

    /// The signatures of the package as it was: `Signatures::brokenBy` tells which of them the changes break.
    Signatures signatures;

    /// Those of everything that was mended. What isn't about a part or a relationship is about "/".
    OPC_EDITING_EXPORT std::vector<Change> changes() const;
};

/// Mends what `inspect` finds in a package, as far as that is certain and nothing is lost that a person could want. It
/// doesn't need the model to open the package, and goes on after every fault. Afterwards `inspect` finds nothing of what was
/// mended, and nothing new but parts that no relationship leads to any more [SEC-33].
///
/// The compressed bytes of items whose content stays are copied. Documents change in their own text: every other byte of them
/// stays. A relationship that the markup of its source names is never taken out, nor gets it another Id.
///
/// Findings of severity info are only mended if `options.only` names their rule. Writing an archive anew leaves out bytes
/// that belong to no item, and hidden items. That is told as mended, whatever the options choose.
///
/// Signatures may break: ask `Mending::signatures`.
///
/// The new archive lies in memory while it is small, otherwise in a temporary file without a name. Memory and time are bounded by the limits of `options`.
/// @throws opc::Exception  the archive's bytes can't be read, or the temporary file can't be written
OPC_EDITING_EXPORT Mending mend(inspection::Archive archive,
                                const inspection::InspectionOptions& options = {});

/// What `mend` does about a rule, as a sentence without a full stop; empty if it does nothing.
/// @param rule  the id, as it is written in `inspection::Rule`
OPC_EDITING_EXPORT std::string_view mendsOf(std::string_view rule);

} // namespace opc::editing
