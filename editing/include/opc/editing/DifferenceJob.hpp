#pragma once

#include <opc/editing/Export.hpp>
#include <opc/editing/Job.hpp>

#include <opc/inspection/Comparison.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace opc::editing {

/// Keeps the contents of a job: small ones in the job, others in files of a folder. Without a call of `stay`, the destructor
/// removes the folder that it has made.
class OPC_EDITING_EXPORT JobContents {
public:
    /// @param folder  is made when the first content needs it; empty to keep all contents in the job
    /// @param name    what the job calls the folder, relative to its own
    explicit JobContents(std::filesystem::path folder = {}, std::string name = {})
        : folder(std::move(folder)), name(std::move(name)) {}
    JobContents(const JobContents&) = delete;
    JobContents& operator=(const JobContents&) = delete;
    ~JobContents();

    /// @throws opc::Exception  the content can't be read, or the file can't be written; the folder exists already
    JobContent keep(const inspection::ContentVersion& content);

    /// The job is written: the files stay.
    void stay() { files = 0; }

    /// What larger contents than this go to files.
    static constexpr std::size_t LARGEST_IN_JOB = 16384;

private:
    std::filesystem::path folder;
    std::string name;
    std::size_t files = 0;
};

/// A job that was made of differences.
struct DifferenceJob {
    Job job;
    std::vector<std::string> left; ///< what no job can change, a line of English each
};

/// The steps that lead from the first package of a comparison to the second one. Applied to the first, they make a package that
/// holds what the second does, but for what is `left`.
/// @param comparison  by `compare` without moves: a part that moves is removed and added
/// @throws opc::Exception  a content can't be read or kept
OPC_EDITING_EXPORT DifferenceJob makeJob(const inspection::Comparison& comparison, JobContents& contents);

} // namespace opc::editing
