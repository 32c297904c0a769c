#pragma once

#include <string>

namespace opc::interfaces {

class IPhysicalInputStream;
class IPhysicalOutputStream;

/// One part as the physical layer stores it, relationships parts included.
///
/// The physical layer owns it, and keeps it valid until it is deleted or the package is closed. Failures are
/// `opc::Exception`. A part whose store knows sizes can tell its own: see `IPhysicalPartSize`.
class IPhysicalPart {
public:
    /// The part name, by the rules of ECMA-376 Part 2.
    virtual std::u16string getName() const = 0;

    /// Asked only if the package uses no content types stream.
    virtual std::u16string getContentType() const = 0;

    /// The content, ready to read from its first byte.
    virtual IPhysicalInputStream* getInputStream() = 0;

    /// Replaces the content; ready to write.
    virtual IPhysicalOutputStream* getOutputStream() = 0;

    virtual ~IPhysicalPart() = default;
};

} // namespace opc::interfaces
