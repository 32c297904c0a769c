#include <opc/editing/Properties.hpp>

#include <opc/editing/Editor.hpp>

#include "documents/DocumentEditing.hpp"
#include "hash/TextHash.hpp"
#include "lenient/src/AttributeText.hpp"
#include "properties/PropertyReading.hpp"
#include "properties/Vocabulary.hpp"
#include "subject/Names.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace opc::editing {

using namespace properties;
using model::ContentType;
using model::Package;
using model::Part;
using model::PartName;
using model::TargetMode;
using physical::lenient::escapeValue;

namespace {

constexpr std::size_t LARGEST = std::size_t{4} << 20;
constexpr char16_t FORMAT_ID[] = u"{D5CDD505-2E9C-101B-9397-08002B2CF9AE}"; ///< of the user's properties
constexpr char16_t XML[] = u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

std::u16string wide(const std::string& text) {
    return toString(text, true);
}

std::optional<Part> findPart(const Package& package, PropertyKind kind) {
    for (const Vocabulary& one : VOCABULARIES) {
        if (one.kind != kind)
            continue;
        const auto found = package.getRelationshipsByType(std::u16string(one.relationshipType));
        if (!found.empty())
            return package.getPart(PartName(found.begin()->getTargetURI().toString()));
    }
    return std::nullopt;
}

[[noreturn]] void refuse(const Part& part, const char* message, const std::string& why) {
    model::InvalidPartContent failure(message);
    failure.addDetails("in " + toUDEString(part.getName().toString()));
    failure.addDetails(why);
    throw failure;
}

const char* messageOf(PropertyKind kind) {
    return kind == PropertyKind::Custom ? "The custom properties can't be read"
                                        : "The extended properties can't be read";
}

std::string read(const Part& part, PropertyKind kind) {
    std::string content;
    std::vector<unsigned char> block(std::size_t{16} << 10);
    InputStream& stream = part.getInputStream();
    stream.open(); // at its beginning
    while (!stream.isDone()) {
        const std::uint64_t got = stream.read(block.data(), block.size());
        content.append(reinterpret_cast<const char*>(block.data()), static_cast<std::size_t>(got));
        if (content.size() > LARGEST)
            refuse(part, messageOf(kind), "it is too large");
    }
    return content;
}

/// Calls `use` with the content of the part, and says where it fails.
template <typename Use>
auto readWith(const Part& part, PropertyKind kind, const Use& use) {
    const std::string content = read(part, kind);
    try {
        return use(content);
    } catch (const Exception& e) {
        std::string why = e.what();
        if (*e.details() != '\0')
            why.append("; ").append(e.details());
        refuse(part, messageOf(kind), why);
    }
}

/// Changes the text of one document.
class PropertyEditing {
public:
    PropertyEditing(const std::string& content, PropertyKind kind)
        : kind(kind), document(content), old(readPropertyDocument(content, kind)),
          vocabulary(
              *std::find_if(std::begin(VOCABULARIES), std::end(VOCABULARIES), [&](const Vocabulary& one) {
                  return one.kind == kind && one.isStrict == old.isStrict;
              })) {
        findElements();
    }

    void clear();
    void unset(const std::string& name);
    void set(const Property& property);

    std::vector<Change> changes;
    std::string apply() const { return document.apply(); }

private:
    struct Entry {
        std::size_t property;
        std::size_t element;
    };

    void findElements();
    void remove(const Entry& entry);
    void add(const Property& property);
    std::u16string contentOf(const PropertyValue& value) const;
    std::string keyOf(const std::string& name) const {
        return kind == PropertyKind::Custom ? inspection::toLowerASCII(name) : name;
    }
    void record(const std::string& name, const std::string& before, const std::string& after);

