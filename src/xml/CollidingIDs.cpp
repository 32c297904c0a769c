#include "xml/CollidingIDs.hpp"

namespace opc::model {

bool CollidingIDs::addHash(std::size_t hash) {
    if (buckets.empty())
        buckets.resize(FIRST_SIZE);
    else if (hashes.size() >= buckets.size() * 3 / 4)
        grow();
    hashes.push_back(hash);
    return ++buckets[hash % buckets.size()] > MAXIMUM;
}

void CollidingIDs::grow() {
    const std::size_t size = buckets.size() * 2 + 1;
    buckets.assign(size, 0);
    for (const std::size_t hash : hashes)
        ++buckets[hash % size];
}

} // namespace opc::model
