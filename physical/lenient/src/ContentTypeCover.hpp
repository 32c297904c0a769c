#pragma once

#include <set>
#include <string>

namespace opc::interfaces {
class IPhysicalPackage;
class IPhysicalPart;
} // namespace opc::interfaces

namespace opc::physical::lenient {

/// Which parts of an open package have a content type.
class ContentTypeCover {
public:
    /// Reads the content types stream, if the package uses one. If that can't be read, every part is taken to
    /// be covered.
    explicit ContentTypeCover(interfaces::IPhysicalPackage& package);

    bool covers(interfaces::IPhysicalPart& part) const;

private:
    void read(interfaces::IPhysicalPackage& package);

    bool usesStream;
    bool isReadable = true;
    // Trees, since nobody can choose texts that make them slow.
    std::set<std::u16string> extensions; ///< in lower case
    std::set<std::u16string> names;      ///< of parts, in lower case
};

} // namespace opc::physical::lenient