    const PropertyKind kind;
    DocumentEditing document;
    const ReadProperties old;
    const Vocabulary& vocabulary;
    std::vector<Entry> all;                                                ///< in the order of the document
    std::unordered_map<std::string, std::vector<Entry>, TextHash> entries; ///< by the keys of their names
    long long lastPid = 1;                                                 ///< programs reserve 0 and 1
};

void PropertyEditing::findElements() {
    std::size_t property = 0;
    for (std::size_t i = 1; i < document.markup().elements().size(); ++i) {
        const physical::lenient::Element& element = document.element(i);
        if (element.depth != 1 || element.namespaceURI != vocabulary.namespaceURI ||
            (kind == PropertyKind::Custom && element.localName != PROPERTY))
            continue;
        all.push_back({property, i});
        entries[keyOf(old.all[property].name)].push_back(all.back());
        ++property;
    }
    for (const long long pid : old.pids)
        lastPid = std::max(lastPid, std::min(pid, 0x7FFFFFFELL)); // larger ones are no ids
}

void PropertyEditing::record(const std::string& name, const std::string& before, const std::string& after) {
    Change change{Change::Kind::PropertyChanged, {}, name, {}, {}};
    change.before.text = before;
    change.after.text = after;
    changes.push_back(std::move(change));
}

void PropertyEditing::remove(const Entry& entry) {
    document.remove(entry.element);
    const Property& property = old.all[entry.property];
    record(property.name, property.value.text, {});
}

void PropertyEditing::clear() {
    std::for_each(all.begin(), all.end(), [this](const Entry& entry) { remove(entry); });
    entries.clear();
}

void PropertyEditing::unset(const std::string& name) {
    const auto found = entries.find(keyOf(name));
    if (found == entries.end())
        return;
    std::for_each(found->second.begin(), found->second.end(), [this](const Entry& entry) { remove(entry); });
    entries.erase(found);
}

std::u16string PropertyEditing::contentOf(const PropertyValue& value) const {
    std::u16string text = escapeValue(wide(value.text));
    if (kind == PropertyKind::Extended)
        return text;
    const auto declarations = document.markup().attributes(document.element(0));
    const auto* const declared = std::find_if(
        declarations.begin(), declarations.end(), [this](const physical::lenient::Attribute& one) {
            return one.isDeclaration() && one.namespaceURI == vocabulary.variantTypes &&
                   !one.declaredPrefix().empty();
        });
    const bool isDeclared = declared != declarations.end();
    std::u16string name(isDeclared ? declared->declaredPrefix() : u"vt");
    name += u":" + wide(value.type);
    std::u16string tag = name;
    if (!isDeclared)
        physical::lenient::addAttribute(tag, u"xmlns:vt", vocabulary.variantTypes);
    return u"<" + tag + u">" + text + u"</" + name + u">";
}

void PropertyEditing::add(const Property& property) {
    const std::u16string content = contentOf(property.value);
    if (kind == PropertyKind::Extended) {
        document.append(wide(property.name), {}, content);
    } else {
        ++lastPid;
        const std::u16string pid = wide(std::to_string(lastPid));
        const std::u16string name = wide(property.name);
        document.append(PROPERTY, {{u"fmtid", FORMAT_ID}, {u"pid", pid}, {u"name", name}}, content);
    }
    record(property.name, {}, property.value.text);
}

void PropertyEditing::set(const Property& property) {
    const auto found = entries.find(keyOf(property.name));
    if (found == entries.end())
        return add(property);
    const Entry& first = found->second.front();
    const Property& before = old.all[first.property];
    if (before.value.text == property.value.text &&
        (kind == PropertyKind::Extended || before.value.type == property.value.type))
        return;
    document.setContent(first.element, contentOf(property.value));
    record(before.name, before.value.text, property.value.text);
}

struct NewDocument {
    const char16_t* folderAndName;
    const char16_t* contentType;
};

NewDocument newDocument(PropertyKind kind) {
    if (kind == PropertyKind::Custom)
        return {u"/docProps/custom", u"application/vnd.openxmlformats-officedocument.custom-properties+xml"};
    return {u"/docProps/app", u"application/vnd.openxmlformats-officedocument.extended-properties+xml"};
}

bool isStrict(const Package& package) {
    return !package
                .getRelationshipsByType(
                    u"http://purl.oclc.org/ooxml/officeDocument/relationships/officeDocument")
                .empty();
}

std::string emptyDocument(const Vocabulary& vocabulary) {
    std::u16string root = u"Properties";
    physical::lenient::addAttribute(root, u"xmlns", vocabulary.namespaceURI);
    physical::lenient::addAttribute(root, u"xmlns:vt", vocabulary.variantTypes);
    return toUDEString(XML + (u"<" + root + u"></Properties>"));
}

PartName freeName(const Package& package, const char16_t* beginning) {
    for (unsigned number = 1;; ++number) {
        const std::u16string digits = number == 1 ? std::u16string() : wide(std::to_string(number));
        PartName name(beginning + digits + u".xml");
        if (!package.hasPart(name))
            return name;
    }
}

/// Makes the document, and then its relationship.
void create(Editor& editor, PropertyKind kind, const Vocabulary& vocabulary, const std::string& content) {
    const NewDocument made = newDocument(kind);
    const PartName name = freeName(editor.package(), made.folderAndName);
    const std::vector<unsigned char> bytes(content.begin(), content.end());
    ByteArrayInAdaptor stream(bytes);
    editor.createPart(name, ContentType(made.contentType), stream);
    const std::u16string target = name.toString().substr(1);
    editor.addRelationship(PartName(u"/"),
                           {std::u16string(vocabulary.relationshipType), target, TargetMode::Internal, {}});
}

void checkAll(PropertyKind kind, const PropertyChanges& changes) {
    std::unordered_set<std::string, TextHash> names;
    for (const Property& property : changes.set) {
        std::string defect = findDefect(kind, property);
        if (defect.empty() && !names.insert(inspection::toLowerASCII(property.name)).second)
            defect = property.name + " is set twice";
        if (!defect.empty())
            throw model::InvalidPartContent(defect);
    }
}

void edit(PropertyEditing& editing, const PropertyChanges& changes) {
    if (changes.clear)
        editing.clear();
    for (const std::string& name : changes.unset)
        editing.unset(name);
    for (const Property& property : changes.set)
        editing.set(property);
}

} // namespace

