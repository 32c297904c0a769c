#pragma once

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/interfaces/Oddity.hpp>
#include <opc/interfaces/OpenMode.hpp>

#include <string>
#include <vector>

namespace opc::interfaces {

class IPhysicalInputStream;
class IPhysicalOutputStream;
class IPhysicalPart;
class IPhysicalPartInfo;

/// The store under a package: a ZIP container, a database, memory, whatever the application brings.
///
/// The application owns it and keeps it alive longer than the `opc::model::Package` on it. All pointers that
/// it hands out stay its own, and none of them, nor of those that its parts hand out, is ever null: what can't
/// be given is a failure. It is used by one thread at a time. Every failure is an `opc::Exception`, with the
/// cause as a code of the generic category where there is one.
class IPhysicalPackage {
public:
    virtual ~IPhysicalPackage() = default;

    /// Whether the package has one content types stream. If not, each part knows its own content type.
    /// Asked after `open`.
    virtual bool usesContentTypeStream() = 0;

    /// The content types stream. Asked once at open, unless the package is being created.
    virtual IPhysicalInputStream* getContentTypeInputStream() = 0;

    /// Replaces the content types stream; the library closes it when it has written it. Not asked for when the
    /// content types haven't changed: the old stream stays.
    virtual IPhysicalOutputStream* getContentTypeOutputStream() = 0;

    /// Every part, relationships parts included.
    virtual std::vector<IPhysicalPart*> getParts() = 0;

    /// Called first of all. A package that doesn't exist raises a code equivalent to
    /// no_such_file_or_directory, unless it is opened `CreateOnly`: then it starts empty, and takes the place
    /// of one that exists when it is closed.
    virtual void open(const OpenMode& mode) = 0;

    /// Makes the package final or, with `abandon`, drops every change since `open`.
    /// A denied permission raises a code equivalent to permission_denied. After a failure the package is
    /// still open.
    virtual void close(bool abandon) = 0;

    /// A new part, empty. If a part of that name exists already, its content is replaced.
    ///
    /// The model hands in names that keep the grammar of part names (ECMA-376 Part 2): a slash and a segment, once or
    /// more, and each segment one or more pchar of RFC 3986, so in US-ASCII and without blanks. None differs from
    /// another part's in letter case alone, and none but those of relationships parts has their form, in whatever
    /// case. Only the relationships part of a part that the store itself named otherwise has other characters. The
    /// content type is text in printable US-ASCII. A store that can't keep a name refuses it here: it must come back
    /// from the next `open` as it is.
    /// @param contentType  for a store without a content types stream: what its part gives from then on
    virtual IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                      const IPhysicalPartInfo& info) = 0;

    virtual void deletePart(const std::u16string& name) = 0;

    /// What the open package holds beside its parts and another program could take for content. No signature
    /// covers it: who judges signatures is told of it. A store without such things leaves this as it is.
    virtual std::vector<IgnoredItem> getIgnoredItems() { return {}; }

    /// What the open package has that breaks the standard and was taken all the same. A strict store has none.
    virtual std::vector<Oddity> getOddities() { return {}; }
};

} // namespace opc::interfaces
