#include "xml/IdleParsers.hpp"

#include "xml/XercesLife.hpp"

#include <boost/thread/lock_types.hpp>

#include <utility>

namespace opc::model {

IdleParsers::Owned IdleParsers::take() {
    {
        const boost::unique_lock<boost::mutex> lock(mutex);
        if (count > 0)
            return std::move(idle[--count]);
    }
    return make();
}

void IdleParsers::giveBack(Owned parser) noexcept { // NOLINT(bugprone-exception-escape): see the header
    if (!parser || !xercesStaysUp())
        return;
    const boost::unique_lock<boost::mutex> lock(mutex);
    if (count < MOST)
        idle[count++] = std::move(parser);
}

} // namespace opc::model
