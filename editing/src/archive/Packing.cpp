#include <opc/editing/Packing.hpp>
#include <opc/editing/Signatures.hpp>

#include "archive/HiddenContents.hpp"
#include "archive/NewContentTypes.hpp"
#include "archive/PackageChanges.hpp"
#include "archive/PackageFaults.hpp"
#include "archive/UnpackedTree.hpp"

#include "zip/src/ArchiveStore.hpp"
#include "zip/src/Failure.hpp"
#include "zip/src/ItemName.hpp"
#include "zip/src/ItemWriter.hpp"
#include "zip/src/ReplacementFile.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/PackageGraph.hpp>

#include <sys/stat.h>

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

constexpr std::size_t BLOCK = 1U << 20;

/// A file of the folder, as the content of an item.
class FileContent : public ByteSource {
public:
    FileContent(FolderTree& tree, const FolderTree::File& file)
        : file(tree.open(file.path)), length(file.size) {
        struct stat status {};
        if (::fstat(this->file.get(), &status) != 0 || static_cast<std::uint64_t>(status.st_size) != length)
            fail(tree.place(file.path), "has just been changed", ESTALE);
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
    Packing(UnpackedTree& tree, const std::filesystem::path& target, const PackingOptions& options)
        : tree(tree), target(target), options(options), reading(options.archive) {
        reading.lenient = true;
    }

    Packed run() {
        ReplacementFile draft(target, target.string());
        if (tree.isUntouched()) {
            copyOriginal(draft);
        } else {
            readNewTypes();
            write(draft);
            check(draft.path());
        }
        if (options.isTrial)
            return std::move(result);
        draft.putInPlace();
        draft.syncFolder();
        return std::move(result);
    }

private:
    void copyOriginal(ByteTarget& draft) {
        const Archive& original = *tree.original();
        std::vector<unsigned char> block(BLOCK);
        std::uint64_t offset = 0;
        while (const std::size_t count = original.read(offset, block.data(), block.size())) {
            if (const int error = draft.writeAt(offset, block.data(), count))
                failSystem(target.string(), "can't be written", error);
            offset += count;
        }
        result.isOriginal = true;
        result.items = tree.oldItems().size();
        result.hidden = findHidden(original);
        for (const TreeDescription::Item& item : tree.description().left)
            result.hidden.push_back({item.name, "its content, which can't be read"});
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
        FileContent content(tree.folder(), *document);
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

    void write(ByteTarget& draft) {
        std::optional<ArchiveReader> original;
        if (tree.original()) {
            FileStore store(tree.originalPath());
            original.emplace(store.read(), store.place(), reading, ArchiveReader::HeaderCheck::Now);
            if (original->itemCount() != tree.oldItems().size())
                fail(store.place(), "its directory can be read in two ways", EBADMSG);
        }
        ItemWriter writer(original ? &*original : nullptr, draft, target.string(), options.archive);
        for (std::size_t i = 0; i < tree.oldItems().size(); ++i)
            writeOld(writer, *original, static_cast<ItemIndex>(i));
        for (const UnpackedTree::NewFile& added : tree.newFiles()) {
            write(writer, {}, added.item, *added.file);
            result.added.push_back(added.item);
        }
        writer.finish();
        result.items = writer.itemCount();
        if (tree.original()) {
            append(result.hidden, findComment(*tree.original()));
            append(result.dropped, findGaps(*tree.original()));
        }
        for (const TreeDescription::Item& item : tree.description().left)
            result.hidden.push_back({item.name, "its content, which can't be read"});
    }

    void writeOld(ItemWriter& writer, const ArchiveReader& original, ItemIndex index) {
        const UnpackedTree::OldItem& old = tree.oldItems()[index];
        const DirectoryEntry& entry = original.item(index);
        const ArchiveItem& item = tree.original()->items()[index];
        const bool getsTypes = contentTypes && old.file == contentTypesFile && old.file != nullptr;
        const bool isKept = old.fate == Fate::Kept && !getsTypes;
        append(isKept ? result.hidden : result.dropped, findHidden(item));
        if (isKept)
            return writer.keep(index);
        (old.fate == Fate::Removed ? result.removed : result.replaced).push_back(item.name);
        if (old.fate != Fate::Removed)
            write(writer, entry.rawName, entry.name, *old.file, entry.method == STORE ? STORE : DEFLATE);
    }

    void write(ItemWriter& writer, std::string_view rawName, std::string_view name,
               const FolderTree::File& file, std::uint16_t method = DEFLATE) {
        if (contentTypes && &file == contentTypesFile)
            return writer.write({name, rawName, *contentTypes, method});
        FileContent content(tree.folder(), file);
        writer.write({name, rawName, content, method});
        if (options.progress)
            options.progress(file.size);
    }

    void check(const std::filesystem::path& draft) {
        requireContentTypes(draft);
        respectSignatures(draft);
        requireSound(draft, options.archive, !result.brokenSignatures.empty(), [&] {
            return tree.original() ? findFaults(*tree.original(), options.archive)
                                   : tree.description().faults;
        });
    }

    /// A new file that isn't meant to be a part is found here, too: what an editor leaves behind has no content type.
    void requireContentTypes(const std::filesystem::path& draft) const {
        std::set<std::string> parts;
        for (const std::string& item : result.added)
            parts.insert(partNameOf(item));
        if (parts.empty() || (!tree.original() && tree.isDescribed()))
            return;
        for (const inspection::GraphNode& node :
             makeGraph(Archive(draft, options.archive), options.archive).nodes)
            if (node.kind == inspection::GraphNode::Kind::Part && node.contentType.empty() &&
                parts.count(node.name) != 0)
                throw Exception("No content type covers the new part " + node.name,
                                make_error_code(boost::system::errc::bad_message));
    }

    void respectSignatures(const std::filesystem::path& draft) {
        if (!tree.original())
            return;
        const inspection::PackageGraph before = makeGraph(*tree.original(), options.archive);
        if (!before.hasSignatures)
            return;
        std::set<std::string> replaced;
        for (const std::string& item : result.replaced)
            replaced.insert(partNameOf(item));
        const inspection::PackageGraph after = makeGraph(Archive(draft, options.archive), options.archive);
        result.brokenSignatures =
            findBrokenSignatures(tree.originalPath(), options.archive, findChanges(before, after, replaced));
        if (!options.breaksSignatures)
            throwIfBroken(result.brokenSignatures);
    }

    UnpackedTree& tree;
    const std::filesystem::path& target;
    const PackingOptions& options;
    physical::ZipOptions reading;
    const FolderTree::File* contentTypesFile = nullptr;
    std::optional<MemoryBytes> contentTypes; ///< the document with new entries; nothing if there are none
    Packed result;
};

} // namespace

Packed pack(const std::filesystem::path& folder, const std::filesystem::path& target,
            const PackingOptions& options) {
    UnpackedTree tree(folder, options.archive, options.progress);
    return Packing(tree, target, options).run();
}

} // namespace opc::editing
