#pragma once

#include <opc/editing/Mending.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace opc::model {
class Package;
} // namespace opc::model

namespace opctool {

class FileRun;

/// The store of a run's package. Unless it is strict, it accepts packages that real programs write although they
/// break the standard, and reports each oddity to the run before it closes. A changed package with a target of its own is written there, and
/// the package itself stays as it was.
class PackageFile : public opc::interfaces::IPhysicalPackage {
public:
    /// @param mending  what the package of the run has become already, which must outlive this object; null for nothing
    explicit PackageFile(FileRun& run, const opc::editing::Mending* mending = nullptr);

    /// Opens the model on this store. If a strict store fails, the message says whether a lenient one would succeed.
    void open(opc::model::Package& package, opc::interfaces::OpenMode mode) const;

    /// Gets the archive as it will be, in a file of its own, before it replaces anything or goes to standard output. An
    /// exception keeps all as it was.
    using Check = std::function<void(const std::filesystem::path& written)>;
    void checkBeforeReplacing(Check wanted) { check = std::move(wanted); }

    /// Throws the exception of the check again, if there was one: the model makes another class of it.
    void rethrowRefusal() const;

    /// Writes the archive as it was opened or saved last to a file.
    void copyTo(const std::filesystem::path& path) const;

    /// Writes the package, which has been closed, to the target of the run if there is one.
    void deliver() const;

    /// The archive itself, with what it holds as it lies. It is open while this store is.
    opc::interfaces::IPhysicalPackage& asItLies() { return archive; }

    /// Opens the archive itself, calls `read` with it, and closes it. Call it while the package is closed.
    void readAsItLies(const std::function<void(opc::interfaces::IPhysicalPackage&)>& read);

    /// @return the size of the archive in bytes
    std::uint64_t size() const;

    /// What the container has beside the parts.
    const std::vector<opc::physical::ZipPackage::IgnoredItem>& ignoredItems() const {
        return archive.ignoredItems();
    }

    bool usesContentTypeStream() override { return store.usesContentTypeStream(); }
    opc::interfaces::IPhysicalInputStream* getContentTypeInputStream() override {
        return store.getContentTypeInputStream();
    }
    opc::interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override {
        return store.getContentTypeOutputStream();
    }
    std::vector<opc::interfaces::IPhysicalPart*> getParts() override { return store.getParts(); }
    void open(const opc::interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    opc::interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                               const opc::interfaces::IPhysicalPartInfo& info) override {
        return store.createPart(name, contentType, info);
    }
    void deletePart(const std::u16string& name) override { store.deletePart(name); }
    std::vector<opc::interfaces::IgnoredItem> getIgnoredItems() override { return store.getIgnoredItems(); }
    std::vector<opc::interfaces::MisnamedItem> getMisnamedItems() override {
        return store.getMisnamedItems();
    }
    std::vector<opc::interfaces::Oddity> getOddities() override;
    ~PackageFile() override;

private:
    class InputStream;

    static std::unique_ptr<InputStream> makeInput(const FileRun& run);
    opc::physical::ZipPackage makeArchive();

    /// The options of the archive.
    opc::physical::ZipOptions makeOptions();
    void runCheck(const std::filesystem::path& written);
    void deliverMended() const;

    FileRun& run;
    const bool isStrict;
    Check check;                ///< may be empty
    std::exception_ptr refusal; ///< what it has thrown
    const opc::editing::Mending* const mending;
    std::unique_ptr<opc::inspection::ArchiveSource> source; ///< of what was mended; may be null
    std::unique_ptr<InputStream> input; ///< null if the archive is the file itself, or mended
    opc::physical::ZipPackage archive;
    opc::physical::LenientPackage lenient;
    opc::interfaces::IPhysicalPackage& store; ///< one of the two above
    bool hasReported = false;                 ///< since it was opened
};

} // namespace opctool
