#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/physical/LenientExport.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

/// Wraps a store, and opens packages that real programs write although they break the standard. It hides
///
/// - items without a content type [M2.4], such as `.DS_Store` or the signature files of other systems;
/// - relationships parts without a source, which some programs leave behind when they delete a part.
///
/// It converts these for the model:
///
/// - Relationships and content types whose elements have a namespace prefix lose the prefix.
/// - Relationships in the namespace of 2005/06 are converted to the standard's namespace.
/// - In relationships parts with markup compatibility [M1.31], ignorable content is left out.
/// - Relationships that break the schema are left out. Of several relationships with one ID, and of several from the package
///   to core properties, the first counts.
/// - A relationships part that isn't XML or can't be read counts as empty.
/// - A relationships part that has a source but no content type gets the content type of relationships parts.
/// - In a content types stream that breaks the standard, each entry is read by itself. Entries that can't be read are left
///   out. An `Override` whose part name lacks the slash at its start is read as if it had one. Attributes and elements that
///   don't belong there are ignored. The namespace of 2005/06 is read as the standard's namespace.
///
/// `getOddities` reports what of this it has found. A change of the content types is made in the text of the stream: every
/// other byte stays, also entries that are left out, and a `Default` that no part uses any more. An entry that is left out
/// is removed when a part with its name is created or deleted. If a new `Default` would also cover something hidden, each
/// of the new parts gets an `Override` instead.
///
/// Hidden items stay in the package unchanged, through every save. A part can't be created if its name, or the name of its
/// relationships part, is hidden. Changes of relationships are made in their own document: every other byte stays, such as
/// prefixes, encoding, comments, white space, and the elements that are left out. IDs of relationships that are left out
/// are in use, and their part stays when its last other relationship is deleted. The relationships of a part that can't be
/// read can't be changed. When the first relationship with an ID is deleted, the next one with this ID counts after the
/// next `open`.
///
/// A relationships part with a document type is always refused, also a hidden one. A relationships part is passed on
/// unchanged if it is longer than 4 MiB, has more than 300,000 characters `<` and `=`, or if the converted documents are
/// longer than 32 MiB together. Then the model refuses what breaks the schema, and rewrites the part. A content types
/// stream that can't be read, or is as long, is passed on unchanged too and hides nothing.
///
/// It doesn't own the other store, which must outlive it. While it is open, use the other store only through it. It returns
/// the streams and parts of the other store, except relationships parts and the streams of relationships and content types;
/// its own objects exist until it is closed. It reads a document with nothing odd from the other store once. Use it from one
/// thread at a time. It keeps Xerces initialised once it has needed it. Failures are those of the other store.
class OPC_LENIENT_EXPORT LenientPackage : public interfaces::IPhysicalPackage {
public:
    struct HiddenItem {
        std::u16string name; ///< the name that the part would have
        std::string reason;  ///< why it is hidden, in English; continues the text of the name
    };

    explicit LenientPackage(interfaces::IPhysicalPackage& package);
    ~LenientPackage() override;

    /// The items that are hidden in the open package, in the order of the other store's parts.
    const std::vector<HiddenItem>& hiddenItems() const;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;

    /// Gives the parts of the other store without the hidden ones, and with its own objects for relationships parts.
    std::vector<interfaces::IPhysicalPart*> getParts() override;

    /// Opens the other store and looks for what must be hidden or converted. After a failure both are closed.
    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;

    /// @throws opc::Exception  something hidden has this name, or the name of the new part's relationships part; the code
    ///                         is file_exists
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    /// Gives those of the other store, the hidden items, and the relationships that are left out.
    std::vector<interfaces::IgnoredItem> getIgnoredItems() override;

    /// Gives those of the other store.
    std::vector<interfaces::MisnamedItem> getMisnamedItems() override;

    /// Gives those of the other store, and everything that this one has found.
    std::vector<interfaces::Oddity> getOddities() override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
