#include "checks/security/MarkupReader.hpp"

#include "checks/DocumentChecks.hpp"
#include "checks/security/Formulas.hpp"
#include "checks/security/SecurityChecks.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/LeadingBlanks.hpp"
#include "text/MessageText.hpp"

#include <opc/inspection/External.hpp>

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::size_t LONGEST_FORMULA = 8192; // as long as a formula can be

using model::XmlElement;

std::string valueOf(const XmlElement& element, std::u16string_view local) {
    for (std::size_t i = 0; i < element.attributeCount(); ++i)
        if (element.attribute(i).localName == local)
            return narrow(element.attribute(i).value);
    return {};
}

bool contains(std::u16string_view text, std::u16string_view part) {
    return text.find(part) != std::u16string_view::npos;
}

bool isOff(const std::string& value) {
    return value == "0" || value == "false" || value == "off";
}

/// The first word, in upper case.
std::string firstWord(const std::string& code) {
    const std::size_t begin = code.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos)
        return {};
    std::string word = code.substr(begin, code.find_first_of(" \t\r\n\"\\", begin) - begin);
    std::transform(word.begin(), word.end(), word.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return word;
}

} // namespace

/// An element that matters, in a namespace that contains a word: so the transitional and the strict form are alike.
struct MarkupReader::Row {
    std::string_view name;
    std::u16string_view local, vocabulary;
    void (MarkupReader::*read)(const XmlElement& element);
};

const MarkupReader::Row MarkupReader::ROWS[] = {
    {"fldChar", u"fldChar", u"wordprocessingml", &MarkupReader::onFieldCharacter},
    {"fldSimple", u"fldSimple", u"wordprocessingml", &MarkupReader::onSimpleField},
    {"instrText", u"instrText", u"wordprocessingml", &MarkupReader::onFieldInstruction},
    {"f", u"f", u"spreadsheetml", &MarkupReader::onFormula},
    {"f", u"f", u"office/excel", &MarkupReader::onFormula}, // in extensions
    {"formula", u"formula", u"spreadsheetml", &MarkupReader::onFormula},
    {"formula1", u"formula1", u"spreadsheetml", &MarkupReader::onFormula},
    {"formula2", u"formula2", u"spreadsheetml", &MarkupReader::onFormula},
    {"calculatedColumnFormula", u"calculatedColumnFormula", u"spreadsheetml", &MarkupReader::onFormula},
    {"definedName", u"definedName", u"spreadsheetml", &MarkupReader::onDefinedName},
    {"ddeLink", u"ddeLink", u"spreadsheetml", &MarkupReader::onDdeLink},
    {"hlinkClick", u"hlinkClick", u"drawingml", &MarkupReader::onAction},
    {"hlinkHover", u"hlinkHover", u"drawingml", &MarkupReader::onAction},
    {"hlinkMouseOver", u"hlinkMouseOver", u"drawingml", &MarkupReader::onAction},
    {"customUI", u"customUI", u"customui", &MarkupReader::onCustomUi},
    {"connection", u"connection", u"spreadsheetml", &MarkupReader::onConnection},
    {"dbPr", u"dbPr", u"spreadsheetml", &MarkupReader::onDatabase},
    {"webPr", u"webPr", u"spreadsheetml", &MarkupReader::onWebQuery},
    {"HyperlinkBase", u"HyperlinkBase", u"xtended", &MarkupReader::onHyperlinkBase},
    {"absPath", u"absPath", u"spreadsheetml", &MarkupReader::onPath},
    {"sheet", u"sheet", u"spreadsheetml", &MarkupReader::onSheet},
    {"sld", u"sld", u"presentationml", &MarkupReader::onSlide},
    {"vanish", u"vanish", u"wordprocessingml", &MarkupReader::onHiddenText},
    {"ins", u"ins", u"wordprocessingml", &MarkupReader::onTrackedChange},
    {"del", u"del", u"wordprocessingml", &MarkupReader::onTrackedChange},
    {"moveFrom", u"moveFrom", u"wordprocessingml", &MarkupReader::onTrackedChange},
    {"moveTo", u"moveTo", u"wordprocessingml", &MarkupReader::onTrackedChange},
    {"rsid", u"rsid", u"wordprocessingml", &MarkupReader::onSession},
    {"docId", u"docId", u"office/word", &MarkupReader::onSession},
    {"script", u"script", u"2000/svg", &MarkupReader::onScript},
    {"image", u"image", u"2000/svg", &MarkupReader::onReference},
    {"use", u"use", u"2000/svg", &MarkupReader::onReference},
    {"row", u"row", u"spreadsheetml", &MarkupReader::onSheetLine},
    {"col", u"col", u"spreadsheetml", &MarkupReader::onSheetLine},
};

