#pragma once

#include "core/CountedStream.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/IdleParsers.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/Errors.hpp>

#include <cstdint>
#include <utility>

namespace opc::model {

/// A parser that reads many documents, one after the other. It is taken from the idle parsers for the first document,
/// and given back in the end. It is dropped if it keeps much of what it has read, or if something else than a document
/// has failed, such as memory. Xerces itself puts a parser back after a document that isn't valid.
///
/// The owner holds a `XercesGuard` that outlives it.
class ReusedParser {
public:
    /// @param kind  must outlive this object
    explicit ReusedParser(IdleParsers& kind) : kind(kind) {}
    ReusedParser(const ReusedParser&) = delete;
    ReusedParser& operator=(const ReusedParser&) = delete;
    ~ReusedParser() { kind.giveBack(std::move(kept)); }

    /// Calls `operation` with the parser and with a stream to read instead of `stream`. The documents that the parser
    /// reads are freed at the end.
    template <typename Operation>
    void use(InputStream& stream, Operation&& operation) {
        IdleParsers::Owned parser = kept ? std::move(kept) : kind.take();
        CountedStream counted(stream);
        const auto keep = [&] {
            if (!isWorn(*parser, counted.count()))
                kept = std::move(parser);
        };
        try {
            const DocumentPoolReset reset(parser.get());
            std::forward<Operation>(operation)(parser.get(), counted);
        } catch (const InvalidXMLDocument&) {
            keep();
            throw;
        }
        keep();
    }

private:
    /// @param length  the number of bytes that it has read
    static bool isWorn(xercesc::DOMLSParser& parser, std::uint64_t length);

    IdleParsers& kind;
    IdleParsers::Owned kept;
};

} // namespace opc::model
