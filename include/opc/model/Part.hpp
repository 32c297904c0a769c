#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/RelationshipSource.hpp>

#include <cstdint>
#include <optional>

namespace opc::interfaces {
class IPhysicalPart;
}

namespace opc::model {

class Package;

/// A handle on one part of a package: its name, content type, content and relationships.
///
/// Cheap to copy: all copies share one state. A handle is valid until its part is deleted or the package is
/// closed, and then never again; its name and content type can still be asked for. Got from `Package`; one
/// thread at a time.
class OPC_MODEL_EXPORT Part : public RelationshipSource {
public:
    Part(const Part&);
    Part& operator=(const Part&);
    ~Part() override;

    PartName getName() const;
    ContentType getContentType() const;

    /// The content, to read. Every call on every copy gives the same stream, in whatever position it stands:
    /// ready to read at first; `close` and then `open` restart it. It lives as long as the handles; once
    /// `Package::deletePart` has deleted the content, even if it fails then, all its operations raise
    /// `InvalidPartStream`. Don't use it once the package is closed.
    /// @throws InvalidObject      the part has gone
    /// @throws InvalidPartStream  the physical layer gives no stream; the next call asks it again
    InputStream& getInputStream() const;

    /// Where new content is written to, replacing the old. The same stream at every call, so that a second
    /// content lands behind the first until the package has been closed and opened again. It need not be
    /// closed, and may take nothing more once it is. It lives as the input stream does.
    /// @throws InvalidObject      the part has gone
    /// @throws PackageReadOnly    the package is opened to read
    /// @throws InvalidPartStream  the physical layer gives no stream; the next call asks it again
    OutputStream& getOutputStream() const;

    /// The bytes that a new reading of the content gives, where the physical layer knows without reading: those in the
    /// package or, once the part has been written, what has been written so far. It is the size that the store has
    /// noted: a damaged content is found when it is read.
    /// @return nothing if the store tells no sizes
    /// @throws InvalidObject      the part has gone
    /// @throws InvalidPartStream  the physical layer can't tell
    std::optional<std::uint64_t> getSize() const;

private:
    friend class DigitalSignatureManager;
    friend class Package;
    struct Impl;

    Part(Package* package, interfaces::IPhysicalPart* physicalPart, const PartName& name,
         const ContentType& contentType, interfaces::OpenMode openMode);

    bool isValid() const override;
    bool isOpen() const override;
    bool isReadOnly() const override;
    bool isCreateOnly() const override;
    Package& getPackage() const override;

    void flush();
    interfaces::IPhysicalPart* getPhysicalPart() const;
    void setPhysicalPart(interfaces::IPhysicalPart* physicalPart);

    /// The physical part has been deleted, but the part itself stays: there is no content to get any more.
    void forgetPhysicalPart();

    void markAsInvalid();

    Impl& state() const noexcept;
};

} // namespace opc::model