std::vector<Property> readProperties(const Package& package, PropertyKind kind) {
    const std::optional<Part> part = findPart(package, kind);
    if (!part)
        return {};
    return readWith(*part, kind,
                    [kind](const std::string& content) { return readPropertyDocument(content, kind).all; });
}

void changeProperties(Editor& editor, PropertyKind kind, const PropertyChanges& changes) {
    checkAll(kind, changes);
    const std::optional<Part> part = findPart(editor.package(), kind);
    if (!part && changes.set.empty())
        return;
    const bool strict = !part && isStrict(editor.package());
    const Vocabulary& vocabulary =
        *std::find_if(std::begin(VOCABULARIES), std::end(VOCABULARIES),
                      [&](const Vocabulary& one) { return one.kind == kind && one.isStrict == strict; });
    std::vector<Change> made;
    const auto apply = [&](const std::string& old) {
        PropertyEditing editing(old, kind);
        edit(editing, changes);
        made = std::move(editing.changes);
        return editing.apply();
    };
    const std::string content = part ? readWith(*part, kind, apply) : apply(emptyDocument(vocabulary));
    if (made.empty())
        return;
    if (part) {
        const std::vector<unsigned char> bytes(content.begin(), content.end());
        ByteArrayInAdaptor stream(bytes);
        editor.replaceContent(part->getName(), stream);
    } else {
        create(editor, kind, vocabulary, content);
    }
    const std::string place = toUDEString(findPart(editor.package(), kind)->getName().toString());
    for (Change& change : made) {
        change.place = place;
        editor.record(std::move(change));
    }
}

std::string findDefect(PropertyKind kind, const Property& property) {
    const bool isCustom = kind == PropertyKind::Custom;
    if (property.name.empty())
        return "A property needs a name";
    if (const std::string defect = findDefectOfValue("lpwstr", property.name); !defect.empty())
        return "The name of a property " + defect;
    const std::string_view type =
        isCustom ? std::string_view(property.value.type) : typeOfExtended(property.name);
    if (type.empty())
        return property.name + " isn't an extended property";
    const std::string defect = findDefectOfValue(type, property.value.text);
    return defect.empty() ? std::string() : property.name + '=' + property.value.text + ' ' + defect;
}

std::vector<SensitivityLabel> findLabels(const std::vector<Property>& custom) {
    constexpr std::string_view BEGINNING = "MSIP_Label_";
    std::vector<SensitivityLabel> labels;
    std::unordered_map<std::string, std::size_t, TextHash> places;
    for (const Property& property : custom) {
        const std::size_t end = property.name.find('_', BEGINNING.size());
        if (property.name.compare(0, BEGINNING.size(), BEGINNING) != 0 || end == std::string::npos)
            continue;
        const std::string id = property.name.substr(BEGINNING.size(), end - BEGINNING.size());
        const auto [place, isNew] = places.emplace(id, labels.size());
        if (isNew)
            labels.push_back({id, {}});
        labels[place->second].settings.push_back({property.name.substr(end + 1), property.value, {}});
    }
    return labels;
}

} // namespace opc::editing
