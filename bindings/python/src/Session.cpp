#include "Session.hpp"

#include <opc/editing/ResultCheck.hpp>
#include <opc/model/Errors.hpp>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include <unistd.h>

namespace opcpython {

using opc::interfaces::IPhysicalPackage;
using opc::interfaces::OpenMode;
using opc::physical::LenientPackage;
using opc::physical::ZipOptions;
using opc::physical::ZipPackage;

namespace {

/// Ends a save whose new archive went elsewhere.
class Redirected : public opc::Exception {
public:
    Redirected() : Exception("the package was saved elsewhere") {}
};

/// A file without a name.
std::fstream makeTemporaryFile() {
    std::string name = (std::filesystem::temp_directory_path() / "opcmodel-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    std::fstream file(name, std::ios::in | std::ios::out | std::ios::binary);
    if (descriptor < 0 || !file)
        throw opc::Exception("a temporary file can't be made", {errno, boost::system::generic_category()});
    ::close(descriptor);
    std::filesystem::remove(name);
    return file;
}

/// A file object is only touched when the whole archive is there: the archive may be read from the same one.
void writeTo(const ArchivePlace& place, const ZipPackage& archive) {
    if (!place.path.empty()) {
        archive.writeTo(place.path);
        return;
    }
    std::fstream whole = makeTemporaryFile();
    archive.writeTo(whole);
    whole.seekg(0);
    place.target->restart();
    std::vector<char> block(std::size_t{64} * 1024);
    while (whole.read(block.data(), static_cast<std::streamsize>(block.size())) || whole.gcount() != 0)
        place.target->write(block.data(), static_cast<std::size_t>(whole.gcount()));
    place.target->flush();
}

/// All findings, so that none that isn't listed passes for new.
opc::inspection::InspectionOptions inspectionOptions(const ZipOptions& limits) {
    opc::inspection::InspectionOptions options;
    options.limits = limits;
    options.mostFindingsOfARule = std::size_t{1} << 20U;
    return options;
}

ZipPackage::Bytes readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

ArchivePlace ArchivePlace::file(std::filesystem::path path) {
    ArchivePlace made;
    made.path = std::move(path);
    return made;
}

ArchivePlace ArchivePlace::bytes(ZipPackage::Bytes bytes) {
    ArchivePlace made;
    made.content = std::move(bytes);
    return made;
}

ArchivePlace ArchivePlace::object(py::object file) {
    ArchivePlace made = newObject(std::move(file));
    made.isRead = true;
    return made;
}

ArchivePlace ArchivePlace::newObject(py::object file) {
    ArchivePlace made;
    made.target = std::make_shared<FileObject>(std::move(file));
    return made;
}

Session::Turn::Turn(std::atomic<bool>& busy) : busy(busy) {
    if (busy.exchange(true))
        throw PackageInUse("The package is used by another call at the same time");
}

Session::Session(ArchivePlace archivePlace, OpenMode mode, OpenOptions openOptions)
    : options(std::move(openOptions)) {
    makeArchive(std::move(archivePlace));
    open(mode);
}

Session::Session(std::unique_ptr<PythonStore> store, OpenMode mode, OpenOptions openOptions)
    : options(std::move(openOptions)), other(std::move(store)) {
    makeModel();
    open(mode);
}

void Session::makeArchive(ArchivePlace archivePlace) {
    edits.reset();
    manager.reset();
    model.reset();
    lenient.reset();
    zip.reset();
    source.reset();
    isSaved = false;
    place = std::move(archivePlace);
    ZipOptions zipOptions = options.zip;
    zipOptions.beforeReplacing = [this](const std::filesystem::path& written) {
        if (beforeReplacing)
            beforeReplacing(written);
    };
    if (!place.path.empty()) {
        zip = std::make_unique<ZipPackage>(place.path, std::move(zipOptions));
    } else if (place.isRead) {
        source = std::make_unique<FileObjectSource>(place.target);
        zip = std::make_unique<ZipPackage>(*source, std::move(zipOptions));
    } else {
        zip = std::make_unique<ZipPackage>(std::exchange(place.content, {}), std::move(zipOptions));
    }
    makeModel();
}

void Session::makeModel() {
    if (!options.strict)
        lenient = std::make_unique<LenientPackage>(store());
    model = std::make_unique<opc::model::Package>(view());
    manager = std::make_unique<opc::model::DigitalSignatureManager>(*model);
}

void Session::open(OpenMode mode) {
    model->open(mode);
    ++opened;
    readings.clear();
    isReadOnly = mode == OpenMode::ReadOnly;
    changed = mode == OpenMode::CreateOnly;
}

IPhysicalPackage& Session::store() {
    if (zip)
        return *zip;
    return *other;
}

IPhysicalPackage& Session::view() {
    return lenient ? static_cast<IPhysicalPackage&>(*lenient) : store();
}

opc::editing::Editor& Session::edit() {
    if (!edits)
        edits = std::make_unique<opc::editing::Editor>(*model);
    changed = changed || !isReadOnly;
    return *edits;
}

void Session::requireOpen() const {
    if (!model->isOpen())
        throw opc::model::PackageNotOpen("The package is closed");
}

void Session::requireSaved() const {
    requireOpen();
    if (changed)
        throw UnsavedChanges("The package has changes that aren't saved");
}

void Session::requireWritable() const {
    requireOpen();
    if (isReadOnly)
        throw opc::model::PackageReadOnly("The package was opened for reading");
}

void Session::requireSignatures() const {
    if (edits && !options.breaksSignatures)
        edits->throwIfSignaturesAreBroken();
}

/// Writes an archive that was saved in memory to the file object that it is for.
void Session::deliver() {
    if (zip && place.target && changed)
        writeTo(place, *zip);
}

void Session::save() {
    requireWritable();
    try {
        saveAndClose();
    } catch (...) {
        if (!model->isOpen()) { // the new archive is in memory, and its file object has failed
            open(OpenMode::ReadWrite);
            changed = true;
        }
        throw;
    }
    open(OpenMode::ReadWrite);
}

void Session::saveAndClose() {
    if (!model->isOpen())
        return;
    if (isReadOnly)
        return close();
    requireSignatures();
    closeAndCheck();
    forgetChanges();
    deliver();
    changed = false;
}

void Session::close() {
    if (!model->isOpen())
        return;
    model->close(true);
    forgetChanges();
    changed = false;
}

void Session::forgetChanges() {
    edits.reset();
    jobs.clear();
    before.reset();
}

void Session::apply(const opc::editing::Job& job, const opc::editing::JobFolder& folder, bool refusesErrors) {
    requireWritable();
    if (refusesErrors && !before && zip && !edits && !changed)
        before = inspect(openArchive(options.zip.lenient), inspectionOptions(options.zip));
    applyJob(edit(), job, folder);
    jobs.push_back(job);
}

void Session::checkResult(const opc::inspection::Archive& result) const {
    const auto inspection = inspectionOptions(options.zip);
    if (before && edits)
        opc::editing::refuseNewErrors(
            findNewErrors(*before, inspect(result, inspection), edits->changes(), edits->brokenSignatures()));
    for (const opc::editing::Job& job : jobs)
        opc::editing::checkResult(result, job, inspection);
}

/// Closes the package, unless a job asks for another result. The model makes another exception of that.
void Session::closeAndCheck() {
    std::exception_ptr refusal;
    beforeReplacing = [&](const std::filesystem::path& written) {
        try {
            checkResult(opc::inspection::Archive(written, options.zip));
        } catch (...) {
            refusal = std::current_exception();
            throw;
        }
    };
    try {
        model->close(false);
    } catch (...) {
        beforeReplacing = nullptr;
        if (refusal)
            std::rethrow_exception(refusal);
        throw;
    }
    beforeReplacing = nullptr;
    isSaved = true;
    if (zip && place.path.empty() && !jobs.empty())
        checkResult(openArchive(options.zip.lenient));
}

/// Closes the package and writes it there. An archive in a file stays as it was, and a target that is no file gets the bytes
/// with which the package goes on.
void Session::closeInto(ArchivePlace& target) {
    std::exception_ptr failure;
    bool isWritten = false;
    beforeReplacing = [&](const std::filesystem::path& written) {
        try {
            checkResult(opc::inspection::Archive(written, options.zip));
            writeTo(target, ZipPackage(written, options.zip));
            if (target.path.empty())
                target.content = readFile(written);
            isWritten = true;
        } catch (...) {
            failure = std::current_exception();
        }
        throw Redirected();
    };
    try {
        model->close(false);
    } catch (...) {
        beforeReplacing = nullptr;
        if (failure)
            std::rethrow_exception(failure);
        if (!isWritten)
            throw;
        model->close(true);
    }
    beforeReplacing = nullptr;
    isSaved = true;
    if (isWritten)
        return;
    if (!jobs.empty())
        checkResult(openArchive(options.zip.lenient));
    writeTo(target, *zip);
    if (target.path.empty() && !place.path.empty())
        target.content = readFile(place.path);
}

void Session::saveTo(ArchivePlace target) {
    requireOpen();
    if (!zip)
        throw opc::Exception("A package in a store of the application's own is saved there alone");
    if (isReadOnly)
        return writeTo(target, *zip);
    requireSignatures();
    closeInto(target);
    forgetChanges();
    if (target.path.empty() && place.path.empty())
        place.target = std::move(target.target);
    else
        makeArchive(std::move(target));
    open(OpenMode::ReadWrite);
}

opc::inspection::Archive Session::openArchive(bool lenient) {
    using opc::inspection::Archive;
    opc::physical::ZipOptions zipOptions = options.zip;
    zipOptions.lenient = lenient;
    if (!place.path.empty())
        return Archive(place.path, zipOptions);
    if (source && !isSaved)
        return Archive(std::make_shared<FileObjectSource>(place.target), zipOptions);
    const std::string all = bytes();
    return Archive(std::vector<unsigned char>(all.begin(), all.end()), zipOptions);
}

int Session::visit(visitproc visit, void* arg) const {
    if (busy)
        return 0;
    if (place.target)
        if (const int stopped = place.target->object().visit(visit, arg))
            return stopped;
    return other ? other->object().visit(visit, arg) : 0;
}

void Session::finish() {
    use([this] { close(); });
}

void Session::forget() {
    if (place.target)
        place.target->object().forget();
    if (other)
        other->object().forget();
}

std::string Session::bytes() {
    if (!zip)
        throw opc::Exception("A package in a store of the application's own has no archive");
    std::ostringstream stream;
    zip->writeTo(stream);
    return stream.str();
}

} // namespace opcpython
