#include "coverage/ImplicitRelationships.hpp"

#include "names/PartNames.hpp"

#include <algorithm>
#include <iterator>
#include <string>

namespace opc::standard_signatures {

namespace {

struct ImplicitType {
    std::string_view name;   ///< the last segment of the type
    std::string_view source; ///< how the content type of the source ends; "/" for the package, empty for any
};

/// In lower case, sorted by name.
constexpr ImplicitType IMPLICIT[] = {
    {"3dmodel", "/"},
    {"aasx-origin", "/"},
    {"attachedtoolbars", ""},
    {"authors", ""},
    {"calcchain", ""},
    {"chartcolorstyle", ""},
    {"chartstyle", ""},
    {"commentauthors", ""},
    {"comments", ""},
    {"commentsextended", ""},
    {"commentsextensible", ""},
    {"commentsids", ""},
    {"connections", ""},
    {"customxmlprops", ""},
    {"discard-control", ""},
    {"document", "/"},
    {"documentsequence", "/"},
    {"documentstructure", ""},
    {"documenttasks", ""},
    {"endnotes", ""},
    {"extensibility", "/"},
    {"featurepropertybag", ""},
    {"fixedrepresentation", ""},
    {"fonttable", ""},
    {"footnotes", ""},
    {"glossarydocument", ""},
    {"handoutmaster", ""},
    {"keymapcustomizations", ""},
    {"manifest", "/"},
    {"masters", ""},
    {"notesmaster", ""},
    {"notesslide", ""},
    {"numbering", ""},
    {"pages", ""},
    {"people", ""},
    {"person", ""},
    {"pivotcachedefinition", ".pivottable+xml"},
    {"presprops", ""},
    {"printticket", ""},
    {"querytable", ".table+xml"},
    {"rdarray", ""},
    {"rdrichvalue", ""},
    {"rdrichvaluestructure", ""},
    {"rdrichvaluetypes", ""},
    {"rdsupportingpropertybag", ""},
    {"rdsupportingpropertybagstructure", ""},
    {"recordsets", ""},
    {"revisionheaders", ""},
    {"revisioninfo", ""},
    {"richstyles", ""},
    {"richvaluerel", ""},
    {"settings", ""},
    {"sharedstrings", ""},
    {"sheetmetadata", ""},
    {"signature-definitions", ""},
    {"slide", ".notesslide+xml"},
    {"slidelayout", ".slide+xml"},
    {"slidemaster", ".slidelayout+xml"},
    {"slideupdateinfo", ""},
    {"solutions", ""},
    {"storyfragments", ""},
    {"styles", ""},
    {"styleswitheffects", ""},
    {"tablesinglecells", ""},
    {"tablestyles", ""},
    {"theme", ""},
    {"themeoverride", ""},
    {"threadedcomment", ""},
    {"usernames", ""},
    {"validation", ""},
    {"vbaproject", ""},
    {"vbaprojectsignature", ""},
    {"vbaprojectsignatureagile", ""},
    {"vbaprojectsignaturev3", ""},
    {"viewprops", ""},
    {"volatiledependencies", ""},
    {"websettings", ""},
    {"windows", ""},
    {"wordvbadata", ""},
    {"wssortmap", ""},
    {"xlbinaryindex", ""},
    {"xmlmaps", ""},
};

} // namespace

std::string implicitKindOf(std::string_view type, std::string_view sourceType) {
    const std::string name = keyOf(type.substr(type.rfind('/') + 1));
    const auto* const found =
        std::lower_bound(std::begin(IMPLICIT), std::end(IMPLICIT), name,
                         [](const ImplicitType& one, std::string_view wanted) { return one.name < wanted; });
    if (found == std::end(IMPLICIT) || found->name != name || !keyEndsWith(sourceType, found->source))
        return {};
    const std::string key = keyOf(type);
    return key.find("/officedocument/") == std::string::npos ? key : name;
}

} // namespace opc::standard_signatures
