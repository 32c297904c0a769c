#pragma once

#include "subject/Subject.hpp"

#include <opc/model/XmlEvents.hpp>

#include <cstddef>
#include <string_view>

namespace opc::inspection {

/// A check that looks into the content of parts. All content is expanded once, for all observers together
/// (`ContentPass`), and never held as a whole.
///
/// Parsing costs ten times as much as expanding. So an observer of XML first looks at the bytes, and asks for events only
/// of a part that can matter to it; that part is then expanded again, for the parser.
class ContentObserver {
public:
    virtual ~ContentObserver() = default;

    /// Called at the start of each part.
    /// @param head  its first bytes: all, or at least 64 KiB
    /// @return whether it wants the bytes of this part; the other functions are called only then
    virtual bool begin(const PartView& part, std::string_view head) = 0;

    /// The next piece of the content, the head included.
    virtual void bytes(std::string_view piece) { (void)piece; }

    /// Called instead of `end` where the content is damaged.
    virtual void broken() {}

    /// Called behind the last byte.
    /// @return what gets the events of the part as an XML document; null if the bytes told enough
    virtual model::XmlEvents* end() { return nullptr; }

    /// Called behind the last event.
    /// @param isWhole  whether the document was read to its end
    virtual void parsed(bool isWhole) { (void)isWhole; }

    /// Whether it has told what keeps this part from being parsed. May be called from `end` on, whatever `begin` returned.
    virtual bool tellsWhyUnparsable() const { return false; }

protected:
    ContentObserver() = default;
    ContentObserver(const ContentObserver&) = default;
    ContentObserver& operator=(const ContentObserver&) = default;
};

} // namespace opc::inspection
