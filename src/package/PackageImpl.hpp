#pragma once

#include "contenttypes/ContentTypeSource.hpp"
#include "hash/TextHash.hpp"
#include "package/RelationshipSourceImpl.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "xml/DocumentBudget.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/XmlLimits.hpp>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>

namespace opc::model {

/// The state of a package, and the operations behind its interface. Each file defines the operations of one concern.
struct Package::Impl : RelationshipSource::Impl {
    using PartMap = std::map<PartName, Part, std::less<>>; // compares with texts too

    Impl(Package& package, interfaces::IPhysicalPackage& physicalPackage, const XmlLimits& xmlLimits);

    /// Reads content types, parts and relationships from the open store.
    /// @throws as `Package::open`
    void load();

    void flushPackage();
    void flushParts();
    void clearParts();
    void forgetContent();

    /// @name Parts
    /// @{

    /// @return the first part after a new one with that name
    /// @throws PartAlreadyExists
    PartMap::const_iterator findPlaceOfNewPart(const PartName& name) const;

    /// @throws PartIsDerivedFromExistingPartName
    void throwIfDerivedFromExistingPartName(const PartName& name) const;

    /// Creates a part in the store and adds its content type.
    /// @throws InvalidContentTypeStream  the stream holds elements that weren't read
    /// @throws PartCreateFailed
    interfaces::IPhysicalPart* createPartInternal(const PartName& name, const ContentType& type,
                                                  const interfaces::IPhysicalPartInfo& partInfo);

    /// Deletes a part from the store and forgets its content type.
    /// @throws PartDeleteFailed
    void deletePartInternal(const PartName& name);

    /// Deletes a part from the store.
    /// @throws PartDeleteFailed
    void deletePhysicalPart(const PartName& name);

    /// @}

    /// @name Data managers
    /// @{

    /// @throws PackageAlreadyOpen
    void addDataManager(DataManager* added);
    void removeDataManager(DataManager* removed);
    void forEachDataManager(const std::function<void(DataManager&)>& action);
    std::unordered_set<std::u16string, TextHash> getManagedPartNames() const;
    std::unordered_set<std::u16string, TextHash> getManagedRelationshipTypes() const;

    /// @}

    Package& package;
    interfaces::IPhysicalPackage& physicalPackage;
    XmlLimits xmlLimits;
    bool opened = false;
    interfaces::OpenMode openMode = interfaces::OpenMode::CreateOnly;
    PartMap parts;
    std::list<DataManager*> dataManagers;

    /// @name While the package is open
    /// @{
    std::shared_ptr<DocumentBudget> documentBudget;
    std::unique_ptr<ContentTypeSource> contentTypeSource;
    std::unique_ptr<RelationshipSerializer> relationshipSerializer;
    /// @}

private:
    void initializeParts();

    /// @param own  the content type of its `Override`; null if there is none
    ContentType findContentType(const PartName& name, const ContentType* own,
                                const interfaces::IPhysicalPart& physicalPart);
};

} // namespace opc::model
