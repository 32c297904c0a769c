#include "shared/NamedList.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

struct Named {
    Named(std::string name, int value) : name(std::move(name)), value(value) {}

    std::string name;
    int value;
};

/// The names differ in letters and in length, at their ends and inside. Some occur in two spellings.
std::string randomName(std::mt19937& random) {
    const auto number = static_cast<unsigned>(random() % 400);
    std::string name = (number % 2 == 0 ? "Folder/part" : "folder/PART") + std::to_string(number / 2);
    name.append(number % 3, 'x');
    return name;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

TEST(NamedList, doesWhatAPlainListDoes) {
    std::mt19937 random(20250611);
    opc::physical::NamedList<Named> list;
    std::vector<Named> plain;
    const auto place = [&plain](const std::string& name) {
        return std::find_if(plain.begin(), plain.end(), [key = lowerCase(name)](const Named& item) {
            return lowerCase(item.name) == key;
        });
    };
    // The list grows at first, then becomes small, and grows again.
    for (int step = 0; step < 6000; ++step) {
        const std::string name = randomName(random);
        const auto known = place(name);
        const bool isKnown = known != plain.end();
        const Named* const found = list.find(name);
        ASSERT_EQ(found != nullptr, isKnown) << name;
        ASSERT_TRUE(!isKnown || found->value == known->value) << name;
        const bool shrinks = step / 2000 == 1;
        if (random() % 4 < (shrinks ? 1U : 3U)) {
            ASSERT_EQ(list.add(name, name, step) != nullptr, !isKnown) << name;
            if (!isKnown)
                plain.emplace_back(name, step);
        } else {
            ASSERT_EQ(list.remove(name), isKnown) << name;
            if (isKnown)
                plain.erase(known);
        }
    }
    EXPECT_TRUE(std::equal(list.all().begin(), list.all().end(), plain.begin(), plain.end(),
                           [](const Named& left, const Named& right) {
                               return left.name == right.name && left.value == right.value;
                           }));
}

} // namespace
