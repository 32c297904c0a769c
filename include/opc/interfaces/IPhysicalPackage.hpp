#pragma once

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/MisnamedItem.hpp>
#include <opc/interfaces/Oddity.hpp>
#include <opc/interfaces/OpenMode.hpp>

#include <string>
#include <vector>

namespace opc::interfaces {

class IPhysicalInputStream;
class IPhysicalOutputStream;
class IPhysicalPart;
class IPhysicalPartInfo;

/// The store of a package: a ZIP archive, a database, memory, or whatever the application implements.
///
/// The application owns the store and keeps it alive longer than the `opc::model::Package` that uses it. The store owns
/// every object that it returns by pointer, and so do its parts. It never returns a null pointer: it throws instead. One
/// thread uses it at a time. Every failure is an `opc::Exception`; if the system reported a cause, its code is in the
/// generic category.
class IPhysicalPackage {
public:
    virtual ~IPhysicalPackage() = default;

    /// Whether the package has one content types stream. If not, each part has its own content type.
    /// Called after `open`.
    virtual bool usesContentTypeStream() = 0;

    /// Gives the content types stream. Called once while the package is opened, unless it is opened `CreateOnly`.
    virtual IPhysicalInputStream* getContentTypeInputStream() = 0;

    /// Replaces the content types stream. The library writes it completely and closes it. If the content types haven't
    /// changed, this isn't called and the old stream stays.
    virtual IPhysicalOutputStream* getContentTypeOutputStream() = 0;

    /// Gives all parts, including relationships parts.
    virtual std::vector<IPhysicalPart*> getParts() = 0;

    /// Opens the package; called before all other functions. With `CreateOnly` the package is empty, and replaces an
    /// existing one when it is closed.
    /// @throws opc::Exception  the package can't be opened. If it doesn't exist, the code is equivalent to
    ///                         no_such_file_or_directory
    virtual void open(const OpenMode& mode) = 0;

    /// Makes all changes final and closes the package. After a failure the package is still open.
    /// @param abandon  true to drop all changes since `open` instead
    /// @throws opc::Exception  the package can't be written. If the permission is denied, the code is equivalent to
    ///                         permission_denied
    virtual void close(bool abandon) = 0;

    /// Creates an empty part. If a part with this name exists, its content is replaced.
    ///
    /// The name follows the grammar of part names (ECMA-376 Part 2): one or more segments, each after a slash, and each
    /// of one or more pchar of RFC 3986. So it is in US-ASCII and has no blanks. It differs from the names of all other
    /// parts in more than letter case. Only relationships parts have a name of the form of relationships parts, in any
    /// letter case. If the store itself has given a part another kind of name, the name of its relationships part has
    /// the same characters. A store that can't keep a name throws here: after the next `open` the name must be the same.
    /// @param contentType  in printable US-ASCII. A store without a content types stream keeps it with the part
    /// @param info         hints of the creator; valid during the call
    /// @throws opc::Exception  the part can't be created
    virtual IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                      const IPhysicalPartInfo& info) = 0;

    /// Deletes a part and its content.
    /// @throws opc::Exception  the part can't be deleted
    virtual void deletePart(const std::u16string& name) = 0;

    /// Lists what the open package contains beside its parts and another program could take for content. No signature
    /// covers it, so the verdict on the signatures mentions it. Stores without such things don't override this.
    virtual std::vector<IgnoredItem> getIgnoredItems() { return {}; }

    /// Lists what other programs may take for something else than it is here. No signature is complete then. Stores without
    /// such things don't override this.
    virtual std::vector<MisnamedItem> getMisnamedItems() { return {}; }

    /// Lists what breaks the standard in the open package and was accepted. A strict store has none.
    virtual std::vector<Oddity> getOddities() { return {}; }
};

} // namespace opc::interfaces
