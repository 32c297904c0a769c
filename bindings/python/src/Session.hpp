#pragma once

#include "Calls.hpp"
#include "PythonStore.hpp"
#include "PythonStreams.hpp"

#include <opc/editing/Editor.hpp>
#include <opc/editing/Job.hpp>
#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/RandomAccessSource.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opcpython {

/// A package is used by two calls at the same time: by two threads, or by an object of Python that it calls itself.
class PackageInUse : public opc::Exception {
public:
    explicit PackageInUse(const std::string& message) : Exception(message) {}
};

/// The operation works on what is saved, and there are changes that aren't.
class UnsavedChanges : public opc::Exception {
public:
    explicit UnsavedChanges(const std::string& message) : Exception(message) {}
};

/// How packages are opened.
struct OpenOptions {
    opc::physical::ZipOptions zip;
    bool strict = false;
    bool breaksSignatures = false;
};

/// Where an archive is: a file, or bytes of some kind, with the file object of Python that a save writes, if any.
class ArchivePlace {
public:
    static ArchivePlace file(std::filesystem::path path);
    static ArchivePlace bytes(opc::physical::ZipPackage::Bytes bytes);
    static ArchivePlace object(py::object file);

    /// An empty archive for a file object.
    static ArchivePlace newObject(py::object file);

    std::filesystem::path path; ///< empty: no file
    opc::physical::ZipPackage::Bytes content;
    std::shared_ptr<FileObject> target;
    bool isRead = false; ///< whether the target is also the source
};

/// An open package with its stores, as the objects of Python share it. A closed one stays here, so that each call after that
/// fails as the library says.
class Session {
public:
    Session(ArchivePlace place, opc::interfaces::OpenMode mode, OpenOptions options);

    Session(std::unique_ptr<PythonStore> store, opc::interfaces::OpenMode mode, OpenOptions options);

    /// Calls `action`, which is alone in using the package, without the interpreter's lock.
    /// @throws PackageInUse  another call uses it
    template <typename Action>
    auto use(Action&& action) -> decltype(action()) {
        const Turn turn(busy);
        return withoutLock(std::forward<Action>(action));
    }

    /// @name Within `use`
    /// @{

    opc::model::Package& package() { return *model; }
    opc::model::DigitalSignatureManager& signatures() { return *manager; }

    /// Null if the store is one of Python.
    opc::physical::ZipPackage* archive() { return zip.get(); }

    /// What the application gave, without the lenient view.
    opc::interfaces::IPhysicalPackage& store();

    /// The store that the model uses.
    opc::interfaces::IPhysicalPackage& view();

    /// For changes. The package counts as changed.
    opc::editing::Editor& edit();

    /// Makes the changes of a job. What it asks of the result is checked before the package is saved.
    /// @param refusesErrors  whether the result must not have errors that the package hasn't had
    void apply(const opc::editing::Job& job, const opc::editing::JobFolder& folder, bool refusesErrors);

    /// The changes are made without the editor.
    void setChanged() { changed = true; }
    bool isChanged() const { return changed; }

    /// Null before the first change.
    const opc::editing::Editor* editor() const { return edits.get(); }

    /// Grows when the package is opened again, which makes handles invalid.
    std::uint64_t generation() const { return opened; }

    /// @throws PackageNotOpen
    void requireOpen() const;

    /// @throws UnsavedChanges
    void requireSaved() const;

    /// Writes the changes to where the archive is, and goes on.
    void save();

    /// Writes the package there, and goes on with it there; the old archive stays as it was.
    void saveTo(ArchivePlace place);

    /// Writes the changes and closes the package.
    void saveAndClose();

    /// Drops the changes and closes the package.
    void close();

    /// The archive as it was opened or saved last.
    /// @{
    std::string bytes();
    opc::inspection::Archive openArchive(bool lenient);
    /// @}

    /// Who reads a part through its stream, and up to where; see `PartReader`.
    struct Reading {
        const void* reader = nullptr;
        std::uint64_t position = 0;
    };
    std::map<std::u16string, Reading> readings;

    /// @}

    /// @name For the garbage collector: the file object or the store of Python
    /// All that Python has of a package holds the object of this session, too.
    /// @{

    int visit(visitproc visit, void* arg) const;
    void finish();
    void forget();

    /// @}

private:
    class Turn {
    public:
        explicit Turn(std::atomic<bool>& busy);
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() { busy = false; }

    private:
        std::atomic<bool>& busy;
    };

    void makeArchive(ArchivePlace archivePlace);
    void makeModel();
    void open(opc::interfaces::OpenMode mode);
    void requireWritable() const;
    void requireSignatures() const;
    void checkResult(const opc::inspection::Archive& result) const;
    void closeAndCheck();
    void deliver();
    void closeInto(ArchivePlace& target);
    void forgetChanges();

    std::atomic<bool> busy{false};
    OpenOptions options;
    ArchivePlace place;
    std::function<void(const std::filesystem::path&)>
        beforeReplacing;                 ///< gets the new archive of a save in a file; may be empty
    std::vector<opc::editing::Job> jobs; ///< since the package was saved
    std::optional<opc::inspection::Report>
        before; ///< of the package that they change, if new errors are refused
    std::uint64_t opened = 0;
    bool changed = false;
    bool isReadOnly = true;
    bool isSaved = false; ///< since the archive was made: it isn't what the source has any more

    // In the order in which each needs those before it.
    std::unique_ptr<opc::physical::RandomAccessSource> source;
    std::unique_ptr<opc::physical::ZipPackage> zip;
    std::unique_ptr<PythonStore> other;
    std::unique_ptr<opc::physical::LenientPackage> lenient;
    std::unique_ptr<opc::model::Package> model;
    std::unique_ptr<opc::model::DigitalSignatureManager> manager;
    std::unique_ptr<opc::editing::Editor> edits;
};

} // namespace opcpython
