#pragma once

#include <opc/model/XercesDeleter.hpp>

#include <boost/thread/mutex.hpp>
#include <xercesc/dom/DOMLSParser.hpp>

#include <array>
#include <cstddef>
#include <memory>

namespace opc::model {

/// The idle parsers of one kind, for the next reader in the process: making a parser with its schemas takes longer
/// than reading most documents. Any number of threads may take parsers and give them back.
///
/// Objects of this class are never destroyed, so that their parsers are still reachable when the process ends.
class IdleParsers {
public:
    using Owned = std::unique_ptr<xercesc::DOMLSParser, XercesDeleter>;

    /// @param make  makes a parser that has its schemas
    explicit IdleParsers(Owned (*make)()) : make(make) {}
    IdleParsers(const IdleParsers&) = delete;
    IdleParsers& operator=(const IdleParsers&) = delete;

    /// The caller must hold a `XercesGuard` while it has the parser.
    Owned take();

    /// Releases the parser if enough are idle, or if Xerces may be terminated before the process ends.
    void giveBack(Owned parser) noexcept; // NOLINT(bugprone-exception-escape): its mutex can always be locked

private:
    static constexpr std::size_t MOST = 4;

    Owned (*const make)();
    boost::mutex mutex;
    std::array<Owned, MOST> idle; ///< the first ones are used
    std::size_t count = 0;
};

} // namespace opc::model
