#include "PackageFile.hpp"

#include "ArchiveFile.hpp"
#include "FileRun.hpp"
#include "TemporaryFile.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Package.hpp>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <streambuf>
#include <string>
#include <utility>

namespace opctool {

using opc::interfaces::IPhysicalPackage;
using opc::interfaces::Oddity;
using opc::interfaces::OpenMode;

/// The bytes of the package where the archive isn't to be the file itself.
class PackageFile::InputStream : private std::streambuf, public std::istream {
public:
    /// @param source  must outlive this object
    explicit InputStream(std::streambuf& source) : std::istream(this), source(source) {}
    explicit InputStream(std::unique_ptr<std::filebuf> file) : InputStream(*file) { owned = std::move(file); }

    std::uint64_t count() const { return total; }

protected:
    std::streamsize xsgetn(char* buffer, std::streamsize size) override {
        const std::streamsize got = source.sgetn(buffer, size);
        total += static_cast<std::uint64_t>(got);
        return got;
    }

private:
    std::streambuf& source;
    std::unique_ptr<std::filebuf> owned;
    std::uint64_t total = 0;
};

namespace {

opc::physical::ZipOptions zipOptions(const FileRun& run, bool lenient) {
    opc::physical::ZipOptions options = run.options().reading.zip;
    options.lenient = lenient;
    return options;
}

bool opensLeniently(const FileRun& run) {
    if (run.isStandardInput())
        return false;
    opc::physical::ZipPackage archive(run.path(), zipOptions(run, true));
    opc::physical::LenientPackage lenient(archive);
    opc::model::Package package(lenient);
    try {
        package.open(OpenMode::ReadOnly);
        return true;
    } catch (const opc::Exception&) {
        return false;
    }
}

} // namespace

/// @return null if the archive is to be the file itself
std::unique_ptr<PackageFile::InputStream> PackageFile::makeInput(const FileRun& run) {
    if (run.isStandardInput())
        return std::make_unique<InputStream>(*std::cin.rdbuf());
    if (run.target().empty() || !std::filesystem::is_regular_file(run.path()))
        return nullptr;
    auto file = std::make_unique<std::filebuf>();
    if (file->open(run.path(), std::ios::in | std::ios::binary) == nullptr)
        return nullptr; // opening the package tells why
    return std::make_unique<InputStream>(std::move(file));
}

opc::physical::ZipPackage PackageFile::makeArchive() {
    using opc::physical::ZipPackage;
    if (source)
        return ZipPackage(*source, makeOptions());
    return input ? ZipPackage(*input, makeOptions()) : ZipPackage(run.path(), makeOptions());
}

PackageFile::PackageFile(FileRun& run, const opc::editing::Mending* mending)
    : run(run), isStrict(run.options().reading.strict), mending(mending),
      source(mending != nullptr ? std::make_unique<opc::inspection::ArchiveSource>(mending->archive)
                                : nullptr),
      input(mending != nullptr ? nullptr : makeInput(run)), archive(makeArchive()), lenient(archive),
      store(isStrict ? static_cast<IPhysicalPackage&>(archive) : lenient) {
}

PackageFile::~PackageFile() = default;

opc::physical::ZipOptions PackageFile::makeOptions() {
    opc::physical::ZipOptions options = zipOptions(run, !isStrict);
    options.beforeReplacing = [this](const std::filesystem::path& written) { runCheck(written); };
    return options;
}

void PackageFile::runCheck(const std::filesystem::path& written) {
    if (!check)
        return;
    try {
        check(written);
    } catch (...) {
        refusal = std::current_exception();
        throw;
    }
}

void PackageFile::rethrowRefusal() const {
    if (refusal)
        std::rethrow_exception(refusal);
}

void PackageFile::open(opc::model::Package& package, OpenMode mode) const {
    try {
        package.open(mode);
    } catch (opc::Exception& e) {
        if (isStrict && opensLeniently(run))
            e.addDetails("--lenient opens the package all the same");
        throw;
    }
}

void PackageFile::deliver() const {
    if (mending != nullptr)
        return deliverMended();
    const std::string target = run.target();
    if (target == "-") {
        if (check)
            copyTo(TemporaryFile().path()); // which is checked
        archive.writeTo(std::cout);
    } else if (!target.empty()) {
        archive.writeTo(std::filesystem::path(target));
    }
}

void PackageFile::deliverMended() const {
    const TemporaryFile copy;
    copyTo(copy.path()); // which is checked
    opctool::deliver(run, opc::inspection::Archive(copy.path(), run.options().reading.zip),
                     mending->original);
}

void PackageFile::copyTo(const std::filesystem::path& path) const {
    archive.writeTo(path);
}

void PackageFile::readAsItLies(const std::function<void(IPhysicalPackage&)>& read) {
    archive.open(OpenMode::ReadOnly);
    try {
        read(archive);
    } catch (...) {
        archive.close(true);
        throw;
    }
    archive.close(true);
}

std::uint64_t PackageFile::size() const {
    return input ? input->count() : std::filesystem::file_size(run.path());
}

void PackageFile::open(const OpenMode& mode) {
    hasReported = false;
    store.open(mode);
}

void PackageFile::close(bool abandon) {
    if (!std::exchange(hasReported, true))
        run.report(getOddities());
    store.close(abandon);
}

std::vector<Oddity> PackageFile::getOddities() {
    return store.getOddities();
}

} // namespace opctool
