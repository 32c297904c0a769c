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
/// The constructor reads the stream. The object keeps the entries in step with the parts, and writes the stream if it
/// has changed. Does nothing if the physical package has no such stream. Lives from `Package::open` to
/// `Package::close`.
class ContentTypeSource {
public:
    /// @param physicalPackage  not owned
    /// @param createOnly       whether the package is new, so that there is nothing to read
    /// @param budget           what the documents of the package may use together
    /// @throws InvalidContentTypeStream, InvalidContentType, InvalidURI
    ContentTypeSource(interfaces::IPhysicalPackage& physicalPackage, bool createOnly,
                      std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    ContentTypeSource(const ContentTypeSource&) = delete;
    ContentTypeSource& operator=(const ContentTypeSource&) = delete;
    ~ContentTypeSource();

    /// Whether the stream has elements that were ignored: they weren't read, or give a second content type to
    /// something, or a content type to a relationships part.
    bool hasUnread() const;

    /// Call it before any change that would have to be written into the stream.
    /// @throws InvalidContentTypeStream  the stream holds elements that weren't read
    void throwIfFixed() const;

    /// Adds a new part. The first part with an extension sets its `Default`. A part with another content type gets an
    /// `Override`, and so does one whose extension can't have a `Default`. An `Override` of this name that no part
    /// uses is replaced.
    void addContentType(const PartName& name, const ContentType& contentType);

    /// Gives a part that was added another content type: that of the `Default` of its extension, if this is the same, or
    /// else an `Override`.
    /// @throws ContentTypeNotFound  there is no stream
    void changeContentType(const PartName& name, const ContentType& contentType);

    /// Whether the schema allows a `Default` for an extension (ST_Extension). Part names can have other extensions.
    static bool canHaveDefault(std::u16string_view extension);

    /// What `removeContentType` needs to know about a name. Make it before anything is deleted.
    static std::u16string extensionKey(const PartName& name);

    /// Forgets a part that was added. Allocates no memory.
    /// @throws ContentTypeNotFound
    void removeContentType(const PartName& name, const std::u16string& extension);

    /// The content type of a part that the package has: that of its `Override`, otherwise that of the `Default` of
    /// its extension, which then counts one more part.
    /// @{

    using Override = std::pair<const PartName, ContentType>;

    /// @return null if there is none
    /// @param name  as the store gives it; possibly not a part name
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
