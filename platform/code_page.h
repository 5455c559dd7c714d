#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune {

// How the characters of a text stand as bytes, in files and in posted data. Inside the program all text is
// UTF-8.
enum class CodePage : std::uint8_t { windows_1252, utf_8 };

[[nodiscard]] bool is_utf8(std::string_view bytes);

// Number of bytes of the character that starts at `at` (0-based), 1 to 4; 1 where the bytes are no UTF-8.
// `at` must be below text.size().
[[nodiscard]] std::size_t character_length(std::string_view text, std::size_t at);

// Text of bytes: as it stands when the bytes are UTF-8, otherwise read as Windows-1252, in which every byte
// is a character (the five that it leaves open read as the control characters of the same code).
[[nodiscard]] std::string text_of_bytes(std::string_view bytes);

// The code page that text_of_bytes reads these bytes in; nothing for plain ASCII, which is the same in both.
[[nodiscard]] std::optional<CodePage> code_page_of(std::string_view bytes);

// The text in Windows-1252. Nothing when a character has no place there, or when the bytes would be read back
// as UTF-8 and so as another text.
[[nodiscard]] std::optional<std::string> windows_1252_bytes(std::string_view text);

// The character as one byte of Windows-1252 appended to `out`; false, and nothing appended, when it has none.
bool append_windows_1252(std::string& out, std::string_view character);
// The character of one byte of Windows-1252, in UTF-8, appended to `out`.
void append_character(std::string& out, unsigned char windows_1252);

// The bytes to keep a text in so that no character is lost: Windows-1252 when it can be, else UTF-8.
[[nodiscard]] std::string bytes_of_text(std::string_view text);

} // namespace kestrune
