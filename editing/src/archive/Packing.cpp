#include <opc/editing/Packing.hpp>
#include <opc/editing/ResultCheck.hpp>
#include <opc/editing/Signatures.hpp>

#include "archive/FullReport.hpp"
#include "archive/HiddenContents.hpp"
#include "archive/NewContentTypes.hpp"
#include "archive/PackageChanges.hpp"
#include "archive/TemporaryArchive.hpp"
#include "archive/UnpackedTree.hpp"

#include "zip/src/Failure.hpp"
#include "zip/src/ItemName.hpp"
#include "zip/src/ItemWriter.hpp"
#include "zip/src/SourceStore.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/inspection/PackageGraph.hpp>

#include <cerrno>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <utility>

namespace opc::editing {

using namespace archive;
using namespace physical::zip;
using inspection::Archive;
using inspection::ArchiveItem;
using inspection::ItemKind;
using Fate = UnpackedTree::OldItem::Fate;

namespace {

/// A file of the folder, as the content of an item.
class PackedContent : public ByteSource {
public:
    PackedContent(FolderTree& tree, const FolderTree::File& file)
        : file(tree.open(file.path)), length(file.size) {
        EntryStatus status;
        if (readStatusOf(this->file, status) != 0 || status.size != length)
            fail(tree.place(file.path), "has just been changed", physical::zip::CHANGED_MEANWHILE);
    }

