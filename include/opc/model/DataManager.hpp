#pragma once

#include <opc/model/Export.hpp>

#include <string>
#include <vector>

namespace opc::model {

class Package;

/// The base of what looks after data of a package that stand in parts and relationships of their own.
///
/// Made between the construction of its package and `Package::open` (or after a `close`), and destroyed
/// before the package: the package keeps a plain pointer to it and there is no check. Used by the package's
/// thread.
///
/// A derived class calls `load` at the head of each operation that needs its data, and `markAsDirty` after
/// each that changes them. The package then has it save when the package is closed, before anything else is
/// written.
class OPC_MODEL_EXPORT DataManager {
public:
    DataManager(const DataManager&) = delete;
    DataManager& operator=(const DataManager&) = delete;

    /// The part names that this manager keeps for itself; `ExcludeManaged` leaves them out.
    std::vector<std::u16string> getManagedPartNames() const { return doGetManagedPartNames(); }

    /// The relationship types that this manager keeps for itself; `ExcludeManaged` leaves them out.
    std::vector<std::u16string> getManagedRelationshipTypes() const {
        return doGetManagedRelationshipTypes();
    }

protected:
    /// Registers with `package`, which isn't owned.
    /// @param loadOnOpen  whether the data are read when the package is opened, not when they are first
    /// needed
    /// @throws PackageAlreadyOpen
    DataManager(Package& package, bool loadOnOpen);
    virtual ~DataManager();

    /// Reads the data, unless that has been done since the package was opened. If it fails, the next call
    /// tries again.
    void load();

    /// From now on the data here count, not those in the package.
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
