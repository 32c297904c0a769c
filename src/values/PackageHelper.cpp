#include <opc/model/PackageHelper.hpp>

namespace opc::model {

URI PackageHelper::getPackageRootURI() {
    return URI(u"/");
}

URI PackageHelper::getCorePropertiesURI() {
    static const URI uri(u"/metadata/coreProperties.xml");
    return uri; // parsed only once, because each digested part asks for it
}

ContentType PackageHelper::getCorePropertiesContentType() {
    return ContentType(u"application/vnd.openxmlformats-package.core-properties+xml");
}

std::u16string PackageHelper::getCorePropertiesRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
}

ContentType PackageHelper::getRelationshipContentType() {
    static const ContentType type(u"application/vnd.openxmlformats-package.relationships+xml");
    return type; // parsed only once, because each new relationships part asks for it
}

std::u16string PackageHelper::getThumbnailRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail";
}

URI PackageHelper::getThumbnailURI(const std::u16string& extension) {
    std::u16string name = u"/metadata/thumbnail";
    if (!extension.empty() && extension.front() != URI::getDot())
        name += URI::getDot();
    return URI(name + extension);
}

} // namespace opc::model
