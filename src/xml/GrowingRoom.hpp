#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace opc::model {

/// Room for values that nobody has written yet. The usual size lies in the object itself, so that nothing is allocated.
template <typename T, std::size_t Usual>
class GrowingRoom {
public:
    GrowingRoom() = default;
    GrowingRoom(const GrowingRoom&) = delete;
    GrowingRoom& operator=(const GrowingRoom&) = delete;

    T* data() { return larger ? larger.get() : usual.data(); }
    const T* data() const { return larger ? larger.get() : usual.data(); }
    std::size_t size() const { return count; }

    /// Makes the room larger. Some values that lie in it are the first ones then; the others are lost.
    void grow(std::size_t size, const T* kept, std::size_t keptCount) {
        std::unique_ptr<T[]> made(new T[size]); // not make_unique, which would clear it
        std::copy_n(kept, keptCount, made.get());
        larger = std::move(made);
        count = size;
    }

private:
    std::array<T, Usual> usual; // not cleared
    std::unique_ptr<T[]> larger;
    std::size_t count = Usual;
};

} // namespace opc::model
