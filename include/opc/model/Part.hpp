#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/RelationshipSource.hpp>

#include <cstdint>
#include <memory>
#include <optional>

namespace opc::model {

class Package;

/// A handle on one part of a package: its name, content type, content and relationships.
///
/// `Package` returns handles. They are cheap to copy: all copies share one state. A handle is valid until its part is
/// deleted or the package is closed; after that only its name and content type can be used. Use the handles of a package
/// from one thread at a time.
class OPC_MODEL_EXPORT Part : public RelationshipSource {
public:
    Part(const Part&);
    Part& operator=(const Part&);
    ~Part() override;

    PartName getName() const;
    ContentType getContentType() const;

    /// Gives the stream that reads the content.
    ///
    /// Every call on every copy of the handle returns the same stream, at its present position. At first it is ready to
    /// read; `close` followed by `open` restarts it. It lives as long as the handles. After `Package::deletePart` has
    /// deleted the content, even if it then fails, all operations of the stream throw `InvalidPartStream`. Don't use the
    /// stream after the package is closed.
    /// @throws InvalidObject      the part was deleted, or the package was closed
    /// @throws InvalidPartStream  the store gives no stream; the next call tries again
    InputStream& getInputStream() const;

    /// Gives the stream that replaces the content.
    ///
    /// The first call empties the part. Every further call returns the same stream: what you write then is appended,
    /// until the package is closed and opened again. You don't have to close the stream; a closed stream may accept no
    /// more bytes. It lives as long as the input stream.
    /// @throws InvalidObject      the part was deleted, or the package was closed
    /// @throws PackageReadOnly    the package was opened `ReadOnly`
    /// @throws InvalidPartStream  the store gives no stream; the next call tries again
    OutputStream& getOutputStream() const;

    /// Empties the part, also if it has been written already, and gives the same stream as `getOutputStream`, ready to write.
    /// @throws as `getOutputStream`
    OutputStream& restartOutputStream() const;

    /// Gives the size of the content without reading it. After the part has been written, this is the size written so
    /// far. The store gives the size that it has recorded; a damaged content is only found when it is read.
    /// @return the size in bytes; nothing if the store doesn't know sizes
    /// @throws InvalidObject      the part was deleted, or the package was closed
    /// @throws InvalidPartStream  the store can't give the size
    std::optional<std::uint64_t> getSize() const;

private:
    friend class DigitalSignatureManager;
    friend class Package;
    struct Impl;

    explicit Part(std::shared_ptr<Impl> impl);

    bool isValid() const override;
    bool isOpen() const override;
    bool isReadOnly() const override;
    bool isCreateOnly() const override;
    Package& getPackage() const override;

    Impl& state() const noexcept;
};

} // namespace opc::model
