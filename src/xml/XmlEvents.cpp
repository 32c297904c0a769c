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

    void onVersion(std::u16string_view version) override {
        if (!told.declaration)
            events.onVersion(version);
    }
    void onDeclaration(std::u16string_view encoding) override {
        if (!told.declaration)
            events.onDeclaration(encoding);
    }
    void onStart(const XmlElement& element, const XmlPlace& behind) override {
        if (isNextMarkupNew())
            events.onStart(element, behind);
    }
    void onEnd() override {
        if (isNextMarkupNew())
            events.onEnd();
    }
    void onText(std::u16string_view text) override {
        if (told.markup != 0)
            return;
        const std::size_t known = static_cast<std::size_t>(std::min<std::uint64_t>(told.text, text.size()));
        told.text -= known;
        if (known < text.size())
            events.onText(text.substr(known));
    }
    void onComment(std::u16string_view text) override {
        if (isNextMarkupNew())
            events.onComment(text);
    }
    void onInstruction(std::u16string_view target, std::u16string_view data) override {
        if (isNextMarkupNew())
            events.onInstruction(target, data);
    }

private:
    bool isNextMarkupNew() {
        if (told.markup != 0) {
            --told.markup;
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
