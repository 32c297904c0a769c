#pragma once

#include <string>

namespace opc::interfaces {

class IPhysicalInputStream;
class IPhysicalOutputStream;

/// One part in a store. Relationships parts are parts too.
///
/// The store owns it, and keeps it valid until the part is deleted or the package is closed. Failures are
/// `opc::Exception`. A part that knows its size can also implement `IPhysicalPartSize`.
class IPhysicalPart {
public:
    /// The part name, by the rules of ECMA-376 Part 2.
    virtual std::u16string getName() const = 0;

    /// The content type. Called only if the package has no content types stream.
    virtual std::u16string getContentType() const = 0;

    /// Gives the content, ready to read from its first byte.
    virtual IPhysicalInputStream* getInputStream() = 0;

    /// Empties the part, and gives a stream for the new content, ready to write.
    virtual IPhysicalOutputStream* getOutputStream() = 0;

    virtual ~IPhysicalPart() = default;
};

} // namespace opc::interfaces
