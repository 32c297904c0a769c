#pragma once

#include "xml/DocumentFailures.hpp"
#include "xml/ReplayedStream.hpp"

#include <cstddef>
#include <string_view>

namespace opc::model {

/// Reads a document of any kind: scans it if it is in the plain form of its kind; otherwise Xerces parses it.
/// @param stream          open, at the first byte
/// @param buffer          holds the document for `scan`
/// @param largestScanned  in bytes: a larger document is parsed at once, so that it isn't kept in memory as a whole;
///                        0 to parse all
/// @param scan            called with the bytes of the document; returns whether they are in the plain form. If not,
///                        it has changed nothing that counts
/// @param parse           called with a stream of the same bytes, from the start
/// @throws InvalidPartContent  for an `InvalidXMLDocument`
template <typename Scan, typename Parse>
void scanOrParse(InputStream& stream, ReadAheadBuffer& buffer, std::size_t largestScanned, const Scan& scan,
                 const Parse& parse) {
    ReplayedStream replayed(stream);
    const auto document = replayed.readAhead(buffer, largestScanned);
    if (!document || !scan(*document))
        translateDocumentFailures([&] { parse(replayed); });
}

} // namespace opc::model
