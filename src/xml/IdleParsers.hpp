#pragma once

#include <opc/model/XercesDeleter.hpp>

#include <boost/thread/mutex.hpp>
#include <xercesc/dom/DOMLSParser.hpp>

#include <array>
#include <cstddef>
#include <memory>

namespace opc::model {

/// The parsers of one kind that nobody uses now, for the next reader in the process: to make one, with its schemas,
/// takes longer than to read most documents. Any number of threads may take parsers and give them back.
///
/// Objects of this class are never destroyed: what they hold can be reached until the process ends.
class IdleParsers {
public:
    using Owned = std::unique_ptr<xercesc::DOMLSParser, XercesDeleter>;

    /// @param make  of a parser that has its schemas
    explicit IdleParsers(Owned (*make)()) : make(make) {}
    IdleParsers(const IdleParsers&) = delete;
    IdleParsers& operator=(const IdleParsers&) = delete;

    /// The caller holds a `XercesGuard` for as long as it has the parser.
    Owned take();

    /// Lets the parser go if enough are idle, or if Xerces may be torn down before the process ends.
    void giveBack(Owned parser) noexcept; // NOLINT(bugprone-exception-escape): its mutex can always be locked

private:
    static constexpr std::size_t MOST = 4;

    Owned (*const make)();
    boost::mutex mutex;
    std::array<Owned, MOST> idle; ///< those at the front
    std::size_t count = 0;
};

} // namespace opc::model
