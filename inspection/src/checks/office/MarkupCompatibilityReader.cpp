#include "checks/office/MarkupCompatibilityReader.hpp"

#include "checks/DocumentChecks.hpp"
#include "subject/Names.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::u16string_view XML = u"http://www.w3.org/XML/1998/namespace";

/// Beginnings of the namespaces that office programs know, in one version or another.
constexpr std::u16string_view KNOWN[] = {
    u"http://schemas.openxmlformats.org/", u"http://purl.oclc.org/ooxml/", u"http://schemas.microsoft.com/",
    u"urn:schemas-microsoft-com:",         u"http://www.w3.org/",          u"http://purl.org/dc/"};

std::string utf8(std::u16string_view text) {
    return narrow(text.substr(0, 200));
}

/// Calls `take` with each word of a list.
template <typename Take>
void forEachWord(std::u16string_view list, Take&& take) {
    constexpr std::u16string_view BLANKS = u" \t\r\n";
    for (std::size_t begin = list.find_first_not_of(BLANKS); begin != std::u16string_view::npos;) {
        const std::size_t end = std::min(list.find_first_of(BLANKS, begin), list.size());
        take(list.substr(begin, end - begin));
        begin = list.find_first_not_of(BLANKS, end);
    }
}

std::u16string_view prefixOf(std::u16string_view name) {
    const std::size_t colon = name.find(u':');
    return colon == std::u16string_view::npos ? std::u16string_view() : name.substr(0, colon);
}

const char* elementName(bool isAlternateContent, bool isChoice) {
    return isAlternateContent ? "AlternateContent" : isChoice ? "Choice" : "Fallback";
}

} // namespace

void MarkupCompatibilityReader::Text::add(std::u16string_view piece) {
    for (const char16_t c : piece)
        if (c > u' ') {
            hash = (hash ^ c) * 1099511628211U; // FNV
            ++length;
        }
}

void MarkupCompatibilityReader::begin(const std::string& partName, bool isOfOffice) {
    part = partName;
    knowsVocabulary = isOfOffice;
    levels.clear();
    namespaces.clear();
    declared.clear();
    ignorable.clear();
    ignorables.clear();
    alternatives.clear();
    told.clear();
}

void MarkupCompatibilityReader::onStart(const model::XmlElement& element, const model::XmlPlace& behind) {
    place = behind;
    const std::u16string_view local = element.localName();
    const bool isOfNamespace = element.namespaceURI() == NAMESPACE;
    const Role parent = levels.empty() ? Role::Other : levels.back().role;
    Level level = {Role::Other, declared.size(), ignorables.size(),
                   !levels.empty() && levels.back().isOpenContent, local == u"t"};
    if (isOfNamespace)
        level.role = local == u"AlternateContent" ? Role::AlternateContent
                     : local == u"Choice"         ? Role::Choice
                     : local == u"Fallback"       ? Role::Fallback
                                                  : Role::Other;
    level.isOpenContent = level.isOpenContent || local == u"ext" || local == u"graphicData";
    declare(element);
    const bool isOpenContent = level.isOpenContent;
    levels.push_back(level);
    checkAttributes(element);
    checkRole(element, level.role, parent);
    if (knowsVocabulary && !isOpenContent && !isOfNamespace)
        checkVocabulary(element);
}

void MarkupCompatibilityReader::declare(const model::XmlElement& element) {
    for (std::size_t i = 0; i < element.declarationCount(); ++i) {
        const model::XmlNamespaceDeclaration declaration = element.declaration(i);
        declared.emplace_back(declaration.prefix);
        namespaces[declared.back()].emplace_back(declaration.namespaceURI);
    }
}

void MarkupCompatibilityReader::onEnd() {
    const Level level = levels.back();
    levels.pop_back();
    for (; declared.size() > level.declared; declared.pop_back())
        namespaces[declared.back()].pop_back();
    for (; ignorables.size() > level.ignorables; ignorables.pop_back())
        ignorable.erase(ignorables.back());
    if (level.role == Role::AlternateContent)
        endAlternatives();
    else if ((level.role == Role::Choice || level.role == Role::Fallback) && !alternatives.empty())
        endBranch();
}

