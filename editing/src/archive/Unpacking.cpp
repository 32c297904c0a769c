#include <opc/editing/Unpacking.hpp>

#include "archive/FileNames.hpp"
#include "archive/FolderTree.hpp"
#include "archive/FullReport.hpp"
#include "archive/HiddenContents.hpp"
#include "archive/TreeDescription.hpp"
#include "comparison/ContentEquality.hpp"

#include "zip/src/Failure.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Reports.hpp>

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

constexpr std::size_t WRITTEN_AT_ONCE = std::size_t{256} * 1024;

/// Where the contents go, one after the other.
class Destination {
public:
    virtual ~Destination() = default;
    virtual void begin(const std::string& path) = 0;
    virtual void write(const unsigned char* bytes, std::size_t count) = 0;
    virtual void remove(const std::string& path) = 0; ///< what was begun last
};

class FolderDestination : public Destination {
public:
    explicit FolderDestination(FolderTree& tree) : tree(tree) {}

    void begin(const std::string& path) override {
        file = tree.create(path);
        place = tree.place(path);
        size = 0;
    }

    void write(const unsigned char* bytes, std::size_t count) override {
        if (const int error = file.writeAt(size, bytes, count))
            failSystem(place, "can't be written", error);
        size += count;
    }

    void remove(const std::string& path) override { tree.remove(path); }

private:
    FolderTree& tree;
    FileDescriptor file;
    std::string place;
    std::uint64_t size = 0;
};

class Nowhere : public Destination {
public:
    void begin(const std::string& /*path*/) override {}
    void write(const unsigned char* /*bytes*/, std::size_t /*count*/) override {}
    void remove(const std::string& /*path*/) override {}
};

class Unpacking {
public:
    Unpacking(const Archive& archive, const UnpackingOptions& options, Destination& destination)
        : archive(archive), options(options), destination(destination), block(WRITTEN_AT_ONCE) {}

    Unpacked run() {
        result.hidden = findHidden(archive);
        const auto& items = archive.items();
        for (std::size_t i = 0; i < items.size() && items[i].kind != ItemKind::Hidden; ++i)
            take(items[i], i);
        if (options.keepsOriginal)
            copyOriginal();
        else
            describeErrors();
        const std::string text = description.write();
        destination.begin(DESCRIPTION_FILE);
        destination.write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
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
        destination.begin(path);
        std::unique_ptr<InputStream> content;
        for (bool isDone = false; !isDone;) {
            std::size_t count = 0;
            try {
                if (!content)
                    content = archive.open(item);
                isDone = content->isDone();
                count = isDone ? 0 : static_cast<std::size_t>(content->read(block.data(), block.size()));
            } catch (const Exception& e) {
                destination.remove(path);
                return inspection::withoutPlace(e.what());
            }
            destination.write(block.data(), count);
            result.bytes += count;
        }
        return {};
    }

    void describeErrors() {
        const inspection::Report report = inspectInFull(archive, options.limits);
        const std::vector<std::string> prints = fingerprints(report);
        for (std::size_t i = 0; i < prints.size(); ++i)
            if (report.findings[i].severity == inspection::Severity::Error)
                description.faults.insert(prints[i]);
    }

    void copyOriginal() {
        destination.begin(ORIGINAL_FILE);
        std::uint64_t offset = 0;
        while (const std::size_t count = archive.read(offset, block.data(), block.size())) {
            destination.write(block.data(), count);
            offset += count;
        }
    }

    const Archive& archive;
    const UnpackingOptions& options;
    Destination& destination;
    FileNames names;
    TreeDescription description;
    Unpacked result;
    std::vector<unsigned char> block;
};

void requireDirectory(const Archive& archive) {
    if (!archive.isZip())
        throw Exception("The archive has no directory", make_error_code(boost::system::errc::bad_message));
}

} // namespace

Unpacked unpack(const Archive& archive, const std::filesystem::path& folder,
                const UnpackingOptions& options) {
    requireDirectory(archive);
    FolderTree tree = FolderTree::make(folder, options.isForced);
    try {
        FolderDestination destination(tree);
        return Unpacking(archive, options, destination).run();
    } catch (...) {
        tree.removeMade();
        throw;
    }
}

Unpacked tryUnpacking(const Archive& archive, const std::filesystem::path& folder,
                      const UnpackingOptions& options) {
    requireDirectory(archive);
    FolderTree::requireFree(folder, options.isForced);
    Nowhere destination;
    return Unpacking(archive, options, destination).run();
}

} // namespace opc::editing
