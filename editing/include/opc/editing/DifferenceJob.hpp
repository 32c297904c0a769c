#pragma once

#include <opc/editing/Export.hpp>
#include <opc/editing/Job.hpp>

#include <opc/inspection/Comparison.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace opc::editing {

/// Keeps the contents of a job: small ones in the job, others in files of a folder. Without a call of `stay`, the destructor
/// removes the folder that it has made.
class OPC_EDITING_EXPORT JobContents {
public:
    /// @param folder  beside the job; is made when the first content needs it; empty to keep all contents in the job
    explicit JobContents(std::filesystem::path folder = {}) : folder(std::move(folder)) {}
    JobContents(const JobContents&) = delete;
    JobContents& operator=(const JobContents&) = delete;
    ~JobContents();

    /// @throws opc::Exception  the content can't be read, or the file can't be written; the folder exists already
    JobContent keep(const inspection::ContentVersion& content);

    /// What `applyJob` needs to find them.
    JobFolder place() const { return {folder.has_parent_path() ? folder.parent_path() : "."}; }

    /// The job is written: the files stay.
    void stay() { files = 0; }

    /// What larger contents than this go to files.
    static constexpr std::size_t LARGEST_IN_JOB = 16384;

private:
    std::filesystem::path folder;
    std::size_t files = 0;
};

struct DifferenceOptions {
    std::vector<std::string> names; ///< as in `inspection::ComparisonOptions`: what the job is to be about
    physical::ZipOptions limits;
};

/// A job that was made of differences.
struct DifferenceJob {
    Job job;
    std::vector<std::string> left;             ///< what no step can change, a line of English each
    std::vector<Change> changes;               ///< what the job does to the first package
    std::vector<std::string> brokenSignatures; ///< parts of its signatures that don't hold then
    inspection::Archive result;                ///< the first package with these changes
};

/// The steps that lead from one package to another one. They were tried on a copy of the first one: if nothing is `left`,
/// `applyJob` makes of it a package in which `compare` finds no difference to the second one.
///
/// A part that has moved is renamed, with all relationships that lead to it. It is removed and added instead if it can't be
/// renamed, if `options` has names, or if very many parts have moved among very many relationships.
/// @param contents  gets the contents that the job needs
/// @throws opc::Exception  a name occurs in neither package; a content can't be read or kept; a temporary file can't be
///                         written
/// @throws as `Package::open`, with a `LenientPackage`, of the first package
OPC_EDITING_EXPORT DifferenceJob makeJob(const inspection::Archive& before, const inspection::Archive& now,
                                         JobContents& contents, const DifferenceOptions& options = {});

} // namespace opc::editing