    std::uint64_t size() const noexcept override { return length; }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override {
        return file.readAt(offset, buffer, count, got);
    }

private:
    FileDescriptor file;
    std::uint64_t length;
};

void append(std::vector<HiddenContent>& all, std::vector<HiddenContent> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

std::string partNameOf(const std::string& item) {
    const ItemName name = readItemName(item);
    return name.kind == ItemName::Kind::Part ? '/' + name.partName : std::string();
}

class Packing {
public:
    Packing(UnpackedTree& tree, const PackingOptions& options) : tree(tree), options(options) {}

    Packed run() {
        if (tree.isUntouched())
            return giveOriginal();
        readNewTypes();
        Archive made = makeTemporaryArchive(options.archive, [this](ByteTarget& target) { write(target); });
        check(made);
        return {std::move(made),
                false,
                items,
                std::move(added),
                std::move(replaced),
                std::move(removed),
                std::move(hidden),
                std::move(dropped),
                std::move(brokenSignatures)};
    }

private:
    Packed giveOriginal() {
        hidden = findHidden(*tree.original());
        tellUnreadable();
        const std::uint64_t count = tree.oldItems().size();
        return {tree.takeOriginal(), true, count, {}, {}, {}, std::move(hidden), {}, {}};
    }

    void tellUnreadable() {
        for (const TreeDescription::Item& item : tree.description().left)
            hidden.push_back({item.name, "its content, which can't be read"});
    }

    /// Finds the content types document and the new parts, and brings them together.
    void readNewTypes() {
        std::vector<NewContentType> found;
        for (const UnpackedTree::NewFile& added : tree.newFiles())
            if (const std::string part = partNameOf(added.item); !part.empty())
                if (const std::string* type = findContentType(options.contentTypes, part))
                    found.push_back({part, *type});
        const FolderTree::File* const document = findContentTypesFile();
        if (found.empty() || document == nullptr)
            return;
        PackedContent content(tree.folder(), *document);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(content.size()));
        std::size_t got = 0;
        if (const int error = content.readAt(0, bytes.data(), bytes.size(), got))
            failSystem(tree.folder().place(document->path), "can't be read", error);
        bytes.resize(got);
        bytes = addContentTypes(bytes, found);
        const auto owned = std::make_shared<const std::vector<unsigned char>>(std::move(bytes));
        contentTypes.emplace(std::shared_ptr<const unsigned char>(owned, owned->data()), owned->size());
    }

    const FolderTree::File* findContentTypesFile() {
        for (std::size_t i = 0; i < tree.oldItems().size(); ++i)
            if (tree.original()->items()[i].kind == ItemKind::ContentTypes)
                contentTypesFile = tree.oldItems()[i].file;
        for (const UnpackedTree::NewFile& added : tree.newFiles())
            if (contentTypesFile == nullptr && readItemName(added.item).kind == ItemName::Kind::ContentTypes)
                contentTypesFile = added.file;
        return contentTypesFile;
    }

    void write(ByteTarget& target) {
        std::optional<inspection::ArchiveSource> source;
        std::optional<ArchiveReader> original;
        if (tree.original()) {
            physical::ZipOptions reading = options.archive;
            reading.lenient = true;
            const std::string& place = tree.original()->place();
            source.emplace(*tree.original());
            original.emplace(std::make_shared<SourceBytes>(*source), place, reading,
                             ArchiveReader::HeaderCheck::Now);
            if (original->itemCount() != tree.oldItems().size())
                fail(place, "its directory can be read in two ways", EBADMSG);
        }
        ItemWriter writer(original ? &*original : nullptr, target, "the new package", options.archive);
        for (std::size_t i = 0; i < tree.oldItems().size(); ++i)
            writeOld(writer, *original, static_cast<ItemIndex>(i));
        for (const UnpackedTree::NewFile& file : tree.newFiles()) {
            write(writer, {}, file.item, *file.file);
            added.push_back(file.item);
        }
        writer.finish();
        items = writer.itemCount();
        if (tree.original()) {
            append(hidden, findComment(*tree.original()));
            append(dropped, findGaps(*tree.original()));
        }
        tellUnreadable();
    }

    void writeOld(ItemWriter& writer, const ArchiveReader& original, ItemIndex index) {
        const UnpackedTree::OldItem& old = tree.oldItems()[index];
        const DirectoryEntry& entry = original.item(index);
        const ArchiveItem& item = tree.original()->items()[index];
        const bool getsTypes = contentTypes && old.file == contentTypesFile && old.file != nullptr;
        const bool isKept = old.fate == Fate::Kept && !getsTypes;
        append(isKept ? hidden : dropped, findHidden(item));
        if (isKept)
            return writer.keep(index);
        (old.fate == Fate::Removed ? removed : replaced).push_back(item.name);
        if (old.fate != Fate::Removed)
            write(writer, entry.rawName, entry.name, *old.file, entry.method == STORE ? STORE : DEFLATE);
    }

    void write(ItemWriter& writer, std::string_view rawName, std::string_view name,
               const FolderTree::File& file, std::uint16_t method = DEFLATE) {
        if (contentTypes && &file == contentTypesFile)
            return writer.write({name, rawName, *contentTypes, method});
        PackedContent content(tree.folder(), file);
        writer.write({name, rawName, content, method});
        if (options.archive.whenRead)
            options.archive.whenRead(file.size);
    }

    void check(const Archive& made) {
        requireContentTypes(made);
        respectSignatures(made);
        requireOpens(made, options.archive);
        const inspection::Report report = inspectInFull(made, options.archive);
        if (report.count(inspection::Severity::Error) != 0)
            refuseNewErrors(findNewErrors(knownErrors(), report, brokenSignatures));
    }

    inspection::Baseline knownErrors() const {
        inspection::Baseline known;
        if (tree.original())
            for (const std::string& fingerprint :
                 fingerprints(inspectInFull(*tree.original(), options.archive)))
                known.add({}, fingerprint);
        else
            for (const std::string& fingerprint : tree.description().faults)
                known.add({}, fingerprint);
        return known;
    }

    /// A new file that isn't meant to be a part is found here, too: what an editor leaves behind has no content type.
    void requireContentTypes(const Archive& made) const {
        std::set<std::string> parts;
        for (const std::string& item : added)
            parts.insert(partNameOf(item));
        if (parts.empty() || (!tree.original() && tree.isDescribed()))
            return;
        for (const inspection::GraphNode& node : makeGraph(made, options.archive).nodes)
            if (node.kind == inspection::GraphNode::Kind::Part && node.contentType.empty() &&
                parts.count(node.name) != 0)
                throw Exception("No content type covers the new part " + node.name,
                                make_error_code(boost::system::errc::bad_message));
    }

    void respectSignatures(const Archive& made) {
        if (!tree.original())
            return;
        const Signatures signatures(*tree.original());
        if (signatures.areNone())
            return;
        std::set<std::string> parts;
        for (const std::string& item : replaced)
            parts.insert(partNameOf(item));
        brokenSignatures = signatures.brokenBy(findChanges(makeGraph(*tree.original(), options.archive),
                                                           makeGraph(made, options.archive), parts));
        if (!options.breaksSignatures)
            throwIfBroken(brokenSignatures);
    }

    UnpackedTree& tree;
    const PackingOptions& options;
    const FolderTree::File* contentTypesFile = nullptr;
    std::optional<MemoryBytes> contentTypes; ///< the document with new entries; nothing if there are none
    std::uint64_t items = 0;
    std::vector<std::string> added, replaced, removed, brokenSignatures;
    std::vector<HiddenContent> hidden, dropped;
};

} // namespace

Packed pack(const std::filesystem::path& folder, const PackingOptions& options) {
    UnpackedTree tree(folder, options.archive);
    return Packing(tree, options).run();
}

} // namespace opc::editing
