#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Inspection.hpp>

#include <array>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace opc::inspection {

/// What a report tells of one file.
struct InspectedFile {
    std::string name;        ///< as its user names it, mostly a path
    std::string failure;     ///< why it couldn't be read; empty if it could
    Report report;           ///< empty if there is a failure
    std::vector<bool> known; ///< by finding: whether a baseline has it. Empty without a baseline
    std::string picture;     ///< what `drawPackage` gives; only `makeHTMLReport` shows it

    bool isKnown(std::size_t finding) const { return !known.empty() && known[finding]; }
};

/// For each finding a text that stays the same as long as the fault does: 64 hexadecimal digits, SHA-256 over the rule, the
/// part or item, the relationship and its target, and the how-manieth finding of all this it is. Messages, lines and
/// offsets don't count, nor does the file's name.
OPC_INSPECTION_EXPORT std::vector<std::string> fingerprints(const Report& report);

/// The findings of an earlier run, so that a new run tells only what is new. A value type.
class OPC_INSPECTION_EXPORT Baseline {
public:
    /// @param file  what the caller calls it, in the same way each time
    void add(const std::string& file, const std::string& fingerprint);

    /// By finding: whether this file had it before.
    std::vector<bool> findKnown(const std::string& file, const Report& report) const;

private:
    std::set<std::pair<std::string, std::string>> findings;
};

/// What all files of a report have together, with the findings that aren't listed, which count as the worst of their rule in
/// the file. Known findings count apart.
class OPC_INSPECTION_EXPORT ReportSummary {
public:
    struct OfRule {
        std::uint64_t findings = 0; ///< with those that aren't listed, without the known
        std::uint64_t files = 0;
        std::uint64_t known = 0;
        Severity severity = Severity::Info; ///< the highest
    };

    void add(const InspectedFile& file);

    std::uint64_t files() const { return fileCount; }
    std::uint64_t count(Severity severity) const { return counts[static_cast<std::size_t>(severity)]; }
    std::uint64_t known() const { return knownCount; }
    const std::map<const Rule*, OfRule>& rules() const { return byRule; }

    /// Names and reasons of the files that couldn't be read.
    const std::vector<std::pair<std::string, std::string>>& failures() const { return failed; }

private:
    std::uint64_t fileCount = 0;
    std::uint64_t knownCount = 0;
    std::array<std::uint64_t, 3> counts{};
    std::map<const Rule*, OfRule> byRule;
    std::vector<std::pair<std::string, std::string>> failed;
};

/// A form in which a report of many files is written: `begin`, then `write` for each file with `separator` between the
/// texts of two files, where both have written something, then `end`. An object has no state, so that several threads can
/// write the files of one report, each into a stream of its own. What comes from packages is escaped: no output can
/// change a terminal or a page.
class OPC_INSPECTION_EXPORT ReportFormat {
public:
    virtual ~ReportFormat();

    virtual void begin(std::ostream& output) const;
    virtual void write(std::ostream& output, const InspectedFile& file) const = 0;
    virtual std::string separator() const { return {}; }
    virtual void end(std::ostream& output, const ReportSummary& summary) const;

protected:
    ReportFormat() = default;
    ReportFormat(const ReportFormat&) = default;
    ReportFormat& operator=(const ReportFormat&) = default;
};

/// Writes a report file by file, in one thread.
class OPC_INSPECTION_EXPORT ReportWriter {
public:
    /// Begins the report.
    /// @param output  must outlive this object
    ReportWriter(std::ostream& output, std::unique_ptr<ReportFormat> format);

    void add(const InspectedFile& file);

    /// Ends the report. Nothing is added after that.
    void end();

    const ReportSummary& summary() const { return sums; }

private:
    std::ostream& output;
    std::unique_ptr<ReportFormat> format;
    ReportSummary sums;
    bool hasWritten = false;
};

/// A line for each finding, `SEVERITY(RULE): FILE!/part(LINE,COLUMN)#ID: message`, and the counts at the end. Known findings
/// are left out.
/// @param colored  whether severities have the colours of a terminal
OPC_INSPECTION_EXPORT std::unique_ptr<ReportFormat> makeTextReport(bool colored = false);

/// An array with an object for each file, or one such object in each line. The page docs/inspection.md tells its members.
/// @{
OPC_INSPECTION_EXPORT std::unique_ptr<ReportFormat> makeJSONReport();
OPC_INSPECTION_EXPORT std::unique_ptr<ReportFormat> makeJSONLinesReport();
/// @}

/// Writes the object of one file, without its name, on one line: `format`, `findings`, `unlisted`.
OPC_INSPECTION_EXPORT void writeJSON(std::ostream& output, const InspectedFile& file);

struct SARIFOptions {
    std::string toolName;
    std::string toolVersion;
    std::filesystem::path root; ///< file names are told relative to this folder; empty: as they are
};

/// A SARIF 2.1.0 log with one run, as code hosts show it. The result's place is the file; the part is a logical location.
OPC_INSPECTION_EXPORT std::unique_ptr<ReportFormat> makeSARIFReport(SARIFOptions options);

/// The URI by which the SARIF report calls a file.
OPC_INSPECTION_EXPORT std::string toSARIFURI(const std::string& file, const std::filesystem::path& root);

/// One HTML page for people, without script and without anything from elsewhere. Known findings are only counted.
OPC_INSPECTION_EXPORT std::unique_ptr<ReportFormat> makeHTMLReport();

/// Draws a package as SVG: its parts, in columns by their distance from the package, and the relationships between them.
/// Colours show external targets, targets that are missing, parts that nothing leads to, and what signatures name. Many
/// parts of a kind are drawn as one.
/// @throws opc::Exception  the archive's bytes can't be read
OPC_INSPECTION_EXPORT std::string drawPackage(const Archive& archive,
                                              const physical::ZipOptions& limits = {});

} // namespace opc::inspection
