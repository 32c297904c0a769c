#include <opc/inspection/FlatText.hpp>

#include "comparison/CanonicalXml.hpp"
#include "comparison/ContentEquality.hpp"
#include "comparison/PackageContents.hpp"
#include "comparison/XmlContent.hpp"
#include "digests/Sha256.hpp"
#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"

#include <opc/core/PrintableText.hpp>
#include <opc/inspection/Format.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <map>
#include <ostream>

namespace opc::inspection {

namespace {

using Items = std::vector<const ArchiveItem*>;

/// The bytes of a file that is no archive.
class FileBytes final : public InputStream {
public:
    explicit FileBytes(const Archive& file) : file(file) {}

    void open() override { place = 0; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::size_t got = file.read(place, buffer, static_cast<std::size_t>(count));
        place += got;
        return got;
    }
    bool isDone() const override { return place >= file.size(); }
    void close() override {}

private:
    const Archive& file;
    std::uint64_t place = 0;
};

/// Writes lines, indented below the heading of their section.
class Section final : public LineSink {
public:
    Section(std::ostream& output, bool namesPart) : output(output), namesPart(namesPart) {}

    void begin(const std::string& kind, const std::string& name) {
        prefix = namesPart ? withoutControlCharacters(name) + ": " : std::string();
        output << prefix << kind << ' ' << withoutControlCharacters(name) << '\n';
    }
    void add(const std::string& line) { onLine(withoutControlCharacters(line)); }
    void onLine(std::string_view line) override { output << prefix << "  " << line << '\n'; }

private:
    std::ostream& output;
    const bool namesPart;
    std::string prefix;
};

class Writer {
public:
    Writer(const Archive& archive, std::ostream& output, const FlatTextOptions& options)
        : package(archive), section(output, options.namesPart) {}

    void run() {
        for (const KeyedPart& part : package.parts())
            takePart(*part.part, part.key);
        for (const auto& [key, entry] : sections)
            write(entry);
        for (const ArchiveItem* item : package.otherItems()) {
            section.begin("item", item->name);
            section.add("no part: " + (item->reason.empty() ? "it can't be read in full" : item->reason));
            writeContent({item}, sizeOf({item}));
        }
    }

private:
    /// A part, a source of relationships, or both.
    struct Entry {
        std::string name;
        std::vector<const PartView*> parts; ///< more than one if they have the same name
        std::vector<RelationshipsView> relationships;
    };

    void takePart(PartView& part, const std::string& key) {
        if (part.isRelationships()) {
            RelationshipsView view = package.readRelationships(part);
            Entry& source = sections[keyOfName(view.source)];
            source.name = view.source;
            const bool isPart = !isNothingElse(view);
            source.relationships.push_back(std::move(view));
            if (!isPart)
                return;
        }
        Entry& own = sections[key];
        own.name = part.name;
        own.parts.push_back(&part);
    }

    void write(const Entry& entry) {
        section.begin(entry.name == "/" ? "package" : entry.parts.empty() ? "no part" : "part", entry.name);
        std::vector<const RelationshipView*> sorted;
        for (const RelationshipsView& view : entry.relationships)
            for (const RelationshipView& one : view.entries)
                sorted.push_back(&one);
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const auto* left, const auto* right) { return left->id < right->id; });
        const auto writeRelationships = [&] {
            for (const RelationshipView* one : sorted)
                section.add("relationship " + one->id + ": " + one->type + " -> " + one->target +
                            (one->isExternal ? " (external)" : ""));
            sorted.clear();
        };
        for (const PartView* part : entry.parts) {
            section.add("type: " + (part->contentType.empty() ? "none" : part->contentType));
            writeRelationships();
            writeContent(part->items, part->size);
        }
        writeRelationships();
    }

    void writeContent(const Items& items, std::uint64_t size) {
        try {
            if (!beginsLikeXml(package.archive(), items) || !writeXml(items)) {
                section.add("size: " + std::to_string(size));
                section.add("sha256: " + digest.of(*openItems(package.archive(), items)));
            }
        } catch (const Exception& e) {
            section.add("can't be read: " + withoutPlace(e.what()));
        }
    }

    /// @return whether it is XML to its end
    bool writeXml(const Items& items) {
        XmlPrefixes prefixes;
        CanonicalXml events(prefixes, section);
        try {
            model::readXmlDocument(*openItems(package.archive(), items), events);
            events.end();
            return true;
        } catch (const model::InvalidXMLDocument& e) {
            section.add(std::string("no XML: ") + e.details());
            return false;
        }
    }

    PackageContents package;
    Section section;
    Sha256 digest;
    std::map<std::string, Entry> sections; ///< by key
};

} // namespace

void writeFlatText(const Archive& archive, std::ostream& output, const FlatTextOptions& options) {
    if (archive.isZip() || !archive.items().empty()) {
        Writer(archive, output, options).run();
        return;
    }
    FileBytes bytes(archive);
    output << "no package: " << withoutControlCharacters(detectFormat(archive).description) << ", "
           << archive.size() << " bytes, sha256 " << Sha256().of(bytes) << '\n';
}

} // namespace opc::inspection
