#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>

namespace opc::scanning {

/// Texts in UTF-8, side by side. A result has very many, and another thread frees it: to allocate each by itself takes long, and
/// makes the threads wait for each other.
class TextPool {
public:
    /// @return the text in UTF-8, which lasts as long as what `keeper` gives
    std::string_view add(const std::u16string& text);

    /// The memory of the texts, for others to add some.
    std::pmr::memory_resource& resource() const { return *memory; }

    std::shared_ptr<const void> keeper() const { return memory; }

private:
    static constexpr std::size_t USUAL_SIZE = 4096; ///< of the texts of a document, about

    std::shared_ptr<std::pmr::monotonic_buffer_resource> memory =
        std::make_shared<std::pmr::monotonic_buffer_resource>(USUAL_SIZE, std::pmr::new_delete_resource());
};

} // namespace opc::scanning
