#include "FuzzTarget.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/ReadingMemory.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <cerrno>
#include <map>
#include <memory>
#include <optional>

using namespace opc;
using namespace opc::fuzz;
using interfaces::OpenMode;
using physical::ZipPackage;

namespace {

constexpr std::uint64_t LARGEST_ITEM = 1 << 18;

physical::ZipOptions makeOptions(bool lenient) {
    physical::ZipOptions options;
    options.lenient = lenient;
    options.deterministic = true;
    options.memory =
        std::make_shared<physical::ReadingMemory>(); // the second reading recalls what the first has read
    options.maxItems = 64;
    options.maxItemSize = LARGEST_ITEM;
    options.maxTotalSize = 4 * LARGEST_ITEM;
    return options;
}

/// Runs `action`.
/// @return whether it succeeded. A failure must report a fault of the archive by its code
template <typename Action>
bool succeeds(Action&& action) {
    try {
        action();
        return true;
    } catch (const Exception& e) {
        const int code = e.code().value();
        require(e.code().category() == boost::system::generic_category(), "a failure has a generic code");
        if (code != ENOENT && code != EFBIG && code != EBADMSG && code != ENOTSUP)
            throw;
        return false;
    }
}

/// The content; nothing if it is damaged.
std::optional<Bytes> read(interfaces::IPhysicalPart& part) {
    Bytes content;
    const bool sound = succeeds([&] {
        interfaces::IPhysicalInputStream& stream = *part.getInputStream();
        unsigned char block[4096];
        while (!stream.isDone()) {
            const std::uint64_t count = stream.read(block, sizeof block);
            content.insert(content.end(), block, block + count);
            require(content.size() <= LARGEST_ITEM * 64, "no content goes beyond the limits");
        }
    });
    return sound ? std::optional<Bytes>(content) : std::nullopt;
}

/// By part name in lower case, because letter case doesn't count.
using Contents = std::map<std::u16string, std::optional<Bytes>>;

std::u16string keyOf(const interfaces::IPhysicalPart& part) {
    return toLowerASCIIString(part.getName());
}

Contents readParts(ZipPackage& package) {
    Contents contents;
    for (interfaces::IPhysicalPart* part : package.getParts())
        require(contents.emplace(keyOf(*part), read(*part)).second, "names are unique");
    return contents;
}

std::vector<std::string> ignoredNames(const ZipPackage& package) {
    std::vector<std::string> names;
    for (const ZipPackage::IgnoredItem& item : package.ignoredItems()) {
        if (item.isItem)
            names.push_back(item.name);
    }
    return names;
}

void write(interfaces::IPhysicalOutputStream& stream, const Bytes& content) {
    require(stream.write(content.data(), content.size()) == content.size(), "everything is written");
}

/// Whether no item prevents a part with that name.
bool isFree(ZipPackage& package, const std::u16string& name) {
    try {
        package.createPart(name, u"", model::StandardPartInfo());
        return true;
    } catch (const Exception& e) {
        require(e.code().value() == EINVAL, "it is the name that is refused");
        return false;
    }
}

/// Adds a part, replaces the content of another one and deletes a third one.
/// @return the expected content of the package
Contents change(ZipPackage& package, Contents contents) {
    const Bytes content = {'n', 'e', 'w'};
    const std::u16string name = u"/fuzzed.xml";
    if (contents.count(name) == 0 && isFree(package, name)) {
        write(*package.createPart(name, u"", model::StandardPartInfo())->getOutputStream(), content);
        contents[name] = content;
    }
    const auto parts = package.getParts();
    if (parts.empty())
        return contents;
    write(*parts.front()->getOutputStream(), content);
    contents[keyOf(*parts.front())] = content;
    if (parts.size() > 2) {
        contents.erase(keyOf(*parts[1]));
        package.deletePart(parts[1]->getName());
    }
    return contents;
}

/// Opens, changes and saves an archive, and opens it again.
/// @return its content; nothing if it is refused
std::optional<Contents> live(const Bytes& archive, bool lenient) {
    ZipPackage package(archive, makeOptions(lenient));
    if (!succeeds([&] { package.open(OpenMode::ReadWrite); }))
        return std::nullopt;
    succeeds([&] { package.getContentTypeInputStream(); });
    const Contents found = readParts(package);
    const std::vector<std::string> ignored = ignoredNames(package);
    require(lenient || package.getOddities().empty(), "nothing odd is taken unless it is asked for");
    const Contents changed = change(package, found);
    // A damaged item can prevent its copy.
    if (!succeeds([&] { package.close(false); }))
        return found;

    package.open(OpenMode::ReadOnly);
    require(ignoredNames(package) == ignored, "items that are no parts are kept");
    const Contents again = readParts(package);
    require(again.size() == changed.size(), "as many parts are read as written");
    for (const auto& [name, content] : changed) {
        require(again.count(name) == 1, "a part that was written is read");
        require(!content || again.at(name) == content, "with its content");
    }
    package.close(false);
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes archive(data, data + size);
    const std::optional<Contents> strict = live(archive, false);
    const std::optional<Contents> lenient = live(archive, true);
    if (!strict)
        return 0;
    require(lenient && lenient->size() == strict->size(), "what is taken strictly is taken leniently");
    for (const auto& [name, content] : *strict)
        require(!content || lenient->at(name) == content, "and reads the same");
    return 0;
}
