#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/physical/LenientExport.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

/// Stands in front of another physical package and gives to the model what real programs write, although the
/// standard or the model asks for another form, so that it can be opened. It hides
///
/// - items that no content type covers [M2.4], such as `.DS_Store` or the signature files of other systems;
/// - relationships parts without a source, which stay where a program has deleted a part but not these;
///
/// and it gives in the form that the model reads
///
/// - relationships and content types whose elements have a namespace prefix, without the prefix;
/// - relationships in the namespace of 2005/06, in its successor;
/// - relationships parts with markup compatibility [M1.31], without what is to be ignored;
/// - relationships parts in which some relationships break the schema, without these; of relationships with one ID, and of
///   those from the package to core properties, with the first;
/// - relationships parts that are no XML or can't be read, as if they had no relationships;
/// - relationships parts with a source that no content type covers, with the content type of their kind;
/// - content types whose stream holds something that the standard doesn't allow, each entry by itself: those that can't
///   be read are left out, an `Override` whose part name lacks the slash in front is read as if it had it, attributes
///   and elements that don't belong there are passed over, and the namespace of 2005/06 is read as its successor.
///
/// `getOddities` says what of this it has met. A change of the content types is made in the text of the stream: what
/// doesn't change keeps its bytes, what was left out included, and a `Default` that no part rests on any more stays. An
/// entry that was left out goes when a part of its name is created or deleted. Where a new `Default` would cover
/// something hidden as well, the new parts get an `Override` each.
///
/// What is hidden stays in the package through every save, unchanged: a part under a hidden name, or one that a
/// hidden relationships part would become attached to, isn't created. What the model changes in relationships is
/// changed in their own document, in which everything else keeps its bytes: prefixes, encoding, comments, white space, and
/// the elements that are left out. Their IDs aren't given to others, and the part stays when the last other relationship
/// goes; the model can't change the relationships of a part that can't be read. When the first one of an ID is deleted, the
/// next one counts from the next `open` on.
///
/// A relationships part with a document type is always refused, be it hidden. One that is longer than 4 MiB or has more than
/// 300,000 characters `<` and `=` is given as it is, and so are those beyond 32 MiB of documents in another form in all:
/// the model then refuses what breaks the schema, and writes the part anew. A content types stream that can't be
/// read or is as long is given as it is, and hides nothing.
///
/// The other package isn't owned and must outlive this one; while this one is open, it is to be used through
/// this one alone. All streams are the other's but those of documents in another form, and so are all parts but
/// relationships parts; what isn't the other's is good until this package is closed. One
/// thread at a time. Keeps Xerces initialised once it has needed it. Failures are those of the other package.
class OPC_LENIENT_EXPORT LenientPackage : public interfaces::IPhysicalPackage {
public:
    struct HiddenItem {
        std::u16string name; ///< as the part would be called
        std::string reason;  ///< in English, to follow the name
    };

    explicit LenientPackage(interfaces::IPhysicalPackage& package);
    ~LenientPackage() override;

    /// What the open package hides now, in the order of the other package's parts.
    const std::vector<HiddenItem>& hiddenItems() const;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;

    /// Without what is hidden, and with relationships parts of its own in front of the other's.
    std::vector<interfaces::IPhysicalPart*> getParts() override;

    /// Opens the other package and looks for what is to be hidden. If that fails, both are closed.
    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;

    /// @throws opc::Exception  something hidden has the name, or would become the relationships of the new part;
    ///                         the code is file_exists
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    /// Those of the other package, what is hidden, and relationships that are left out.
    std::vector<interfaces::IgnoredItem> getIgnoredItems() override;

    /// Those of the other package, and all that this one has met.
    std::vector<interfaces::Oddity> getOddities() override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
