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

/// A package in a ZIP archive (ECMA-376 Part 2, mapping to ZIP), in a file, in memory or from a stream.
///
/// **Saving.** `close(false)` writes a new archive beside the old one, syncs it and renames it over the old
/// one, so that a file is always wholly old or wholly new. Mode, owner, group, access control list and extended
/// attributes stay as far as the system lets this process set them, and otherwise nobody gains by the change; a
/// symbolic link is followed. A file that another program has changed since `open` isn't replaced: its changes
/// would be lost. Items that haven't changed are copied as they are compressed. Nothing is written before, and
/// nothing at all if nothing has changed. After a failure the package is still open, and `close` may be called
/// again. See `removeUnfinishedFiles` for what a signal that ends the process would leave.
///
/// **Names.** An item becomes a part by a slash in front of its name; what a part name can't hold is
/// percent-encoded, and a backslash counts as a slash. Names without the UTF-8 flag are taken for UTF-8 if
/// they are well-formed UTF-8, else for code page 437. Items that can be no part are kept through every save:
/// see `ignoredItems`. Names that lead out of a folder (`..`, absolute, with a drive) are refused. Pieces of an
/// interleaved part are joined. Names are compared without regard to the case of ASCII letters; `_rels` and `.rels` in
/// names of relationships parts get the case that the standard gives them. A part that is written again keeps the
/// spelling of its item. An item that another program would extract over a part, or over the content types stream, is
/// refused: its name, once simplified (`./a`, `a;1`, `%61`), or a Unicode Path field leads there. A part can't be
/// created if the limits forbid it, or an archive can't hold its name: more than 65,535 bytes, a drive in front, the
/// folder `__MACOSX`, a relationships part in another case, or a name that leads to another item in such a way.
///
/// **Headers.** `open` checks the local header and the data descriptor of each item against the directory, and that no
/// local header stands between the items. Bytes there that belong to no item are dropped by the next save.
///
/// **Streams.** A part, and each stream got from it, lives until the part is deleted or the package closed.
/// Reading inflates as it goes, parts up to 256 KiB at once. It checks size and checksum with the last byte: a
/// damaged item never ends without an exception. An input stream reads the content that the part had when the
/// stream was last opened; `close` and then `open` take it to what has been written since. Asking for an output stream replaces the content at once; an older output stream of the
/// same part then raises on `write`. A part whose writing has failed must be written again or deleted before
/// `close(false)` can succeed.
///
/// One thread at a time. Failures are `opc::Exception` with a message that names archive and item, and a code
/// of the generic category: that of the system call that failed; 2 where a package, part or content types
/// stream doesn't exist; 13 for changes in a package opened to read; 22 for a bad part name; 27 for a limit;
/// 74 (bad message) for a damaged archive; 95 for encryption and compression methods other than Store and
/// Deflate; 116 for a file that another program has changed; 9 and 16 for a package that must be open or closed
/// and isn't.
class OPC_ZIP_EXPORT ZipPackage : public interfaces::IPhysicalPackage {
public:
    using Bytes = std::vector<unsigned char>;

    /// An item of the archive that is no part, or other bytes in the archive that no part shows.
    struct IgnoredItem {
        std::string name; ///< of the item, in UTF-8 as the archive has it; empty for bytes of no item
        std::string reason;
        bool isItem = true; ///< false: a comment, data in extra fields, or bytes between the items
    };

    /// On the file at `path`, which needn't exist before it is opened `CreateOnly`. A relative path counts from
    /// the folder that the process is in now.
    explicit ZipPackage(std::filesystem::path path, ZipOptions options = {});

    /// On an archive in memory. Empty bytes are a package that doesn't exist yet.
    explicit ZipPackage(Bytes archive, ZipOptions options = {});

    /// On an archive that comes from a stream, which needn't be able to seek. It is read from where it stands
    /// to its end when the package is opened first, to read or to change, and must live until then. What is
    /// read or saved is kept in memory or a temporary file, as written parts are; `writeTo` passes it on. An
    /// empty stream is a package that doesn't exist yet.
    explicit ZipPackage(std::istream& archive, ZipOptions options = {});

    /// Drops what hasn't been saved.
    ~ZipPackage() override;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;

    /// In the order of the archive; joined parts and then created ones stand behind the others.
    std::vector<interfaces::IPhysicalPart*> getParts() override;

    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

    /// Those of `ignoredItems` that are items, but for folders: nothing is read from these.
    std::vector<interfaces::IgnoredItem> getIgnoredItems() override;

    /// What `ZipOptions::lenient` has let pass so far, with the items that have been read until now.
    std::vector<interfaces::Oddity> getOddities() override;

    /// What the archive of the open package holds beside parts and the content types stream: items first, then other
    /// bytes. All of it stays through a save, but for bytes that belong to no item, and for extra fields and comments
    /// of parts that are written again.
    const std::vector<IgnoredItem>& ignoredItems() const;

    /// Writes the archive as it was last saved to a stream, which needn't be able to seek.
    void writeTo(std::ostream& stream) const;

    /// The archive of a package in memory, as it was last saved. Valid until the next `close`.
    const Bytes& bytes() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::physical
