#include "coverage/ImplicitRelationships.hpp"

#include "names/PartNames.hpp"

#include <algorithm>
#include <iterator>
#include <string>

namespace opc::standard_signatures {

namespace {

/// The last segments of the types, in lower case and sorted. In front of them stand the namespaces of the standard's editions and
/// of later extensions.
constexpr std::string_view IMPLICIT[] = {
    "attachedtoolbars",
    "calcchain",
    "commentauthors",
    "comments",
    "commentsextended",
    "commentsextensible",
    "commentsids",
    "connections",
    "customxmlprops",
    "endnotes",
    "fixedrepresentation",
    "fonttable",
    "footnotes",
    "glossarydocument",
    "handoutmaster",
    "keymapcustomizations",
    "masters",
    "notesmaster",
    "notesslide",
    "numbering",
    "pages",
    "people",
    "presprops",
    "settings",
    "sharedstrings",
    "sheetmetadata",
    "styles",
    "styleswitheffects",
    "tablestyles",
    "theme",
    "vbaproject",
    "viewprops",
    "volatiledependencies",
    "websettings",
    "windows",
    "wordvbadata",
    "xmlmaps",
};

} // namespace

bool isImplicit(std::string_view type) {
    const std::string name = keyOf(type.substr(type.rfind('/') + 1));
    return std::binary_search(std::begin(IMPLICIT), std::end(IMPLICIT), name);
}

} // namespace opc::standard_signatures
