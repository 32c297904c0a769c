#pragma once

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/ExcludeMode.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/RelationshipSource.hpp>
#include <opc/model/XmlLimits.hpp>

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <unordered_set>
#include <vector>

namespace opc::interfaces {
class IPhysicalPackage;
class IPhysicalPart;
class IPhysicalPartInfo;
} // namespace opc::interfaces

namespace opc::model {

class ContentTypeSource;
class DataManager;
class DocumentBudget;
class RelationshipSerializer;

/// A package in the Open Packaging Conventions: the root of the object model.
///
/// Stands for what one physical package holds, which the application makes, keeps and hands in. Its parts are
/// found here; its own relationships come with the base class, their source being the package root "/".
/// Nothing is written before `close(false)`, and the destructor writes nothing. A closed package may be
/// opened again.
///
/// A package, all handles on it and its data managers serve one thread at a time.
class OPC_MODEL_EXPORT Package : public RelationshipSource {
public:
    /// Touches the physical package in no way.
    /// @param physical  not owned; must outlive this object
    /// @param limits    of the XML that the library itself reads from this package, and writes into it
    explicit Package(interfaces::IPhysicalPackage& physical, const XmlLimits& limits = {});
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    /// Closes the package and drops every change. Lets no exception out.
    ~Package() override;

    /// Opens the physical package and reads its content types, parts and relationships.
    ///
    /// After a failure the package is closed and empty. If closing it fails as well, that failure takes the
    /// place of the first; the package then stays open if its parts had been read.
    ///
    /// @throws PackageAlreadyOpen
    /// @throws PackageNotFound      there is no such package
    /// @throws PackageOpenFailed    the physical layer fails otherwise; `code()` tells the cause
    /// @throws InvalidContentTypeStream, InvalidContentType, ContentTypeNotFound  bad content types [M1.2]
    /// @throws InvalidPartName, InvalidURI    a name that breaks the rules [M1.1] to [M1.10]
    /// @throws InvalidRelationshipContent     a bad relationships part
    /// @throws InconsistentPackage            a relationships part without a source
    /// @throws InvalidCorePropertiesRelationships  more than one core properties relationship [M4.1]
    /// @throws opc::Exception       the physical layer gives no stream; or whatever a data manager raises
    void open(interfaces::OpenMode mode);

    /// Writes what has changed, unless the package was opened to read, and closes it; all handles become
    /// invalid. Does nothing if the package isn't open.
    ///
    /// After a failure the package is still open, with all its parts: mend the cause and close it again, or
    /// abandon it. Only a content types stream that failed while it was being closed isn't written again.
    ///
    /// @param abandon  true to drop every change instead
    /// @throws PackagePermissionDenied  the physical layer is denied permission
    /// @throws PackageCloseFailed       the physical layer fails otherwise; `code()` tells the cause
    /// @throws InvalidContentTypeStream, InvalidPartContent  a document can't be written
    /// @throws InvalidRelationshipContent  a part that couldn't be deleted has lost relationships that
    ///                                     weren't read: delete it again, or abandon the package
    /// @throws opc::Exception       a stream fails; or whatever a data manager raises
    void close(bool abandon);

    /// Adds a part, empty at first.
    /// @param name         not in use, not the root, not a relationships part in any letter case, and neither above
    ///                     nor below another part [M1.11]
    /// @param contentType  what the part holds
    /// @param partInfo     for the physical layer; `StandardPartInfo` in the ordinary case
    /// @throws PackageNotOpen, PackageReadOnly, PartHasRelationshipName, PartAlreadyExists,
    ///         PartIsDerivedFromExistingPartName, PartCreateFailed
    /// @throws InvalidPartName     the root, or a name with characters that no part name may hold [M1.6]: parts
    ///                             that were opened may have such names, and go on to work; or one beyond 1 MiB
    /// @throws InvalidContentType  it takes more than 1 MiB as it is written; or a parameter's value has a double quote or, in front of another one in quotes, ends
    ///                             in a backslash: the type couldn't be read again
    /// @throws InvalidContentTypeStream  the content types stream holds elements that weren't read, as they
    ///                                   have a namespace prefix, and would lose them. Nothing has changed
    Part createPart(const PartName& name, const ContentType& contentType,
                    const interfaces::IPhysicalPartInfo& partInfo);

