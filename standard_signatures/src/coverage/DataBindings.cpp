#include "coverage/DataBindings.hpp"

#include "names/PartNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

namespace opc::standard_signatures {

namespace {

/// The properties of the package and of the cover page, which are no custom XML. In lower case.
constexpr std::string_view PROPERTIES[] = {
    "{6c3c8bc8-f283-45ae-878a-bab7291924a1}", // core
    "{6668398d-a668-4e3e-a5eb-62b293d839f1}", // extended
    "{55af091b-3c7a-41e3-b477-f2fdaa23cfda}", // of the cover page
};

class BindingReader final : public PackageDocument {
public:
    explicit BindingReader(const std::set<std::string>& storeIDs) : storeIDs(storeIDs) {}

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        if (element.localName() != u"dataBinding")
            return;
        std::string id;
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            if (const model::XmlAttribute one = element.attribute(i); one.localName == u"storeItemID")
                id = keyOf(narrow(one.value));
        isLoose =
            isLoose || (storeIDs.count(id) == 0 &&
                        std::find(std::begin(PROPERTIES), std::end(PROPERTIES), id) == std::end(PROPERTIES));
    }

    bool isLoose = false;

private:
    const std::set<std::string>& storeIDs;
};

bool isWordProcessing(const StoredPart& part) {
    return part.contentType && keyOf(*part.contentType).find("word") != std::string::npos;
}

bool isXML(const StoredPart& part) {
    const std::string type = part.contentType ? keyOf(*part.contentType) : std::string();
    return type.find("+xml") != std::string::npos || type.find("/xml") != std::string::npos;
}

bool hasLooseBinding(const PackageContents& contents, const StoredPart& part,
                     const std::set<std::string>& storeIDs) {
    BindingReader reader(storeIDs);
    try {
        reader.read(*contents.open(part), std::numeric_limits<std::uint64_t>::max());
    } catch (const Exception&) {
        return reader.isLoose || isXML(part);
    }
    return reader.isLoose;
}

} // namespace

std::vector<const StoredPart*> findLooseBindings(const PackageContents& contents,
                                                 const std::set<std::string>& storeIDs) {
    std::vector<const StoredPart*> loose;
    const auto& parts = contents.parts();
    if (std::any_of(parts.begin(), parts.end(), isWordProcessing)) // others have no content controls
        for (const StoredPart& part : parts)
            if (!part.source && hasLooseBinding(contents, part, storeIDs))
                loose.push_back(&part);
    return loose;
}

} // namespace opc::standard_signatures
