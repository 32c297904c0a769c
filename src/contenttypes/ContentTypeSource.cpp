#include "contenttypes/ContentTypeSource.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypeSerializer.hpp"
#include "xml/UnreadElements.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/PhysicalOutputStream.hpp>

#include <algorithm>

namespace opc::model {

namespace {

constexpr char IN_STREAM[] = "In content type stream: ";

bool isHexDigit(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

/// A pchar without the full stop, the semicolon and the percent sign.
bool isExtensionCharacter(char16_t unit) {
    constexpr std::u16string_view OTHERS = u"-_~!$&'()*+,=:@";
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || OTHERS.find(unit) != std::u16string_view::npos;
}

/// @param unread  how many elements of the stream weren't read; one of them may have the content type
[[noreturn]] void throwNotFound(const PartName& name, std::size_t unread = 0) {
    ContentTypeNotFound failure("No content type was found for part:" + toASCIIString(name.toString()));
    if (unread > 0)
        failure.addDetails("the content types stream has " + describeElements(unread));
    throw failure;
}

/// Relationships parts are recognised by their names, not by their content types.
bool givesRelationshipsAnotherType(const ContentTypeMap& map) {
    const ContentType expected = PackageHelper::getRelationshipContentType();
    const auto standard = map.getDefaults().find(u"rels");
    return (standard != map.getDefaults().end() && standard->second.contentType != expected) ||
           std::any_of(map.getOverrides().begin(), map.getOverrides().end(), [&expected](const auto& entry) {
               return entry.first.isRelationshipName() && entry.second != expected;
           });
}

} // namespace

ContentTypeSource::ContentTypeSource(interfaces::IPhysicalPackage& physicalPackage, bool createOnly,
                                     std::shared_ptr<DocumentBudget> budget)
    : physicalPackage(&physicalPackage), hasStream(physicalPackage.usesContentTypeStream()) {
    if (!hasStream)
        return;
    contentTypes = std::make_unique<ContentTypeMap>();
    serializer = std::make_unique<ContentTypeSerializer>(std::move(budget));
    if (!createOnly)
        read();
}

ContentTypeSource::~ContentTypeSource() = default;

void ContentTypeSource::read() {
    try {
        PhysicalInputStream stream(physicalPackage->getContentTypeInputStream());
        serializer->read(*contentTypes, stream);
    } catch (const InvalidPartContent& e) {
        throw translated<InvalidContentTypeStream>(e, e.what());
    }
}

bool ContentTypeSource::hasUnread() const {
    return hasStream && (contentTypes->countUnread() > 0 || contentTypes->isContradicted() ||
                         givesRelationshipsAnotherType(*contentTypes));
}

void ContentTypeSource::throwIfFixed() const {
    if (hasStream && contentTypes->countUnread() > 0)
        throw InvalidContentTypeStream(IN_STREAM + describeUnread(contentTypes->countUnread()));
}

std::u16string ContentTypeSource::extensionKey(const PartName& name) {
    return toLowerASCIIString(name.getExtension());
}

bool ContentTypeSource::canHaveDefault(std::u16string_view extension) {
    if (extension.empty())
        return false;
    while (!extension.empty()) {
        const bool isEscape = extension.size() > 2 && extension[0] == u'%' && isHexDigit(extension[1]) &&
                              isHexDigit(extension[2]);
        if (!isEscape && !isExtensionCharacter(extension[0]))
            return false;
        extension.remove_prefix(isEscape ? 3 : 1);
    }
    return true;
}

void ContentTypeSource::addContentType(const PartName& name, const ContentType& contentType) {
    if (!hasStream)
        return;
    if (contentTypes->hasOverride(name)) // of a part that doesn't exist, or is being replaced
        contentTypes->removeOverride(name);
    const std::u16string extension = extensionKey(name);
    if (!canHaveDefault(
            extension)) { // NOLINT(bugprone-branch-clone): the questions are in the order of the rule
        contentTypes->addOverride(name, contentType);
    } else if (!contentTypes->hasDefault(extension)) {
        contentTypes->addDefault(extension, contentType);
        contentTypes->addReference(extension);
    } else if (contentTypes->getDefault(extension).toString() == contentType.toString()) {
        contentTypes->addReference(extension);
    } else {
        contentTypes->addOverride(name, contentType);
    }
}

void ContentTypeSource::removeContentType(const PartName& name, const std::u16string& extension) {
    if (!hasStream)
        return;
    if (contentTypes->hasOverride(name)) {
        contentTypes->removeOverride(name);
        return;
    }
    if (!contentTypes->hasDefault(extension))
        throwNotFound(name);
    contentTypes->releaseDefault(extension);
}

void ContentTypeSource::changeContentType(const PartName& name, const ContentType& contentType) {
    if (!hasStream)
        throw ContentTypeNotFound("No content type stream.");
    const std::u16string extension = extensionKey(name);
    const auto isType = [&contentType](const ContentType& old) {
        return old.toString() == contentType.toString();
    };
    const Override* const own = contentTypes->findOverride(name);
    if (isType(own != nullptr ? own->second : contentTypes->getDefault(extension)))
        return;
    if (contentTypes->hasDefault(extension) && isType(contentTypes->getDefault(extension))) {
        contentTypes->addReference(extension);
        contentTypes->removeOverride(name);
        return;
    }
    contentTypes->setOverride(name, contentType);
    if (own == nullptr)
        contentTypes->releaseDefault(extension);
}

const ContentTypeSource::Override* ContentTypeSource::findOverride(const std::u16string& name) const {
    return hasStream ? contentTypes->findOverride(name) : nullptr;
}

ContentType ContentTypeSource::useDefault(const PartName& name) {
    if (!hasStream)
        throw ContentTypeNotFound("No content type stream.");
    const ContentType* common = contentTypes->useDefault(extensionKey(name));
    if (common == nullptr)
        throwNotFound(name, contentTypes->countUnread());
    return *common;
}

void ContentTypeSource::flush() {
    if (!hasStream || !contentTypes->isDirty())
        return;
    try {
        PhysicalOutputStream stream(physicalPackage->getContentTypeOutputStream());
        serializer->write(*contentTypes, stream);
        contentTypes->setDirty(false);
        stream.close();
    } catch (const InvalidPartContent& e) {
        throw translated<InvalidContentTypeStream>(e, std::string(IN_STREAM) + e.what());
    }
}

} // namespace opc::model