    /// Deletes a part with its relationships. Relationships of others that lead to it stay.
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly, PartNotFound
    /// @throws InvalidContentTypeStream  as `createPart`
    /// @throws PartDeleteFailed  the physical layer fails. The part stays, even if its content or its
    ///                           relationships part has gone: delete it again, or abandon the package
    void deletePart(const PartName& name);

    /// @throws PackageNotOpen, PartNotFound
    Part getPart(const PartName& name) const;

    /// False for relationships parts: they are no parts of their own.
    /// @throws PackageNotOpen
    bool hasPart(const PartName& name) const;

    /// All parts in the order of their names, without regard to letter case. Relationships parts are never
    /// among them.
    /// @throws PackageNotOpen
    /// @throws InvalidSignature  managed parts are left out, and the signatures can't be read
    Enumerator<std::vector<Part>> getParts(ExcludeMode mode = ExcludeMode::ExcludeNone) const;

    /// Whether `name` lies above or below the name of a part [M1.11]. An equal name doesn't count.
    /// @param existing  set, if the answer is yes, to the name that conflicts, in lower case: `name` itself
    ///                  if it lies above others, otherwise the part above it
    bool isPartDerivedFromExistingPartName(const PartName& name, std::u16string& existing) const;

    /// Whether the content types stream holds elements that the model doesn't go by, and other programs may: they
    /// weren't read, as they have a namespace prefix or stand in the wrong place, or they give another content type
    /// to what already has one, or to a relationships part.
    /// @throws PackageNotOpen
    bool hasUnreadContentTypes() const;

    /// What the store holds beside the parts and another program could take for content.
    /// @throws PackageNotOpen
    std::vector<interfaces::IgnoredItem> getIgnoredItems() const;

    bool isOpen() const override;
    bool isReadOnly() const override;

    /// True also before the first `open`.
    bool isCreateOnly() const override;

protected:
    void flush();

private:
    friend class DataManager;
    friend class DigitalSignatureManager;
    friend class PackageHelper;
    friend class RelationshipSource;

    using PartMap = std::pmr::map<PartName, Part, std::less<>>; // compares with texts too

    bool isValid() const override;
    Package& getPackage() const override;
    void doVerifyRelationship(const std::u16string& id, const std::u16string& type,
                              const std::u16string& target) override;

    void initializeParts();
    ContentType findContentType(const PartName& name, interfaces::IPhysicalPart& physicalPart);
    void flushPackage();
    void flushParts();
    void clearParts();
    void forgetContent();

    /// @return the first part behind a new one of that name
    /// @throws PartAlreadyExists
    PartMap::const_iterator findPlaceOfNewPart(const PartName& name) const;
    interfaces::IPhysicalPart* createPartInternal(const PartName& name, const ContentType& contentType,
                                                  const interfaces::IPhysicalPartInfo& partInfo);
    void deletePartInternal(const PartName& name);
    void deletePhysicalPart(const PartName& name);

    void addDataManager(DataManager* manager);
    void removeDataManager(DataManager* manager);
    void forEachDataManager(const std::function<void(DataManager&)>& action);
    std::unordered_set<std::u16string> getManagedPartNames() const;
    std::unordered_set<std::u16string> getManagedRelationshipTypes() const;

    ContentTypeSource& getContentTypeSource() const { return *contentTypeSource; }
    const std::shared_ptr<DocumentBudget>& getDocumentBudget() const { return documentBudget; }
    RelationshipSerializer& getRelationshipSerializer() const { return *relationshipSerializer; }
    interfaces::IPhysicalPackage& getPackageImpl() const { return physicalPackage; }

    /// Asked before the first of changes that belong together.
    /// @throws InvalidContentTypeStream  the stream holds elements that weren't read
    void throwIfContentTypesFixed() const;
    void throwIfRelationshipName(const PartName& name) const;
    void throwIfDerivedFromExistingPartName(const PartName& name) const;
    void throwIfTooManyCorePropertiesRelationships(std::uint64_t limit) const;

    interfaces::IPhysicalPackage& physicalPackage;
    XmlLimits xmlLimits;
    bool opened = false;
    interfaces::OpenMode openMode = interfaces::OpenMode::CreateOnly;
    std::pmr::unsynchronized_pool_resource partMemory;
    PartMap parts{&partMemory};
    std::shared_ptr<DocumentBudget> documentBudget; // while it is open
    std::unique_ptr<ContentTypeSource> contentTypeSource;
    std::unique_ptr<RelationshipSerializer> relationshipSerializer;
    std::list<DataManager*> dataManagers;
};

} // namespace opc::model
