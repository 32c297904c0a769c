#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace opc::interfaces {
class IPhysicalPackage;
}

namespace opc::model {

class ContentTypeMap;
class ContentTypeSerializer;

/// The content types stream of an open package (ECMA-376 Part 2, mapping content types).
///
/// Reads the stream when it is made, keeps its entries in step with the parts, and writes it when it has
/// changed. Does nothing if the physical package has no such stream. Lives from `Package::open` to
/// `Package::close`.
class ContentTypeSource {
public:
    /// @param physicalPackage  not owned
    /// @param createOnly       whether the package is new, so that there is nothing to read
    /// @param budget           what the documents of the package may take, together
    /// @throws InvalidContentTypeStream, InvalidContentType, InvalidURI
    ContentTypeSource(interfaces::IPhysicalPackage& physicalPackage, bool createOnly,
                      std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    ContentTypeSource(const ContentTypeSource&) = delete;
    ContentTypeSource& operator=(const ContentTypeSource&) = delete;
    ~ContentTypeSource();

    /// Whether the stream holds elements that weren't read, or were passed over: another content type for what has
    /// one, or for a relationships part.
    bool hasUnread() const;

    /// Asked before anything is changed that the stream would have to be written for.
    /// @throws InvalidContentTypeStream  the stream holds elements that weren't read
    void throwIfFixed() const;

    /// Enters a new part: the first part of an extension sets its `Default`. One of another type gets an
    /// `Override`, and so does one whose extension can't have a `Default`. An `Override` that stood there without a
    /// part gives way.
    void addContentType(const PartName& name, const ContentType& contentType);

    /// Whether the schema of content types takes an extension (ST_Extension): a part name can have others.
    static bool canHaveDefault(std::u16string_view extension);

    /// What `removeContentType` needs to know of a name, made while nothing has been deleted yet.
    static std::u16string extensionKey(const PartName& name);

    /// Forgets a part that is entered. Takes no memory.
    /// @throws ContentTypeNotFound
    void removeContentType(const PartName& name, const std::u16string& extension);

    /// The content type of a part found in the package: that of its `Override`, and else of the `Default` of its
    /// extension, which counts it from now on.
    /// @{

    using Override = std::pair<const PartName, ContentType>;

    /// Null if there is none.
    /// @param name  as the store gives it: it may be no part name
    const Override* findOverride(const std::u16string& name) const;

    /// @throws ContentTypeNotFound
    ContentType useDefault(const PartName& name);

    /// @}

    /// Writes the stream if it has changed.
    /// @throws InvalidContentTypeStream
    void flush();

private:
    void read();

    interfaces::IPhysicalPackage* physicalPackage;
    bool hasStream;
    std::unique_ptr<ContentTypeMap> contentTypes;
    std::unique_ptr<ContentTypeSerializer> serializer;
};

} // namespace opc::model
