#pragma once

#include "subject/Subject.hpp"

#include <opc/model/XmlEvents.hpp>

#include <cstddef>

namespace opc::inspection {

/// A check that looks into the content of parts. All content is expanded once, for all observers together
/// (`ContentPass`), and never held as a whole.
class ContentObserver {
public:
    virtual ~ContentObserver() = default;

    /// Called at the start of each part.
    /// @param head  its first bytes, up to 4,096
    /// @return what the observer wants of this part
    enum class Wants { Nothing, Bytes, Events };
    virtual Wants begin(const PartView& part, std::string_view head) = 0;

    /// The next piece of the content, the head included.
    virtual void bytes(const unsigned char* data, std::size_t count) { (void)data, (void)count; }

    /// Gets the events of an XML part: the part is parsed only if an observer wants it.
    virtual model::XmlEvents* events() { return nullptr; }

    /// Called at the end of a part that it wanted.
    virtual void end() {}

protected:
    ContentObserver() = default;
    ContentObserver(const ContentObserver&) = default;
    ContentObserver& operator=(const ContentObserver&) = default;
};

} // namespace opc::inspection
