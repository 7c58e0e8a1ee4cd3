// json.h: JSON, as all programs write it. Knows nothing of what is written.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace orlo {

/// Text as a JSON string with its quotes; never holds "<", so that it can stand in a page, nor what would command a
/// terminal. What is no UTF-8 becomes U+FFFD.
void put_json_text(std::string &out, std::string_view text);

/// A number as JSON, so that reading gives the same 64 or 32 bits. Infinities and NaN are none: null.
void put_json_number(std::string &out, double value);
void put_json_number(std::string &out, float value);
void put_json_whole(std::string &out, std::int64_t value);

/// Whether all of a text is UTF-8.
[[nodiscard]] bool is_utf8(std::string_view text);

/// A document on its way to a file. The caller opens and closes what it writes, in pairs; commas are put where they belong.
class JsonWriter {
  public:
    explicit JsonWriter(std::FILE *stream) : file{stream} {}

    void begin_object() { begin('{'); }
    void begin_array() { begin('['); }
    void end_object() { end('}'); }
    void end_array() { end(']'); }

    /// Name of what comes next in an object.
    void key(std::string_view name);

    /// A text; one that is no UTF-8 becomes an object with its bytes, {"hex": "..."}.
    void text(std::string_view value);

    void truth(bool value);

    /// A number; one that is none becomes a text, "nan", "inf" or "-inf".
    template <std::floating_point Real> void number(Real value)
    {
        separate();
        if (std::isnan(value))
            out += "\"nan\"";
        else if (std::isinf(value))
            out += value > 0 ? "\"inf\"" : "\"-inf\"";
        else
            put_json_number(out, value);
    }
    void number(std::int64_t value)
    {
        separate();
        put_json_whole(out, value);
    }

    /// Ends the document with a line end. @return false when anything could not be written
    [[nodiscard]] bool finish();

  private:
    void separate();
    void begin(char bracket);
    void end(char bracket);

    std::FILE  *file;
    std::string out;
    bool        first = true; // nothing stands before what comes next, but a bracket or a key
};

} // namespace orlo