/// Text counts for the innermost alternatives, and for those around it where each is the first choice.
void MarkupCompatibilityReader::onText(std::u16string_view text) {
    if (levels.empty() || !levels.back().isText) // such as the place of a drawing
        return;
    for (auto outer = alternatives.rbegin(); outer != alternatives.rend(); ++outer) {
        outer->current.add(text);
        if (outer->choices + outer->fallbacks != 1)
            break;
    }
}

void MarkupCompatibilityReader::checkAttributes(const model::XmlElement& element) {
    std::u16string_view processContent;
    for (std::size_t i = 0; i < element.attributeCount(); ++i) {
        const model::XmlAttribute attribute = element.attribute(i);
        if (attribute.namespaceURI != NAMESPACE)
            continue;
        if (attribute.localName == u"Ignorable") {
            checkPrefixes(attribute.value, "Ignorable", false);
            takeIgnorable(attribute.value);
        } else if (attribute.localName == u"MustUnderstand") {
            checkPrefixes(attribute.value, "MustUnderstand", false);
            checkMustUnderstand(attribute.value);
        } else if (attribute.localName == u"ProcessContent") {
            processContent = attribute.value;
        } else if (attribute.localName == u"PreserveElements" ||
                   attribute.localName == u"PreserveAttributes") {
            add("MCE-10", Severity::Info,
                "The attribute " + utf8(attribute.localName) + " is used, which newer readers don't know");
        }
    }
    checkPrefixes(processContent, "ProcessContent", true);
    checkProcessContent(processContent); // the element's own Ignorable counts
}

void MarkupCompatibilityReader::checkPrefixes(std::u16string_view list, const char* attribute,
                                              bool areNames) {
    forEachWord(list, [&](std::u16string_view word) {
        const std::u16string_view prefix = areNames ? prefixOf(word) : word;
        if (uriOf(prefix) == nullptr && told.emplace(u"prefix " + std::u16string(prefix)).second)
            add("MCE-1", Severity::Error,
                std::string(attribute) + " names the prefix " + utf8(prefix) + ", which isn't declared");
    });
}

void MarkupCompatibilityReader::takeIgnorable(std::u16string_view list) {
    forEachWord(list, [this](std::u16string_view prefix) {
        if (const std::u16string* const uri = uriOf(prefix); uri != nullptr && ignorable.insert(*uri).second)
            ignorables.push_back(*uri);
    });
}

void MarkupCompatibilityReader::checkProcessContent(std::u16string_view list) {
    forEachWord(list, [this](std::u16string_view word) {
        const std::u16string* const uri = uriOf(prefixOf(word));
        if (uri != nullptr && !isIgnorable(*uri) && told.emplace(u"process " + *uri).second)
            add("MCE-9", Severity::Warning,
                "ProcessContent names " + utf8(word) + ", whose namespace isn't ignorable");
    });
}

void MarkupCompatibilityReader::checkMustUnderstand(std::u16string_view list) {
    forEachWord(list, [this](std::u16string_view prefix) {
        if (const std::u16string* const uri = uriOf(prefix);
            uri != nullptr && told.emplace(u"must " + *uri).second)
            add("MCE-7", Severity::Info, "Readers must understand the namespace " + utf8(*uri));
    });
}

void MarkupCompatibilityReader::checkRole(const model::XmlElement& element, Role role, Role parent) {
    if (role == Role::AlternateContent) {
        if (parent == Role::AlternateContent)
            add("MCE-3", Severity::Error, "An AlternateContent stands directly in another one");
        alternatives.emplace_back();
        alternatives.back().place = place;
    } else if (parent == Role::AlternateContent && !alternatives.empty()) {
        Alternatives& around = alternatives.back();
        if (role == Role::Choice && around.fallbacks > 0)
            add("MCE-2", Severity::Error, "A Choice stands behind the Fallback");
        if (role == Role::Fallback && ++around.fallbacks > 1)
            add("MCE-2", Severity::Error, "An AlternateContent has more than one Fallback");
        if (role == Role::Choice)
            ++around.choices;
    } else if (role != Role::Other) {
        add("MCE-2", Severity::Error, "A Choice or Fallback stands outside of an AlternateContent");
    }
    if (role != Role::Other)
        checkRoleAttributes(element, role);
}

