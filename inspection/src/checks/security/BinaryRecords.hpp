#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Splits a part of a binary workbook into its records while it comes. A record is a kind in up to two bytes and a size in
/// up to four, of seven bits each, the lowest ones first, and then its content.
class BinaryRecords {
public:
    static constexpr std::size_t MOST_CONTENT = 65536; ///< four times the longest formula

    /// @param content  of a longer record, its first `MOST_CONTENT` bytes
    using Reader = std::function<void(unsigned kind, std::string_view content)>;

    /// @param kinds  those that the reader gets; the content of others is passed over
    BinaryRecords(std::vector<unsigned> kinds, Reader reader)
        : kinds(std::move(kinds)), reader(std::move(reader)) {}

    void begin();
    void add(std::string_view piece);

private:
    void takeHeader(unsigned char byte);
    std::size_t takeContent(std::string_view piece);

    const std::vector<unsigned> kinds;
    const Reader reader;
    enum class At { Kind, Size, Content } at = At::Kind;
    unsigned taken = 0; ///< bytes of the kind or the size
    unsigned kind = 0;
    std::uint32_t size = 0; ///< in the content: what is left of it
    bool isWanted = false;
    std::string content;
};

/// The fields of a record, one after the other. Behind its end all numbers are 0 and all texts empty.
class RecordFields {
public:
    explicit RecordFields(std::string_view content) : rest(content) {}

    void skip(std::size_t count) { rest.remove_prefix(count < rest.size() ? count : rest.size()); }
    std::uint32_t number(std::size_t bytes);

    /// A size of four bytes, and as many bytes.
    std::string_view bytes();

    /// The number of its UTF-16 units in four bytes, all ones for none, and the units. In UTF-8.
    std::string text();

private:
    std::string_view take(std::size_t count);

    std::string_view rest;
};

} // namespace opc::inspection
