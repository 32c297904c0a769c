#pragma once

#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace opc::test {

/// A case of a file in tests/data, whose format tests/data/README.md describes.
struct FileCase {
    std::string place; ///< the file and the line
    std::vector<std::string> columns;
};

/// @param file  below tests/data
/// @throws std::runtime_error  there are no cases, or a line breaks the format; the text names the place
std::vector<FileCase> readCases(const std::string& file, std::size_t columns);

/// The text in a file with one case.
std::string readCase(const std::string& file);

/// What `forEachCase` does after it knows the parameters of `check`.
template <typename... Texts, std::size_t... Index>
void checkCases(const std::string& file, const std::function<void(Texts...)>& check,
                std::index_sequence<Index...> /*columns*/) {
    const auto convert = [](const std::string& column, auto* type) {
        if constexpr (std::is_same_v<decltype(type), std::u16string*>)
            return toString(column, true);
        else
            return column;
    };
    for (const auto& [place, columns] : readCases(file, sizeof...(Texts))) {
        SCOPED_TRACE(place);
        try {
            check(convert(columns[Index], static_cast<std::decay_t<Texts>*>(nullptr))...);
        } catch (const std::exception& e) {
            ADD_FAILURE() << "raised: " << e.what();
        }
    }
}
template <typename... Texts>
void checkCases(const std::string& file, const std::function<void(Texts...)>& check) {
    checkCases(file, check, std::index_sequence_for<Texts...>());
}

/// Calls `check` with the columns of each case of the file: texts in UTF-8 or UTF-16, as its parameters require. A
/// failure in it names the file and the line of the case.
template <typename Check>
void forEachCase(const std::string& file, const Check& check) {
    checkCases(file, std::function(check));
}

} // namespace opc::test