void MarkupCompatibilityReader::checkRoleAttributes(const model::XmlElement& element, Role role) {
    const std::string name = elementName(role == Role::AlternateContent, role == Role::Choice);
    bool hasRequires = false;
    for (std::size_t i = 0; i < element.attributeCount(); ++i) {
        const model::XmlAttribute attribute = element.attribute(i);
        const bool isRequires =
            attribute.namespaceURI.empty() && attribute.localName == u"Requires" && role == Role::Choice;
        if (isRequires) {
            forEachWord(attribute.value, [&hasRequires](std::u16string_view) { hasRequires = true; });
            checkPrefixes(attribute.value, "Requires", false);
        } else if (attribute.namespaceURI.empty()) {
            add("MCE-5", role == Role::Choice ? Severity::Warning : Severity::Error,
                name + " has the attribute " + utf8(attribute.localName));
        } else if (attribute.namespaceURI == XML &&
                   (attribute.localName == u"lang" || attribute.localName == u"space")) {
            add("MCE-6", role == Role::Fallback ? Severity::Error : Severity::Warning,
                name + " has the attribute xml:" + utf8(attribute.localName));
        }
    }
    if (role == Role::Choice && !hasRequires)
        add("MCE-4", Severity::Warning, "A Choice doesn't say which namespaces it requires");
}

void MarkupCompatibilityReader::checkVocabulary(const model::XmlElement& element) {
    checkVocabulary(element.namespaceURI());
    for (std::size_t i = 0; i < element.attributeCount(); ++i)
        checkVocabulary(element.attribute(i).namespaceURI);
}

void MarkupCompatibilityReader::checkVocabulary(std::u16string_view uri) {
    const auto begins = [uri](std::u16string_view known) { return uri.substr(0, known.size()) == known; };
    if (uri.empty() || std::any_of(std::begin(KNOWN), std::end(KNOWN), begins) || isIgnorable(uri) ||
        told.find(uri) != told.end())
        return;
    told.emplace(uri);
    add("MCE-8", Severity::Info,
        "The namespace " + utf8(uri) + " isn't ignorable, and office programs don't know it");
}

void MarkupCompatibilityReader::endBranch() {
    Alternatives& around = alternatives.back();
    const bool isFirst = around.choices + around.fallbacks == 1;
    if (isFirst)
        around.first = around.current;
    else if (around.current.length != 0 && !(around.current == around.first))
        findings.add("MCE-11", Severity::Info, placeAt({part}, around.place.line, around.place.column),
                     "The alternatives have different texts");
    around.current = {};
}

void MarkupCompatibilityReader::endAlternatives() {
    const Alternatives ended = alternatives.back();
    alternatives.pop_back();
    if (ended.choices == 0)
        findings.add("MCE-2", Severity::Error, placeAt({part}, ended.place.line, ended.place.column),
                     "An AlternateContent has no Choice");
}

const std::u16string* MarkupCompatibilityReader::uriOf(std::u16string_view prefix) const {
    const auto found = namespaces.find(std::u16string(prefix));
    const bool isDeclared =
        found != namespaces.end() && !found->second.empty() && !found->second.back().empty();
    return isDeclared && !prefix.empty() ? &found->second.back() : nullptr;
}

bool MarkupCompatibilityReader::isIgnorable(std::u16string_view uri) const {
    return ignorable.count(std::u16string(uri)) != 0;
}

void MarkupCompatibilityReader::add(const char* rule, Severity severity, const std::string& message) {
    findings.add(rule, severity, placeAt({part}, place.line, place.column), message);
}

} // namespace opc::inspection
