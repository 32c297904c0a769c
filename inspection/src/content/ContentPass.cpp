#include "content/ContentPass.hpp"

#include "content/EventFork.hpp"
#include "subject/DocumentReading.hpp"
#include "text/CaselessText.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

/// An item that fits into one piece is expanded as a whole, which takes less time.
constexpr std::uint64_t LARGEST_PIECE = 1U << 20;
constexpr std::uint64_t SMALLEST_PIECE = 65536;

std::size_t pieceFor(const Subject& subject) {
    std::uint64_t largest = SMALLEST_PIECE;
    for (const PartView& part : subject.parts())
        largest = std::max(largest, part.size);
    return static_cast<std::size_t>(std::min(largest, LARGEST_PIECE));
}

bool isXml(const std::string& mediaType) {
    return endsWith(mediaType, "+xml") || endsWith(mediaType, "/xml");
}

/// Documents of the package's own that a relationship leads to: they have checks of their own.
bool isOwnDocument(const std::string& mediaType) {
    return mediaType == "application/vnd.openxmlformats-package.core-properties+xml" ||
           startsWith(mediaType, "application/vnd.openxmlformats-package.digital-signature");
}

class Pass {
public:
    Pass(const Subject& subject, Findings& findings,
         const std::vector<std::unique_ptr<ContentObserver>>& observers)
        : subject(subject), findings(findings), observers(observers), wantsDamage(findings.wants("M3.14")),
          size(pieceFor(subject)), buffer(new unsigned char[size]) {}

    void overParts() {
        for (const PartView& part : subject.parts())
            try {
                overPart(part);
            } catch (const Exception& e) {
                if (std::none_of(part.items.begin(), part.items.end(), isTold))
                    tellDamage(part.name, {}, e);
            }
    }

    /// Those that are no parts have no observers: only their damage counts.
    void overOtherItems() {
        if (!wantsDamage)
            return;
        for (const ArchiveItem& item : subject.archive().items()) {
            const bool isKnownWhole = &item == subject.contentTypesDocument().item &&
                                      item.kind == ItemKind::ContentTypes &&
                                      subject.contentTypesDocument().failure.empty();
            if (isKnownWhole || !item.partName.empty() || item.kind == ItemKind::Folder ||
                item.kind == ItemKind::Hidden)
                continue;
            try {
                drain(subject.archive().open(item));
            } catch (const Exception& e) {
                if (!isTold(&item))
                    tellDamage({}, item.name, e);
            }
        }
    }

private:
    void overPart(const PartView& part) {
        if ((!wantsDamage && observers.empty()) || part.isKnownWhole)
            return;
        const std::unique_ptr<InputStream> stream = subject.open(part);
        if (stream == nullptr)
            return;
        std::string_view piece = next(*stream);
        std::vector<ContentObserver*> interested;
        for (const std::unique_ptr<ContentObserver>& observer : observers)
            if (observer->begin(part, piece))
                interested.push_back(observer.get());
        if (!wantsDamage && interested.empty())
            return;
        try {
            for (; !piece.empty(); piece = next(*stream))
                for (ContentObserver* observer : interested)
                    observer->bytes(piece);
        } catch (const Exception&) {
            for (ContentObserver* observer : interested)
                observer->broken();
            throw;
        }
        parse(part, interested);
    }

    void parse(const PartView& part, const std::vector<ContentObserver*>& interested) {
        std::vector<ContentObserver*> readers;
        EventFork events;
        for (ContentObserver* observer : interested)
            if (model::XmlEvents* const wanted = observer->end()) {
                readers.push_back(observer);
                events.add(*wanted);
            }
        if (readers.empty())
            return;
        bool isWhole = true;
        try {
            const std::unique_ptr<InputStream> stream = subject.open(part);
            model::readXmlDocument(*stream, events);
        } catch (const model::InvalidXMLDocument& e) {
            isWhole = false;
            if (isLimit(e.what()) && findings.wants("SEC-54"))
                findings.add("SEC-54", findings.ofUnread(), {part.name}, e.what());
            else if (isXml(part.mediaType()) && !isToldElsewhere(part)) // other content only looks like it
                findings.add("OFFICE-XML", {part.name}, std::string("The XML can't be read: ") + e.details());
        }
        for (ContentObserver* observer : readers)
            observer->parsed(isWhole);
    }

    bool isToldElsewhere(const PartView& part) const {
        return (isOwnDocument(part.mediaType()) && findings.wants("M1.20")) ||
               std::any_of(observers.begin(), observers.end(),
                           [](const auto& observer) { return observer->tellsWhyUnparsable(); });
    }

    /// Fills the buffer, so that the first piece is the head whatever portions the stream gives.
    std::string_view next(InputStream& stream) {
        std::size_t filled = 0;
        while (filled < size && !stream.isDone())
            filled += static_cast<std::size_t>(stream.read(buffer.get() + filled, size - filled));
        return {reinterpret_cast<const char*>(buffer.get()), filled};
    }

    void drain(const std::unique_ptr<InputStream>& stream) {
        while (stream != nullptr && !next(*stream).empty()) {
        }
    }

    /// Whether another finding says already what keeps the content from being read.
    static bool isTold(const ArchiveItem* item) { return item->isFaulty || !item->unreadable.empty(); }

    /// @param e  its message begins with the names of the archive and the item
    void tellDamage(const std::string& part, const std::string& item, const Exception& e) {
        const std::string message = e.what();
        const std::size_t place = message.rfind(": ");
        findings.add("M3.14", {part, item},
                     "The content can't be read: " +
                         message.substr(place == std::string::npos ? 0 : place + 2));
    }

    const Subject& subject;
    Findings& findings;
    const std::vector<std::unique_ptr<ContentObserver>>& observers;
    const bool wantsDamage;
    const std::size_t size;
    const std::unique_ptr<unsigned char[]> buffer;
};

} // namespace

void passOverContent(const Subject& subject, Findings& findings,
                     const std::vector<std::unique_ptr<ContentObserver>>& observers) {
    Pass pass(subject, findings, observers);
    pass.overParts();
    pass.overOtherItems();
}

} // namespace opc::inspection
