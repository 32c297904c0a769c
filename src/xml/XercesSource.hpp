#pragma once

#include "xml/AttributeCount.hpp"
#include "xml/DocumentEnd.hpp"
#include "xml/LongTags.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/Errors.hpp>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <algorithm>
#include <cstdint>
#include <exception>

namespace opc::model {

/// What is known about a stream while Xerces reads from it.
struct SourceState {
    std::exception_ptr failure;
    std::uint64_t bytesSinceLastToken = 0;
};

/// Lets Xerces read from a stream.
///
/// Xerces leaks memory when a foreign exception passes through it. So a failed stream looks ended to Xerces, and the
/// exception is kept for the caller of the parse.
class InputStreamBinInputStream final : public xercesc::BinInputStream {
public:
    InputStreamBinInputStream(InputStream& stream, SourceState& state) : stream(stream), state(state) {}

    XMLFilePos curPos() const override { return position; }

    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override {
        if (state.failure)
            return 0;
        try {
            if (state.bytesSinceLastToken > LONGEST_TAG) // text is reported in pieces
                throw InvalidXMLDocument(TAG_IS_TOO_LONG);
            const std::uint64_t count = readEnough(toFill, maxToRead);
            documentEnd.pass(toFill, static_cast<std::size_t>(count));
            attributeCount.pass(toFill, static_cast<std::size_t>(count));
            if (stream.isDone())
                documentEnd.finish();
            position += count;
            state.bytesSinceLastToken += count;
            return static_cast<XMLSize_t>(count);
        } catch (...) {
            state.failure = std::current_exception();
            return 0;
        }
    }

    const XMLCh* getContentType() const override { return nullptr; }

private:
    /// Xerces tells the encoding by the first bytes that it is given.
    static constexpr std::uint64_t ENOUGH_TO_START = 64;

    std::uint64_t readEnough(XMLByte* toFill, std::uint64_t most) {
        std::uint64_t count = 0;
        while (count < std::min(ENOUGH_TO_START, most) && !stream.isDone()) {
            // Xerces trusts the count: more than there is room for would make it read behind its buffer.
            const auto got = std::min<std::uint64_t>(stream.read(toFill + count, most - count), most - count);
            if (got == 0)
                break;
            count += got;
        }
        return count;
    }

    InputStream& stream;
    SourceState& state;
    DocumentEnd documentEnd;
    AttributeCount attributeCount;
    XMLFilePos position = 0;
};

/// Gives Xerces a stream to parse.
class InputStreamXercesSource final : public xercesc::InputSource {
public:
    InputStreamXercesSource(InputStream& stream, SourceState& state)
        : InputSource("istream", xercesc::XMLPlatformUtils::fgMemoryManager), stream(stream), state(state) {}

    xercesc::BinInputStream* makeStream() const override {
        return new InputStreamBinInputStream(stream, state);
    }

private:
    InputStream& stream;
    SourceState& state;
};

} // namespace opc::model
