#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/Oddity.hpp>
#include <opc/physical/ZipExport.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace opc::physical {

class RandomAccessSource;

/// A package in a ZIP archive (ECMA-376 Part 2, mapping to ZIP), in a file, in memory or from a stream.
///
/// **Saving.** `close(false)` writes a new archive into the same folder, syncs it and renames it, so that the file is always
/// the complete old one or the complete new one. Mode, owner, group, access control list and extended attributes stay if
/// the system lets this process set them; otherwise the new file has narrower permissions. Symbolic links are followed. A
/// file that another program has changed since `open` isn't replaced, since its changes would be lost. Unchanged items
/// are copied in compressed form. Nothing is written before, and nothing at all if nothing has changed. After a failure
/// the package is still open, and `close` can be called again. A signal that ends the process can leave a temporary file:
/// see `removeUnfinishedFiles`.
///
/// **Names.** The part name is the name of the item with a slash at the start. A backslash counts as a slash, and characters
/// that a part name can't have are percent-encoded. Names without the UTF-8 flag are read as UTF-8 if they are well-formed
/// UTF-8, otherwise in code page 437. Items that can't be parts are kept through every save: see `ignoredItems`. Names that
/// lead out of a folder (`..`, absolute paths, drives) are refused. Pieces of an interleaved part are joined. Comparisons
/// ignore the case of ASCII letters; `_rels` and `.rels` in names of relationships parts are converted to the case of the
/// standard. A part that is written again keeps the spelling of its item.
///
/// An item is refused if another program would extract it over a part or over the content types stream, because its
/// simplified name (`./a`, `a;1`, `%61`) or a Unicode Path field leads there. A part can't be created if a limit forbids
/// it, or if an archive can't keep its name: it has more than 65,535 bytes, begins with a drive, is in the folder
/// `__MACOSX`, is the name of a relationships part in another case, or leads to another item as above.
///
/// **Headers.** `open` compares the local header and the data descriptor of each item with the directory, and checks that
/// there is no local header between the items. The next save drops bytes that belong to no item.
///
/// **Streams.** A part and its streams exist until the part is deleted or the package is closed. Reading expands as it goes;
/// parts up to 256 KiB are expanded at once. The last byte comes only if size and checksum are right: reading a damaged item
/// always ends with an exception. An input stream reads the content that the part had when the stream was last opened;
/// `close` followed by `open` continues with newly written content. Getting an output stream empties the part; `write` on
/// an older output stream of the part then throws. If writing a part has failed, write it again or delete it: until then
/// `close(false)` fails.
///
/// Use it from one thread at a time. Failures are `opc::Exception` with a message that names archive and item, and with a
/// code of the generic category: the code of the failed system call; 2 if a package, part or content types stream doesn't
/// exist; 13 for changes in a package opened `ReadOnly`; 22 for an invalid part name; 27 for a limit; 74 for a damaged
/// archive; 95 for encryption and for compression methods other than Store and Deflate; 116 for a file that another program
/// has changed; 9 and 16 for a package that must be open or closed and isn't.
class OPC_ZIP_EXPORT ZipPackage : public interfaces::IPhysicalPackage {
public:
    using Bytes = std::vector<unsigned char>;

    /// An item of the archive that isn't a part, or other bytes of the archive that no part shows.
    struct IgnoredItem {
        std::string name; ///< of the item in the archive, in UTF-8; empty for bytes that belong to no item
        std::string reason;
        bool isItem = true; ///< false: a comment, data in extra fields, or bytes between the items
    };

    /// A package in the file at `path`. For `CreateOnly` the file need not exist. A relative path starts from the current
    /// folder of the process at the time of this call.
    explicit ZipPackage(std::filesystem::path path, ZipOptions options = {});

    /// A package in memory. Empty bytes are a package that doesn't exist yet.
    explicit ZipPackage(Bytes archive, ZipOptions options = {});

    /// A package from a stream, which need not be able to seek. When the package is first opened `ReadOnly` or `ReadWrite`,
    /// the stream is read from its position to its end; it must exist until then. The archive is kept in memory or in a
    /// temporary file, as written parts are; `writeTo` writes it to another stream. An empty stream is a package that
    /// doesn't exist yet.
    explicit ZipPackage(std::istream& archive, ZipOptions options = {});

    /// A package whose bytes the application brings. Opened `ReadOnly`, it reads only what it needs: the directory, the content
    /// types, the relationships, and the parts that are asked for. Then the local header of an item is compared with the
    /// directory when the item is read, and what lies between the items isn't looked at. For changes, all headers are
    /// read; the changed archive is kept in memory or in a temporary file, for `writeTo`.
    /// @param archive  must outlive the package
    explicit ZipPackage(RandomAccessSource& archive, ZipOptions options = {});

    /// Drops all unsaved changes.
    ~ZipPackage() override;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;

    /// Gives the parts in the order of the archive, then the joined ones, then the created ones.
    std::vector<interfaces::IPhysicalPart*> getParts() override;

    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    /// Gives those of `ignoredItems` that are items, without folders, which have no content.
    std::vector<interfaces::IgnoredItem> getIgnoredItems() override;

    /// Gives what other programs may take for something else, as SECURITY.md lists it: by their names, by fields and attributes
    /// in their headers, or bytes that belong to no item, which the next save drops. Local headers that are compared when
    /// they are read (see `RandomAccessSource`) are all compared now. A deflated item whose data has no last block
    /// counts once it was read.
    std::vector<interfaces::MisnamedItem> getMisnamedItems() override;

    /// Lists what `ZipOptions::lenient` has accepted so far, including findings in the items that were read.
    std::vector<interfaces::Oddity> getOddities() override;

    /// Lists what the archive of the open package contains beside parts and the content types stream: first items, then
    /// other bytes. A save keeps all of it, except bytes that belong to no item, and extra fields and comments of parts that
    /// are written again.
    const std::vector<IgnoredItem>& ignoredItems() const;

    /// Writes the archive, as it was last saved, to a stream, which need not be able to seek.
    void writeTo(std::ostream& stream) const;

    /// Writes it to another file, as a save does: the file at `path`, if there is one, is replaced by the complete archive or
    /// stays as it was. A package that comes from a stream is saved under a name in this way.
    void writeTo(const std::filesystem::path& path) const;

    /// The archive of a package in memory, as it was last saved. The reference is valid until the next `close`.
    const Bytes& bytes() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
