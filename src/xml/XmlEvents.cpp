#include <opc/model/XmlEvents.hpp>

#include "xml/EventParsing.hpp"
#include "xml/EventScanner.hpp"

#include <algorithm>

namespace opc::model {

namespace {

/// Passes on what comes behind the events that were told already.
class RemainingEvents final : public XmlEvents {
public:
    RemainingEvents(XmlEvents& events, const ToldEvents& told) : events(events), told(told) {}

    void onDeclaration(std::u16string_view encoding) override {
        if (!told.declaration)
            events.onDeclaration(encoding);
    }
    void onStart(const XmlElement& element, const XmlPlace& behind) override {
        if (isNextTagNew())
            events.onStart(element, behind);
    }
    void onEnd() override {
        if (isNextTagNew())
            events.onEnd();
    }
    void onText(std::u16string_view text) override {
        if (told.tags != 0)
            return;
        const std::size_t known = static_cast<std::size_t>(std::min<std::uint64_t>(told.text, text.size()));
        told.text -= known;
        if (known < text.size())
            events.onText(text.substr(known));
    }

private:
    bool isNextTagNew() {
        if (told.tags != 0) {
            --told.tags;
            return false;
        }
        told.text = 0;
        return true;
    }

    XmlEvents& events;
    ToldEvents told;
};

} // namespace

void readXmlDocument(InputStream& stream, XmlEvents& events) {
    EventScanner scanner(stream, events);
    if (scanner.scan())
        return;
    stream.close();
    stream.open();
    RemainingEvents rest(events, scanner.told());
    parseXmlDocument(stream, rest);
}

} // namespace opc::model
