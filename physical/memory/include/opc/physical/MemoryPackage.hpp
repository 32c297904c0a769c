#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/physical/MemoryExport.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

/// A package in memory. Its content stays after `close`: the next `open` reads what was written.
///
/// `close(false)` makes all changes at once, `close(true)` and the destructor drop them. Comparisons of names ignore the
/// case of ASCII letters. Names aren't checked: the layer above does this. Parts keep the order in which they were created.
///
/// A part and its streams exist until the part is deleted or the package is closed. An input stream reads the content that
/// the part had when the stream was last opened, also while new content is written; `close` followed by `open` continues
/// with the new content. Getting an output stream empties the part; `write` on an older output stream of the part then
/// throws.
///
/// Use it from one thread at a time. Failures are `opc::Exception` with a code of the generic category: 2 if a package or
/// part doesn't exist, 13 for changes in a package opened `ReadOnly`, 9 and 16 for a package that must be open or closed
/// and isn't.
class OPC_MEMORY_EXPORT MemoryPackage : public interfaces::IPhysicalPackage {
public:
    using Bytes = std::vector<unsigned char>;

    /// Where the content types are: in one stream, as in a ZIP archive, or with each part.
    enum class ContentTypes { InStream, InParts };

    /// A package that doesn't exist yet. `CreateOnly`, `setPart` and `setContentTypes` create it.
    explicit MemoryPackage(ContentTypes contentTypes = ContentTypes::InStream);
    ~MemoryPackage() override;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;
    std::vector<interfaces::IPhysicalPart*> getParts() override;
    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    /// @name Reading and changing the content while the package is closed
    /// @{

    std::vector<std::u16string> partNames() const;
    bool hasPart(const std::u16string& name) const;
    Bytes partBytes(const std::u16string& name) const;

    /// Adds a part, or replaces the content, the type and the spelling of an existing one.
    void setPart(const std::u16string& name, Bytes bytes, const std::u16string& contentType = {});
    void removePart(const std::u16string& name);

    bool hasContentTypes() const;
    Bytes contentTypes() const;
    void setContentTypes(Bytes bytes);
    void removeContentTypes();

    /// @}

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
