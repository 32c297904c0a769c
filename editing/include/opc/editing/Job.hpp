#pragma once

#include <opc/editing/Cleaning.hpp>
#include <opc/editing/CorePropertyChanges.hpp>
#include <opc/editing/Editor.hpp>
#include <opc/editing/Export.hpp>
#include <opc/editing/Mending.hpp>
#include <opc/editing/Properties.hpp>
#include <opc/editing/Removing.hpp>

#include <opc/inspection/Rule.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace opc::editing {

/// The content of a part in a job: the bytes themselves, or a file.
struct JobContent {
    std::string bytes;
    std::string from; ///< a path with slashes, relative to the folder of the job; empty for the bytes
};

/// The steps of a job: each the arguments of one operation. Texts are UTF-8, and names are those of `Editor`.
/// @{

struct AddStep {
    std::string part, contentType;
    JobContent content;
};

struct PutStep {
    std::string part;
    JobContent content;
};

struct RemoveStep {
    std::vector<std::string> patterns; ///< as `removeParts` takes them
    RemoveOptions options;
};

struct MoveStep {
    std::string part, name;
};

struct RetypeStep {
    std::string part, contentType;
};

struct RelateStep {
    std::string source, type, target;
    bool external = false;
    std::string id; ///< empty to generate one
};

struct UnrelateStep {
    std::string source, id;
};

struct RetargetStep {
    std::string source, id, target;
    bool external = false;
};

struct CollectStep {};

struct PropertiesStep {
    CorePropertyChanges core;
};

/// Custom or extended properties.
struct OfficePropertiesStep {
    PropertyKind kind = PropertyKind::Custom;
    PropertyChanges changes;
};

struct CleanStep {
    CleaningOptions options;
};

/// What `mend` does by these options. It works on the archive, not on the model, so that such steps come first: `mendBefore`
/// makes them.
struct FixStep {
    unsigned profiles = inspection::OPC;  ///< bits of `inspection::Profile`
    std::vector<std::string> only, never; ///< rules, as of `inspection::InspectionOptions`
};

/// The package as it is at the end of the job must have no finding of this severity or a higher one.
struct CheckStep {
    inspection::Severity failOn = inspection::Severity::Error;
    unsigned profiles = inspection::OPC; ///< bits of `inspection::Profile`
};

/// @}

using Step =
    std::variant<AddStep, PutStep, RemoveStep, MoveStep, RetypeStep, RelateStep, UnrelateStep, RetargetStep,
                 CollectStep, PropertiesStep, OfficePropertiesStep, CleanStep, FixStep, CheckStep>;

/// Changes to be made together, in their order. A value type.
struct Job {
    std::vector<Step> steps;
};

/// A text isn't a job. The message names the step, by number and kind, or the place in the text.
class OPC_EDITING_EXPORT InvalidJob : public Exception {
public:
    explicit InvalidJob(const std::string& message) : Exception(message) {}
    ~InvalidJob() override;
};

/// Reads a job from JSON, as `jobSchema` describes it. A member that the schema doesn't have is refused, so that nothing that
/// was meant is passed over.
/// @throws InvalidJob
OPC_EDITING_EXPORT Job readJob(std::string_view json);

/// Writes a job as JSON, which `readJob` reads again as the same. Bytes that are text stand there as text, others in base64.
OPC_EDITING_EXPORT std::string writeJob(const Job& job);

/// The JSON Schema of jobs.
OPC_EDITING_EXPORT std::string_view jobSchema();

/// Where the files of a job lie.
struct JobFolder {
    std::filesystem::path path;
    bool mayBeLeft = false; ///< whether a job may name files outside of it. Jobs of strangers must not
};

/// Whether a job begins with steps that mend.
OPC_EDITING_EXPORT bool mends(const Job& job);

/// Makes these steps. Open the archive of the result as a package (`inspection::ArchiveSource`), make an `Editor` with its
/// signatures and changes, and go on with `applyJob`.
/// @param options  for all of them, but for what each step says itself
/// @return what all of them did together
/// @throws as `mend`; the details name the step
OPC_EDITING_EXPORT Mending mendBefore(inspection::Archive archive, const Job& job,
                                      const inspection::InspectionOptions& options = {});

/// Makes the other changes of a job. It stops at the first failure, whose details name the step, by number and kind; abandon the
/// package then. `CheckStep` does nothing here: it is about the package that is written.
/// @throws opc::Exception  a file can't be read, isn't a regular one, or lies outside the folder, also through links; a
///                         `FixStep` stands behind another step
/// @throws as the operation of a step; and the exceptions of `model::PartName` and `model::ContentType` for names and types
OPC_EDITING_EXPORT void applyJob(Editor& editor, const Job& job, const JobFolder& folder);

} // namespace opc::editing
