#include <opc/core/ByteArrayAdaptors.hpp>

#include <algorithm>

namespace opc {

void ByteArrayInAdaptor::open() {
    position = 0;
}

std::uint64_t ByteArrayInAdaptor::read(unsigned char* buffer, std::uint64_t count) {
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, source.size() - position));
    std::copy_n(source.data() + position, taken, buffer);
    position += taken;
    return taken;
}

bool ByteArrayInAdaptor::isDone() const {
    return position == source.size();
}

void ByteArrayInAdaptor::close() {
}

std::uint64_t ByteArrayOutAdaptor::write(const unsigned char* buffer, std::uint64_t count) {
    target.insert(target.end(), buffer, buffer + count);
    return count;
}

bool ByteArrayOutAdaptor::isDone() const {
    return false;
}

void ByteArrayOutAdaptor::flush() {
}

void ByteArrayOutAdaptor::close() {
}

} // namespace opc
