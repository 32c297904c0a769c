#pragma once

#include <opc/model/Export.hpp>

#include <string>
#include <vector>

namespace opc::model {

class Package;

/// The base of classes that manage data which have their own parts and relationships in a package, such as signatures.
///
/// Create a data manager while its package is closed, and destroy it before the package: the package keeps a plain
/// pointer to it, and nothing checks this. Use it in the thread of the package.
///
/// A derived class calls `load` at the start of each operation that needs the data, and `markAsDirty` after each
/// operation that changes them. When the package is closed, it calls `doSave` before it writes anything else.
class OPC_MODEL_EXPORT DataManager {
public:
    DataManager(const DataManager&) = delete;
    DataManager& operator=(const DataManager&) = delete;

    /// The names of the parts that this manager manages. `ExcludeManaged` leaves them out of lists.
    std::vector<std::u16string> getManagedPartNames() const { return doGetManagedPartNames(); }

    /// The types of the relationships that this manager manages. `ExcludeManaged` leaves them out of lists.
    std::vector<std::u16string> getManagedRelationshipTypes() const {
        return doGetManagedRelationshipTypes();
    }

protected:
    /// Registers with `package`, without owning it.
    /// @param loadOnOpen  true to read the data when the package is opened; false to read them when they are first
    ///                    needed
    /// @throws PackageAlreadyOpen  the package is open
    DataManager(Package& package, bool loadOnOpen);
    virtual ~DataManager();

    /// Reads the data, unless they have been read since the package was opened. After a failure the next call tries
    /// again.
    void load();

    /// Says that the data have changed: the next `close` of the package saves them.
    void markAsDirty() noexcept;

    Package& getPackage() const noexcept { return *package; }

private:
    friend class Package;

    virtual void doLoad() = 0;
    virtual void doSave() = 0;
    virtual std::vector<std::u16string> doGetManagedPartNames() const = 0;
    virtual std::vector<std::u16string> doGetManagedRelationshipTypes() const = 0;

    void open(bool createOnly);
    void flush();
    void save();

    Package* package;
    bool loadOnOpen;
    bool needsLoad = true;
    bool dirty = true;
};

} // namespace opc::model
