#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/XmlRules.hpp>

#include "xml/EventScanner.hpp"

namespace opc::model {

namespace {

class IgnoredEvents final : public XmlEvents {
    void onStart(const XmlElement&, const XmlPlace&) override {}
};

} // namespace

void XmlRules::check(const std::vector<unsigned char>& document) {
    ByteArrayInAdaptor scanned(document);
    IgnoredEvents events;
    if (EventScanner(scanned, events).scan())
        return;
    ByteArrayInAdaptor parsed(document);
    check(parsed);
}

} // namespace opc::model