std::vector<std::string_view> MarkupReader::decidingElements() {
    static constexpr std::string_view USUAL[] = {"fldChar", "sld", "row", "col"};
    std::vector<std::string_view> names;
    for (const Row& row : ROWS)
        if (std::find(std::begin(USUAL), std::end(USUAL), row.name) == std::end(USUAL) &&
            std::find(names.begin(), names.end(), row.name) == names.end())
            names.push_back(row.name);
    return names;
}

MarkupReader::MarkupReader(Findings& findings)
    : findings(findings),
      fields([this](const std::string& code, const model::XmlPlace& where) { tellField(code, where); }) {
}

void MarkupReader::begin(const std::string& partName) {
    part = partName;
    depth = hiddenTexts = hiddenLines = trackedChanges = sessions = 0;
    collected = Text::None;
    isRibbon = hasCallbacks = false;
    told.clear();
}

void MarkupReader::end() {
    fields.endDocument();
    tellCount(trackedChanges, "SEC-65", "tracked changes");
    tellCount(hiddenTexts, "SEC-65", "runs of hidden text");
    tellCount(hiddenLines, "SEC-65", "hidden rows and columns");
    tellCount(sessions, "SEC-63", "marks of editing sessions and documents");
    if (isRibbon && !hasCallbacks)
        findings.add("SEC-23", Severity::Info, {part}, "The part changes the ribbon, without callbacks");
}

void MarkupReader::onStart(const XmlElement& element, const model::XmlPlace& behind) {
    place = behind;
    ++depth;
    const std::u16string_view local = element.localName();
    for (const Row& row : ROWS)
        if (row.local == local && contains(element.namespaceURI(), row.vocabulary))
            (this->*row.read)(element);
    if (isRibbon && !hasCallbacks)
        tellCallbacks(element);
}

void MarkupReader::onEnd() {
    if (collected != Text::None && depth == collectedDepth)
        tellText();
    --depth;
}

void MarkupReader::onText(std::u16string_view piece) {
    if (collected == Text::Instruction)
        fields.addText(piece);
    else if (collected != Text::None && text.size() < LONGEST_FORMULA)
        text += text.empty() ? withoutBlanksInFront(piece) : piece;
}

void MarkupReader::collect(Text kind) {
    collected = kind;
    collectedDepth = depth;
    text.clear();
}

void MarkupReader::tellText() {
    const Text kind = collected;
    collected = Text::None;
    const std::string content = narrow(text);
    if (kind == Text::Formula)
        tellFormula(content, "A formula");
    else if (kind == Text::DefinedName)
        tellFormula(content, "The name " + shown(name));
    else if (kind == Text::HyperlinkBase && content.find_first_not_of(" \t\r\n") != std::string::npos)
        add("SEC-08", Severity::Warning, "The base of relative links is " + shown(content));
}

void MarkupReader::onFieldCharacter(const XmlElement& element) {
    const std::string type = valueOf(element, u"fldCharType");
    if (type == "begin")
        fields.begin(place);
    else if (type == "separate")
        fields.separate();
    else if (type == "end")
        fields.end();
}

void MarkupReader::onSimpleField(const XmlElement& element) {
    tellField(valueOf(element, u"instr"), place);
}

void MarkupReader::onFieldInstruction(const XmlElement&) {
    collect(Text::Instruction);
}

void MarkupReader::tellField(const std::string& code, const model::XmlPlace& where) {
    static constexpr std::string_view LOADING[] = {"INCLUDEPICTURE", "INCLUDETEXT", "INCLUDE", "IMPORT", "RD",
                                                   "LINK",           "DATABASE"};
    const std::string word = firstWord(code);
    const Place at = placeAt({part}, where.line, where.column);
    if (word == "DDE" || word == "DDEAUTO")
        findings.add("SEC-25", at, "The field asks another program: " + shown(code));
    else if (std::find(std::begin(LOADING), std::end(LOADING), word) != std::end(LOADING))
        findings.add("SEC-15", at, "The field loads from outside: " + shown(code));
}

void MarkupReader::onFormula(const XmlElement&) {
    collect(Text::Formula);
}

void MarkupReader::onDefinedName(const XmlElement& element) {
    name = valueOf(element, u"name");
    collect(Text::DefinedName);
    const std::string folded = toLowerASCII(name);
    if (folded.find("auto_open") < 7 || folded.find("auto_close") < 7) // _xlnm. can stand in front
        add("SEC-29", Severity::Warning, "The name " + shown(name) + " runs a macro sheet");
}

/// One finding for each function of a part: a column can hold it in each row.
void MarkupReader::tellFormula(const std::string& formula, const std::string& what) {
    for (const std::string_view function : reachingFunctions(formula))
        if (told.emplace(function).second)
            add("SEC-29", function == "HYPERLINK" ? Severity::Info : Severity::Warning,
                what + " calls " + std::string(function) + ": " + shown(formula));
}

void MarkupReader::onDdeLink(const XmlElement& element) {
    add("SEC-25", Severity::Error,
        "The workbook asks the program " + shown(valueOf(element, u"ddeService")) + " for " +
            shown(valueOf(element, u"ddeTopic")));
}

