#include "support/EventComparison.hpp"

#include "support/Outcome.hpp"
#include "xml/EventParsing.hpp"
#include "xml/EventScanner.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <cstring>

namespace opc::test {

namespace {

std::string shown(std::u16string_view text) {
    return toUDEString(std::u16string(text));
}

template <typename Read>
LoggedEvents logged(const Bytes& document, std::size_t bytesAtATime, const Read& read) {
    EventLog log;
    SlowStream stream(document, bytesAtATime);
    LoggedEvents result;
    std::string details;
    result.failure = outcomeOf([&] {
        try {
            read(stream, log);
        } catch (const Exception& e) {
            details = e.details();
            throw;
        }
    });
    if (!result.failure.empty())
        result.failure += " (" + details + ")";
    result.lines = log.lines;
    return result;
}

} // namespace

void EventLog::onVersion(std::u16string_view version) {
    lines += "version " + shown(version);
}

void EventLog::onDeclaration(std::u16string_view encoding) {
    lines += " declaration " + shown(encoding);
}

void EventLog::onStart(const model::XmlElement& element, const model::XmlPlace& behind) {
    isInText = false;
    lines += "\nstart " + shown(element.prefix()) + " {" + shown(element.namespaceURI()) + "}" +
             shown(element.localName()) + " " + std::to_string(behind.line) + ":" +
             std::to_string(behind.column);
    for (std::size_t i = 0; i < element.declarationCount(); ++i)
        lines += " xmlns:" + shown(element.declaration(i).prefix) + "=" +
                 shown(element.declaration(i).namespaceURI);
    for (std::size_t i = 0; i < element.attributeCount(); ++i) {
        const model::XmlAttribute one = element.attribute(i);
        lines += " " + shown(one.prefix) + " {" + shown(one.namespaceURI) + "}" + shown(one.localName) + "=" +
                 shown(one.value);
        const std::u16string_view found = element.valueOf(one.namespaceURI, one.localName);
        if (found.data() == nullptr || found != one.value)
            lines += " but not by its name";
    }
    if (element.valueOf(u"no", u"such").data() != nullptr)
        lines += " and one that it doesn't have";
}

void EventLog::onEnd() {
    isInText = false;
    lines += "\nend";
}

void EventLog::onText(std::u16string_view text) {
    lines += (isInText ? "" : "\ntext ") + shown(text);
    isInText = true;
}

void EventLog::onComment(std::u16string_view text) {
    isInText = false;
    lines += "\ncomment " + shown(text);
}

void EventLog::onInstruction(std::u16string_view target, std::u16string_view data) {
    isInText = false;
    lines += "\ninstruction " + shown(target) + "|" + shown(data);
}

std::uint64_t SlowStream::read(unsigned char* buffer, std::uint64_t count) {
    const std::size_t given = std::min({bytes.size() - position, most, static_cast<std::size_t>(count)});
    std::memcpy(buffer, bytes.data() + position, given);
    position += given;
    return given;
}

LoggedEvents eventsOf(const Bytes& document, std::size_t bytesAtATime) {
    return logged(document, bytesAtATime, model::readXmlDocument);
}

std::string findEventDifference(const Bytes& document, std::size_t bytesAtATime) {
    const LoggedEvents read = eventsOf(document, bytesAtATime);
    const LoggedEvents parsed = logged(document, bytesAtATime, model::parseXmlDocument);
    const std::size_t common = std::min(read.lines.size(), parsed.lines.size());
    const bool isSame =
        read.failure == parsed.failure &&
        (read.failure.empty() ? read.lines == parsed.lines
                              : read.lines.substr(0, common) == parsed.lines.substr(0, common));
    return isSame ? std::string() : read.whole() + "\nagainst\n" + parsed.whole();
}

bool isScanned(const Bytes& document) {
    EventLog log;
    SlowStream stream(document, document.size() + 1);
    return model::EventScanner(stream, log).scan();
}

} // namespace opc::test
