#include <opc/editing/Unpacking.hpp>

#include "archive/FileNames.hpp"
#include "archive/FolderTree.hpp"
#include "archive/HiddenContents.hpp"
#include "archive/PackageFaults.hpp"
#include "archive/TreeDescription.hpp"

#include "zip/src/Failure.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <memory>

namespace opc::editing {

using namespace archive;
using inspection::Archive;
using inspection::ArchiveItem;
using inspection::ItemKind;
using physical::zip::fail;
using physical::zip::failSystem;
using physical::zip::FileDescriptor;

namespace {

constexpr std::size_t BLOCK = std::size_t{256} * 1024;

/// A file that is being written.
class FileWriter {
public:
    FileWriter(FolderTree& tree, const std::string& path)
        : place(tree.place(path)), file(tree.create(path)) {}

    void write(const unsigned char* bytes, std::size_t count) {
        if (const int error = file.writeAt(size, bytes, count))
            failSystem(place, "can't be written", error);
        size += count;
    }

private:
    std::string place;
    FileDescriptor file;
    std::uint64_t size = 0;
};

class Unpacking {
public:
    Unpacking(const Archive& archive, const UnpackingOptions& options, FolderTree& tree)
        : archive(archive), options(options), tree(tree), block(BLOCK) {}

    Unpacked run() {
        result.hidden = findHidden(archive);
        const auto& items = archive.items();
        for (std::size_t i = 0; i < items.size() && items[i].kind != ItemKind::Hidden; ++i)
            take(items[i], i);
        if (options.keepsOriginal)
            copyOriginal();
        else
            description.faults = findFaults(archive, options.limits);
        const std::string text = description.write();
        FileWriter(tree, DESCRIPTION_FILE)
            .write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
        return std::move(result);
    }

private:
    void take(const ArchiveItem& item, std::size_t number) {
        if (isEmptyFolder(item))
            return;
        const FileNames::Name name = names.add(item.name);
        const std::string failure = item.unreadable.empty() ? write(item, name.path) : item.unreadable;
        if (!failure.empty()) {
            if (!options.keepsOriginal)
                fail(item.name, failure, EBADMSG);
            result.hidden.push_back({item.name, "its content: " + failure});
            description.left.push_back({number, item.name, {}});
            return;
        }
        ++result.files;
        if (!name.why.empty()) {
            result.renamed.push_back({item.name, name.path, name.why});
            description.renamed.push_back({number, item.name, name.path});
        }
    }

    /// @return why its content can't be read; empty if it could
    std::string write(const ArchiveItem& item, const std::string& path) {
        FileWriter file(tree, path);
        std::unique_ptr<InputStream> content;
        for (bool isDone = false; !isDone;) {
            std::size_t count = 0;
            try {
                if (!content)
                    content = archive.open(item);
                isDone = content->isDone();
                count = isDone ? 0 : static_cast<std::size_t>(content->read(block.data(), block.size()));
            } catch (const Exception& e) {
                tree.remove(path);
                return e.what();
            }
            file.write(block.data(), count);
            result.bytes += count;
            if (options.progress)
                options.progress(count);
        }
        return {};
    }

    void copyOriginal() {
        FileWriter file(tree, ORIGINAL_FILE);
        std::uint64_t offset = 0;
        while (const std::size_t count = archive.read(offset, block.data(), block.size())) {
            file.write(block.data(), count);
            offset += count;
        }
    }

    const Archive& archive;
    const UnpackingOptions& options;
    FolderTree& tree;
    FileNames names;
    TreeDescription description;
    Unpacked result;
    std::vector<unsigned char> block;
};

} // namespace

Unpacked unpack(const Archive& archive, const std::filesystem::path& folder,
                const UnpackingOptions& options) {
    if (!archive.isZip())
        throw Exception("The archive has no directory", make_error_code(boost::system::errc::bad_message));
    FolderTree tree = FolderTree::make(folder, options.isForced);
    try {
        return Unpacking(archive, options, tree).run();
    } catch (...) {
        tree.removeMade();
        throw;
    }
}

} // namespace opc::editing
