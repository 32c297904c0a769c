#pragma once

#include <opc/inspection/Inspection.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/physical/ZipOptions.hpp>
#include <opc/scanning/Export.hpp>
#include <opc/scanning/Result.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opc::scanning {

/// What is asked about each file, as bits.
enum Aspect : unsigned {
    FORMAT = 1,        ///< what the file is, by its content
    PARTS = 2,         ///< names, content types, sizes
    RELATIONSHIPS = 4, ///< of the package and of all parts
    PROPERTIES = 8,    ///< the core properties
    EXTERNALS = 16,    ///< what leads out of the package, by what it does
    SIGNATURES = 32,   ///< in both profiles, whether they hold and what they cover
    FINDINGS = 64,     ///< what `inspect` finds
    EVERY_ASPECT = FORMAT | PARTS | RELATIONSHIPS | PROPERTIES | EXTERNALS | SIGNATURES | FINDINGS
};

/// A package to be read: a file, or bytes in memory.
struct Source {
    std::string name;           ///< what the result is called
    std::filesystem::path path; ///< of the file
    std::shared_ptr<const std::vector<unsigned char>>
        bytes; ///< if there are any, they are read instead of the file
};

/// A file of that name.
OPC_SCANNING_EXPORT Source fileSource(const std::filesystem::path& path);

/// How files are read.
struct ScanOptions {
    unsigned what = FORMAT | PARTS | RELATIONSHIPS | PROPERTIES; ///< bits of `Aspect`
    unsigned jobs = 0;                                           ///< threads; 0: one for each core
    std::size_t window =
        256;             ///< how many files may have been taken whose results aren't given yet; at least 1
    bool strict = false; ///< whether packages that break the standard are failures
    physical::ZipOptions limits; ///< for hostile files; `lenient` has no effect

    /// For `FINDINGS`. Its limits and its file name have no effect.
    inspection::InspectionOptions inspection;

    /// For `SIGNATURES`. Without another policy the trust in signers isn't checked in the standard's profile, and the
    /// system's certificates are trusted in the other one.
    /// @{
    standard_signatures::VerificationPolicy standardPolicy;
    model::SignaturePolicy ownPolicy = model::SignaturePolicy::byTrust({});
    /// @}
};

/// Reads one file in this thread. Only what is asked for is read. The content of parts is read for `SIGNATURES` and
/// `FINDINGS` alone.
/// @return with a failure if something can't be read; only `std::bad_alloc` of the result itself is thrown
OPC_SCANNING_EXPORT Result readFile(const Source& source, const ScanOptions& options);

/// Reads many files in several threads, and gives their results one by one, in the order of the files.
///
/// Memory is bounded whatever the number of files: the next files are taken only while fewer than `ScanOptions::window`
/// results are outstanding, and a thread with a large result waits until that is the next one. One file that can't be read,
/// or that takes long, doesn't stop the others.
///
/// Use an object from one thread at a time, but for `stop`.
class OPC_SCANNING_EXPORT Scanner {
public:
    /// Gives the next file, or nothing at the end. It is called in the thread that calls `next`, some files ahead. If it
    /// throws, that is the end: `next` gives the results of the files before, and then throws that exception.
    using Sources = std::function<std::optional<Source>()>;

    Scanner(Sources sources, ScanOptions options);
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// Waits for the files that are being read, and drops all results.
    ~Scanner();

    /// @return the result of the next file; nothing when there are no more files
    std::optional<Result> next();

    /// Whether `next` has a result at hand, and neither waits nor takes files.
    bool isReady() const noexcept;

    /// Reads no further file, and waits for those that are being read. Then the scanner's threads use nothing that the end of
    /// a process destroys. It can be called from any thread, also while another one is in `next`, which may never return.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

/// Reads all files.
/// @param sink  gets the results in the order of the files, in this thread. If it throws, the scan ends
OPC_SCANNING_EXPORT void scan(Scanner::Sources sources, ScanOptions options,
                              const std::function<void(Result)>& sink);

/// The same for files that are known.
OPC_SCANNING_EXPORT void scan(const std::vector<std::filesystem::path>& files, ScanOptions options,
                              const std::function<void(Result)>& sink);

} // namespace opc::scanning
