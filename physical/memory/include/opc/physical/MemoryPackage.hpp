#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/physical/MemoryExport.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

/// A package kept in memory. Its content outlives `close`: what one `open` has written, the next one reads.
///
/// Changes are a transaction: `close(false)` puts all of them in the place of the old content, `close(true)`
/// and the destructor drop them. Names are compared without regard to the case of ASCII letters, and are
/// otherwise taken as they come: checking them is the business of the layer above. Parts keep the order in
/// which they were made.
///
/// A part, and each stream got from it, lives until the part is deleted or the package is closed. An input
/// stream reads the content that the part had when the stream was last opened: it goes on with that after a
/// write has begun, and `close` and then `open` take it to the new content. Asking for an output stream
/// replaces the content at once; an older output stream of the same part then raises on `write`.
///
/// One thread at a time. Failures are `opc::Exception` with a code of the generic category: 2 where a package
/// or part doesn't exist, 13 for changes in a package opened to read, 9 and 16 for a package that must be
/// open or closed and isn't.
class OPC_MEMORY_EXPORT MemoryPackage : public interfaces::IPhysicalPackage {
public:
    using Bytes = std::vector<unsigned char>;

    /// Where the content types stand: in one stream, as in a ZIP container, or with each part.
    enum class ContentTypes { InStream, InParts };

    /// A package that doesn't exist yet: it comes to be by `CreateOnly`, `setPart` or `setContentTypes`.
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

    /// @name The content, to be looked at and changed from outside while the package is closed
    /// @{

    std::vector<std::u16string> partNames() const;
    bool hasPart(const std::u16string& name) const;
    Bytes partBytes(const std::u16string& name) const;

    /// Adds a part, or gives the one of that name new content, type and spelling in its old place.
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
