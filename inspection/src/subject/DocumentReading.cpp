#include "subject/DocumentReading.hpp"

#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::size_t LONGEST_PROLOG = 65536;

/// Passes a stream on, and keeps its beginning.
class HeadKeepingStream final : public InputStream {
public:
    explicit HeadKeepingStream(InputStream& stream) : stream(stream) {}

    void open() override {
        stream.open();
        head.clear();
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = stream.read(buffer, count);
        const auto kept =
            static_cast<std::size_t>(std::min<std::uint64_t>(got, LONGEST_PROLOG - head.size()));
        head.append(reinterpret_cast<const char*>(buffer), kept);
        return got;
    }
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

    std::string head;

private:
    InputStream& stream;
};

/// Notes what the events tell about the document as a whole.
class StateKeeper final : public model::XmlEvents {
public:
    StateKeeper(DocumentState& state, model::XmlEvents& events) : state(state), events(events) {}

    void onDeclaration(std::u16string_view encoding) override {
        state.declaredEncoding = narrow(encoding);
        events.onDeclaration(encoding);
    }
    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override {
        if (!hasRoot)
            startRoot(element);
        for (std::size_t i = 0; i < element.declarationCount(); ++i)
            if (element.declaration(i).namespaceURI == MARKUP_COMPATIBILITY)
                state.declaresMarkupCompatibility = true;
        if (state.declaresMarkupCompatibility && !state.usesMarkupCompatibility)
            state.usesMarkupCompatibility = usesMarkupCompatibility(element);
        events.onStart(element, behind);
    }
    void onEnd() override { events.onEnd(); }
    void onText(std::u16string_view text) override { events.onText(text); }

private:
    void startRoot(const model::XmlElement& element) {
        hasRoot = true;
        state.rootNamespace = narrow(element.namespaceURI());
        state.rootName = narrow(element.localName());
        state.rootPrefix = narrow(element.prefix());
    }

    static bool usesMarkupCompatibility(const model::XmlElement& element) {
        if (element.namespaceURI() == MARKUP_COMPATIBILITY)
            return true;
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            if (element.attribute(i).namespaceURI == MARKUP_COMPATIBILITY)
                return true;
        return false;
    }

    DocumentState& state;
    model::XmlEvents& events;
    bool hasRoot = false;
};

bool beginsAsUTF16(std::string_view head) {
    using namespace std::string_view_literals;
    if (head.size() > 3 && head[2] == 0 && head[3] == 0) // UTF-32
        return false;
    constexpr std::string_view BEGINNINGS[] = {"\xFF\xFE"sv, "\xFE\xFF"sv, "<\0"sv, "\0<"sv};
    return std::find(std::begin(BEGINNINGS), std::end(BEGINNINGS), head.substr(0, 2)) != std::end(BEGINNINGS);
}

/// What stands in front of the root, in ASCII.
std::string prologOf(std::string head) {
    head.erase(std::remove(head.begin(), head.end(), '\0'), head.end()); // of UTF-16
    std::size_t place = head.find('<');
    while (place != std::string::npos &&
           (head.compare(place, 2, "<?") == 0 || head.compare(place, 4, "<!--") == 0)) {
        const std::string_view end = head[place + 1] == '?' ? "?>" : "-->";
        place = head.find(end, place);
        place = place == std::string::npos ? place : head.find('<', place);
    }
    return head.substr(0, std::min(place, head.size())) +
           (place != std::string::npos && head.compare(place, 9, "<!DOCTYPE") == 0 ? "<!DOCTYPE" : "");
}

/// For a document that fails before the reader tells its declaration.
std::string findEncoding(const std::string& prolog) {
    const std::size_t name = prolog.find("encoding");
    const std::size_t begin = prolog.find_first_of("'\"", name);
    if (prolog.find("<?xml") == std::string::npos || begin == std::string::npos)
        return {};
    const std::size_t end = prolog.find(prolog[begin], begin + 1);
    return end == std::string::npos ? std::string() : prolog.substr(begin + 1, end - begin - 1);
}

void noteFailure(const Exception& failure, DocumentState& state) {
    state.failure = failure.what();
    unsigned long long line = 0;
    unsigned long long column = 0;
    if (std::sscanf(failure.details(), "line %llu, column %llu", &line, &column) == 2) {
        state.failureLine = line;
        state.failureColumn = column;
    }
}

} // namespace

bool isLimit(std::string_view message) {
    constexpr std::string_view BEGIN = "XML content can not ";
    return message.substr(0, BEGIN.size()) == BEGIN;
}

namespace {

/// @param open  gives the content, or a pointer to it
template <typename Open>
void readOpened(const Open& open, DocumentState& state, model::XmlEvents& events) {
    std::string head;
    try {
        const auto content = open();
        HeadKeepingStream stream(*content);
        StateKeeper keeper(state, events);
        try {
            model::readXmlDocument(stream, keeper);
        } catch (...) {
            head = std::move(stream.head);
            throw;
        }
        head = std::move(stream.head);
    } catch (const BeyondLimit& limit) {
        state.isBeyondLimit = true;
        state.failure = limit.what;
    } catch (const Exception& failure) {
        state.isDamaged = dynamic_cast<const model::InvalidXMLDocument*>(&failure) == nullptr;
        state.isBeyondLimit = !state.isDamaged && isLimit(failure.what());
        noteFailure(failure, state);
    }
    state.isUTF16 = beginsAsUTF16(head);
    if (state.failure.empty())
        return;
    const std::string prolog = prologOf(std::move(head));
    state.hasDocumentType = prolog.find("<!DOCTYPE") != std::string::npos;
    if (state.declaredEncoding.empty())
        state.declaredEncoding = findEncoding(prolog);
}

} // namespace

void readDocument(const Archive& archive, const std::vector<const ArchiveItem*>& items, DocumentState& state,
                  model::XmlEvents& events) {
    state.item = items.front();
    readOpened([&] { return openItems(archive, items); }, state, events);
}

void readDocument(InputStream& content, DocumentState& state, model::XmlEvents& events) {
    readOpened([&content] { return &content; }, state, events);
}

} // namespace opc::inspection
