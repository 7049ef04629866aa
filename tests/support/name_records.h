#pragma once
// Tables of names made up for the tests: records of one stride, each with a
// name of plain capitals at its start, in a field of fixed length padded
// behind its end mark.
#include <cstdint>
#include <string>

namespace quillon::test {

struct NameSpec {
    std::uint32_t stride = 0, length = 0;  // bytes of a record and of its name field
    char padding = 0;
    std::uint32_t count = 0;
};

// Name `i` of 4 to `letters` letters, encoded, without end mark; no two alike.
std::string MadeUpName(std::uint32_t i, std::uint32_t letters);
// The records, each name field followed by zeros up to the record's end.
std::string NameRecords(const NameSpec& spec);

}  // namespace quillon::test
