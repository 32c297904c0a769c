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

/// The same of relationships of the package alone, which lead to where programs begin.
constexpr std::string_view IMPLICIT_OF_PACKAGE[] = {"3dmodel", "aasx-origin", "document", "extensibility",
                                                    "manifest"};

} // namespace

bool isImplicit(std::string_view type, bool isOfPackage) {
    const std::string name = keyOf(type.substr(type.rfind('/') + 1));
    return std::binary_search(std::begin(IMPLICIT), std::end(IMPLICIT), name) ||
           (isOfPackage &&
            std::binary_search(std::begin(IMPLICIT_OF_PACKAGE), std::end(IMPLICIT_OF_PACKAGE), name));
}

} // namespace opc::standard_signatures
