#pragma once

#include "MendedDocument.hpp"

#include <memory>
#include <optional>
#include <set>
#include <string>

namespace opc::interfaces {
class IPhysicalPackage;
class IPhysicalPart;
} // namespace opc::interfaces

namespace opc::physical::lenient {

/// The content types of an open package, as they are to be read by the model.
class ContentTypes {
public:
    /// Reads the content types stream, if the package uses one. If that can't be read, or is too long, every
    /// part is taken to be covered, and the stream stays as it is.
    explicit ContentTypes(interfaces::IPhysicalPackage& package);

    bool covers(interfaces::IPhysicalPart& part) const;

    /// Adds the content type of relationships parts, for those that aren't covered.
    void coverRelationships();

    /// The stream that the model is to read; nothing if that is the package's own.
    std::optional<Bytes> changedStream() const;

private:
    void read(interfaces::IPhysicalPackage& package);

    bool usesStream;
    bool isReadable = true;
    bool isChanged = false;
    std::unique_ptr<MendedDocument> document;
    // Trees, since nobody can choose texts that make them slow.
    std::set<std::u16string> extensions; ///< in lower case
    std::set<std::u16string> names;      ///< of parts, in lower case
};

} // namespace opc::physical::lenient
