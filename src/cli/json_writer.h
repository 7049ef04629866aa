#pragma once
// The --json output: one JSON document, written member by member. Strings
// are the program's bytes: UTF-8 passes as it is, any other byte (a Latin-1
// name of an offset file) is read as Latin-1, as the windows read it.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::cli {

// `text` as a JSON string, quotes included.
[[nodiscard]] std::string JsonString(std::string_view text);

class JsonWriter {
public:
    // Opens an object or an array: as a value, or as the member `key` of the
    // object that is open.
    JsonWriter& Object(std::string_view key = {});
    JsonWriter& Array(std::string_view key = {});
    JsonWriter& End();  // closes what was opened last

    // Members of the open object; with an empty key, elements of the open array.
    JsonWriter& String(std::string_view key, std::string_view value);
    JsonWriter& Number(std::string_view key, std::int64_t value);
    JsonWriter& Bool(std::string_view key, bool value);

    // The document with a line end; everything opened must be closed.
    [[nodiscard]] std::string Text() const { return out_ + "\n"; }

private:
    void Begin(std::string_view key);

    struct Open {
        char close;  // '}' or ']'
        bool empty;  // nothing in it yet
    };
    std::string out_;
    std::vector<Open> open_;
};

}  // namespace quillon::cli