void MarkupReader::onAction(const XmlElement& element) {
    const std::string action = valueOf(element, u"action");
    for (const char* const risky : {"ppaction://program", "ppaction://macro", "ppaction://ole"})
        if (startsWith(action, risky))
            add("SEC-26", Severity::Error, "The action of a shape is " + shown(action));
    if (element.localName() != u"hlinkClick" && !valueOf(element, u"id").empty())
        add("SEC-26", Severity::Warning,
            "A link is followed when the mouse is over a shape: relationship " +
                shown(valueOf(element, u"id")));
}

void MarkupReader::onCustomUi(const XmlElement&) {
    isRibbon = true;
}

/// Callbacks are attributes without prefix, such as onAction and getLabel.
void MarkupReader::tellCallbacks(const XmlElement& element) {
    for (std::size_t i = 0; i < element.attributeCount(); ++i) {
        const model::XmlAttribute attribute = element.attribute(i);
        const std::u16string_view local = attribute.localName;
        if (!attribute.namespaceURI.empty() ||
            (local.substr(0, 2) != u"on" && local.substr(0, 3) != u"get" && local != u"loadImage"))
            continue;
        hasCallbacks = true;
        add("SEC-23", Severity::Warning,
            "The ribbon calls back: " + narrow(local) + "=" + shown(narrow(attribute.value)));
        return;
    }
}

void MarkupReader::onConnection(const XmlElement& element) {
    name = valueOf(element, u"name");
    const std::string file = valueOf(element, u"sourceFile");
    if (!file.empty())
        add("SEC-14", Severity::Warning, "The connection " + shown(name) + " reads the file " + shown(file));
}

void MarkupReader::onDatabase(const XmlElement& element) {
    const std::string source = valueOf(element, u"connection");
    if (source != "Data Model Connection") // the workbook itself
        add("SEC-14", Severity::Warning,
            "The connection " + shown(name) + " asks a data source: " + shown(source));
    const std::string folded = toLowerASCII(source);
    if (folded.find("password=") != std::string::npos || folded.find("pwd=") != std::string::npos)
        add("SEC-18", Severity::Warning, "The connection " + shown(name) + " holds a password");
}

void MarkupReader::onWebQuery(const XmlElement& element) {
    add("SEC-14", Severity::Warning,
        "The connection " + shown(name) + " asks the web: " + shown(valueOf(element, u"url")));
}

void MarkupReader::onHyperlinkBase(const XmlElement&) {
    collect(Text::HyperlinkBase);
}

void MarkupReader::onPath(const XmlElement& element) {
    const std::string path = valueOf(element, u"url");
    const std::string user = userIn(path);
    add("SEC-67", Severity::Info,
        (user.empty() ? "The workbook notes where it lay: "
                      : "The workbook names the user " + shown(user) + ": ") +
            shown(path));
}

void MarkupReader::onSheet(const XmlElement& element) {
    const std::string state = valueOf(element, u"state");
    if (state == "hidden" || state == "veryHidden")
        add("SEC-65", state == "hidden" ? Severity::Info : Severity::Warning,
            "The sheet " + shown(valueOf(element, u"name")) + " is hidden" +
                (state == "hidden" ? "" : ", and no menu of Excel shows it"));
}

void MarkupReader::onSlide(const XmlElement& element) {
    if (const std::string isShown = valueOf(element, u"show"); !isShown.empty() && isOff(isShown))
        add("SEC-65", Severity::Info, "The slide is hidden");
}

void MarkupReader::onHiddenText(const XmlElement& element) {
    if (!isOff(valueOf(element, u"val")))
        ++hiddenTexts;
}

void MarkupReader::onSheetLine(const XmlElement& element) {
    if (const std::string isHidden = valueOf(element, u"hidden"); !isHidden.empty() && !isOff(isHidden))
        ++hiddenLines;
}

void MarkupReader::onTrackedChange(const XmlElement&) {
    ++trackedChanges;
}

void MarkupReader::onSession(const XmlElement&) {
    ++sessions;
}

void MarkupReader::onScript(const XmlElement&) {
    if (told.emplace("script").second)
        add("SEC-43", Severity::Info, "The image has a script");
}

void MarkupReader::onReference(const XmlElement& element) {
    const std::string target = valueOf(element, u"href");
    const ExternalPlace where = placeOf(target);
    if (where != ExternalPlace::Other && where != ExternalPlace::Mail) // not a place within, nor data
        add("SEC-43", Severity::Info, "The image refers to " + shown(target));
}

void MarkupReader::tellCount(std::size_t count, const char* rule, const char* what) {
    if (count != 0)
        findings.add(rule, Severity::Info, {part},
                     "The part holds " + std::string(what) + ": " + std::to_string(count));
}

void MarkupReader::add(const char* rule, Severity severity, std::string message) {
    findings.add(rule, severity, here(), std::move(message));
}

Place MarkupReader::here() const {
    return placeAt({part}, place.line, place.column);
}

} // namespace opc::inspection
